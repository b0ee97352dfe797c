// Rules of PDO communication objects: their mapping, COB-IDs and times.

#include "check/frame/checkloops.h"
#include "check/line/checktext.h"
#include "check/line/storevalue.h"
#include "check/rules/rulelists.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

void eachPdo(Check &check, const Visit<CheckedObject> &visit)
{
    eachObjectOf<CANopen::Index::rpdos>(check, visit);
    eachObjectOf<CANopen::Index::tpdos>(check, visit);
}

quint16 mappingOf(const CheckedObject &communication)
{
    return communication.index + CANopen::Index::pdoMappingOffset;
}

bool isInEds(const CheckedSubindex &sub)
{
    return sub.data->writedefaulttoeds == 2 || (sub.data->writedefaulttoeds == 1 && sub.data->defaultineds);
}

/// True for a PDO of the pre-defined connection set whose COB-ID is another one, on the bus or not.
bool deviates(Check &check, const CheckedObject &pdo)
{
    const std::optional<StoreValue> cobId = PDO::cobIdOf(pdo);
    return cobId && std::ranges::any_of(check.line().settings().defaultCobIds, [&](const DefaultCobId &expected) {
               return expected.index == pdo.index && !expected.fits(*cobId);
           });
}

bool followsPredefinedSet(Check &check)
{
    return !check.general().isOn(u"overwrite_predef"_s, check.line().number());
}

void mappingMissing(Check &check, const CheckedObject &pdo)
{
    const quint16 mapping = mappingOf(pdo);
    if (!check.line().object(mapping))
        check.error(u"Object 0x%1: The corresponding PDO mapping object 0x%2 does not exist."_s.arg(hex4(pdo.index),
                                                                                                    hex4(mapping)));
}

void cobIdNotInEds(Check &check, const CheckedObject &pdo)
{
    const CheckedSubindex *cobId = pdo.sub(1);
    if (PDO::isEnabled(&pdo) && (!cobId || !isInEds(*cobId)))
        check.hint(WG_EDS,
                   u"<strong>Hint: </strong>Subindex 1 of 0x%2 should have its default value in the EDS file."_s.arg(
                       hex4(pdo.index)));
}

void transmissionTypeNotInEds(Check &check, const CheckedObject &pdo)
{
    const CheckedSubindex *type = pdo.sub(2);
    if (PDO::isEnabled(&pdo) && type && !isInEds(*type))
        check.hint(WG_EDS,
                   u"<strong>Hint: </strong>Subindex 2 of 0x%2 should have its default value in the EDS file."_s.arg(
                       hex4(pdo.index)));
}

void enabledPdoIsEmpty(Check &check, const CheckedObject &pdo)
{
    const CheckedObject *mapping = check.line().object(mappingOf(pdo));
    if (PDO::isEnabled(&pdo) && mapping && mapping->value(0) == quint64{0})
        check.error(u"Object 0x%1: PDO is enabled but its mapping table (0x%2) is empty (sub 0 = 0)."_s.arg(
            hex4(pdo.index), hex4(mapping->index)));
}

void cobIdUsedTwice(Check &check, const CheckedObject &pdo)
{
    const std::optional<quint16> first = check.line().firstPdoLike(pdo);
    if (PDO::isEnabled(&pdo) && first && *first != pdo.index)
        check.error(u"Object 0x%1: COB-ID '%2' is already used by PDO object 0x%3."_s.arg(
            hex4(pdo.index), PDO::cobIdText(pdo), hex4(*first)));
}

/// The event timer counts milliseconds, the inhibit time a tenth of that.
void eventTimerTooShort(Check &check, const CheckedObject &pdo)
{
    const quint64 inhibitTime = pdo.value(3).value_or(0);
    const quint64 eventTimer = pdo.value(5).value_or(0);
    if (PDO::isEnabled(&pdo) && eventTimer != 0 && inhibitTime / 10 >= eventTimer)
        check.warning(
            WG_TIMING_LIMITS,
            u"<strong>Warning: </strong>Subindex 3 and 5 of 0x%1: Event timer value should be greater than inhibit "
            "time value."_s.arg(hex4(pdo.index)));
}

void cobIdDeviates(Check &check, const CheckedObject &pdo)
{
    if (deviates(check, pdo) && followsPredefinedSet(check))
        check.warning(
            WG_IDS,
            u"Warning: Object 0x%1-0x01: The COB-ID for this PDO does not follow the pre-defined connection set."_s.arg(
                hex4(pdo.index)));
}

void adviceOnDeviatingCobIds(Check &check, const CheckedObject & /*pdo*/)
{
    if (followsPredefinedSet(check))
        check.hint(WG_IDS, u"Enable CANopen Stack Settings -> Overwrite pre-defined connection set and call "
                           "userOverwriteCobIdSettings() to use these COB-ID settings.\n\n"_s);
}

} // namespace

std::span<const LineRule> RuleLists::pdos()
{
    static const LineRule rules[] = {
        rule("mappingMissing"_L1, eachPdo, mappingMissing),
        rule("cobIdNotInEds"_L1, eachPdo, cobIdNotInEds),
        rule("transmissionTypeNotInEds"_L1, eachPdo, transmissionTypeNotInEds),
        rule("enabledPdoIsEmpty"_L1, eachPdo, enabledPdoIsEmpty),
        rule("cobIdUsedTwice"_L1, eachPdo, cobIdUsedTwice),
        rule("eventTimerTooShort"_L1, eachPdo, eventTimerTooShort),
        rule("cobIdDeviates"_L1, eachPdo, cobIdDeviates).inNewPass(),
        rule("adviceOnDeviatingCobIds"_L1, firstWhere<Check, CheckedObject, eachPdo, deviates>,
             adviceOnDeviatingCobIds),
    };
    return rules;
}
