#include "check/line/pdo.h"

#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <algorithm>

using namespace Qt::StringLiterals;

bool PDO::isMultiplexed(const CheckedObject &mapping)
{
    return mapping.value(0).value_or(0) >= 254;
}

quint8 PDO::activeEntries(const CheckedObject &mapping)
{
    const quint64 count = mapping.value(0).value_or(0);
    return count < 254 ? static_cast<quint8>(count) : quint8{0};
}

std::vector<PDO::MappingEntry> PDO::entriesOf(CheckedLine &line, const CheckedObject &mapping)
{
    const quint8 active = std::min(activeEntries(mapping), maxEntries);
    std::vector<MappingEntry> entries;
    for (const CheckedSubindex &sub : mapping.subs) {
        if (sub.subindex == 0 || sub.subindex > active)
            continue;
        const auto value = sub.data->defaultvalue.isEmpty() ? 0 : plainValue(sub.data->defaultvalue);
        if (!value)
            continue;
        MappingEntry &entry = entries.emplace_back();
        entry.number = sub.subindex;
        entry.value = static_cast<quint32>(*value);
        entry.target = line.sub(entry.index(), entry.subindex());
    }
    return entries;
}

bool PDO::mapsSomething(const CheckedObject &mapping)
{
    return std::ranges::any_of(mapping.subs, [](const CheckedSubindex &sub) {
        return sub.subindex > 0 && plainValue(sub.data->defaultvalue).value_or(0) != 0;
    });
}

quint32 PDO::mappedBits(CheckedLine &line, const CheckedObject &mapping)
{
    quint32 bits = 0;
    for (const MappingEntry &entry : entriesOf(line, mapping))
        bits += entry.bits();
    return bits;
}

bool PDO::isDynamic(const CheckedObject &mapping)
{
    const CheckedSubindex *count = mapping.sub(0);
    return count && CANopen::isReadWrite(count->data->accesstype);
}

quint32 PDO::widthOf(const StoreRecords::SubIndexData &data)
{
    const quint32 bits = COHelper::getDataLengthBits(data.datatype);
    return bits > 0 ? bits : data.size * 8;
}

QString PDO::cobIdText(const CheckedObject &communication)
{
    const CheckedSubindex *sub = communication.sub(1);
    return sub ? sub->data->defaultvalue : QString();
}

std::optional<StoreValue> PDO::cobIdOf(const CheckedObject &communication)
{
    const QString text = cobIdText(communication);
    return text.trimmed().isEmpty() ? StoreValue() : StoreValue::parse(text);
}

bool PDO::isEnabled(const CheckedObject *communication)
{
    return communication && (cobIdOf(*communication).value_or(StoreValue()).magnitude & disabledBit) == 0;
}
