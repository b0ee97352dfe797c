#include "ncx/settling/mappedentries.h"

#include "check/line/pdo.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace Index = CANopen::Index;

namespace {

constexpr quint64 firstOfMpdo = 254;

} // namespace

bool MappedEntries::isMapping(quint16 index)
{
    return PDO::isMapping(index);
}

bool MappedEntries::isTransmitMapping(quint16 index)
{
    return PDO::isTransmitMapping(index);
}

QList<MappedEntry> MappedEntries::of(const SettledLine &line, quint16 mapping)
{
    const quint64 count = line.value(mapping, 0).value_or(0);
    QList<MappedEntry> entries;
    if (count >= firstOfMpdo)
        return entries;
    for (quint8 number = 1; number <= std::min<quint64>(count, PDO::maxEntries); ++number) {
        if (line.sub(mapping, number))
            entries.append({number, static_cast<quint32>(line.value(mapping, number).value_or(0))});
    }
    return entries;
}

bool MappedEntries::isAlive(const SettledLine &line, const MappedEntry &entry)
{
    return entry.isDummy() || (entry.value != 0 && line.sub(entry.index(), entry.subindex()));
}

quint32 MappedEntries::widthOf(const SettledLine &line, const MappedEntry &entry)
{
    const SettledLine::Sub *target = entry.isDummy() ? nullptr : line.sub(entry.index(), entry.subindex());
    return target ? PDO::widthOf(*target) : 0;
}

bool MappedEntries::replace(SettledLine &line, quint16 mapping, const QList<MappedEntry> &entries)
{
    bool changed = false;
    for (const quint8 number : line.subindicesOf(mapping)) {
        if (number == 0 || number > PDO::maxEntries)
            continue;
        const quint32 wanted = number <= entries.size() ? entries.at(number - 1).value : 0;
        if (line.value(mapping, number).value_or(0) != wanted)
            changed |= line.setDefault(mapping, number, u"0x%1"_s.arg(wanted, 8, 16, QLatin1Char('0')));
    }
    if (line.value(mapping, 0) != static_cast<quint64>(entries.size()))
        changed |= line.setDefault(mapping, 0, QString::number(entries.size()));
    return changed;
}
