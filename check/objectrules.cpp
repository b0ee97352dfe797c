// Rules that hold for every object and subindex of a dictionary: values, names, access, implementation, limits.

#include "check/checktext.h"
#include "check/modelchecker.h"
#include "check/storevalue.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <QRegularExpression>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 firstCommunicationObject = 0x1000;

enum Implementation : quint8
{
    ManagedVariable = 0,
    ManagedConst = 1,
    Variable = 2,
    VirtualObject = 3
};

enum class Form : quint8
{
    Unsigned,
    Signed,
    Real,
    Other ///< text, bytes, or a time, which is kept as the user writes it
};

struct TypeRow
{
    quint16 code;
    Form form;
};

/// The types that the stack can hold.
constexpr TypeRow supportedTypes[] = {
    {CAN::Boolean, Form::Unsigned},    {CAN::Integer8, Form::Signed},     {CAN::Integer16, Form::Signed},
    {CAN::Integer32, Form::Signed},    {CAN::Unsigned8, Form::Unsigned},  {CAN::Unsigned16, Form::Unsigned},
    {CAN::Unsigned32, Form::Unsigned}, {CAN::Real32, Form::Real},         {CAN::VisibleString, Form::Other},
    {CAN::OctetString, Form::Other},   {CAN::TimeOfDay, Form::Other},     {CAN::Domain, Form::Other},
    {CAN::Integer24, Form::Signed},    {CAN::Unsigned24, Form::Unsigned}, {CAN::Unsigned40, Form::Unsigned},
    {CAN::Unsigned48, Form::Unsigned}, {CAN::Unsigned64, Form::Unsigned}, {CAN::Unsigned2, Form::Unsigned},
    {CAN::Unsigned3, Form::Unsigned},  {CAN::Unsigned4, Form::Unsigned},  {CAN::Unsigned5, Form::Unsigned},
    {CAN::Unsigned6, Form::Unsigned},  {CAN::Unsigned7, Form::Unsigned},  {CAN::Utf8String, Form::Other},
};

const TypeRow *supportedType(quint16 code)
{
    const auto row = std::ranges::find(supportedTypes, code, &TypeRow::code);
    return row == std::end(supportedTypes) ? nullptr : &*row;
}

Form formOf(quint16 code)
{
    const TypeRow *row = supportedType(code);
    return row ? row->form : Form::Other;
}

/// True for a value that can be read in the form of its type. In the unsigned ones, which identifiers have, a value may
/// be relative to the node-id: the stack works that out.
bool isReadable(const QString &text, Form form)
{
    bool ok = true;
    if (form == Form::Unsigned && !text.contains("$NODEID"_L1, Qt::CaseInsensitive))
        text.toULongLong(&ok, 0);
    else if (form == Form::Signed)
        text.toLongLong(&ok, 0);
    else if (form == Form::Real)
        text.toFloat(&ok);
    return ok;
}

/// What the lowest bits of a number mean in the two's complement of a signed type.
qint64 complement(quint64 bits, quint16 type)
{
    const quint32 unused = 64 - COHelper::getDataLengthBits(type);
    return static_cast<qint64>(bits << unused) >> unused;
}

/// A default value of a signed type. Hexadecimal digits that reach its sign bit are its two's complement.
std::optional<qint64> signedValue(const QString &text, quint16 type)
{
    bool ok = false;
    const qint64 value = text.toLongLong(&ok, 0);
    if (!ok)
        return {};
    const bool isComplement =
        value > 0 && text.contains(u'x', Qt::CaseInsensitive) && value >> (COHelper::getDataLengthBits(type) - 1) == 1;
    return isComplement ? complement(static_cast<quint64>(value), type) : value;
}

// Limits are read as the tables of the dictionary have them, in which a text that is no number is 0 and a number is cut
// to the width of the type.

/// A limit of a signed type, which is decimal.
qint64 signedLimit(const QString &text, quint16 type)
{
    const qint64 value = text.toLongLong(nullptr, 10);
    const bool fits = value >= std::numeric_limits<qint32>::min() && value <= std::numeric_limits<quint32>::max();
    return fits ? complement(static_cast<quint64>(value), type) : 0;
}

quint64 unsignedLimit(const QString &text, quint16 type)
{
    const quint32 bits = std::max(COHelper::getDataLengthBits(type), 8U);
    const quint64 value = bits > 32 ? text.toULongLong(nullptr, 0) : quint64{text.toUInt(nullptr, 0)};
    return value & (~quint64{0} >> (64 - bits));
}

/// A number of an unsigned type, with the node-id where it is relative to that.
std::optional<quint64> unsignedValue(const QString &text, const LineSettings &settings)
{
    const auto value = StoreValue::parse(text);
    if (!value || value->negative || (value->nodeRelative && !settings.nodeId))
        return {};
    return value->magnitude + (value->nodeRelative ? *settings.nodeId : 0);
}

std::optional<double> realValue(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

/// True unless the value can be read and is beyond a limit.
template <class Value, class ReadLimit>
bool isWithin(const std::optional<Value> &value, const COHelper::Limits &limits, ReadLimit read)
{
    return !value || ((limits.low.isEmpty() || *value >= read(limits.low)) &&
                      (limits.high.isEmpty() || *value <= read(limits.high)));
}

bool fitsLimits(const StoreRecords::SubIndexData &data, const LineSettings &settings)
{
    const auto limits = COHelper::declaredLimits(data.datatype, data.lowlimit, data.uplimit);
    if (!limits)
        return true;
    switch (formOf(data.datatype)) {
    case Form::Unsigned:
        return isWithin(unsignedValue(data.defaultvalue, settings), *limits,
                        [&data](const QString &text) { return unsignedLimit(text, data.datatype); });
    case Form::Signed:
        return isWithin(signedValue(data.defaultvalue, data.datatype), *limits,
                        [&data](const QString &text) { return signedLimit(text, data.datatype); });
    case Form::Real:
        return isWithin(realValue(data.defaultvalue), *limits,
                        [](const QString &text) { return realValue(text).value_or(0); });
    case Form::Other:
        break;
    }
    return true;
}

bool isMapping(const CheckedObject &object)
{
    return PDO::isMapping(object.index) || SRDO::isMapping(object.index);
}

/// True where subindex 0 is the number of elements and nothing else: the error history counts its entries there, a
/// mapping its active ones, and one that may be written holds what was written.
bool countsItsElements(const CheckedObject &object)
{
    constexpr quint16 errorHistory = 0x1003;
    const CheckedSubindex *count = object.sub(0);
    return object.isComplex() && count && object.index != errorHistory && !isMapping(object) &&
           !count->data.accesstype.contains(u'w');
}

/// The highest subindex but 255, which describes the object's structure (CiA 301).
quint8 highestSubindex(const CheckedObject &object)
{
    const auto last = std::find_if(object.subs.rbegin(), object.subs.rend(),
                                   [](const CheckedSubindex &sub) { return sub.subindex < 255; });
    return last == object.subs.rend() ? quint8{0} : last->subindex;
}

/// A C expression that names a variable: identifiers, members, elements, calls.
bool isVariable(const QString &name)
{
    static const QRegularExpression expression(uR"(^([A-Za-z0-9_.&*]|->|\[[^\s,;]*\]|\([^\s,;]*\))+$)"_s);
    return expression.match(name).hasMatch();
}

// ---- Values

/// A value of UNSIGNED7 passes as it stands, like those of the types that hold no numbers.
void valueUnreadable(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    const QString &value = sub.data.defaultvalue;
    const Form form = sub.data.datatype == CAN::Unsigned7 ? Form::Other : formOf(sub.data.datatype);
    if (sub.index >= firstCommunicationObject && !value.isEmpty() && !isReadable(value, form))
        checker.reportError(u"<strong>Error: </strong>Value conversion failed with Object 0x%1-0x%2."_s.arg(
            hex4(sub.index), hex2(sub.subindex)));
}

// ---- Objects

/// A mapping object may be empty: what that means is told where its PDO is.
void noSubindices(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    if (object.isComplex() && !object.hasElements() && !isMapping(object))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1: This array does not contain any sub-indices"_s.arg(
            hex4(object.index)));
}

void countIsWrong(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    const quint8 highest = highestSubindex(object);
    if (checker.autoCorrectionDisabled() || !countsItsElements(object) || object.value(0) == highest)
        return;
    StoreRecords::SubIndexData data = object.sub(0)->data;
    data.defaultvalue = QString::number(highest);
    checker.correct(
        object.index, 0, data,
        u"<i>Corrected: Object 0x%1</i>: The value of subindex 0 does not fit to the highest subindex."_s.arg(
            hex4(object.index)));
}

/// A subindex 0 that is missing has no default value either.
void countWithoutDefault(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    const CheckedSubindex *count = object.sub(0);
    if (object.isComplex() && object.hasElements() && (!count || !count->data.defaultineds))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-0:The 'default value' flag must be set for this subindex."_s.arg(
                hex4(object.index)));
}

/// An object whose subindex 0 is virtual is not in the stack's own dictionary at all, and has to stay so.
void countIsNoConst(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    if (checker.autoCorrectionDisabled() || !countsItsElements(object))
        return;
    StoreRecords::SubIndexData data = object.sub(0)->data;
    if (data.accesstype == "const"_L1 || data.implementation == ManagedConst || data.implementation == VirtualObject)
        return;
    data.implementation = ManagedConst;
    checker.correct(
        object.index, 0, data,
        u"<i>Corrected: Object 0x%1-0</i>:'Managed Const' is used as implementation type for this subindex."_s.arg(
            hex4(object.index)));
}

void countNotInEds(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    const CheckedSubindex *count = object.sub(0);
    if (object.isComplex() && count && count->data.writedefaulttoeds == 0)
        checker.reportWarning(WG_EDS, u"Warning: Object 0x%1-0:The defaultvalue of this subindex should be written "
                                      "into the EDS/XDD file."_s.arg(hex4(object.index)));
}

void objectWithoutName(ModelChecker &checker, const CheckSubject &subject)
{
    if (subject.object->data.name.trimmed().isEmpty())
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The object does not have a name. (Required for EDS)"_s.arg(
                hex4(subject.object->index)));
}

void variableWithSubindices(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    if (object.data.objecttype == CANopen::Var && object.subs.size() > 1)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The object is a VARIABLE but has multiple subindices."_s.arg(
                hex4(object.index)));
}

// ---- Subindices

void limitCheckIsOff(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.index >= firstCommunicationObject && sub.data.limitineds && !checker.line().settings().limitCheckEnabled)
        checker.reportWarning(WG_TIMING_LIMITS,
                              u"Warning: Object 0x%1-0x%2: Limit Check is activated, but it is "
                              "deactivated in the global settings."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

/// The subindex of a VARIABLE takes its name in an EDS from its object.
void subindexWithoutName(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (subject.object->isComplex() && sub.data.name.trimmed().isEmpty())
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-0x%2: The object does not have a name. (Required for EDS)"_s.arg(
                hex4(sub.index), hex2(sub.subindex)));
}

void variableNameMissing(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.data.implementation == Variable && sub.data.varname.trimmed().isEmpty())
        checker.reportError(u"<strong>Error: </strong>Object 0x%1-0x%2: The variable name is missing."_s.arg(
            hex4(sub.index), hex2(sub.subindex)));
}

void variableNameInvalid(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    const QString variable = sub.variable(checker.line().number());
    if (!variable.isEmpty() && !isVariable(variable))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1-0x%2: The variable name contains invalid characters "
                            "like spaces or commas."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void accessInvalid(ModelChecker &checker, const CheckSubject &subject)
{
    static const QStringList known{u"ro"_s, u"const"_s, u"rw"_s, u"rwr"_s, u"rww"_s, u"wo"_s};
    const CheckedSubindex &sub = *subject.sub;
    if (!known.contains(sub.data.accesstype))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-0x%2: The access type '%3' is invalid. Use ro, rw, "
            "const, wo, rww or rwr instead."_s.arg(hex4(sub.index), hex2(sub.subindex), sub.data.accesstype));
}

void constIsWritable(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.data.implementation == ManagedConst && sub.data.accesstype.contains(u'w'))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1-0x%2: The implementation type is Managed Const, but "
                            "the access type allows write access."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void managedOctetString(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.data.implementation == ManagedVariable && sub.data.datatype == CAN::OctetString)
        checker.reportError(u"<strong>Error: </strong>Object 0x%1-0x%2: The implementation type 'Managed Variable' is "
                            "not possible for octet strings."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void managedVisibleString(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.data.implementation == ManagedVariable && sub.data.datatype == CAN::VisibleString)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for "
            "visible strings. Use 'Managed Const' or 'Variable' instead."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void managedUtf8String(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.data.implementation == ManagedVariable && sub.data.datatype == CAN::Utf8String)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for "
            "UTF8 strings. Use 'Managed Const' or 'Variable' instead."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void typeUnsupported(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (!supportedType(sub.data.datatype))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1-0x%2: Unknown or unsupported datatype."_s.arg(
            hex4(sub.index), hex2(sub.subindex)));
}

/// Only limits that the user has declared count; any other subindex holds those of its type, or none.
void defaultBeyondLimits(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.data.limitineds && !fitsLimits(sub.data, checker.line().settings()))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-0x%2: The defaultvalue is not in the range of the limits."_s.arg(
                hex4(sub.index), hex2(sub.subindex)));
}

// ---- Names across objects

void variableUsedTwice(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    const QString variable = sub.variable(checker.line().number());
    const CheckedSubindex *first = checker.line().firstUserOf(variable);
    if (first && first != &sub)
        checker.reportWarning(
            WG_NAMING,
            u"<strong>Warning: </strong>Object 0x%1-0x%2: Variable name '%3' is already used by object 0x%4-0x%5."_s
                .arg(hex4(sub.index), hex2(sub.subindex), variable, hex4(first->index), hex2(first->subindex)));
}

} // namespace

std::span<const CheckRule> valueRules()
{
    static const CheckRule rules[] = {
        {"valueUnreadable"_L1, valueUnreadable, eachObject, itsSubindices},
    };
    return rules;
}

std::span<const CheckRule> objectRules()
{
    static const CheckRule rules[] = {
        {"noSubindices"_L1, noSubindices, eachObject},
        {"countIsWrong"_L1, countIsWrong, eachObject},
        {"countWithoutDefault"_L1, countWithoutDefault, eachObject},
        {"countIsNoConst"_L1, countIsNoConst, eachObject},
        {"countNotInEds"_L1, countNotInEds, eachObject},
        {"objectWithoutName"_L1, objectWithoutName, eachObject},
        {"variableWithSubindices"_L1, variableWithSubindices, eachObject},
        {"limitCheckIsOff"_L1, limitCheckIsOff, eachObject, itsSubindices},
        {"subindexWithoutName"_L1, subindexWithoutName, eachObject, itsSubindices},
        {"variableNameMissing"_L1, variableNameMissing, eachObject, itsSubindices},
        {"variableNameInvalid"_L1, variableNameInvalid, eachObject, itsSubindices},
        {"accessInvalid"_L1, accessInvalid, eachObject, itsSubindices},
        {"constIsWritable"_L1, constIsWritable, eachObject, itsSubindices},
        {"managedOctetString"_L1, managedOctetString, eachObject, itsSubindices},
        {"managedVisibleString"_L1, managedVisibleString, eachObject, itsSubindices},
        {"managedUtf8String"_L1, managedUtf8String, eachObject, itsSubindices},
        {"typeUnsupported"_L1, typeUnsupported, eachObject, itsSubindices},
        {"defaultBeyondLimits"_L1, defaultBeyondLimits, eachObject, itsSubindices},
    };
    return rules;
}

std::span<const CheckRule> variableRules()
{
    static const CheckRule rules[] = {
        {"variableUsedTwice"_L1, variableUsedTwice, eachObject, itsSubindices},
    };
    return rules;
}
