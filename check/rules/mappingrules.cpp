// Rules of what is mapped: into PDOs and SRDOs, and which modes of mapping the device needs for that.

#include "check/frame/checkloops.h"
#include "check/line/checktext.h"
#include "check/line/storevalue.h"
#include "check/rules/rulelists.h"
#include "nodedict/access.h"
#include "store/objectdatabase.h"
#include "texttools/numbertext.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace CANopen;
using PDO::MappingEntry;

namespace {

/// Of the four TPDOs of the pre-defined connection set.
constexpr quint16 lastCorrectedMapping = Index::tpdoMappings.first + 3;

/// Mapping objects of all TPDOs, then of all RPDOs.
void eachPdoMapping(Check &check, const Visit<CheckedObject> &visit)
{
    eachObjectOf<Index::tpdoMappings>(check, visit);
    eachObjectOf<Index::rpdoMappings>(check, visit);
}

quint16 communicationOf(const CheckedObject &mapping)
{
    return mapping.index - Index::pdoMappingOffset;
}

bool isOnBus(Check &check, const CheckedObject &mapping)
{
    return PDO::isEnabled(check.line().object(communicationOf(mapping)));
}

bool hasNoActiveEntries(const CheckedObject &mapping)
{
    return PDO::activeEntries(mapping) == 0 && !PDO::isMultiplexed(mapping);
}

/// A COB-ID with bit 31 set, in the form that it had; empty for one that is not hexadecimal, which is left to the user.
QString disabled(const QString &cobId)
{
    static const QRegularExpression form(uR"((\$nodeid\+)*(0x[0-9A-Fa-f]+))"_s,
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(cobId);
    if (!match.hasMatch())
        return {};
    const auto value =
        static_cast<quint32>(NumberText::hexadecimal<quint64>(match.captured(2)).value_or(0)) | PDO::disabledBit;
    return match.captured(1) + u"0x%1"_s.arg(value, 8, 16, QLatin1Char('0'));
}

/// True for an empty TPDO that the check takes off the bus.
bool willBeDisabled(Check &check, const CheckedObject &mapping)
{
    return PDO::isTransmitMapping(mapping.index) && mapping.index <= lastCorrectedMapping && check.corrects() &&
           check.disablesPdos() && hasNoActiveEntries(mapping) && isOnBus(check, mapping) &&
           !disabled(PDO::cobIdText(*check.line().object(communicationOf(mapping)))).isEmpty();
}

void reportEmptyMapping(Check &check, const CheckedObject &mapping)
{
    check.error(u"Object 0x%1 of line %2: The PDO mapping table does not contain any mapped object."_s.arg(
        hex4(mapping.index), dec(check.line().number())));
}

/// Null for an entry that maps nothing that exists.
const CheckedSubindex *targetOf(const MappingEntry &entry)
{
    return entry.isDummy() ? nullptr : entry.target;
}

void communicationMissing(Check &check, const CheckedObject &object)
{
    const quint16 communication = communicationOf(object);
    if (!check.line().object(communication))
        check.error(u"Object 0x%1: The corresponding PDO communication parameter object 0x%2 does not exist."_s.arg(
            hex4(object.index), hex4(communication)));
}

/// Of a PDO on the bus only: a disabled one may wait for its mapping.
void mappingWithoutObjects(Check &check, const CheckedObject &mapping)
{
    if (isOnBus(check, mapping) && !PDO::mapsSomething(mapping) && !PDO::isMultiplexed(mapping) &&
        !willBeDisabled(check, mapping))
        reportEmptyMapping(check, mapping);
}

void mappingAccessDiffers(Check &check, const CheckedObject &mapping)
{
    const auto differs = [&mapping](const CheckedSubindex &sub) {
        return sub.data->accesstype != mapping.subs.front().data->accesstype;
    };
    if (std::ranges::any_of(mapping.subs, differs))
        check.error(
            u"Object 0x%1: All subindices of a PDO mapping object must have the same access type. (const for static "
            "mapping or rw for dynamic mapping"_s.arg(hex4(mapping.index)));
}

/// Of a PDO on the bus that maps something at all.
void entryIsEmpty(Check &check, const CheckedObject &mapping, const MappingEntry &entry)
{
    if (entry.value == 0 && PDO::mapsSomething(mapping) && isOnBus(check, mapping))
        check.error(u"Object 0x%1:%2 is an active mapping entry but maps no object (empty entry)."_s.arg(
            hex4(mapping.index), dec(entry.number)));
}

void mappedObjectMissing(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    if (entry.value != 0 && !entry.isDummy() && !entry.target)
        check.error(u"Object 0x%1: The mapped object 0x%2:%3 does not exist."_s.arg(
            hex4(object.index), hex4(entry.index()), dec(entry.subindex())));
}

void mappingForbidden(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    const CheckedSubindex *target = targetOf(entry);
    if (target && target->data->pdomapping == PDOMapping::Forbidden)
        check.error(u"Object 0x%1: PDO mapping is not allowed for object 0x%2:%3."_s.arg(
            hex4(object.index), hex4(target->index), dec(target->subindex)));
}

void mappedTooSmall(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    const CheckedSubindex *target = targetOf(entry);
    if (target && entry.bits() < PDO::widthOf(*target->data))
        check.warning(WG_LAYOUT, u"Warning: Object 0x%1: The size of the mapped object 0x%2:%3 is too small."_s.arg(
                                     hex4(object.index), hex4(target->index), dec(target->subindex)));
}

/// A string or domain whose size is not told takes what it gets.
void mappedTooLarge(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    const CheckedSubindex *target = targetOf(entry);
    const quint32 width = target ? PDO::widthOf(*target->data) : 0;
    if (width > 0 && entry.bits() > width)
        check.error(u"Object 0x%1: The size of the mapped object 0x%2:%3 is too large."_s.arg(
            hex4(object.index), hex4(target->index), dec(target->subindex)));
}

void mappedIsNotWritable(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    const CheckedSubindex *target = targetOf(entry);
    if (target && !PDO::isTransmitMapping(object.index) && !CANopen::fitsReceivePdo(target->data->accesstype))
        check.error(u"Object 0x%1: The access right of the mapped object 0x%2:%3 does not fit for an RPDO."_s.arg(
            hex4(object.index), hex4(target->index), dec(target->subindex)));
}

void mappedIsNotReadable(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    const CheckedSubindex *target = targetOf(entry);
    if (target && PDO::isTransmitMapping(object.index) && !CANopen::fitsTransmitPdo(target->data->accesstype))
        check.error(u"Object 0x%1: The access right of the mapped object 0x%2:%3 does not fit for a TPDO."_s.arg(
            hex4(object.index), hex4(target->index), dec(target->subindex)));
}

void pdoTooLong(Check &check, const CheckedObject &object)
{
    if (PDO::mappedBits(check.line(), object) > check.line().settings().frameBits())
        check.error(u"Object 0x%1: Size of PDO exceeds the limit."_s.arg(hex4(object.index)));
}

void entriesMissing(Check &check, const CheckedObject &mapping)
{
    const quint8 active = PDO::activeEntries(mapping);
    const size_t existing = mapping.subs.size() - (mapping.sub(0) ? 1 : 0);
    if (active > PDO::maxEntries || active > existing)
        check.error(u"Object 0x%1:  Invalid number of mapping entries."_s.arg(hex4(mapping.index)));
}

/// Where the store refuses the COB-ID, the PDO stays what it is: on the bus, and empty.
void emptyPdoIsDisabled(Check &check, const CheckedObject &mapping)
{
    if (!willBeDisabled(check, mapping))
        return;
    const CheckedSubindex &cobId = *check.line().sub(communicationOf(mapping), 1);
    StoreRecords::SubIndexData data = *cobId.data;
    data.defaultvalue = disabled(cobId.data->defaultvalue);
    const QString text = u"Object 0x%1</i>: The COB-ID of this PDO has been disabled (%2), because it does not contain "
                         "active mapping entries."_s.arg(hex4(cobId.index), data.defaultvalue);
    if (!check.correctCobId(cobId.index, 1, data, text) && !PDO::mapsSomething(mapping))
        reportEmptyMapping(check, mapping);
}

/// The active entries of the mapping object that belongs to an SRDO's communication object.
void itsSrdoEntries(Check &check, const CheckedObject &srdo, const Visit<MappingEntry> &visit)
{
    const CheckedObject *mapping = check.line().object(srdo.index + Index::srdoMappingOffset);
    if (!mapping)
        return;
    itsEntries(check, *mapping, [&visit](const MappingEntry &entry) {
        if (!entry.isDummy())
            visit(entry);
    });
}

void srdoMappingMissing(Check &check, const CheckedObject &object)
{
    const quint16 index = object.index;
    const auto mapping = static_cast<quint16>(index + Index::srdoMappingOffset);
    if (!check.line().object(mapping))
        check.error(u"Object 0x%1: The corresponding SRDO mapping object 0x%2 does not exist."_s.arg(hex4(index),
                                                                                                     hex4(mapping)));
}

void srdoObjectMissing(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    if (!entry.target)
        check.error(u"Object 0x%1: The object 0x%2:%3 mapped into an SRDO does not exist."_s.arg(
            hex4(object.index), hex4(entry.index()), dec(entry.subindex())));
}

void srdoObjectIsManaged(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    const CheckedSubindex *target = entry.target;
    if (target && target->data->implementation != Implementation::Variable)
        check.error(u"Object 0x%1: The object 0x%2:%3 mapped into an SRDO must be an application variable."_s.arg(
            hex4(object.index), hex4(target->index), dec(target->subindex)));
}

void srdoMappingForbidden(Check &check, const CheckedObject &object, const MappingEntry &entry)
{
    const CheckedSubindex *target = entry.target;
    if (target && target->data->pdomapping == PDOMapping::Forbidden)
        check.error(u"Object 0x%1: The PDO mapping must be enabled for object 0x%2:%3 to use it in an SRDO."_s.arg(
            hex4(object.index), hex4(target->index), dec(target->subindex)));
}

bool mapsBits(Check &check, const CheckedObject &object)
{
    return std::ranges::any_of(PDO::entriesOf(check.line(), object),
                               [](const MappingEntry &entry) { return entry.bits() % 8 != 0; });
}

bool isDynamic(Check & /*check*/, const CheckedObject &object)
{
    return PDO::isDynamic(object);
}

constexpr Each<Check, CheckedObject> firstBitwiseMapping = firstWhere<Check, CheckedObject, eachPdoMapping, mapsBits>;
constexpr Each<Check, CheckedObject> firstDynamicMapping = firstWhere<Check, CheckedObject, eachPdoMapping, isDynamic>;

void bitwiseWithBytes(Check &check, const CheckedObject & /*mapping*/)
{
    if (check.line().settings().granularity == 8)
        check.warning(
            WG_LAYOUT,
            u"<strong>Warning: </strong>Bitwise mapping cannot be used with a granularity of 8. Correct device "
            "description settings or PDO mapping."_s);
}

void bitwiseIsOff(Check &check, const CheckedObject & /*mapping*/)
{
    if (!check.line().settings().bitwiseMapping)
        check.error(u"Bitwise mapping not enabled in general settings. Correct general settings or PDO mapping."_s);
}

void dynamicWithoutGranularity(Check &check, const CheckedObject & /*mapping*/)
{
    if (check.line().settings().granularity == 0)
        check.error(
            u"Dynamic mapping cannot be used with a granularity of 0. Correct device description settings or PDO "
            "mapping."_s);
}

void onlyOnePdoFunction(Check &check)
{
    const auto isSet = [&check](const QString &key) {
        return !check.store().getGeneralSetting(key).trimmed().isEmpty();
    };
    if (isSet(u"fct_pdo"_s) != isSet(u"fct_pdo_receive"_s))
        check.error(u"Both static RPDO and TPDO event indication functions have to be defined."_s);
}

/// The producer is object 0x1014, the consumers are those of 0x1028.
void emcyRoutingIncomplete(Check &check)
{
    const bool isComplete = check.line().object(Index::emcyCobId) && check.line().object(Index::emcyConsumers);
    if (check.general().isOn(u"emcy_routing"_s) && !isComplete)
        check.error(u"Both EMCY producer objects and EMCY consumer objects must be present to use EMCY routing."_s);
}

} // namespace

std::span<const LineRule> RuleLists::pdoMappings()
{
    static const LineRule rules[] = {
        rule("communicationMissing"_L1, eachPdoMapping, communicationMissing),
        rule("mappingWithoutObjects"_L1, eachPdoMapping, mappingWithoutObjects),
        rule("mappingAccessDiffers"_L1, eachPdoMapping, mappingAccessDiffers),
        rule("entryIsEmpty"_L1, eachPdoMapping, itsEntries, entryIsEmpty),
        rule("mappedObjectMissing"_L1, eachPdoMapping, itsEntries, mappedObjectMissing),
        rule("mappingForbidden"_L1, eachPdoMapping, itsEntries, mappingForbidden),
        rule("mappedTooSmall"_L1, eachPdoMapping, itsEntries, mappedTooSmall),
        rule("mappedTooLarge"_L1, eachPdoMapping, itsEntries, mappedTooLarge),
        rule("mappedIsNotWritable"_L1, eachPdoMapping, itsEntries, mappedIsNotWritable),
        rule("mappedIsNotReadable"_L1, eachPdoMapping, itsEntries, mappedIsNotReadable),
        rule("pdoTooLong"_L1, eachPdoMapping, pdoTooLong),
        rule("entriesMissing"_L1, eachPdoMapping, entriesMissing),
        rule("emptyPdoIsDisabled"_L1, eachPdoMapping, emptyPdoIsDisabled),
    };
    return rules;
}

std::span<const LineRule> RuleLists::srdos()
{
    static const LineRule rules[] = {
        rule("srdoMappingMissing"_L1, eachObjectOf<Index::srdos>, srdoMappingMissing),
        rule("srdoObjectMissing"_L1, eachObjectOf<Index::srdos>, itsSrdoEntries, srdoObjectMissing),
        rule("srdoObjectIsManaged"_L1, eachObjectOf<Index::srdos>, itsSrdoEntries, srdoObjectIsManaged),
        rule("srdoMappingForbidden"_L1, eachObjectOf<Index::srdos>, itsSrdoEntries, srdoMappingForbidden),
    };
    return rules;
}

std::span<const LineRule> RuleLists::mappingModes()
{
    static const LineRule rules[] = {
        rule("bitwiseWithBytes"_L1, firstBitwiseMapping, bitwiseWithBytes),
        rule("bitwiseIsOff"_L1, firstBitwiseMapping, bitwiseIsOff),
        rule("dynamicWithoutGranularity"_L1, firstDynamicMapping, dynamicWithoutGranularity),
        rule("onlyOnePdoFunction"_L1, onlyOnePdoFunction),
        rule("emcyRoutingIncomplete"_L1, emcyRoutingIncomplete),
    };
    return rules;
}
