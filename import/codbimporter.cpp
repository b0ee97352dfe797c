#include "import/codbimporter.h"

#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/numbertext.h"

#include <QDebug>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <utility>

using namespace Qt::StringLiterals;
using CANopen::Implementation;

namespace {

using SubRecord = ObjectDataBase::SUBINDEX_DATA_T;

/// Fields of a line, counted from 0. An object line has its sub-index empty; that of a VAR has all of them.
namespace Field {
enum : quint8
{
    Index = 0,
    SubIndex = 1,
    Name = 2,
    Category = 3,
    ObjectCode = 5,
    DataType = 7,
    Access = 9,
    AllowedAccess = 10,
    LowLimit = 15,
    HighLimit = 17,
    DefaultValue = 19,
    Mapping = 21,
    MappingRule = 22
};
} // namespace Field

/// Where a sub-object line belongs: sub-index 0 if it ends before it, and 0x0000:00, which no object owns, if one of
/// the two is no number that fits.
std::pair<quint16, quint8> placeOf(const QStringList &fields)
{
    const QString sub = fields.value(Field::SubIndex);
    const std::optional<quint16> index = NumberText::hexadecimal<quint16>(fields.value(Field::Index));
    const std::optional<quint8> subindex = sub.isEmpty() ? quint8(0) : NumberText::hexadecimal<quint8>(sub);
    return index && subindex ? std::pair(*index, *subindex) : std::pair<quint16, quint8>();
}

/// "ro,const,rw" of the rule "d[ro,const,rw]"; nothing of "m", which allows no other access.
QString listOfRule(const QString &rule)
{
    return rule.sliced(qMin(rule.size(), 2)).chopped(rule.size() > 2 ? 1 : 0);
}

PDOMapping mappingOf(const QStringList &fields)
{
    const QString mapping = fields.value(Field::Mapping);
    const bool allowed = mapping == "y"_L1 || (mapping.isEmpty() && fields.value(Field::MappingRule) == "d"_L1);
    return allowed ? PDOMapping::Allowed : PDOMapping::Forbidden;
}

/// What the lines of variables and of sub-objects have in common.
SubRecord recordOf(const QStringList &fields)
{
    SubRecord record;
    record.name = fields.value(Field::Name);
    record.datatype = static_cast<quint16>(COHelper::mapDataTypeString(fields.value(Field::DataType)));
    record.accesstype = fields.value(Field::Access);
    if (record.accesstype.isEmpty())
        record.accesstype = textOf(CANopen::Access::ReadOnly);
    record.pdomapping = mappingOf(fields);
    record.defaultvalue = fields.value(Field::DefaultValue);
    return record;
}

void setDefaultLimits(SubRecord &record)
{
    const COHelper::Limits limits = COHelper::getDefaultLimits(record.datatype);
    record.lowlimit = limits.low;
    record.uplimit = limits.high;
}

const QRegularExpression &decimalDigits()
{
    static const QRegularExpression expression(u"[0-9]+"_s);
    return expression;
}

const QRegularExpression &hexDigits()
{
    static const QRegularExpression expression(u"0x[0-9A-Fa-f]+"_s);
    return expression;
}

/// The first number in a text, where a hexadecimal one goes before a decimal one; none without a digit.
std::optional<quint64> firstNumber(const QString &text)
{
    const QRegularExpressionMatch hex = hexDigits().match(text);
    if (hex.hasMatch())
        return NumberText::hexadecimal<quint64>(hex.captured()).value_or(0);
    const QRegularExpressionMatch decimal = decimalDigits().match(text);
    return decimal.hasMatch() ? std::optional(NumberText::decimal<quint64>(decimal.captured()).value_or(0))
                              : std::nullopt;
}

quint64 lastNumber(const QRegularExpression &expression, const QString &text, int base)
{
    QString last;
    for (auto matches = expression.globalMatch(text); matches.hasNext();)
        last = matches.next().captured();
    return NumberText::inBase(last, base).value_or(0);
}

void setLimits(SubRecord &record, const QStringList &fields)
{
    const QString low = fields.value(Field::LowLimit);
    if (low.isEmpty() || low == "d"_L1 || low == "n"_L1) {
        setDefaultLimits(record);
        record.limitineds = false;
        return;
    }
    if (const auto number = firstNumber(low))
        record.lowlimit = QString::number(*number);
    const QString high = fields.value(Field::HighLimit);
    record.uplimit = QString::number(qMax(lastNumber(decimalDigits(), high, 10), lastNumber(hexDigits(), high, 16)));
    // Projects know the highest node-id in this form, as digits behind the COB-ID.
    if (high.contains("NODEID"_L1))
        record.uplimit += "127"_L1;
}

/// A domain lives in a variable of the application; a text is a constant, of one blank where it is not given.
void setImplementation(SubRecord &record, quint16 index, quint8 subindex)
{
    if (record.datatype == CAN::Domain) {
        record.implementation = codeOf(Implementation::Variable);
        record.varname = u"v_%1%2"_s.arg(QString::number(index), QString::number(subindex));
    } else if (record.datatype == CAN::VisibleString) {
        record.implementation = codeOf(Implementation::ManagedConst);
        if (record.defaultvalue.isEmpty()) {
            record.defaultvalue = u" "_s;
            record.size = 1;
        }
    }
}

} // namespace

CODBImporter::CODBImporter() = default;

CODBImporter::~CODBImporter()
{
    // Before the members that a run still under way would be using.
    waitForEnd();
}

void CODBImporter::read()
{
    QFile file(filePath_);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    objects_.clear();
    for (lineNumber_ = 1; !file.atEnd(); ++lineNumber_) {
        const QByteArray line = file.readLine();
        importLine(QString::fromLatin1(line.endsWith('\n') ? line.chopped(1) : line));
    }
    flush();
    objects_.clear();
    qDebug() << "Import completeted";
}

void CODBImporter::importLine(const QString &line)
{
    if (line.isEmpty() || line.startsWith(u'#'))
        return;
    if (resolveCopyLines_ && line.startsWith(u'$') && importCopy(line))
        return;
    const QStringList fields = line.split(u':');
    if (QStringView(line).mid(4, 2) == "::"_L1)
        importObject(fields);
    else
        importSubObject(fields);
}

bool CODBImporter::importCopy(const QString &line)
{
    static const QRegularExpression expression(u"^\\$([0-9A-Fa-f]{4})=([0-9A-Fa-f]{4})"_s);
    const QRegularExpressionMatch match = expression.match(line);
    if (!match.hasMatch())
        return false;
    flush();
    const quint16 target = NumberText::hexadecimal<quint16>(match.captured(1)).value_or(0);
    const quint16 source = NumberText::hexadecimal<quint16>(match.captured(2)).value_or(0);
    if (store_->indexExists(line_, source))
        report_.wrote(store_->copyIndex(line_, source, line_, target), line);
    objects_.remove(target);
    return true;
}

void CODBImporter::importObject(const QStringList &fields)
{
    const quint16 index = NumberText::hexadecimal<quint16>(fields.value(Field::Index)).value_or(0);
    if (!isInRange(index))
        return report_.drop(lineNumber_, u"object out of range"_s);
    ObjectDataBase::INDEX_DATA_T object;
    object.name = fields.value(Field::Name);
    object.category = COHelper::convertCategory(fields.value(Field::Category));
    const QString code = fields.value(Field::ObjectCode);
    if (code == "VAR"_L1) {
        importVariable(index, object, fields);
    } else if (code == "ARRAY"_L1 || code == "RECORD"_L1) {
        object.objecttype = code == "ARRAY"_L1 ? CANopen::Array : CANopen::Record;
        addObject(index, object);
    } else {
        return report_.drop(lineNumber_, u"unknown object code"_s);
    }
    ++report_.objects;
}

void CODBImporter::importVariable(quint16 index, StoreRecords::IndexData object, const QStringList &fields)
{
    SubRecord record = recordOf(fields);
    record.allowedaccesstypes = listOfRule(fields.value(Field::AllowedAccess));
    setDefaultLimits(record);
    setImplementation(record, index, 0);
    object.objecttype = CANopen::Var;
    object.datatype = record.datatype;
    addObject(index, object);
    addEntry(index, 0, record);
    ++report_.subObjects;
}

void CODBImporter::importSubObject(const QStringList &fields)
{
    const auto [index, subindex] = placeOf(fields);
    SubRecord record = recordOf(fields);
    // Where a line says nothing of it, any access is allowed.
    if (const QString allowed = fields.value(Field::AllowedAccess); !allowed.isEmpty())
        record.allowedaccesstypes = listOfRule(allowed);
    record.writedefaulttoeds = record.defaultvalue.isEmpty() && subindex != 0 ? 0 : 1;
    setLimits(record, fields);
    fitToObject(index, subindex, record);
    setImplementation(record, index, subindex);
    addEntry(index, subindex, record);
    ++report_.subObjects;
}

/// What a sub-object and its object have to say to each other: the number of entries is a constant, and an ARRAY has
/// the data type of its first element.
void CODBImporter::fitToObject(quint16 index, quint8 subindex, SubRecord &record)
{
    const std::optional<StoreRecords::IndexData> &known = knownObject(index);
    if (!known)
        return;
    const bool array = known->objecttype == CANopen::Array;
    if (subindex == 0 && index >= CANopen::Index::firstManufacturerObject &&
        (array || known->objecttype == CANopen::Record))
        record.implementation = codeOf(Implementation::ManagedConst);
    if (subindex == 1 && array && known->datatype != record.datatype) {
        StoreRecords::IndexData object = *known;
        object.datatype = record.datatype;
        addObject(index, object);
    }
}

std::optional<StoreRecords::IndexData> &CODBImporter::knownObject(quint16 index)
{
    const auto place = objects_.find(index);
    if (place != objects_.end())
        return *place;
    return *objects_.insert(index, store_->getIndex(line_, index));
}

void CODBImporter::addObject(quint16 index, const StoreRecords::IndexData &object)
{
    if (report_.wrote(store_->addIndex(line_, index, object), u"object 0x%1"_s.arg(index, 4, 16, '0'_L1)))
        objects_[index] = object;
}

void CODBImporter::addEntry(quint16 index, quint8 subindex, const SubRecord &record)
{
    const StoreRecords::SubEntry entry = {line_, index, subindex, record};
    // Each copy line of a range that is not resolved replaces the row of the one before.
    if (!entries_.isEmpty() && entries_.last().index == index && entries_.last().subindex == subindex)
        entries_.last() = entry;
    else
        entries_.append(entry);
}

void CODBImporter::flush()
{
    report_.wrote(store_->addSubIndices(entries_, Quotes::Kept), u"sub-objects"_s);
    entries_.clear();
}
