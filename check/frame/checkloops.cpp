#include "check/frame/checkloops.h"

#include <algorithm>

void eachObject(Check &check, const Visit<CheckedObject> &visit)
{
    std::ranges::for_each(check.line().objects(), visit);
}

void itsSubindices(const CheckedObject &object, const Visit<CheckedSubindex> &visit)
{
    std::ranges::for_each(object.subs, visit);
}

void itsEntries(Check &check, const CheckedObject &mapping, const Visit<PDO::MappingEntry> &visit)
{
    std::ranges::for_each(PDO::entriesOf(check.line(), mapping), visit);
}

void eachPGN(Check &check, const Visit<CheckedPGN> &visit)
{
    std::ranges::for_each(check.line().pgns(), visit);
}

void itsSPNs(const CheckedPGN &pgn, const Visit<CheckedSignal> &visit)
{
    std::ranges::for_each(pgn.spns, visit);
}

void eachCanId(Check &check, const Visit<CheckedCanId> &visit)
{
    std::ranges::for_each(check.line().canIds(), visit);
}

void itsSignals(const CheckedCanId &canId, const Visit<CheckedSignal> &visit)
{
    std::ranges::for_each(canId.signalList, visit);
}
