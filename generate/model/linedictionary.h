#pragma once

#include "store/lineprotocols.h"

#include <QHash>
#include <QList>
#include <QString>

class ObjectDataBase;

/// The objects of a line from 0x1000 up, for questions about some of them.
class LineDictionary
{
public:
    LineDictionary(ObjectDataBase &store, quint8 line);

    quint8 line() const { return line_; }
    const QList<quint16> &indices() const { return indices_; }
    /// Whether the stack has the line: a CANopen line without objects is left out everywhere, as it is in the object
    /// dictionary.
    bool takesPart(const LineProtocols &protocols) const
    {
        return protocols.j1939 || protocols.rawCan || !indices_.isEmpty();
    }
    bool has(quint16 index) const;
    /// The objects of a range, both ends included, ascending.
    QList<quint16> range(quint16 first, quint16 last) const;
    quint32 count(quint16 first, quint16 last) const { return static_cast<quint32>(range(first, last).size()); }
    /// Subindices of an object, ascending; none if it does not exist.
    QList<quint8> subs(quint16 index) const;
    quint32 subCount(quint16 index) const { return static_cast<quint32>(subs(index).size()); }
    /// Default value of a subindex; 0 if there is none or it is no number.
    quint32 value(quint16 index, quint8 subindex) const;
    /// Access type of a subindex; empty if there is none.
    QString access(quint16 index, quint8 subindex) const;

private:
    ObjectDataBase &store_;
    quint8 line_;
    QList<quint16> indices_;
    QHash<quint16, QList<quint8>> subs_;
};

/// Indices of CiA 301, 302, 304 and 1301 by their first and last.
namespace ObjectRange {

struct Range
{
    quint16 first;
    quint16 last;
};

inline constexpr Range all{0x1000, 0xFFFF};
inline constexpr Range sdoServers{0x1200, 0x127F};
inline constexpr Range sdoClients{0x1280, 0x12FF};
inline constexpr Range srdos{0x1301, 0x137F};
inline constexpr Range srdoMappings{0x1380, 0x13B0};
inline constexpr Range rxPdos{0x1400, 0x15FF};
inline constexpr Range rxMappings{0x1600, 0x17FF};
inline constexpr Range txPdos{0x1800, 0x19FF};
inline constexpr Range txMappings{0x1A00, 0x1BFF};
/// Distance of a PDO's mapping from its communication parameters.
inline constexpr quint16 mappingOffset = 0x200;

} // namespace ObjectRange
