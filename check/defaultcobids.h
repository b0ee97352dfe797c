#pragma once

#include <QList>

#include <optional>

struct StoreValue;

/// What the pre-defined connection set of CiA 301 lays down for one subindex that holds a COB-ID.
struct DefaultCobId
{
    quint16 index = 0;
    quint8 subindex = 0;
    quint32 canId = 0;         ///< with the node-id added where that is known
    quint32 base = 0;          ///< without
    bool nodeRelative = false; ///< "$NODEID+base" is right whatever the node-id
    bool nodeIdIsKnown = false;

    /// True for a COB-ID that is this one, its upper three bits aside. A number without "$NODEID" fits as long as the
    /// node-id is not known.
    bool fits(const StoreValue &cobId) const;
};

/// The whole set for a node-id, which is not given where it is not fixed.
QList<DefaultCobId> predefinedCobIds(std::optional<quint8> nodeId);
