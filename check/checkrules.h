#pragma once

#include "check/checkedline.h"
#include "check/numericsettings.h"
#include "check/pdo.h"

#include <functional>
#include <span>

class ModelChecker;

/// What a rule looks at: filled as far as its loops go.
struct CheckSubject
{
    std::optional<quint8> line = {}; ///< of a rule of the whole project that looks at lines
    const CheckedSetting *setting = nullptr;
    const QString *text = nullptr; ///< whatever the loop tells
    const CheckedObject *object = nullptr;
    const CheckedSubindex *sub = nullptr;
    const PDO::MappingEntry *entry = nullptr;
    const CheckedPGN *pgn = nullptr;
    const CheckedCanId *canId = nullptr;
    const CheckedSignal *signal = nullptr; ///< SPN of a PGN or data element of a CAN-ID
};

/// Goes through the subjects inside another one; the outermost is empty.
using CheckVisit = std::function<void(const CheckSubject &)>;
using CheckLoop = void (*)(ModelChecker &, const CheckSubject &outer, const CheckVisit &);

/// The loop of a rule that is asked once, be it per check or per subject of an outer loop.
void once(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);

/// A rule: a function that looks at one subject and reports what is wrong with it, and the loops that lead there. The
/// function is named after what it finds, holds no loop over the project and says its message whole.
///
/// Rules that stand next to each other with the same loop share one pass, so that everything about a subject is told
/// together; the same goes for the inner loop.
struct CheckRule
{
    QLatin1StringView name; ///< of the function, which the documentation lists
    std::function<void(ModelChecker &, const CheckSubject &)> find;
    CheckLoop each = once;
    CheckLoop within = once;
    bool opensPass = false; ///< a pass of its own behind neighbours with the same loop
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

// The rules by subject, from which `builtIn` is joined.

std::span<const CheckRule> projectRules();
std::span<const CheckRule> valueRules();
std::span<const CheckRule> lineRules();
std::span<const CheckRule> communicationRules();
std::span<const CheckRule> objectRules();
std::span<const CheckRule> pdoMappingRules();
std::span<const CheckRule> pdoCommunicationRules();
std::span<const CheckRule> srdoRules();
std::span<const CheckRule> mappingModeRules();
std::span<const CheckRule> variableRules();
std::span<const CheckRule> j1939Rules();
std::span<const CheckRule> rawCanRules();

// Loops over a line.

void eachObject(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);
void itsSubindices(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);
/// Active entries of a PDO or SRDO mapping object.
void itsEntries(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);
void eachPGN(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);
void itsSPNs(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);
void eachCanId(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);
void itsSignals(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit);

/// Objects of a range of indices, from first to last.
template <quint16 first, quint16 last>
void eachObjectOf(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit)
{
    eachObject(checker, outer, [&visit](const CheckSubject &subject) {
        if (subject.object->index >= first && subject.object->index <= last)
            visit(subject);
    });
}

/// At most one subject of a loop: the first for which a condition holds.
template <CheckLoop loop, bool (*condition)(ModelChecker &, const CheckSubject &)>
void firstWhere(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit)
{
    bool found = false;
    loop(checker, outer, [&](const CheckSubject &subject) {
        if (found || !condition(checker, subject))
            return;
        found = true;
        visit(subject);
    });
}
