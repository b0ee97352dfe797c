#include "ncx/settling/readings.h"

#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "nodedict/edsvalue.h"
#include "store/objectdatabase.h"

#include <QSet>

#include <algorithm>
#include <span>

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

/// A section of an object or subindex, with what the project has of it.
struct Reading
{
    SettledLine &line;
    const DescriptionText::Section &section;
    quint16 index;
    std::optional<quint8> subindex;
    const SettledLine::Object *object;
    const SettledLine::Sub *sub; ///< null where the object has its values in subindices

    void tell(QLatin1StringView key, const QString &written, const QString &read) const
    {
        line.tell(index, subindex,
                  u"%1: %2 -> %3"_s.arg(key, written.isEmpty() ? u"nothing"_s : written,
                                        read.isEmpty() ? u"nothing"_s : read),
                  key);
    }
};

quint32 typeOf(const QString &text)
{
    const auto code = EdsValue::number(text);
    return code ? *code : COHelper::mapDataTypeString(text);
}

quint32 objectTypeOf(const QString &text)
{
    const auto code = EdsValue::number(text);
    return code ? *code : COHelper::string2objectCode(text);
}

void readObjectType(const Reading &reading, const QString &written)
{
    const quint32 read = reading.subindex ? quint32{Var} : reading.object->objecttype;
    if (written.isEmpty() ? read != Var : objectTypeOf(written) != read)
        reading.tell("ObjectType"_L1, written, COHelper::objectCode2String(read));
}

void readDataType(const Reading &reading, const QString &written)
{
    if (reading.sub && (written.isEmpty() || typeOf(written) != reading.sub->datatype))
        reading.tell("DataType"_L1, written, COHelper::index2DataTypeString(reading.sub->datatype));
}

void readAccess(const Reading &reading, const QString &written)
{
    if (reading.sub && written.compare(reading.sub->accesstype, Qt::CaseInsensitive) != 0)
        reading.tell("AccessType"_L1, written, reading.sub->accesstype);
}

void readFlags(const Reading &reading, const QString &written)
{
    const SettledLine::Sub *sub = reading.sub;
    const quint32 read = sub ? (sub->refusewrite ? 1U : 0U) + (sub->refuseread ? 2U : 0U) : 0;
    if (EdsValue::number(written).value_or(0) != read)
        reading.tell("ObjFlags"_L1, written, QString::number(read));
}

void readCompact(const Reading &reading, const QString &written)
{
    if (const quint32 count = EdsValue::number(written).value_or(0); count > 0)
        reading.tell("CompactSubObj"_L1, written,
                     u"%1 subindices, one by one"_s.arg(reading.line.subindicesOf(reading.index).size()));
}

struct KnownKey
{
    QLatin1StringView key;
    /// Tells what was read otherwise; null for what is always read as it is written.
    void (*read)(const Reading &, const QString &written) = nullptr;
    QLatin1StringView title = {};
    QLatin1StringView reason = {};
};
constexpr KnownKey knownKeys[] = {
    {"ParameterName"_L1},
    {"ObjectType"_L1, readObjectType, "The object code was taken from what else there is"_L1,
     "ObjectType is missing, or is none that a description can have there."_L1},
    {"DataType"_L1, readDataType, "The data type was taken from what else there is"_L1,
     "DataType is missing, or is none."_L1},
    {"AccessType"_L1, readAccess, "The access was taken from what else there is"_L1,
     "AccessType is missing, which means 'ro', or is none."_L1},
    {"PDOMapping"_L1},
    {"DefaultValue"_L1},
    {"LowLimit"_L1},
    {"HighLimit"_L1},
    {"ObjFlags"_L1, readFlags, "Flags that mean nothing were left out"_L1,
     "Bits 0 and 1 of ObjFlags keep a configuration tool from writing or reading."_L1},
    {"SubNumber"_L1},
    {"CompactSubObj"_L1, readCompact, "Subindices that are given in short are there one by one"_L1,
     "A project has no short form."_L1},
    {"ParameterValue"_L1},
    {"Denotation"_L1},
    {"Description"_L1},
};

bool isKnown(const QString &key)
{
    return std::ranges::any_of(
        knownKeys, [&key](const KnownKey &known) { return key.compare(known.key, Qt::CaseInsensitive) == 0; });
}

/// Calls the visitor for each section of an object or subindex that the line has taken.
template <typename Visitor>
void eachReading(SettledLine &line, Visitor visit)
{
    for (const DescriptionText::Section &section : line.file().sections()) {
        if (!section.head || section.head->index > 0xffff)
            continue;
        const auto index = static_cast<quint16>(section.head->index);
        const SettledLine::Object *object = line.object(index);
        if (!object || (section.head->topic != EdsSections::Object && !section.head->isSub()))
            continue;
        const bool isSub = section.head->isSub();
        const auto subindex = isSub ? std::optional(static_cast<quint8>(section.head->topic)) : std::nullopt;
        const bool hasOwnValue = isSub || object->objecttype == Var || object->objecttype == Domain;
        const SettledLine::Sub *sub = hasOwnValue ? line.sub(index, subindex.value_or(0)) : nullptr;
        visit(Reading{line, section, index, subindex, object, sub});
    }
}

void tellKeys(SettledLine &line)
{
    for (const KnownKey &known : knownKeys) {
        if (!known.read)
            continue;
        line.setReading(known.title, known.reason, u"See whether that is what the device does."_s);
        eachReading(line, [&known](const Reading &reading) { known.read(reading, reading.section.word(known.key)); });
    }
    line.setReading(u"Keys that a project has no place for"_s, u"They were left out."_s);
    eachReading(line, [&line](const Reading &reading) {
        for (const DescriptionText::Entry &entry : reading.section.entries) {
            if (!isKnown(entry.key))
                line.tell(reading.index, reading.subindex, u"%1=%2"_s.arg(entry.key, entry.value),
                          QLatin1StringView(entry.key.toLatin1()));
        }
    });
}

/// Sections that an import reads, beside those of objects.
constexpr QLatin1StringView knownSections[] = {"fileinfo"_L1,           "deviceinfo"_L1,       "dummyusage"_L1,
                                               "comments"_L1,           "mandatoryobjects"_L1, "optionalobjects"_L1,
                                               "manufacturerobjects"_L1};
constexpr QLatin1StringView listSections[] = {"mandatoryobjects"_L1, "optionalobjects"_L1, "manufacturerobjects"_L1};

void tellSections(SettledLine &line)
{
    line.setReading(u"Sections that a project has no place for"_s, u"They were left out, but for a node-id."_s);
    for (const DescriptionText::Section &section : line.file().sections()) {
        const bool isOfObject = section.head && section.head->topic != EdsSections::OtherOfObject;
        if (!isOfObject && std::ranges::find(knownSections, section.name.toLower()) == std::end(knownSections))
            line.tell(section.line, u"[%1]"_s.arg(section.name));
    }
    line.setReading(u"Objects that are listed but not described"_s, u"The file has no sections for them."_s,
                    u"Add them if the device has them."_s);
    for (const QLatin1StringView name : listSections) {
        const DescriptionText::Section *list = line.file().section(name);
        if (!list)
            continue;
        for (const DescriptionText::Entry &entry : list->entries) {
            const auto index = EdsValue::number(entry.value);
            if (index && *index >= Index::firstCommunicationObject && *index <= 0xffff &&
                entry.key.compare("SupportedObjects"_L1, Qt::CaseInsensitive) != 0 &&
                !line.file().section(static_cast<quint16>(*index), {}))
                line.tell(entry.line, u"0x%1 in [%2]"_s.arg(*index, 4, 16, QLatin1Char('0')).arg(list->name));
        }
    }
}

void tellAnnouncedPdos(SettledLine &line)
{
    line.setTopic({SettlingTopic::Kind::Settled,
                   u"PDOs that are announced but not described were added, switched off"_s,
                   u"[DeviceInfo] counts more PDOs than the file has objects for."_s,
                   u"Map something and clear bit 31 of the COB-ID to use one."_s});
    for (auto object = line.objects().begin(); object != line.objects().end(); ++object) {
        if (!line.file().section(object.key(), {}))
            line.tell(object.key(), {}, u"added"_s);
    }
}

/// How many subindices have a text.
qsizetype countOf(const SettledLine &line, QString SettledLine::Sub::*text)
{
    return std::ranges::count_if(line.allSubindices(), [&line, text](const StoreRecords::SubKey &key) {
        return !(line.sub(key.index, key.subindex)->*text).isEmpty();
    });
}

void tellConfiguration(SettledLine &line, bool isTaken)
{
    line.setReading(u"Configured values stay beside the defaults"_s,
                    u"A project keeps them as current values, and a description that is generated has none."_s,
                    u"--configured takes them as defaults."_s);
    if (const qsizetype count = countOf(line, &SettledLine::Sub::currentvalue); count > 0 && !isTaken)
        line.tell(0, u"subindices with a ParameterValue: %1"_s.arg(count));
    line.setReading(u"Display names stay in the project"_s, u"A description that is generated has none."_s);
    if (const qsizetype count = countOf(line, &SettledLine::Sub::denotation); count > 0)
        line.tell(0, u"subindices with a Denotation: %1"_s.arg(count));
}

} // namespace

void Readings::tellImport(SettledLine &line, const ImportReport &import, bool isConfigured)
{
    line.setReading(u"Parts that were not imported"_s, u"A project has no place for them."_s);
    for (const ImportReport::Dropped &dropped : import.dropped)
        line.tell(static_cast<int>(dropped.line), dropped.what);
    if (import.droppedCount > import.dropped.size())
        line.tell(0, u"%1 more"_s.arg(import.droppedCount - import.dropped.size()));
    tellKeys(line);
    tellSections(line);
    tellAnnouncedPdos(line);
    tellConfiguration(line, isConfigured);
}
