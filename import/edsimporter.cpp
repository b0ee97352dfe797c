#include "import/edsimporter.h"

#include "import/pdoobjects.h"
#include "nodedict/access.h"
#include "nodedict/canopenindex.h"
#include "nodedict/canopensubindex.h"
#include "nodedict/codes.h"
#include "nodedict/edsparser.h"
#include "nodedict/edsvalue.h"
#include "store/objectdatabase.h"

#include <QStringList>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

using CANopen::Access;
using SubRecord = ObjectDataBase::SUBINDEX_DATA_T;

struct DescriptionSection
{
    QLatin1StringView name;
    bool isText; ///< else its values are numbers, which may have a remark behind them
    std::initializer_list<QLatin1StringView> keys;
};

/// What a line keeps of a description, under the same keys. `Dummy004` is spelled so on both sides, which leaves the
/// line's own `Dummy0004` alone.
const DescriptionSection descriptionSections[] = {
    {"FileInfo"_L1, false, {"FileVersion"_L1, "FileRevision"_L1}},
    {"FileInfo"_L1, true, {"CreatedBy"_L1, "ModifiedBy"_L1}},
    {"DummyUsage"_L1,
     false,
     {"Dummy0001"_L1, "Dummy0002"_L1, "Dummy0003"_L1, "Dummy004"_L1, "Dummy0005"_L1, "Dummy0006"_L1, "Dummy0007"_L1}},
    {"DeviceInfo"_L1, true, {"VendorName"_L1, "ProductName"_L1, "OrderCode"_L1}},
    {"DeviceInfo"_L1,
     false,
     {"LSS_Supported"_L1, "BaudRate_10"_L1, "BaudRate_20"_L1, "BaudRate_50"_L1, "BaudRate_125"_L1, "BaudRate_250"_L1,
      "BaudRate_500"_L1, "BaudRate_800"_L1, "BaudRate_1000"_L1, "NrOfRXPDO"_L1, "NrOfTXPDO"_L1}},
};

QString nameOf(quint16 index)
{
    return u"object 0x%1"_s.arg(index, 4, 16, '0'_L1);
}

QString pdoCountKey(PDOObjects::Direction direction)
{
    return direction == PDOObjects::Receive ? u"NrOfRXPDO"_s : u"NrOfTXPDO"_s;
}

/// The stack knows no storage of its own for a domain: the application has to name a variable.
void nameDomainVariable(SubRecord &record, quint16 index, quint8 subindex)
{
    if (record.datatype != CAN::Domain)
        return;
    record.implementation = codeOf(CANopen::Implementation::Variable);
    record.varname = u"v_%1%2"_s.arg(QString::number(index), QString::number(subindex));
}

/// What can only be read or only be written is mapped in one direction. Imported projects have always had the numbers
/// of the two crosswise.
PDOMapping pdoMappingOf(const CANopenSubindex &sub)
{
    if (!sub.pdomapping)
        return PDOMapping::Forbidden;
    if (sub.accesstype == Access::ReadOnly || sub.accesstype == Access::ReadWriteInput)
        return PDOMapping::RPDO;
    if (sub.accesstype == Access::WriteOnly || sub.accesstype == Access::ReadWriteOutput)
        return PDOMapping::TPDO;
    return PDOMapping::Allowed;
}

/// What compact and other sub-objects have in common.
SubRecord recordOf(const CANopenSubindex &sub)
{
    SubRecord record;
    record.name = sub.name;
    record.datatype = static_cast<quint16>(sub.datatype);
    record.accesstype = sub.accesstype;
    record.defaultvalue = sub.defaultvalue.toString();
    record.currentvalue = sub.parametervalue;
    record.dcfcomponent = !sub.parametervalue.isEmpty();
    record.denotation = sub.denotation;
    record.writedefaulttoeds = sub.writedefaulttoeds;
    record.refuseread = sub.refuseread;
    record.refusewrite = sub.refusewrite;
    if (sub.haslimits) {
        record.lowlimit = sub.lowlimit;
        record.uplimit = sub.highlimit;
        record.limitineds = true;
    }
    nameDomainVariable(record, static_cast<quint16>(sub.index), sub.subindex);
    return record;
}

} // namespace

EDSImporter::EDSImporter() = default;

EDSImporter::~EDSImporter()
{
    // Before the members that a run still under way would be using.
    waitForEnd();
}

void EDSImporter::read()
{
    entries_.clear();
    arrays_.clear();
    existing_.reset();
    for (const quint16 index : store_->getIndexList(line_, 0, 0xffff))
        existing_.set(index);

    parser_ = std::make_shared<EdsParser>();
    connect(parser_.get(), &EdsParser::newIndex, this, &EDSImporter::newIndex);
    connect(parser_.get(), &EdsParser::newSubIndex, this, &EDSImporter::newSubIndex);
    // A file that cannot be read says nothing, not even that the settings of its description are empty.
    if (parser_->LoadEds(filePath_)) {
        Q_EMIT progress(40);
        report_.wrote(store_->addSubIndices(entries_, Quotes::Kept), u"sub-objects"_s);
        Q_EMIT progress(80);
        importDescription();
        importComments();
    }
    entries_.clear();
    arrays_.clear();
    parser_.reset();
}

void EDSImporter::newIndex(const CANopen::CANopenIndex &index)
{
    if (!isInRange(index.index) || index.index > 0xffff) {
        report_.drop(parser_->lineOf(index.index), u"object 0x%1 is out of range"_s.arg(index.index, 4, 16, '0'_L1));
        return;
    }
    const auto key = static_cast<quint16>(index.index);
    ObjectDataBase::INDEX_DATA_T record;
    record.name = index.name;
    record.datatype = index.datatype;
    record.objecttype = index.objecttype;
    record.description = index.description;
    record.category = index.category;
    if (!report_.wrote(store_->addIndex(line_, key, record), nameOf(key), parser_->lineOf(key)))
        return;
    existing_.set(key);
    ++report_.objects;
    if (index.objecttype != CANopen::Array)
        return;
    arrays_.insert(key, record);
    if (index.compactcount > 0)
        addCompactSubs(index);
}

/// Adds the sub-objects of a compact ARRAY at once: where one of them has a section of its own, too, that one comes
/// with the batch later and stays.
void EDSImporter::addCompactSubs(const CANopen::CANopenIndex &object)
{
    const auto index = static_cast<quint16>(object.index);
    const QMap<QString, QString> names = parser_->getCompactSubObjNames(object.index);
    const QMap<QString, QString> values = parser_->getCompactSubObjValues(object.index);
    const QMap<QString, QString> denotations = parser_->getCompactSubObjDenotations(object.index);
    for (quint32 i = 0; i <= object.compactcount; ++i) {
        const auto subindex = static_cast<quint8>(i);
        const QString number = QString::number(i);
        CANopenSubindex sub = object.compactSub(subindex);
        if (i > 0 && names.contains(number))
            sub.name = names.value(number);
        sub.parametervalue = values.value(number);
        sub.denotation = denotations.value(number);
        SubRecord record = recordOf(sub);
        record.pdomapping = sub.pdomapping ? PDOMapping::Allowed : PDOMapping::Forbidden;
        if (report_.wrote(store_->addSubIndex(line_, index, subindex, record, Quotes::Kept), nameOf(index)))
            ++report_.subObjects;
    }
}

void EDSImporter::newSubIndex(const CANopenSubindex &sub)
{
    if (!isInRange(sub.index) || sub.index > 0xffff)
        return; // like its object
    // A sub-object needs an object, of this file or of the line.
    if (!existing_.test(sub.index)) {
        report_.drop(parser_->lineOf(sub.index, sub.subindex),
                     u"sub-object 0x%1:%2 has no object"_s.arg(sub.index, 4, 16, '0'_L1).arg(sub.subindex));
        return;
    }
    const auto index = static_cast<quint16>(sub.index);
    SubRecord record = recordOf(sub);
    record.pdomapping = pdoMappingOf(sub);
    if (!sub.haslimits) {
        const COHelper::Limits limits = COHelper::getDefaultLimits(sub.datatype);
        record.lowlimit = limits.low;
        record.uplimit = limits.high;
    }
    if (sub.subindex == 1)
        setArrayType(index, record.datatype);
    entries_.append({line_, index, sub.subindex, std::move(record)});
    ++report_.subObjects;
}

/// An ARRAY has the data type of its first element.
void EDSImporter::setArrayType(quint16 index, quint16 dataType)
{
    const auto array = arrays_.find(index);
    if (array != arrays_.end() && array->datatype != dataType) {
        array->datatype = dataType;
        report_.wrote(store_->addIndex(line_, index, *array), nameOf(index));
    }
}

void EDSImporter::importDescription()
{
    store_->setCurrentLine(line_);
    for (const auto &[section, isText, keys] : descriptionSections) {
        for (const QLatin1StringView key : keys) {
            const QString value = parser_->sectionValue(section, key);
            const QString text = isText ? EdsValue::unquotedText(value) : EdsValue::word(value);
            report_.wrote(store_->setDescriptionSetting(key, text), key);
        }
    }
    report_.wrote(store_->setDescriptionSetting(u"Comment"_s, parser_->commentText()), u"Comment"_s);
    for (const PDOObjects::Direction direction : {PDOObjects::Receive, PDOObjects::Transmit}) {
        const QString count = EdsValue::word(parser_->sectionValue("DeviceInfo"_L1, pdoCountKey(direction)));
        report_.wrote(PDOObjects::addMissing(*store_, line_, direction, EdsValue::number(count).value_or(0)),
                      u"missing PDO objects"_s);
    }
}

void EDSImporter::importComments()
{
    for (const EdsSections::Comment &comment : parser_->comments()) {
        if (!comment.subindex) {
            if (auto object = store_->getIndex(line_, comment.index)) {
                object->description = comment.text;
                report_.wrote(store_->addIndex(line_, comment.index, *object), u"a comment"_s);
            }
        }
        const quint8 subindex = comment.subindex.value_or(0);
        if (auto sub = store_->getSubIndex(line_, comment.index, subindex)) {
            sub->description = comment.text;
            report_.wrote(store_->addSubIndex(line_, comment.index, subindex, *sub, Quotes::Kept), u"a comment"_s);
        }
    }
}
