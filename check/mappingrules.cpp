// Rules of what is mapped: into PDOs and SRDOs, and which modes of mapping the device needs for that.

#include "check/checktext.h"
#include "check/modelchecker.h"
#include "check/storevalue.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr quint8 applicationVariable = 2;
constexpr quint16 lastCorrectedMapping = 0x1A03; ///< of the four TPDOs of the pre-defined connection set

/// Mapping objects of all TPDOs, then of all RPDOs.
void eachPdoMapping(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit)
{
    eachObjectOf<0x1A00, 0x1BFF>(checker, outer, visit);
    eachObjectOf<0x1600, 0x17FF>(checker, outer, visit);
}

quint16 communicationOf(const CheckedObject &mapping)
{
    return mapping.index - PDO::mappingOffset;
}

bool isOnBus(ModelChecker &checker, const CheckedObject &mapping)
{
    return PDO::isEnabled(checker.line().object(communicationOf(mapping)));
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
    const auto value = static_cast<quint32>(match.captured(2).toULongLong(nullptr, 16)) | PDO::disabledBit;
    return match.captured(1) + u"0x%1"_s.arg(value, 8, 16, QLatin1Char('0'));
}

/// True for an empty TPDO that the check takes off the bus.
bool willBeDisabled(ModelChecker &checker, const CheckedObject &mapping)
{
    return PDO::isTransmitMapping(mapping.index) && mapping.index <= lastCorrectedMapping &&
           !checker.autoCorrectionDisabled() && hasNoActiveEntries(mapping) && isOnBus(checker, mapping) &&
           !disabled(PDO::cobIdText(*checker.line().object(communicationOf(mapping)))).isEmpty();
}

void reportEmptyMapping(ModelChecker &checker, const CheckedObject &mapping)
{
    checker.reportError(
        u"<strong>Error: </strong>Object 0x%1 of line %2: The PDO mapping table does not contain any mapped "
        "object."_s.arg(hex4(mapping.index), dec(checker.line().number())));
}

const CheckedSubindex *targetOf(const CheckSubject &subject)
{
    return subject.entry->isDummy() ? nullptr : subject.entry->target;
}

// ---- A mapping object

void communicationMissing(ModelChecker &checker, const CheckSubject &subject)
{
    const quint16 communication = communicationOf(*subject.object);
    if (!checker.line().object(communication))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The corresponding PDO communication parameter object 0x%2 does not "
            "exist."_s.arg(hex4(subject.object->index), hex4(communication)));
}

/// Of a PDO on the bus only: a disabled one may wait for its mapping.
void mappingWithoutObjects(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &mapping = *subject.object;
    if (isOnBus(checker, mapping) && !PDO::mapsSomething(mapping) && !PDO::isMultiplexed(mapping) &&
        !willBeDisabled(checker, mapping))
        reportEmptyMapping(checker, mapping);
}

void mappingAccessDiffers(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &mapping = *subject.object;
    const auto differs = [&mapping](const CheckedSubindex &sub) {
        return sub.data.accesstype != mapping.subs.front().data.accesstype;
    };
    if (std::ranges::any_of(mapping.subs, differs))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: All subindices of a PDO mapping object must have the "
            "same access type. (const for static mapping or rw for dynamic mapping"_s.arg(hex4(mapping.index)));
}

// ---- Its entries

/// Of a PDO on the bus that maps something at all.
void entryIsEmpty(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &mapping = *subject.object;
    if (subject.entry->value == 0 && PDO::mapsSomething(mapping) && isOnBus(checker, mapping))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1:%2 is an active mapping entry but maps no object (empty entry)."_s
                .arg(hex4(mapping.index), dec(subject.entry->number)));
}

void mappedObjectMissing(ModelChecker &checker, const CheckSubject &subject)
{
    const PDO::MappingEntry &entry = *subject.entry;
    if (entry.value != 0 && !entry.isDummy() && !entry.target)
        checker.reportError(u"<strong>Error: </strong>Object 0x%1: The mapped object 0x%2:%3 does not exist."_s.arg(
            hex4(subject.object->index), hex4(entry.index()), dec(entry.subindex())));
}

void mappingForbidden(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex *target = targetOf(subject);
    if (target && target->data.pdomapping == PDOMapping::Forbidden)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: PDO mapping is not allowed for object 0x%2:%3."_s.arg(
                hex4(subject.object->index), hex4(target->index), dec(target->subindex)));
}

void mappedTooSmall(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex *target = targetOf(subject);
    if (target && subject.entry->bits() < PDO::widthOf(target->data))
        checker.reportWarning(WG_LAYOUT,
                              u"Warning: Object 0x%1: The size of the mapped object 0x%2:%3 is too small."_s.arg(
                                  hex4(subject.object->index), hex4(target->index), dec(target->subindex)));
}

/// A string or domain whose size is not told takes what it gets.
void mappedTooLarge(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex *target = targetOf(subject);
    const quint32 width = target ? PDO::widthOf(target->data) : 0;
    if (width > 0 && subject.entry->bits() > width)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The size of the mapped object 0x%2:%3 is too large."_s.arg(
                hex4(subject.object->index), hex4(target->index), dec(target->subindex)));
}

/// What an RPDO writes: "rww" may be mapped there only (CiA 301).
void mappedIsNotWritable(ModelChecker &checker, const CheckSubject &subject)
{
    static const QStringList writable{u"wo"_s, u"rww"_s, u"rw"_s};
    const CheckedSubindex *target = targetOf(subject);
    if (target && !PDO::isTransmitMapping(subject.object->index) && !writable.contains(target->data.accesstype))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The access right of the mapped object 0x%2:%3 does "
            "not fit for an RPDO."_s.arg(hex4(subject.object->index), hex4(target->index), dec(target->subindex)));
}

/// What a TPDO reads: "rwr" may be mapped there only (CiA 301).
void mappedIsNotReadable(ModelChecker &checker, const CheckSubject &subject)
{
    static const QStringList readable{u"const"_s, u"ro"_s, u"rwr"_s, u"rw"_s};
    const CheckedSubindex *target = targetOf(subject);
    if (target && PDO::isTransmitMapping(subject.object->index) && !readable.contains(target->data.accesstype))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The access right of the mapped object 0x%2:%3 does "
            "not fit for a TPDO."_s.arg(hex4(subject.object->index), hex4(target->index), dec(target->subindex)));
}

// ---- The mapping as a whole

void pdoTooLong(ModelChecker &checker, const CheckSubject &subject)
{
    if (PDO::mappedBits(checker.line(), *subject.object) > checker.line().settings().frameBits())
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: Size of PDO exceeds the limit."_s.arg(hex4(subject.object->index)));
}

void entriesMissing(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &mapping = *subject.object;
    const quint8 active = PDO::activeEntries(mapping);
    const size_t existing = mapping.subs.size() - (mapping.sub(0) ? 1 : 0);
    if (active > PDO::maxEntries || active > existing)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1:  Invalid number of mapping entries."_s.arg(hex4(mapping.index)));
}

/// Where the store refuses the COB-ID, the PDO stays what it is: on the bus, and empty.
void emptyPdoIsDisabled(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &mapping = *subject.object;
    if (!willBeDisabled(checker, mapping))
        return;
    const CheckedSubindex &cobId = *checker.line().sub(communicationOf(mapping), 1);
    StoreRecords::SubIndexData data = cobId.data;
    data.defaultvalue = disabled(cobId.data.defaultvalue);
    if (checker.correct(
            cobId.index, 1, data,
            u"<i>Corrected: Object 0x%1</i>: The COB-ID of this PDO has been disabled (%2), because it does not "
            "contain active mapping entries."_s.arg(hex4(cobId.index), data.defaultvalue)))
        checker.noteCorrection();
    else if (!PDO::mapsSomething(mapping))
        reportEmptyMapping(checker, mapping);
}

// ---- SRDOs

/// The active entries of the mapping object that belongs to an SRDO's communication object.
void itsSrdoEntries(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit)
{
    const CheckedObject *mapping = checker.line().object(outer.object->index + SRDO::mappingOffset);
    if (!mapping)
        return;
    itsEntries(checker, {.object = mapping}, [&](const CheckSubject &subject) {
        if (!subject.entry->isDummy())
            visit({.object = outer.object, .entry = subject.entry});
    });
}

void srdoMappingMissing(ModelChecker &checker, const CheckSubject &subject)
{
    const quint16 index = subject.object->index;
    const auto mapping = static_cast<quint16>(index + SRDO::mappingOffset);
    if (!checker.line().object(mapping))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The corresponding SRDO mapping object 0x%2 does not exist."_s.arg(
                hex4(index), hex4(mapping)));
}

void srdoObjectMissing(ModelChecker &checker, const CheckSubject &subject)
{
    const PDO::MappingEntry &entry = *subject.entry;
    if (!entry.target)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The object 0x%2:%3 mapped into an SRDO does not exist."_s.arg(
                hex4(subject.object->index), hex4(entry.index()), dec(entry.subindex())));
}

void srdoObjectIsManaged(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex *target = subject.entry->target;
    if (target && target->data.implementation != applicationVariable)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The object 0x%2:%3 mapped into an SRDO must be an application "
            "variable."_s.arg(hex4(subject.object->index), hex4(target->index), dec(target->subindex)));
}

void srdoMappingForbidden(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex *target = subject.entry->target;
    if (target && target->data.pdomapping == PDOMapping::Forbidden)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The PDO mapping must be enabled for object 0x%2:%3 to use it in an "
            "SRDO."_s.arg(hex4(subject.object->index), hex4(target->index), dec(target->subindex)));
}

// ---- Modes of mapping, told once per line

bool mapsBits(ModelChecker &checker, const CheckSubject &subject)
{
    return std::ranges::any_of(PDO::entriesOf(checker.line(), *subject.object),
                               [](const PDO::MappingEntry &entry) { return entry.bits() % 8 != 0; });
}

bool isDynamic(ModelChecker & /*checker*/, const CheckSubject &subject)
{
    return PDO::isDynamic(*subject.object);
}

constexpr CheckLoop bitwiseMapping = firstWhere<eachPdoMapping, mapsBits>;
constexpr CheckLoop dynamicMapping = firstWhere<eachPdoMapping, isDynamic>;

void bitwiseWithBytes(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (checker.line().settings().granularity == 8)
        checker.reportWarning(WG_LAYOUT, u"<strong>Warning: </strong>Bitwise mapping cannot be used with a granularity "
                                         "of 8. Correct device description settings or PDO mapping."_s);
}

void bitwiseIsOff(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!checker.line().settings().bitwiseMapping)
        checker.reportError(u"<strong>Error: </strong>Bitwise mapping not enabled in general settings. Correct general "
                            "settings or PDO mapping."_s);
}

void dynamicWithoutGranularity(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (checker.line().settings().granularity == 0)
        checker.reportError(u"<strong>Error: </strong>Dynamic mapping cannot be used with a granularity of 0. Correct "
                            "device description settings or PDO mapping."_s);
}

void onlyOnePdoFunction(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    const auto isSet = [&checker](const QString &key) {
        return !checker.store().getGeneralSetting(key).trimmed().isEmpty();
    };
    if (isSet(u"fct_pdo"_s) != isSet(u"fct_pdo_receive"_s))
        checker.reportError(u"<strong>Error: </strong>Both static RPDO and TPDO event indication functions have to be "
                            "defined."_s);
}

/// The producer is object 0x1014, the consumers are those of 0x1028.
void emcyRoutingIncomplete(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    const bool isComplete = checker.line().object(0x1014) && checker.line().object(0x1028);
    if (Settings(checker.store()).isOn(u"emcy_routing"_s) && !isComplete)
        checker.reportError(u"<strong>Error: </strong>Both EMCY producer objects and EMCY consumer objects must be "
                            "present to use EMCY routing."_s);
}

} // namespace

std::span<const CheckRule> pdoMappingRules()
{
    static const CheckRule rules[] = {
        {"communicationMissing"_L1, communicationMissing, eachPdoMapping},
        {"mappingWithoutObjects"_L1, mappingWithoutObjects, eachPdoMapping},
        {"mappingAccessDiffers"_L1, mappingAccessDiffers, eachPdoMapping},
        {"entryIsEmpty"_L1, entryIsEmpty, eachPdoMapping, itsEntries},
        {"mappedObjectMissing"_L1, mappedObjectMissing, eachPdoMapping, itsEntries},
        {"mappingForbidden"_L1, mappingForbidden, eachPdoMapping, itsEntries},
        {"mappedTooSmall"_L1, mappedTooSmall, eachPdoMapping, itsEntries},
        {"mappedTooLarge"_L1, mappedTooLarge, eachPdoMapping, itsEntries},
        {"mappedIsNotWritable"_L1, mappedIsNotWritable, eachPdoMapping, itsEntries},
        {"mappedIsNotReadable"_L1, mappedIsNotReadable, eachPdoMapping, itsEntries},
        {"pdoTooLong"_L1, pdoTooLong, eachPdoMapping},
        {"entriesMissing"_L1, entriesMissing, eachPdoMapping},
        {"emptyPdoIsDisabled"_L1, emptyPdoIsDisabled, eachPdoMapping},
    };
    return rules;
}

std::span<const CheckRule> srdoRules()
{
    constexpr CheckLoop eachSrdo = eachObjectOf<0x1301, 0x137F>;
    static const CheckRule rules[] = {
        {"srdoMappingMissing"_L1, srdoMappingMissing, eachSrdo},
        {"srdoObjectMissing"_L1, srdoObjectMissing, eachSrdo, itsSrdoEntries},
        {"srdoObjectIsManaged"_L1, srdoObjectIsManaged, eachSrdo, itsSrdoEntries},
        {"srdoMappingForbidden"_L1, srdoMappingForbidden, eachSrdo, itsSrdoEntries},
    };
    return rules;
}

std::span<const CheckRule> mappingModeRules()
{
    static const CheckRule rules[] = {
        {"bitwiseWithBytes"_L1, bitwiseWithBytes, bitwiseMapping},
        {"bitwiseIsOff"_L1, bitwiseIsOff, bitwiseMapping},
        {"dynamicWithoutGranularity"_L1, dynamicWithoutGranularity, dynamicMapping},
        {"onlyOnePdoFunction"_L1, onlyOnePdoFunction},
        {"emcyRoutingIncomplete"_L1, emcyRoutingIncomplete},
    };
    return rules;
}
