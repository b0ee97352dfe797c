#pragma once

#include <QList>

#include <optional>

struct StoreValue;

/// The COB-ID that the pre-defined connection set of CiA 301 lays down for a PDO.
struct DefaultCobId
{
    quint16 index = 0;            ///< of the communication object
    quint32 base = 0;             ///< CAN-ID without the node-id
    std::optional<quint8> nodeId; ///< where it is fixed

    /// True for a COB-ID that is this one, its upper three bits aside. A number without "$NODEID" fits as long as the
    /// node-id is not known.
    bool fits(const StoreValue &cobId) const;
    friend bool operator==(const DefaultCobId &, const DefaultCobId &) = default;
};

/// Those of all PDOs that the set knows, for a node-id, which is not given where it is not fixed.
QList<DefaultCobId> predefinedCobIds(std::optional<quint8> nodeId);
