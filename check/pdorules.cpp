// Rules of PDO communication objects: their mapping, COB-IDs and times.

#include "check/checktext.h"
#include "check/modelchecker.h"
#include "check/storevalue.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

void eachPdo(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit)
{
    eachObjectOf<0x1400, 0x15FF>(checker, outer, visit);
    eachObjectOf<0x1800, 0x19FF>(checker, outer, visit);
}

quint16 mappingOf(const CheckedObject &communication)
{
    return communication.index + PDO::mappingOffset;
}

bool isInEds(const CheckedSubindex &sub)
{
    return sub.data.writedefaulttoeds == 2 || (sub.data.writedefaulttoeds == 1 && sub.data.defaultineds);
}

/// True for a PDO of the pre-defined connection set whose COB-ID is another one, on the bus or not.
bool deviates(ModelChecker &checker, const CheckSubject &subject)
{
    const std::optional<StoreValue> cobId = PDO::cobIdOf(*subject.object);
    return cobId && std::ranges::any_of(checker.line().settings().defaultCobIds, [&](const DefaultCobId &expected) {
               return expected.index == subject.object->index && expected.subindex == 1 && !expected.fits(*cobId);
           });
}

bool followsPredefinedSet(ModelChecker &checker)
{
    return !Settings(checker.store()).isOn(u"overwrite_predef"_s, checker.line().number());
}

void mappingMissing(ModelChecker &checker, const CheckSubject &subject)
{
    const quint16 mapping = mappingOf(*subject.object);
    if (!checker.line().object(mapping))
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: The corresponding PDO mapping object 0x%2 does not exist."_s.arg(
                hex4(subject.object->index), hex4(mapping)));
}

void cobIdNotInEds(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex *cobId = subject.object->sub(1);
    if (PDO::isEnabled(subject.object) && (!cobId || !isInEds(*cobId)))
        checker.reportHint(
            WG_EDS, u"<strong>Hint: </strong>Subindex 1 of 0x%2 should have its default value in the EDS file."_s.arg(
                        hex4(subject.object->index)));
}

void transmissionTypeNotInEds(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSubindex *type = subject.object->sub(2);
    if (PDO::isEnabled(subject.object) && type && !isInEds(*type))
        checker.reportHint(
            WG_EDS, u"<strong>Hint: </strong>Subindex 2 of 0x%2 should have its default value in the EDS file."_s.arg(
                        hex4(subject.object->index)));
}

void enabledPdoIsEmpty(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject *mapping = checker.line().object(mappingOf(*subject.object));
    if (PDO::isEnabled(subject.object) && mapping && mapping->value(0) == quint64{0})
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: PDO is enabled but its mapping table (0x%2) is empty "
            "(sub 0 = 0)."_s.arg(hex4(subject.object->index), hex4(mapping->index)));
}

void cobIdUsedTwice(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedObject &pdo = *subject.object;
    const std::optional<quint16> first = checker.line().firstPdoLike(pdo);
    if (PDO::isEnabled(&pdo) && first && *first != pdo.index)
        checker.reportError(
            u"<strong>Error: </strong>Object 0x%1: COB-ID '%2' is already used by PDO object 0x%3."_s.arg(
                hex4(pdo.index), PDO::cobIdText(pdo), hex4(*first)));
}

/// The event timer counts milliseconds, the inhibit time a tenth of that.
void eventTimerTooShort(ModelChecker &checker, const CheckSubject &subject)
{
    const quint64 inhibitTime = subject.object->value(3).value_or(0);
    const quint64 eventTimer = subject.object->value(5).value_or(0);
    if (PDO::isEnabled(subject.object) && eventTimer != 0 && inhibitTime / 10 >= eventTimer)
        checker.reportWarning(WG_TIMING_LIMITS,
                              u"<strong>Warning: </strong>Subindex 3 and 5 of 0x%1: Event timer value "
                              "should be greater than inhibit time value."_s.arg(hex4(subject.object->index)));
}

void cobIdDeviates(ModelChecker &checker, const CheckSubject &subject)
{
    if (deviates(checker, subject) && followsPredefinedSet(checker))
        checker.reportWarning(WG_IDS, u"Warning: Object 0x%1-0x01: The COB-ID for this PDO does not follow the "
                                      "pre-defined connection set."_s.arg(hex4(subject.object->index)));
}

void adviceOnDeviatingCobIds(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (followsPredefinedSet(checker))
        checker.reportHint(WG_IDS, u"Enable CANopen Stack Settings -> Overwrite pre-defined connection set and call "
                                   "userOverwriteCobIdSettings() to use these COB-ID settings.\n\n"_s);
}

} // namespace

std::span<const CheckRule> pdoCommunicationRules()
{
    static const CheckRule rules[] = {
        {"mappingMissing"_L1, mappingMissing, eachPdo},
        {"cobIdNotInEds"_L1, cobIdNotInEds, eachPdo},
        {"transmissionTypeNotInEds"_L1, transmissionTypeNotInEds, eachPdo},
        {"enabledPdoIsEmpty"_L1, enabledPdoIsEmpty, eachPdo},
        {"cobIdUsedTwice"_L1, cobIdUsedTwice, eachPdo},
        {"eventTimerTooShort"_L1, eventTimerTooShort, eachPdo},
        {"cobIdDeviates"_L1, cobIdDeviates, eachObjectOf<0x1400, 0x1803>},
        {"adviceOnDeviatingCobIds"_L1, adviceOnDeviatingCobIds, firstWhere<eachPdo, deviates>},
    };
    return rules;
}
