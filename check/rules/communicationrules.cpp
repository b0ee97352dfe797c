// Rules of the communication objects of CiA 301, CiA 302 and CiA 1301: which must exist, and what they must hold.

#include "check/frame/checkloops.h"
#include "check/line/checktext.h"
#include "check/line/storevalue.h"
#include "check/rules/rulelists.h"
#include "nodedict/cohelper.h"

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

constexpr IndexRange storeAndRestore{Index::storeParameters, Index::restoreParameters};

bool exists(Check &check, quint16 index)
{
    return check.line().object(index) != nullptr;
}

bool isEmpty(const CheckedObject &object, quint8 subindex)
{
    const CheckedSubindex *sub = object.sub(subindex);
    return !sub || sub->data->defaultvalue.trimmed().isEmpty();
}

bool isOnForLine(Check &check, const QString &key)
{
    return check.general().isOn(key, check.line().number());
}

/// Lists of nodes: heartbeat consumers, emergency consumers, slave assignment.
void eachNodeList(Check &check, const Visit<CheckedObject> &visit)
{
    theObject<Index::heartbeatConsumers>(check, visit);
    theObject<Index::emcyConsumers>(check, visit);
    theObject<Index::slaveAssignment>(check, visit);
}

void deviceTypeOfFd(Check &check, const CheckedObject &object)
{
    if (check.line().settings().canFd && object.data.objecttype != Array)
        check.error(u"Object 0x%1 (Device Type) must be an ARRAY according to the CANopen FD specification."_s.arg(
            hex4(object.index)));
}

void deviceTypeOfClassic(Check &check, const CheckedObject &object)
{
    if (!check.line().settings().canFd && object.data.objecttype != Var)
        check.error(u"Object 0x%1 (Device Type) must be a VARIABLE according to the CANopen specification."_s.arg(
            hex4(object.index)));
}

void deviceTypeMissing(Check &check)
{
    check.about(Index::deviceType);
    if (!exists(check, Index::deviceType))
        check.error(
            u"Object 0x%1 (Device Type) does not exist, but it is mandatory according to CANopen specification."_s.arg(
                hex4(Index::deviceType)));
}

void errorRegisterMissing(Check &check)
{
    check.about(Index::errorRegister);
    if (!exists(check, Index::errorRegister))
        check.error(
            u"Object 0x%1 (Error Register) does not exist, but it is mandatory according to CANopen specification."_s
                .arg(hex4(Index::errorRegister)));
}

void errorControlMissing(Check &check)
{
    check.about(Index::heartbeatProducer);
    if (!exists(check, Index::heartbeatProducer) && !exists(check, Index::guardTime))
        check.error(
            u"Object 0x%1 (Producer Heartbeat) and 0x100C (Guard Time) do not exist, but one of them is mandatory."_s
                .arg(hex4(Index::heartbeatProducer)));
}

/// Slaves are the subindices from 1 on.
void tooManySlaves(Check &check, const CheckedObject &object)
{
    const size_t slaves = object.subs.size() - (object.sub(0) ? 1 : 0);
    if (plainValue(check.general().text(u"max_slave_assignment"_s, check.line().number())).value_or(0) > slaves)
        check.error(
            u"Object 0x1f81: Value of 'max slave Assigment count' may not exceed number of subindices of object "
            "0x1f81."_s);
}

void nodeListEmpty(Check &check, const CheckedObject &object)
{
    if (!object.hasElements())
        check.error(u"Object 0x%1 does not contain any sub-indices."_s.arg(hex4(object.index)));
}

void nodeListGaps(Check &check, const CheckedObject &object)
{
    const size_t elements = object.subs.size() - (object.sub(0) ? 1 : 0);
    if (object.hasElements() && object.subs.back().subindex != elements)
        check.error(u"Object 0x%1 may not have gaps."_s.arg(hex4(object.index)));
}

void syncWithoutPeriod(Check &check, const CheckedObject &object)
{
    constexpr quint64 producesSync = 0x40000000;
    if ((object.value(0).value_or(0) & producesSync) != 0 && !exists(check, Index::syncPeriod))
        check.error(u"Object 0x1006 must be present, if SYNC producer bit is set in object 0x1005."_s);
}

void usdoWithoutConnections(Check &check)
{
    if (isOnForLine(check, u"usdo_server_enabled"_s) && !isOnForLine(check, u"usdo_server_cnt"_s))
        check.error(u"Number of USDO server connections must be at least 1."_s);
}

bool storesOnItsOwn(Check &check)
{
    return check.general().isOn(u"1010autostore_by_application"_s);
}

/// Store and restore capabilities of CiA 301: bit 0 on command, bit 1 without, which the application has to do.
void storeByCommandOnly(Check &check, const CheckedSubindex &sub)
{
    if (sub.subindex > 0 && !storesOnItsOwn(check) && plainValue(sub.data->defaultvalue).value_or(0) > 1)
        check.error(
            u"Object 0x%1:%2 only default values between 0 and 1 are supported. Enable "
            "CO_AUTO_STORE_HANDLED_BY_APPLICATION to support other values"_s.arg(hex4(sub.index), dec(sub.subindex)));
}

void storeUnknown(Check &check, const CheckedSubindex &sub)
{
    if (sub.subindex > 0 && storesOnItsOwn(check) && plainValue(sub.data->defaultvalue).value_or(0) > 3)
        check.error(u"Object 0x%1:%2 only default values between 0 and 3 are supported."_s.arg(hex4(sub.index),
                                                                                               dec(sub.subindex)));
}

void masterWithoutInhibitTime(Check &check)
{
    check.about(Index::nmtInhibitTime);
    if (check.line().settings().nmtMaster && !exists(check, Index::nmtInhibitTime))
        check.warning(
            WG_CONFIG,
            u"Warning: Object 0x%1: The object 0x102A (NMT inhibit time) is highly recommended for masters. It may "
            "be added via 'Add Communication Service'."_s.arg(hex4(Index::nmtInhibitTime)));
}

void vendorIdEmpty(Check &check, const CheckedObject &object)
{
    if (isEmpty(object, 1))
        check.error(u"Object 0x%1-0x01: The value of subindex 1 (vendor-ID) is empty."_s.arg(hex4(object.index)));
}

void vendorIdOfNorvane(Check &check, const CheckedObject &object)
{
    constexpr quint64 norvane = 0x5A7;
    if (object.value(1) == norvane)
        check.warning(
            WG_IDENTITY,
            u"<strong>Warning: Object 0x%1-0x01: The vendor-ID 0x5A7 (Norvane Fieldbus GmbH) may not be used for "
            "production. </strong>"_s.arg(hex4(object.index)));
}

void productCodeEmpty(Check &check, const CheckedObject &object)
{
    if (isEmpty(object, 2))
        check.error(u"Object 0x%1-0x02: The value of subindex 2 (product code) is empty."_s.arg(hex4(object.index)));
}

void revisionEmpty(Check &check, const CheckedObject &object)
{
    if (isEmpty(object, 3))
        check.error(u"Object 0x%1-0x03: The value of subindex 3 (revision number) is empty."_s.arg(hex4(object.index)));
}

void serialNumberIsConst(Check &check, const CheckedObject &object)
{
    const CheckedSubindex *serialNumber = object.sub(4);
    if (serialNumber && serialNumber->data->implementation == Implementation::ManagedConst)
        check.warning(
            WG_IDENTITY,
            u"<strong>Warning</strong>: Object 0x%1: The implementation type of subindex 4 (serial number) is "
            "'Managed Const'. This is not useful in most cases."_s.arg(hex4(object.index)));
}

void errorHistoryWithoutEmcy(Check &check, const CheckedObject &object)
{
    if (!exists(check, Index::emcyCobId))
        check.error(
            u"Object 0x%1: This object can only be used, if object 0x1014 exists as well."_s.arg(hex4(object.index)));
}

/// An unused consumer has bit 31 of its COB-ID set. An empty value is generated as 0.
void emcyConsumerIsZero(Check &check, const CheckedSubindex &sub)
{
    const bool isZero = sub.data->defaultvalue.trimmed().isEmpty() || plainValue(sub.data->defaultvalue) == quint64{0};
    if (sub.subindex >= 1 && sub.subindex <= lastNodeId && isZero)
        check.error(u"Object 0x%1-%2: The value of this sub index may not be 0x00000000."_s.arg(hex4(sub.index),
                                                                                                dec(sub.subindex)));
}

} // namespace

std::span<const LineRule> RuleLists::communication()
{
    static const LineRule rules[] = {
        rule("deviceTypeOfFd"_L1, theObject<Index::deviceType>, deviceTypeOfFd),
        rule("deviceTypeOfClassic"_L1, theObject<Index::deviceType>, deviceTypeOfClassic),
        rule("deviceTypeMissing"_L1, deviceTypeMissing),
        rule("errorRegisterMissing"_L1, errorRegisterMissing),
        rule("errorControlMissing"_L1, errorControlMissing),
        rule("tooManySlaves"_L1, theObject<Index::slaveAssignment>, tooManySlaves),
        rule("nodeListEmpty"_L1, eachNodeList, nodeListEmpty),
        rule("nodeListGaps"_L1, eachNodeList, nodeListGaps),
        rule("syncWithoutPeriod"_L1, theObject<Index::syncCobId>, syncWithoutPeriod),
        rule("usdoWithoutConnections"_L1, usdoWithoutConnections),
        rule("storeByCommandOnly"_L1, eachObjectOf<storeAndRestore>, itsSubindices, storeByCommandOnly),
        rule("storeUnknown"_L1, eachObjectOf<storeAndRestore>, itsSubindices, storeUnknown),
        rule("masterWithoutInhibitTime"_L1, masterWithoutInhibitTime),
        rule("vendorIdEmpty"_L1, theObject<Index::identity>, vendorIdEmpty),
        rule("vendorIdOfNorvane"_L1, theObject<Index::identity>, vendorIdOfNorvane),
        rule("productCodeEmpty"_L1, theObject<Index::identity>, productCodeEmpty),
        rule("revisionEmpty"_L1, theObject<Index::identity>, revisionEmpty),
        rule("serialNumberIsConst"_L1, theObject<Index::identity>, serialNumberIsConst),
        rule("errorHistoryWithoutEmcy"_L1, theObject<Index::errorHistory>, errorHistoryWithoutEmcy),
        rule("emcyConsumerIsZero"_L1, theObject<Index::emcyConsumers>, itsSubindices, emcyConsumerIsZero),
    };
    return rules;
}
