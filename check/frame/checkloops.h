#pragma once

#include "check/frame/checkrule.h"
#include "check/line/pdo.h"
#include "nodedict/codes.h"

// Loops over a line that rules of several subjects share.

void eachObject(Check &check, const Visit<CheckedObject> &visit);
void itsSubindices(const CheckedObject &object, const Visit<CheckedSubindex> &visit);
/// Active entries of a mapping object of a PDO or SRDO.
void itsEntries(Check &check, const CheckedObject &mapping, const Visit<PDO::MappingEntry> &visit);
/// Receive before transmit, ascending in each, as the CAN-IDs.
void eachPGN(Check &check, const Visit<CheckedPGN> &visit);
void itsSPNs(const CheckedPGN &pgn, const Visit<CheckedSignal> &visit);
void eachCanId(Check &check, const Visit<CheckedCanId> &visit);
void itsSignals(const CheckedCanId &canId, const Visit<CheckedSignal> &visit);

/// An object, if the line has it.
template <quint16 index>
void theObject(Check &check, const Visit<CheckedObject> &visit)
{
    if (const CheckedObject *object = check.line().object(index))
        visit(*object);
}

/// The objects of a range of indices.
template <CANopen::IndexRange range>
void eachObjectOf(Check &check, const Visit<CheckedObject> &visit)
{
    for (const CheckedObject &object : check.line().objects()) {
        if (range.contains(object.index))
            visit(object);
    }
}

/// At most one subject of a loop: the first for which a condition holds.
template <class Port, class T, Each<Port, T> loop, bool (*condition)(Port &, const T &)>
void firstWhere(Port &check, const Visit<T> &visit)
{
    bool found = false;
    loop(check, [&](const T &subject) {
        if (found || !condition(check, subject))
            return;
        found = true;
        visit(subject);
    });
}
