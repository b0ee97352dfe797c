#include "nodedict/edsparser.h"

#include "nodedict/access.h"
#include "nodedict/edsvalue.h"
#include "texttools/asciitext.h"
#include "texttools/numbertext.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 refuseWriteFlag = 1;
constexpr quint32 refuseReadFlag = 2;

/// Keys of a section of an object or sub-object in the order of `EdsParser::Field`, in lower case.
constexpr QByteArrayView fieldNames[] = {"parametername",  "objecttype", "datatype",   "accesstype", "defaultvalue",
                                         "lowlimit",       "highlimit",  "pdomapping", "objflags",   "compactsubobj",
                                         "parametervalue", "denotation", "description"};

/// True for an object whose sub-objects have sections of their own.
bool isGroup(quint32 objectType)
{
    return objectType == CANopen::Array || objectType == CANopen::Record || objectType == CANopen::DefStruct;
}

} // namespace

EdsParser::EdsParser(QObject *parent)
    : QObject(parent)
{
}

bool EdsParser::LoadEds(const QString &path)
{
    const bool loaded = sections_.load(path);
    raiseAll();
    return loaded;
}

void EdsParser::loadContent(const QByteArray &content)
{
    sections_.setContent(content);
    raiseAll();
}

QMap<QString, QString> EdsParser::getCompactSubObjNames(quint32 index) const
{
    return compactTexts({index, EdsSections::Names});
}

QMap<QString, QString> EdsParser::getCompactSubObjValues(quint32 index) const
{
    QMap<QString, QString> values = compactTexts({index, EdsSections::Values});
    const quint32 type = dataType(fieldsOf({index, EdsSections::Object})).value_or(CAN::NoType);
    for (QString &value : values)
        value = EdsValue::normalised(value, type);
    return values;
}

QMap<QString, QString> EdsParser::getCompactSubObjDenotations(quint32 index) const
{
    return compactTexts({index, EdsSections::Denotations});
}

QString EdsParser::sectionValue(QLatin1StringView section, const QString &key) const
{
    const auto head = EdsSections::namedHead(QByteArray(section.data(), section.size()).toLower());
    if (!head)
        return {};
    QString result;
    const QByteArray wanted = key.toLatin1().toLower();
    sections_.eachEntry(*head, [&](QByteArrayView name, QByteArrayView value) {
        if (result.isNull() && TextBytes::equals(name, wanted))
            result = value.isEmpty() ? u""_s : sections_.decode(value);
    });
    return result;
}

QString EdsParser::commentText() const
{
    constexpr uint mostLines = 0xffff; // the count is of 16 bits
    constexpr QByteArrayView prefix = "line";
    const uint announced = qMin(EdsValue::number(sectionValue("Comments"_L1, u"Lines"_s)).value_or(0), mostLines);
    QStringList lines;
    sections_.eachEntry(*EdsSections::namedHead("comments"), [&](QByteArrayView key, QByteArrayView value) {
        if (key.size() <= prefix.size() || !TextBytes::equals(key.first(prefix.size()), prefix))
            return;
        const uint number = NumberText::decimal<uint>(QString::fromLatin1(key.sliced(prefix.size()))).value_or(0);
        if (number < 1 || number > announced)
            return;
        while (lines.size() < number)
            lines.append(QString());
        if (lines.at(number - 1).isNull())
            lines[number - 1] = value.isEmpty() ? u""_s : EdsValue::unquotedText(sections_.decode(value));
    });
    return lines.join(u'\n');
}

qsizetype EdsParser::lineOf(quint32 index, std::optional<quint8> subindex) const
{
    return sections_.lineOf({index, subindex ? quint32{*subindex} : quint32{EdsSections::Object}});
}

/// Sub-index, as decimal text, to the text that a section of a compact object gives it.
QMap<QString, QString> EdsParser::compactTexts(const Head &head) const
{
    QMap<QString, QString> texts;
    sections_.eachEntry(head, [&](QByteArrayView key, QByteArrayView value) {
        const auto sub = NumberText::decimalOrHexadecimal<quint8>(QString::fromLatin1(key));
        if (const QString number = QString::number(sub.value_or(0)); sub && !texts.contains(number))
            texts.insert(number, sections_.decode(value));
    });
    return texts;
}

void EdsParser::raiseAll()
{
    raised_.reset();
    hasOwnSub_.reset();
    arrayTypes_.clear();
    noteLists();
    for (const Head &head : sections_.heads()) {
        if (head.topic != EdsSections::Object && !head.isSub())
            continue;
        raiseObject(head.index);
        if (!head.isSub() || (head.topic == 0 && hasOwnSub_.test(head.index)))
            continue;
        const auto sub = static_cast<quint8>(head.topic);
        const Fields fields = fieldsOf(head);
        const quint32 typeIfMissing = dataType(fields) ? quint32{CAN::NoType} : missingTypeOfSub(head.index, sub);
        Q_EMIT newSubIndex(readSub(head.index, sub, fields, typeIfMissing));
    }
}

/// Reads what must be known of the whole file before the first object is raised.
void EdsParser::noteLists()
{
    hasSubs_.reset();
    mandatory_.reset();
    for (const Head &head : sections_.heads()) {
        if (head.isSub())
            hasSubs_.set(head.index);
    }
    if (const auto head = EdsSections::namedHead("mandatoryobjects")) {
        sections_.eachEntry(*head, [&](QByteArrayView key, QByteArrayView value) {
            const auto index = EdsValue::number(sections_.decode(value));
            if (index && *index < mandatory_.size() && !TextBytes::equals(key, "supportedobjects"))
                mandatory_.set(*index);
        });
    }
}

void EdsParser::raiseObject(quint32 index)
{
    const Head head{index, EdsSections::Object};
    if (raised_.test(index) || !sections_.has(head))
        return;
    raised_.set(index);
    const Fields fields = fieldsOf(head);
    const CANopen::CANopenIndex object = readObject(index, fields);
    if (object.objecttype == CANopen::Array)
        arrayTypes_.insert(index, dataType(fields).value_or(CAN::NoType));
    Q_EMIT newIndex(object);

    if (object.compactcount > 0) {
        raiseCompact(object);
    } else if (!isGroup(object.objecttype) && (!hasSubs_.test(index) || dataType(fields))) {
        hasOwnSub_.set(index);
        Q_EMIT newSubIndex(readSub(index, 0, fields, CAN::NoType));
    }
}

/// Raises the sub-objects that `CompactSubObj` stands for, but those that have sections of their own.
void EdsParser::raiseCompact(const CANopen::CANopenIndex &object)
{
    if (object.objecttype == CANopen::Array)
        return;
    const QMap<QString, QString> names = getCompactSubObjNames(object.index);
    const QMap<QString, QString> values = getCompactSubObjValues(object.index);
    const QMap<QString, QString> denotations = getCompactSubObjDenotations(object.index);
    for (quint32 i = 0; i <= object.compactcount; ++i) {
        if (sections_.has({object.index, i}))
            continue;
        CANopenSubindex sub = object.compactSub(static_cast<quint8>(i));
        const QString number = QString::number(i);
        if (i > 0 && names.contains(number))
            sub.name = names.value(number);
        sub.parametervalue = values.value(number);
        sub.denotation = denotations.value(number);
        Q_EMIT newSubIndex(sub);
    }
}

EdsParser::Fields EdsParser::fieldsOf(const Head &head) const
{
    static_assert(std::size(fieldNames) == FieldCount);
    Fields fields;
    sections_.eachEntry(head, [&](QByteArrayView key, QByteArrayView value) {
        for (size_t i = 0; i < FieldCount; ++i) {
            if (!fields.values[i] && TextBytes::equals(key, fieldNames[i])) {
                fields.values[i] = value;
                return;
            }
        }
    });
    return fields;
}

QString EdsParser::text(const Fields &fields, Field field) const
{
    const auto &value = fields.values[field];
    return value ? sections_.decode(*value) : QString();
}

std::optional<quint32> EdsParser::number(const Fields &fields, Field field) const
{
    if (!fields.values[field])
        return std::nullopt;
    const auto plain = AsciiText::plainNumber(*fields.values[field]);
    return plain ? plain : EdsValue::number(text(fields, field));
}

/// A value in the form that fits the type, in which most stand already.
QString EdsParser::value(const Fields &fields, Field field, quint32 type) const
{
    if (!fields.values[field])
        return {};
    const QString whole = text(fields, field);
    const QByteArrayView bytes = *fields.values[field];
    return AsciiText::isPlainDecimal(bytes) || AsciiText::isPlainHexadecimal(bytes) ? whole
                                                                                    : EdsValue::normalised(whole, type);
}

QString EdsParser::limit(const Fields &fields, Field field, quint32 type) const
{
    if (!fields.values[field])
        return {};
    const QString whole = text(fields, field);
    return AsciiText::isPlainDecimal(*fields.values[field]) ? whole : EdsValue::limit(whole, type);
}

QString EdsParser::accessType(const Fields &fields, bool isDomain) const
{
    const auto plain = CANopen::accessOf(QLatin1StringView(fields.values[AccessType].value_or(QByteArrayView())));
    if (plain)
        return textOf(*plain);
    const QString access = word(fields, AccessType);
    return access.isEmpty() && isDomain ? textOf(CANopen::Access::ReadWrite) : COHelper::normalizeAccessType(access);
}

bool EdsParser::isMappable(const Fields &fields) const
{
    if (const auto code = number(fields, PDOMapping))
        return *code != 0;
    const QString mapping = word(fields, PDOMapping).toLower();
    return mapping == "true"_L1 || mapping == "yes"_L1;
}

QString EdsParser::word(const Fields &fields, Field field) const
{
    return EdsValue::word(text(fields, field));
}

std::optional<quint32> EdsParser::dataType(const Fields &fields) const
{
    if (!fields.values[DataType])
        return std::nullopt;
    if (const auto plain = AsciiText::plainNumber(*fields.values[DataType]); plain && *plain <= 0xffff)
        return plain;
    const QString type = word(fields, DataType);
    if (type.isEmpty())
        return std::nullopt;
    const auto code = EdsValue::number(type);
    return code && *code <= 0xffff ? *code : COHelper::mapDataTypeString(type);
}

std::optional<quint32> EdsParser::objectType(const Fields &fields) const
{
    if (!fields.values[ObjectType])
        return std::nullopt;
    if (const auto plain = AsciiText::plainNumber(*fields.values[ObjectType]))
        return plain;
    const QString type = word(fields, ObjectType);
    if (type.isEmpty())
        return std::nullopt;
    if (const auto code = EdsValue::number(type))
        return code;
    // A word that is not known says no more than a missing one.
    const quint32 code = COHelper::string2objectCode(type);
    const bool isKnown = code != CANopen::Var || type.startsWith("VAR"_L1, Qt::CaseInsensitive);
    return isKnown ? std::optional(code) : std::nullopt;
}

/// The object code of an object, guessed from what else it has if its section does not tell.
quint32 EdsParser::objectTypeOf(quint32 index, const Fields &fields) const
{
    if (const auto code = objectType(fields))
        return *code;
    if (number(fields, CompactSubObj).value_or(0) > 0)
        return CANopen::Array;
    return hasSubs_.test(index) && !dataType(fields) ? CANopen::Record : CANopen::Var;
}

/// The type of a sub-object whose section names none.
quint32 EdsParser::missingTypeOfSub(quint32 index, quint8 subindex) const
{
    return subindex == 0 ? quint32{CAN::Unsigned8} : arrayTypes_.value(index, CAN::NoType);
}

CANopen::CANopenIndex EdsParser::readObject(quint32 index, const Fields &fields) const
{
    CANopen::CANopenIndex object;
    object.index = index;
    object.objecttype = objectTypeOf(index, fields);
    object.name = text(fields, ParameterName);
    object.description = text(fields, Description);
    object.category = mandatory_.test(index) ? CANopen::Mandatory : CANopen::Optional;
    if (!isGroup(object.objecttype)) {
        object.datatype = typeOf(fields, CAN::NoType);
        return object;
    }
    object.datatype = dataType(fields).value_or(CAN::Unsigned8);
    object.compactcount = static_cast<quint8>(qMin(number(fields, CompactSubObj).value_or(0), 254U));
    if (object.compactcount > 0)
        object.compacttemplate = readSub(index, 1, fields, CAN::NoType);
    return object;
}

/// The type of a sub-object; a DOMAIN need not name it.
quint32 EdsParser::typeOf(const Fields &fields, quint32 typeIfMissing) const
{
    if (const auto type = dataType(fields))
        return *type;
    return objectType(fields) == quint32{CANopen::Domain} ? quint32{CAN::Domain} : typeIfMissing;
}

CANopenSubindex EdsParser::readSub(quint32 index, quint8 subindex, const Fields &fields, quint32 typeIfMissing) const
{
    CANopenSubindex sub;
    sub.index = index;
    sub.subindex = subindex;
    sub.name = text(fields, ParameterName);
    sub.datatype = typeOf(fields, typeIfMissing);
    sub.accesstype = accessType(fields, objectType(fields) == quint32{CANopen::Domain});
    if (fields.values[DefaultValue])
        sub.defaultvalue = value(fields, DefaultValue, sub.datatype);
    sub.parametervalue = value(fields, ParameterValue, sub.datatype);
    sub.denotation = text(fields, Denotation);
    sub.lowlimit = limit(fields, LowLimit, sub.datatype);
    sub.highlimit = limit(fields, HighLimit, sub.datatype);
    sub.haslimits = has(fields, LowLimit) || has(fields, HighLimit);
    const quint32 flags = number(fields, ObjFlags).value_or(0);
    sub.refusewrite = (flags & refuseWriteFlag) != 0;
    sub.refuseread = (flags & refuseReadFlag) != 0;
    sub.pdomapping = isMappable(fields);
    return sub;
}
