#include "ncx/settling/readings.h"

#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "nodedict/edsvalue.h"
#include "store/objectdatabase.h"

#include <algorithm>
#include <span>

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

bool isGroup(const SettledLine::Object &object)
{
    return object.objecttype == Array || object.objecttype == Record;
}

/// What a generated description tells in [DeviceInfo] of itself, and not what the file said.
struct OwnValue
{
    QLatin1StringView key;
    QString (*value)(SettledLine &);
};

template <quint8 subindex>
QString identityValue(SettledLine &line)
{
    const SettledLine::Sub *sub = line.sub(Index::identity, subindex);
    return sub ? sub->defaultvalue : QString();
}

template <quint16 first, quint16 last>
QString countOfObjects(SettledLine &line)
{
    constexpr IndexRange range{first, last};
    return QString::number(
        std::ranges::count_if(line.objects().keys(), [range](quint16 index) { return range.contains(index); }));
}

template <char digit>
QString always(SettledLine & /*line*/)
{
    return QString(QLatin1Char(digit));
}

QString groupMessaging(SettledLine &line)
{
    constexpr quint64 firstOfMpdo = 254;
    return std::ranges::any_of(line.objects().keys(),
                               [&line](quint16 index) {
                                   return index >= Index::rpdoMappings.first && index <= Index::tpdoMappings.last &&
                                          line.value(index, 0).value_or(0) >= firstOfMpdo;
                               })
               ? u"1"_s
               : u"0"_s;
}

QString descriptionSetting(SettledLine &line, const QString &key)
{
    line.store().setCurrentLine(line.number());
    return line.store().getDescriptionSetting(key);
}

constexpr OwnValue ownValues[] = {
    {"VendorNumber"_L1, identityValue<1>},
    {"ProductNumber"_L1, identityValue<2>},
    {"RevisionNumber"_L1, identityValue<3>},
    {"NrOfRXPDO"_L1, countOfObjects<Index::rpdos.first, Index::rpdos.last>},
    {"NrOfTXPDO"_L1, countOfObjects<Index::tpdos.first, Index::tpdos.last>},
    {"EDSVersion"_L1, [](SettledLine &) { return u"4.0"_s; }},
    {"Description"_L1, [](SettledLine &) { return u"EDS"_s; }},
    {"SimpleBootUpSlave"_L1, always<'1'>},
    {"SimpleBootUpMaster"_L1, always<'0'>},
    {"DynamicChannelsSupported"_L1, always<'0'>},
    {"GroupMessaging"_L1, groupMessaging},
    {"Granularity"_L1, [](SettledLine &line) { return descriptionSetting(line, u"Granularity"_s); }},
};

constexpr QLatin1StringView keptDeviceKeys[] = {
    "VendorName"_L1,  "ProductName"_L1,  "OrderCode"_L1,    "LSS_Supported"_L1, "BaudRate_10"_L1,  "BaudRate_20"_L1,
    "BaudRate_50"_L1, "BaudRate_125"_L1, "BaudRate_250"_L1, "BaudRate_500"_L1,  "BaudRate_800"_L1, "BaudRate_1000"_L1};
constexpr QLatin1StringView keptFileKeys[] = {"FileVersion"_L1, "FileRevision"_L1, "CreatedBy"_L1, "ModifiedBy"_L1};
constexpr QLatin1StringView keptDummyKeys[] = {"Dummy0001"_L1, "Dummy0002"_L1, "Dummy0003"_L1, "Dummy0004"_L1,
                                               "Dummy0005"_L1, "Dummy0006"_L1, "Dummy0007"_L1};
/// Of each generation.
constexpr QLatin1StringView anewKeys[] = {"FileName"_L1, "CreationTime"_L1, "CreationDate"_L1, "ModificationTime"_L1,
                                          "ModificationDate"_L1};

/// Keys of a section that go into a generated description as they are.
struct Kept
{
    QLatin1StringView section;
    std::span<const QLatin1StringView> keys;
};
constexpr Kept keptKeys[] = {
    {"deviceinfo"_L1, keptDeviceKeys}, {"fileinfo"_L1, keptFileKeys}, {"dummyusage"_L1, keptDummyKeys}};

/// What a generated description has in the place of an entry; nothing where that is left out.
std::optional<QString> generatedValue(SettledLine &line, const DescriptionText::Entry &entry)
{
    const auto own = std::ranges::find_if(
        ownValues, [&entry](const OwnValue &value) { return entry.key.compare(value.key, Qt::CaseInsensitive) == 0; });
    return own == std::end(ownValues) ? std::nullopt : std::optional(own->value(line));
}

void tellHead(SettledLine &line, const DescriptionText::Entry &entry)
{
    const QString written = EdsValue::word(entry.value);
    const std::optional<QString> value = generatedValue(line, entry);
    const auto number = EdsValue::number(value.value_or(QString()));
    if (!value)
        line.tell(entry.line, u"%1=%2: left out"_s.arg(entry.key, written));
    else if (number ? number != EdsValue::number(written) : *value != written)
        line.tell(entry.line, u"%1: %2 -> %3"_s.arg(entry.key, written.isEmpty() ? u"nothing"_s : written, *value));
}

void tellHeads(SettledLine &line)
{
    line.setReading(u"What a generated description has of its own, or not at all"_s,
                    u"It tells what the project has, or what the program always writes."_s);
    for (const auto &[name, keys] : keptKeys) {
        const DescriptionText::Section *section = line.file().section(name);
        QStringList anew;
        for (const DescriptionText::Entry &entry : section ? section->entries : std::vector<DescriptionText::Entry>()) {
            const auto isIt = [&entry](QLatin1StringView key) {
                return entry.key.compare(key, Qt::CaseInsensitive) == 0;
            };
            if (std::ranges::any_of(anewKeys, isIt))
                anew.append(entry.key);
            else if (std::ranges::none_of(keys, isIt))
                tellHead(line, entry);
        }
        if (section && !anew.isEmpty())
            line.tell(section->line, u"%1: those of each generation"_s.arg(anew.join(", "_L1)));
    }
}

/// A generated description has the highest subindex in subindex 0 of a maker's or profile's object.
void tellCounts(SettledLine &line)
{
    line.setReading(u"Subindex 0 tells the highest subindex in a generated description"_s,
                    u"The project has another value, which the device starts with."_s);
    for (auto object = line.objects().begin(); object != line.objects().end(); ++object) {
        const quint16 index = object.key();
        const QList<quint8> subindices = line.subindicesOf(index);
        const SettledLine::Sub *count = line.sub(index, 0);
        if (index >= Index::firstManufacturerObject && isGroup(*object) && count && !subindices.isEmpty() &&
            line.value(index, 0) != quint64{subindices.last()})
            line.tell(
                index, 0,
                u"DefaultValue: %1 -> %2"_s.arg(count->defaultvalue.isEmpty() ? u"nothing"_s : count->defaultvalue)
                    .arg(subindices.last()),
                "DefaultValue"_L1);
    }
}

void tellSubNumbers(SettledLine &line)
{
    line.setReading(u"The number of subindices is that of those that are there"_s, u"SubNumber tells another one."_s,
                    u"See whether some are missing."_s);
    for (auto object = line.objects().begin(); object != line.objects().end(); ++object) {
        const DescriptionText::Section *section = line.file().section(object.key(), {});
        const QString written = section ? section->word("subnumber"_L1) : QString();
        const auto count = static_cast<quint32>(line.subindicesOf(object.key()).size());
        if (!written.isEmpty() && (!isGroup(*object) || EdsValue::number(written) != count))
            line.tell(object.key(), {},
                      u"SubNumber: %1 -> %2"_s.arg(written, isGroup(*object) ? QString::number(count) : u"nothing"_s),
                      "SubNumber"_L1);
    }
}

} // namespace

void Readings::tellDescriptions(SettledLine &line)
{
    tellHeads(line);
    tellCounts(line);
    tellSubNumbers(line);
}

void Readings::dropDenotations(SettledLine &line)
{
    line.setReading(u"Denotations were left out"_s, u"A project in text form has no place for them."_s,
                    u"Make a database, whose name ends in .ncxp, to keep them."_s);
    for (const auto &[index, subindex, number] : line.allSubindices()) {
        SettledLine::Sub sub = *line.sub(index, subindex);
        sub.denotation.clear();
        line.set(index, subindex, sub);
    }
}
