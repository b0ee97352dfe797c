#pragma once

#include "check/checkedline.h"

#include <functional>
#include <span>

class ModelChecker;

/// What a rule looks at: filled as far as its loop goes.
struct CheckSubject
{
    const CheckedObject *object = nullptr;
    const CheckedSubindex *sub = nullptr;
    const CheckedPGN *pgn = nullptr;
    const StoreRecords::SPN *spn = nullptr;
    const CheckedCanId *canId = nullptr;
    const StoreRecords::DataElement *signal = nullptr;
};

/// A rule: a member of `ModelChecker`, or any function, that looks at one subject and reports what is wrong with it;
/// and the loop that goes through the subjects. The rule's function holds no loop and says its message whole.
struct CheckRule
{
    using Visit = std::function<void(const CheckSubject &)>;
    using Loop = void (*)(ModelChecker &, const Visit &);

    std::function<void(ModelChecker &, const CheckSubject &)> find;
    Loop each;
};

/// All rules, in the order of the check.
struct CheckRules
{
    std::span<const CheckRule> common;  ///< of the project as a whole
    std::span<const CheckRule> canOpen; ///< of a line, as the next two
    std::span<const CheckRule> j1939;
    std::span<const CheckRule> rawCan;

    static const CheckRules &builtIn();
};

// Loops of rules.

/// Once for the project or line under check.
void onceForCheck(ModelChecker &checker, const CheckRule::Visit &visit);
void eachObject(ModelChecker &checker, const CheckRule::Visit &visit);
void eachSubindex(ModelChecker &checker, const CheckRule::Visit &visit);
void eachPGN(ModelChecker &checker, const CheckRule::Visit &visit);
void eachSPN(ModelChecker &checker, const CheckRule::Visit &visit);
void eachCanId(ModelChecker &checker, const CheckRule::Visit &visit);
void eachSignal(ModelChecker &checker, const CheckRule::Visit &visit);

/// Objects of a range of indices, from first to last.
template <quint16 first, quint16 last>
void eachObjectOf(ModelChecker &checker, const CheckRule::Visit &visit)
{
    eachObject(checker, [&visit](const CheckSubject &subject) {
        if (subject.object->index >= first && subject.object->index <= last)
            visit(subject);
    });
}
