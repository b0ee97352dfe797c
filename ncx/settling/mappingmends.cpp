#include "ncx/settling/mends.h"

#include "check/line/pdo.h"
#include "ncx/settling/mappedentries.h"
#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

/// The mapping object that a finding is about; 0 for none.
quint16 mappingOf(const FindingPlace &place)
{
    const quint16 index = place.index.value_or(0);
    return PDO::isCommunication(index) ? static_cast<quint16>(index + Index::pdoMappingOffset) : index;
}

quint16 communicationOf(const FindingPlace &place)
{
    const quint16 index = place.index.value_or(0);
    return PDO::isMapping(index) ? static_cast<quint16>(index - Index::pdoMappingOffset) : index;
}

/// A COB-ID with bit 31 set, in the form that it had.
QString switchedOff(const QString &cobId)
{
    const StoreValue value = StoreValue::parse(cobId).value_or(StoreValue());
    return (value.nodeRelative ? u"$NODEID+"_s : QString()) +
           u"0x%1"_s.arg(value.magnitude | PDO::disabledBit, 8, 16, QLatin1Char('0'));
}

bool setAccess(SettledLine &line, quint16 index, quint8 subindex, Access access)
{
    SettledLine::Sub sub = *line.sub(index, subindex);
    sub.accesstype = textOf(access);
    return line.set(index, subindex, sub);
}

SettledLine::Sub parameter(const QString &name, quint16 dataType, Access access, const QString &value)
{
    SettledLine::Sub sub;
    sub.name = name;
    sub.datatype = dataType;
    sub.accesstype = textOf(access);
    sub.defaultvalue = value;
    return sub;
}

} // namespace

bool MappingMends::makeCompactAlike(SettledLine &line, const FindingPlace &place)
{
    return line.file().isCompact(mappingOf(place)) && makeAlike(line, place);
}

/// What is common to most: a mapping that can be written in a part is one that can be written.
bool MappingMends::makeAlike(SettledLine &line, const FindingPlace &place)
{
    const quint16 mapping = mappingOf(place);
    const QList<quint8> subindices = line.subindicesOf(mapping);
    const bool isWritable = std::ranges::any_of(
        subindices, [&](quint8 subindex) { return CANopen::isWritable(line.sub(mapping, subindex)->accesstype); });
    bool changed = false;
    for (const quint8 subindex : subindices)
        changed |= setAccess(line, mapping, subindex, isWritable ? Access::ReadWrite : Access::Const);
    return changed;
}

bool MappingMends::countCompactEntries(SettledLine &line, const FindingPlace &place)
{
    const quint16 mapping = mappingOf(place);
    QList<MappedEntry> entries = MappedEntries::of(line, mapping);
    const auto firstEmpty = std::ranges::find(entries, 0U, &MappedEntry::value);
    const bool hasGaps = std::any_of(firstEmpty, entries.end(), [](const MappedEntry &entry) { return entry.value; });
    if (!line.file().isCompact(mapping) || hasGaps)
        return false;
    entries.erase(firstEmpty, entries.end());
    return MappedEntries::replace(line, mapping, entries);
}

bool MappingMends::switchOff(SettledLine &line, const FindingPlace &place)
{
    const SettledLine::Sub *cobId = line.sub(communicationOf(place), 1);
    return cobId && line.setDefault(communicationOf(place), 1, switchedOff(cobId->defaultvalue));
}

/// Of the first four PDOs of a direction, unless another one has it.
bool MappingMends::takePredefinedCobId(SettledLine &line, const FindingPlace &place)
{
    constexpr quint16 predefinedPdos = 4;
    constexpr quint32 distance = 0x100;
    const quint16 index = communicationOf(place);
    const bool isTransmit = Index::tpdos.contains(index);
    const auto number = static_cast<quint32>(index - (isTransmit ? Index::tpdos.first : Index::rpdos.first));
    const quint32 own = (isTransmit ? 0x180U : 0x200U) + number * distance;
    const bool isFree = std::ranges::none_of(line.objects().keys(), [&](quint16 other) {
        const SettledLine::Sub *cobId = PDO::isCommunication(other) && other != index ? line.sub(other, 1) : nullptr;
        const auto value = cobId ? StoreValue::parse(cobId->defaultvalue) : std::nullopt;
        return value && value->nodeRelative && (value->magnitude & CAN::identifierBits) == own;
    });
    return number < predefinedPdos && isFree && line.setDefault(index, 1, u"$NODEID+0x%1"_s.arg(own, 0, 16));
}

bool MappingMends::addCommunication(SettledLine &line, const FindingPlace &place)
{
    const quint16 index = communicationOf(place);
    if (line.object(index))
        return false;
    const bool isTransmit = Index::tpdos.contains(index);
    const int number = index - (isTransmit ? Index::tpdos.first : Index::rpdos.first) + 1;
    SettledLine::Object object;
    object.name = (isTransmit ? u"Transmit PDO parameter %1"_s : u"Receive PDO parameter %1"_s).arg(number);
    object.objecttype = Record;
    line.set(index, object);
    line.set(index, 0, parameter(u"Highest subindex supported"_s, CAN::Unsigned8, Access::ReadOnly, u"2"_s));
    line.set(index, 1, parameter(u"COB-ID"_s, CAN::Unsigned32, Access::ReadWrite, u"0x80000000"_s));
    return line.set(index, 2, parameter(u"Transmission Type"_s, CAN::Unsigned8, Access::ReadWrite, u"0xFF"_s));
}

bool MappingMends::addMapping(SettledLine &line, const FindingPlace &place)
{
    constexpr int entries = 8;
    const quint16 index = mappingOf(place);
    if (line.object(index))
        return false;
    SettledLine::Object object;
    object.name = u"Mapping Parameter"_s;
    object.objecttype = Record;
    line.set(index, object);
    for (quint8 number = 1; number <= entries; ++number)
        line.set(index, number,
                 parameter(u"Mapping Entry %1"_s.arg(number), CAN::Unsigned32, Access::ReadWrite, u"0x00000000"_s));
    return line.set(index, 0, parameter(u"Number of Entries"_s, CAN::Unsigned8, Access::ReadWrite, u"0"_s));
}

bool MappingMends::dropDeadEntries(SettledLine &line, const FindingPlace &place)
{
    const quint16 mapping = mappingOf(place);
    QList<MappedEntry> entries = MappedEntries::of(line, mapping);
    entries.removeIf([&line](const MappedEntry &entry) { return !MappedEntries::isAlive(line, entry); });
    return MappedEntries::replace(line, mapping, entries);
}

bool MappingMends::countExistingEntries(SettledLine &line, const FindingPlace &place)
{
    const quint16 mapping = mappingOf(place);
    return MappedEntries::replace(line, mapping, MappedEntries::of(line, mapping));
}

bool MappingMends::fitFrame(SettledLine &line, const FindingPlace &place)
{
    constexpr quint32 frame = 64;
    const quint16 mapping = mappingOf(place);
    QList<MappedEntry> entries;
    quint32 bits = 0;
    for (const MappedEntry &entry : MappedEntries::of(line, mapping)) {
        bits += entry.bits();
        if (bits > frame)
            break;
        entries.append(entry);
    }
    return MappedEntries::replace(line, mapping, entries);
}

bool MappingMends::allowMapping(SettledLine &line, const FindingPlace &place)
{
    bool changed = false;
    for (const MappedEntry &entry : MappedEntries::of(line, mappingOf(place))) {
        const SettledLine::Sub *target = entry.isDummy() ? nullptr : line.sub(entry.index(), entry.subindex());
        if (!target || target->pdomapping != PDOMapping::Forbidden)
            continue;
        SettledLine::Sub allowed = *target;
        allowed.pdomapping = PDOMapping::Allowed;
        changed |= line.set(entry.index(), entry.subindex(), allowed);
    }
    return changed;
}

bool MappingMends::correctLength(SettledLine &line, const FindingPlace &place)
{
    const quint16 mapping = mappingOf(place);
    QList<MappedEntry> entries = MappedEntries::of(line, mapping);
    for (MappedEntry &entry : entries) {
        const quint32 width = MappedEntries::widthOf(line, entry);
        if (width > 0 && entry.bits() > width)
            entry.value = (entry.value & ~quint32{0xff}) | width;
    }
    return MappedEntries::replace(line, mapping, entries);
}

/// "rww" and "rwr" may be mapped in the one direction only (CiA 301).
bool MappingMends::openAccess(SettledLine &line, const FindingPlace &place)
{
    const quint16 mapping = mappingOf(place);
    const bool isTransmit = MappedEntries::isTransmitMapping(mapping);
    const auto fits = [isTransmit](const QString &access) {
        return isTransmit ? CANopen::fitsTransmitPdo(access) : CANopen::fitsReceivePdo(access);
    };
    bool changed = false;
    for (const MappedEntry &entry : MappedEntries::of(line, mapping)) {
        const SettledLine::Sub *target = entry.isDummy() ? nullptr : line.sub(entry.index(), entry.subindex());
        if (target && !fits(target->accesstype))
            changed |= setAccess(line, entry.index(), entry.subindex(),
                                 CANopen::isWritable(target->accesstype) ? Access::ReadWrite : Access::ReadWriteOutput);
    }
    return changed;
}
