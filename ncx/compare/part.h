#pragma once

#include <QJsonObject>
#include <QString>

/// What a device is made of, from the outside in.
enum class PartKind : quint8
{
    Project, ///< what is said of all lines
    Line,
    Object,
    Subindex,
    Pgn,
    Spn,
    CanId,
    Signal, ///< a data element of a CAN-ID
    Service ///< of the UDS server (ISO 14229-1)
};

/// "object", "SPN", ...
QString nameOf(PartKind kind);

/// Where a part is.
struct PartPlace
{
    PartKind kind = PartKind::Project;
    quint8 line = 0;
    quint32 number = 0;   ///< index, PGN, CAN-ID or service
    quint32 sub = 0;      ///< subindex, SPN or number of a data element
    quint8 direction = 0; ///< of a message

    /// "line 0, object 0x1018:1"; without the line if that says nothing.
    QString text(bool withLine = true) const;
    QJsonObject toJson() const;
};
