// Rules of the communication objects of CiA 301, CiA 302 and CiA 1301: which must exist, and what they must hold.

#include "check/checktext.h"
#include "check/modelchecker.h"
#include "check/storevalue.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 identity = 0x1018;

bool exists(ModelChecker &checker, quint16 index)
{
    return checker.line().object(index) != nullptr;
}

bool isEmpty(const CheckedObject &object, quint8 subindex)
{
    const CheckedSubindex *sub = object.sub(subindex);
    return !sub || sub->data.defaultvalue.trimmed().isEmpty();
}

bool isOnForLine(ModelChecker &checker, const QString &key)
{
    return Settings(checker.store()).isOn(key, checker.line().number());
}

/// Lists of nodes: heartbeat consumers, emergency consumers, slave assignment.
void eachNodeList(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    for (const quint16 index : {quint16{0x1016}, quint16{0x1028}, quint16{0x1F81}}) {
        if (const CheckedObject *object = checker.line().object(index))
            visit({.object = object});
    }
}

void deviceTypeOfFd(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    if (checker.line().settings().canFd && object.data.objecttype != CANopen::Array)
        checker.reportError(u"<strong>Error: </strong>Object 0x%1 (Device Type) must be an ARRAY according to the "
                            "CANopen FD specification."_s.arg(hex4(object.index)));
}

void deviceTypeOfClassic(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    if (!checker.line().settings().canFd && object.data.objecttype != CANopen::Var)
        checker.reportError(u"<strong>Error: </strong>Object 0x%1 (Device Type) must be a VARIABLE according to the "
                            "CANopen specification."_s.arg(hex4(object.index)));
}

void deviceTypeMissing(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!exists(checker, 0x1000))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1 (Device Type) does not exist, but it is mandatory "
                            "according to CANopen specification."_s.arg(hex4(0x1000)));
}

void errorRegisterMissing(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!exists(checker, 0x1001))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1 (Error Register) does not exist, but it is mandatory "
                            "according to CANopen specification."_s.arg(hex4(0x1001)));
}

void errorControlMissing(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!exists(checker, 0x1017) && !exists(checker, 0x100C))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1 (Producer Heartbeat) and 0x100C (Guard Time) do not "
                            "exist, but one of them is mandatory."_s.arg(hex4(0x1017)));
}

/// Slaves are the subindices from 1 on.
void tooManySlaves(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    const size_t slaves = object.subs.size() - (object.sub(0) ? 1 : 0);
    if (plainValue(Settings(checker.store()).text(u"max_slave_assignment"_s, checker.line().number())).value_or(0) >
        slaves)
        checker.reportError(u"<strong>Error: </strong>Object 0x1f81: Value of 'max slave Assigment count' may not "
                            "exceed number of subindices of object 0x1f81."_s);
}

void nodeListEmpty(ModelChecker &checker, const CheckSubject &subject)
{
    if (!subject.object->hasElements())
        checker.reportError(u"<strong>Error: </strong>Object 0x%1 does not contain any sub-indices."_s.arg(
            hex4(subject.object->index)));
}

void nodeListGaps(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &object = *subject.object;
    const size_t elements = object.subs.size() - (object.sub(0) ? 1 : 0);
    if (object.hasElements() && object.subs.back().subindex != elements)
        checker.reportError(u"<strong>Error: </strong>Object 0x%1 may not have gaps."_s.arg(hex4(object.index)));
}

void syncWithoutPeriod(ModelChecker &checker, const CheckSubject &subject)
{
    constexpr quint64 producesSync = 0x40000000;
    if ((subject.object->value(0).value_or(0) & producesSync) != 0 && !exists(checker, 0x1006))
        checker.reportError(u"<strong>Error: </strong>Object 0x1006 must be present, if SYNC producer bit is set in "
                            "object 0x1005."_s);
}

void usdoWithoutConnections(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (isOnForLine(checker, u"usdo_server_enabled"_s) && !isOnForLine(checker, u"usdo_server_cnt"_s))
        checker.reportError(u"<strong>Error: </strong>Number of USDO server connections must be at least 1."_s);
}

bool storesOnItsOwn(ModelChecker &checker)
{
    return Settings(checker.store()).isOn(u"1010autostore_by_application"_s);
}

/// Store and restore capabilities of CiA 301: bit 0 on command, bit 1 without, which the application has to do.
void storeByCommandOnly(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.subindex > 0 && !storesOnItsOwn(checker) && plainValue(sub.data.defaultvalue).value_or(0) > 1)
        checker.reportError(u"<strong>Error: </strong>Object 0x%1:%2 only default values between 0 and 1 are "
                            "supported. Enable CO_AUTO_STORE_HANDLED_BY_APPLICATION to support other values"_s.arg(
                                hex4(sub.index), dec(sub.subindex)));
}

void storeUnknown(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    if (sub.subindex > 0 && storesOnItsOwn(checker) && plainValue(sub.data.defaultvalue).value_or(0) > 3)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1:%2 only default values between 0 and 3 are supported."_s.arg(
                hex4(sub.index), dec(sub.subindex)));
}

void masterWithoutInhibitTime(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (checker.line().settings().nmtMaster && !exists(checker, 0x102A))
        checker.reportWarning(
            WG_CONFIG, u"Warning: Object 0x%1: The object 0x102A (NMT inhibit time) is highly "
                       "recommended for masters. It may be added via 'Add Communication Service'."_s.arg(hex4(0x102A)));
}

void vendorIdEmpty(ModelChecker &checker, const CheckSubject &subject)
{
    if (isEmpty(*subject.object, 1))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-0x01: The value of subindex 1 (vendor-ID) is empty."_s.arg(
                hex4(identity)));
}

void vendorIdOfNorvane(ModelChecker &checker, const CheckSubject &subject)
{
    constexpr quint64 norvane = 0x5A7;
    if (subject.object->value(1) == norvane)
        checker.reportWarning(WG_IDENTITY, u"<strong>Warning: Object 0x%1-0x01: The vendor-ID 0x5A7 (Norvane Fieldbus "
                                           "GmbH) may not be used for production. </strong>"_s.arg(hex4(identity)));
}

void productCodeEmpty(ModelChecker &checker, const CheckSubject &subject)
{
    if (isEmpty(*subject.object, 2))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1-0x02: The value of subindex 2 (product code) is "
                            "empty."_s.arg(hex4(identity)));
}

void revisionEmpty(ModelChecker &checker, const CheckSubject &subject)
{
    if (isEmpty(*subject.object, 3))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1-0x03: The value of subindex 3 (revision number) is "
                            "empty."_s.arg(hex4(identity)));
}

void serialNumberIsConst(ModelChecker &checker, const CheckSubject &subject)
{
    constexpr quint8 managedConst = 1;
    const CheckedSubindex *serialNumber = subject.object->sub(4);
    if (serialNumber && serialNumber->data.implementation == managedConst)
        checker.reportWarning(WG_IDENTITY,
                              u"<strong>Warning</strong>: Object 0x%1: The implementation type of subindex 4 (serial "
                              "number) is 'Managed Const'. This is not useful in most cases."_s.arg(hex4(identity)));
}

void errorHistoryWithoutEmcy(ModelChecker &checker, const CheckSubject &subject)
{
    if (!exists(checker, 0x1014))
        checker.reportError(u"<strong>Error: </strong>Object 0x%1: This object can only be used, if object 0x1014 "
                            "exists as well."_s.arg(hex4(subject.object->index)));
}

/// An unused consumer has bit 31 of its COB-ID set. An empty value is generated as 0.
void emcyConsumerIsZero(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex &sub = *subject.sub;
    const bool isZero = sub.data.defaultvalue.trimmed().isEmpty() || plainValue(sub.data.defaultvalue) == quint64{0};
    if (sub.subindex >= 1 && sub.subindex <= 127 && isZero)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1-%2: The value of this sub index may not be 0x00000000."_s.arg(
                hex4(sub.index), dec(sub.subindex)));
}

} // namespace

std::span<const CheckRule> communicationRules()
{
    static const CheckRule rules[] = {
        {"deviceTypeOfFd"_L1, deviceTypeOfFd, eachObjectOf<0x1000, 0x1000>},
        {"deviceTypeOfClassic"_L1, deviceTypeOfClassic, eachObjectOf<0x1000, 0x1000>},
        {"deviceTypeMissing"_L1, deviceTypeMissing},
        {"errorRegisterMissing"_L1, errorRegisterMissing},
        {"errorControlMissing"_L1, errorControlMissing},
        {"tooManySlaves"_L1, tooManySlaves, eachObjectOf<0x1F81, 0x1F81>},
        {"nodeListEmpty"_L1, nodeListEmpty, eachNodeList},
        {"nodeListGaps"_L1, nodeListGaps, eachNodeList},
        {"syncWithoutPeriod"_L1, syncWithoutPeriod, eachObjectOf<0x1005, 0x1005>},
        {"usdoWithoutConnections"_L1, usdoWithoutConnections},
        {"storeByCommandOnly"_L1, storeByCommandOnly, eachObjectOf<0x1010, 0x1011>, itsSubindices},
        {"storeUnknown"_L1, storeUnknown, eachObjectOf<0x1010, 0x1011>, itsSubindices},
        {"masterWithoutInhibitTime"_L1, masterWithoutInhibitTime},
        {"vendorIdEmpty"_L1, vendorIdEmpty, eachObjectOf<identity, identity>},
        {"vendorIdOfNorvane"_L1, vendorIdOfNorvane, eachObjectOf<identity, identity>},
        {"productCodeEmpty"_L1, productCodeEmpty, eachObjectOf<identity, identity>},
        {"revisionEmpty"_L1, revisionEmpty, eachObjectOf<identity, identity>},
        {"serialNumberIsConst"_L1, serialNumberIsConst, eachObjectOf<identity, identity>},
        {"errorHistoryWithoutEmcy"_L1, errorHistoryWithoutEmcy, eachObjectOf<0x1003, 0x1003>},
        {"emcyConsumerIsZero"_L1, emcyConsumerIsZero, eachObjectOf<0x1028, 0x1028>, itsSubindices},
    };
    return rules;
}
