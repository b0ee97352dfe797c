#pragma once

#include "ncx/settling/settledline.h"

/// An entry of a PDO mapping (CiA 301).
struct MappedEntry
{
    quint8 number = 0; ///< its subindex
    quint32 value = 0;

    quint16 index() const { return static_cast<quint16>(value >> 16); }
    quint8 subindex() const { return static_cast<quint8>(value >> 8); }
    quint8 bits() const { return static_cast<quint8>(value); }
    /// A dummy names a data type, and stands for bits that nobody reads.
    bool isDummy() const { return value != 0 && index() < 8; }
};

/// The PDO mappings of a line.
namespace MappedEntries {

bool isMapping(quint16 index);
bool isTransmitMapping(quint16 index);
/// The entries that subindex 0 counts, in their order; none for a mapping of several objects in one (MPDO).
QList<MappedEntry> of(const SettledLine &line, quint16 mapping);
/// True for an entry that names what the line has, or a dummy.
bool isAlive(const SettledLine &line, const MappedEntry &entry);
/// Bits that the mapped subindex has; 0 where that is not told.
quint32 widthOf(const SettledLine &line, const MappedEntry &entry);
/// Makes these the entries of a mapping; what was behind them is 0.
bool replace(SettledLine &line, quint16 mapping, const QList<MappedEntry> &entries);

} // namespace MappedEntries
