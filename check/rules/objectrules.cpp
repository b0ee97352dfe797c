// Rules that hold for every object and subindex of a dictionary: values, names, access, implementation, limits.

#include "check/frame/checkloops.h"
#include "check/line/checktext.h"
#include "check/line/valueform.h"
#include "check/rules/rulelists.h"
#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

bool isMapping(const CheckedObject &object)
{
    return PDO::isMapping(object.index) || SRDO::isMapping(object.index);
}

/// True where subindex 0 is the number of elements and nothing else: the error history counts its entries there, a
/// mapping its active ones, and one that may be written holds what was written.
bool countsItsElements(const CheckedObject &object)
{
    const CheckedSubindex *count = object.sub(0);
    return object.isComplex() && count && object.index != Index::errorHistory && !isMapping(object) &&
           !CANopen::isWritable(count->data->accesstype);
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

void valueUnreadable(LocalCheck &check, const CheckedSubindex &sub)
{
    const QString &value = sub.data->defaultvalue;
    if (sub.index >= Index::firstCommunicationObject && !value.isEmpty() &&
        !ValueForm::isReadable(value, sub.data->datatype))
        check.error(u"Value conversion failed with Object 0x%1-0x%2."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

/// A mapping object may be empty: what that means is told where its PDO is.
void noSubindices(LocalCheck &check, const CheckedObject &object)
{
    if (object.isComplex() && !object.hasElements() && !isMapping(object))
        check.error(u"Object 0x%1: This array does not contain any sub-indices"_s.arg(hex4(object.index)));
}

void countIsWrong(LocalCheck &check, const CheckedObject &object)
{
    const quint8 highest = highestSubindex(object);
    if (!check.corrects() || !countsItsElements(object) || object.value(0) == highest)
        return;
    StoreRecords::SubIndexData data = *object.sub(0)->data;
    data.defaultvalue = QString::number(highest);
    check.correct(
        object.index, 0, data,
        u"Object 0x%1</i>: The value of subindex 0 does not fit to the highest subindex."_s.arg(hex4(object.index)));
}

/// A subindex 0 that is missing has no default value either.
void countWithoutDefault(LocalCheck &check, const CheckedObject &object)
{
    const CheckedSubindex *count = object.sub(0);
    if (object.isComplex() && object.hasElements() && (!count || !count->data->defaultineds))
        check.error(u"Object 0x%1-0:The 'default value' flag must be set for this subindex."_s.arg(hex4(object.index)));
}

/// An object whose subindex 0 is virtual is not in the stack's own dictionary at all, and has to stay so.
void countIsNoConst(LocalCheck &check, const CheckedObject &object)
{
    if (!check.corrects() || !countsItsElements(object))
        return;
    StoreRecords::SubIndexData data = *object.sub(0)->data;
    if (data.accesstype == CANopen::Access::Const || data.implementation == Implementation::ManagedConst ||
        data.implementation == Implementation::VirtualObject)
        return;
    data.implementation = codeOf(Implementation::ManagedConst);
    check.correct(object.index, 0, data,
                  u"Object 0x%1-0</i>:'Managed Const' is used as implementation type for this subindex."_s.arg(
                      hex4(object.index)));
}

void countNotInEds(LocalCheck &check, const CheckedObject &object)
{
    const CheckedSubindex *count = object.sub(0);
    if (object.isComplex() && count && count->data->writedefaulttoeds == 0)
        check.warning(
            WG_EDS,
            u"Warning: Object 0x%1-0:The defaultvalue of this subindex should be written into the EDS/XDD file."_s.arg(
                hex4(object.index)));
}

void objectWithoutName(LocalCheck &check, const CheckedObject &object)
{
    if (object.data.name.trimmed().isEmpty())
        check.error(u"Object 0x%1: The object does not have a name. (Required for EDS)"_s.arg(hex4(object.index)));
}

void variableWithSubindices(LocalCheck &check, const CheckedObject &object)
{
    if (object.data.objecttype == Var && object.subs.size() > 1)
        check.error(u"Object 0x%1: The object is a VARIABLE but has multiple subindices."_s.arg(hex4(object.index)));
}

void limitCheckIsOff(LocalCheck &check, const CheckedSubindex &sub)
{
    if (sub.index >= Index::firstCommunicationObject && sub.data->limitineds && !check.settings().limitCheckEnabled)
        check.warning(
            WG_TIMING_LIMITS,
            u"Warning: Object 0x%1-0x%2: Limit Check is activated, but it is deactivated in the global settings."_s.arg(
                hex4(sub.index), hex2(sub.subindex)));
}

/// The subindex of a VARIABLE takes its name in an EDS from its object.
void subindexWithoutName(LocalCheck &check, const CheckedObject &object, const CheckedSubindex &sub)
{
    if (object.isComplex() && sub.data->name.trimmed().isEmpty())
        check.error(u"Object 0x%1-0x%2: The object does not have a name. (Required for EDS)"_s.arg(hex4(sub.index),
                                                                                                   hex2(sub.subindex)));
}

void variableNameMissing(LocalCheck &check, const CheckedSubindex &sub)
{
    if (sub.data->implementation == Implementation::Variable && sub.data->varname.trimmed().isEmpty())
        check.error(u"Object 0x%1-0x%2: The variable name is missing."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void variableNameInvalid(LocalCheck &check, const CheckedSubindex &sub)
{
    const QString variable = sub.variable(check.lineNumber());
    if (!variable.isEmpty() && !isVariable(variable))
        check.error(u"Object 0x%1-0x%2: The variable name contains invalid characters like spaces or commas."_s.arg(
            hex4(sub.index), hex2(sub.subindex)));
}

void accessInvalid(LocalCheck &check, const CheckedSubindex &sub)
{
    if (!CANopen::accessOf(sub.data->accesstype))
        check.error(
            u"Object 0x%1-0x%2: The access type '%3' is invalid. Use ro, rw, const, wo, rww or rwr instead."_s.arg(
                hex4(sub.index), hex2(sub.subindex), sub.data->accesstype));
}

void constIsWritable(LocalCheck &check, const CheckedSubindex &sub)
{
    if (sub.data->implementation == Implementation::ManagedConst && CANopen::isWritable(sub.data->accesstype))
        check.error(
            u"Object 0x%1-0x%2: The implementation type is Managed Const, but the access type allows write access."_s
                .arg(hex4(sub.index), hex2(sub.subindex)));
}

void managedOctetString(LocalCheck &check, const CheckedSubindex &sub)
{
    if (sub.data->implementation == Implementation::ManagedVariable && sub.data->datatype == CAN::OctetString)
        check.error(
            u"Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for octet strings."_s.arg(
                hex4(sub.index), hex2(sub.subindex)));
}

void managedVisibleString(LocalCheck &check, const CheckedSubindex &sub)
{
    if (sub.data->implementation == Implementation::ManagedVariable && sub.data->datatype == CAN::VisibleString)
        check.error(
            u"Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for visible strings. Use "
            "'Managed Const' or 'Variable' instead."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void managedUtf8String(LocalCheck &check, const CheckedSubindex &sub)
{
    if (sub.data->implementation == Implementation::ManagedVariable && sub.data->datatype == CAN::Utf8String)
        check.error(
            u"Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for UTF8 strings. Use "
            "'Managed Const' or 'Variable' instead."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

void typeUnsupported(LocalCheck &check, const CheckedSubindex &sub)
{
    if (!ValueForm::isSupported(sub.data->datatype))
        check.error(u"Object 0x%1-0x%2: Unknown or unsupported datatype."_s.arg(hex4(sub.index), hex2(sub.subindex)));
}

/// Only limits that the user has declared count; any other subindex holds those of its type, or none.
void defaultBeyondLimits(LocalCheck &check, const CheckedSubindex &sub)
{
    if (sub.data->limitineds && !ValueForm::fitsLimits(*sub.data, check.settings().nodeId))
        check.error(u"Object 0x%1-0x%2: The defaultvalue is not in the range of the limits."_s.arg(hex4(sub.index),
                                                                                                   hex2(sub.subindex)));
}

void variableUsedTwice(VariableCheck &check, const CheckedSubindex &sub)
{
    const QString variable = sub.variable(check.lineNumber());
    const CheckedSubindex *first = check.firstUserOf(variable);
    if (first && first != &sub)
        check.warning(
            WG_NAMING,
            u"<strong>Warning: </strong>Object 0x%1-0x%2: Variable name '%3' is already used by object 0x%4-0x%5."_s
                .arg(hex4(sub.index), hex2(sub.subindex), variable, hex4(first->index), hex2(first->subindex)));
}

} // namespace

std::span<const LineRule> RuleLists::values()
{
    static const LineRule rules[] = {
        rule("valueUnreadable"_L1, eachObject, itsSubindices, valueUnreadable),
    };
    return rules;
}

std::span<const LineRule> RuleLists::objects()
{
    static const LineRule rules[] = {
        rule("noSubindices"_L1, eachObject, noSubindices),
        rule("countIsWrong"_L1, eachObject, countIsWrong),
        rule("countWithoutDefault"_L1, eachObject, countWithoutDefault),
        rule("countIsNoConst"_L1, eachObject, countIsNoConst),
        rule("countNotInEds"_L1, eachObject, countNotInEds),
        rule("objectWithoutName"_L1, eachObject, objectWithoutName),
        rule("variableWithSubindices"_L1, eachObject, variableWithSubindices),
        rule("limitCheckIsOff"_L1, eachObject, itsSubindices, limitCheckIsOff),
        rule("subindexWithoutName"_L1, eachObject, itsSubindices, subindexWithoutName),
        rule("variableNameMissing"_L1, eachObject, itsSubindices, variableNameMissing),
        rule("variableNameInvalid"_L1, eachObject, itsSubindices, variableNameInvalid),
        rule("accessInvalid"_L1, eachObject, itsSubindices, accessInvalid),
        rule("constIsWritable"_L1, eachObject, itsSubindices, constIsWritable),
        rule("managedOctetString"_L1, eachObject, itsSubindices, managedOctetString),
        rule("managedVisibleString"_L1, eachObject, itsSubindices, managedVisibleString),
        rule("managedUtf8String"_L1, eachObject, itsSubindices, managedUtf8String),
        rule("typeUnsupported"_L1, eachObject, itsSubindices, typeUnsupported),
        rule("defaultBeyondLimits"_L1, eachObject, itsSubindices, defaultBeyondLimits),
    };
    return rules;
}

std::span<const LineRule> RuleLists::variables()
{
    static const LineRule rules[] = {
        rule("variableUsedTwice"_L1, eachObject, itsSubindices, variableUsedTwice),
    };
    return rules;
}
