#pragma once

#include "check/frame/check.h"
#include "check/frame/findingplaces.h"
#include "check/frame/localcheck.h"

#include <algorithm>
#include <concepts>
#include <functional>
#include <optional>
#include <span>

/// Goes through what a loop leads to.
template <class T>
using Visit = std::function<void(const T &)>;
/// A loop over what the project or the line of a check has.
template <class Port, class T>
using Each = void (*)(Port &, const Visit<T> &);
/// A loop over what a subject of another loop has inside.
template <class Port, class T, class U>
using Within = void (*)(Port &, const T &, const Visit<U> &);
/// A loop over the parts of a subject, which it holds itself.
template <class T, class U>
using Parts = void (*)(const T &, const Visit<U> &);

/// A rule as it stands in a list of all, where what it looks at is not told from others. Only `rule` makes one, which
/// holds the function against the loops.
template <class Port>
struct CheckRule
{
    using Subject = const void *;
    struct Loop
    {
        void (*identity)() = nullptr; ///< null for a rule that is asked once
        std::function<void(Port &, Subject outer, const std::function<void(Subject)> &)> run;
    };

    QLatin1StringView name; ///< of the function, which the documentation lists
    std::function<void(Port &, Subject outer, Subject inner)> find;
    Loop each = {};
    Loop within = {};
    bool opensPass = false;
    ProjectCheck::Locate locate = nullptr; ///< tells the place of the subjects; null for a rule that is asked once
    struct Local
    {
        WriteLog::Kind kind;
        quint64 (*key)(Subject outer);
        bool seesVariables;
    };
    std::optional<Local> local = {}; ///< of a rule that looks at its outer subject alone

    /// The rule in a pass of its own behind neighbours with the same loop.
    CheckRule inNewPass() const
    {
        CheckRule other = *this;
        other.opensPass = true;
        return other;
    }
};

using ProjectRule = CheckRule<ProjectCheck>; ///< of the project as a whole
using LineRule = CheckRule<Check>;           ///< of a line

// A row of a list of rules: the name, the loops that lead to what the function looks at, and the function. The function
// is named after what it finds, holds no loop over the project and says its message whole. A row whose loops do not
// lead to what its function takes does not compile.

/// For a function object, with the port told: `rule<Check>(...)`.
template <class Port, std::invocable<Port &> Find>
CheckRule<Port> rule(QLatin1StringView name, Find find)
{
    using Subject = typename CheckRule<Port>::Subject;
    return {name, [find](Port &check, Subject, Subject) { find(check); }};
}

template <class Port>
CheckRule<Port> rule(QLatin1StringView name, void (*find)(Port &))
{
    using Subject = typename CheckRule<Port>::Subject;
    return {name, [find](Port &check, Subject, Subject) { find(check); }};
}

/// As much as the function of a rule may see in a check: all of it, or of a line one subject.
template <class Seen, class Port>
concept SeenOf = std::same_as<Seen, Port> ||(std::same_as<Port, Check> &&std::derived_from<Seen, LocalCheck>);

namespace RuleRows {

/// Shows a function what it may see.
template <class Port, class Seen, class... Subjects>
void ask(Port &check, void (*find)(Seen &, const Subjects &...), const Subjects &...subjects)
{
    if constexpr (std::same_as<Seen, Port>) {
        find(check, subjects...);
    } else {
        Seen seen(check);
        find(seen, subjects...);
    }
}

/// A row without its function.
template <class Seen, class Port, class T>
CheckRule<Port> row(QLatin1StringView name, Each<Port, T> each)
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row{.name = name, .find = {}};
    row.each = {reinterpret_cast<void (*)()>(each),
                [each](Port &check, Subject, const std::function<void(Subject)> &visit) {
                    each(check, [&visit](const T &subject) { visit(&subject); });
                }};
    row.locate = [](FindingPlace &place, Subject outer, Subject) { narrow(place, *static_cast<const T *>(outer)); };
    if constexpr (!std::same_as<Seen, Port>)
        row.local = {T::kind, [](Subject outer) { return static_cast<const T *>(outer)->key(); }, Seen::seesVariables};
    return row;
}

template <class Seen, class Port, class T, class U>
CheckRule<Port> row(QLatin1StringView name, Each<Port, T> each, Within<Port, T, U> within)
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = RuleRows::row<Seen>(name, each);
    row.within = {reinterpret_cast<void (*)()>(within),
                  [within](Port &check, Subject outer, const std::function<void(Subject)> &visit) {
                      within(check, *static_cast<const T *>(outer), [&visit](const U &subject) { visit(&subject); });
                  }};
    row.locate = [](FindingPlace &place, Subject outer, Subject inner) {
        narrow(place, *static_cast<const T *>(outer));
        narrow(place, *static_cast<const U *>(inner));
    };
    return row;
}

template <class Seen, class Port, class T, class U>
CheckRule<Port> row(QLatin1StringView name, Each<Port, T> each, Parts<T, U> parts)
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = RuleRows::row<Seen>(name, each, static_cast<Within<Port, T, U>>(nullptr));
    row.within = {reinterpret_cast<void (*)()>(parts),
                  [parts](Port &, Subject outer, const std::function<void(Subject)> &visit) {
                      parts(*static_cast<const T *>(outer), [&visit](const U &subject) { visit(&subject); });
                  }};
    return row;
}

} // namespace RuleRows

template <class Port, class T, SeenOf<Port> Seen>
CheckRule<Port> rule(QLatin1StringView name, Each<Port, T> each, void (*find)(Seen &, const T &))
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = RuleRows::row<Seen>(name, each);
    row.find = [find](Port &check, Subject outer, Subject) {
        RuleRows::ask(check, find, *static_cast<const T *>(outer));
    };
    return row;
}

template <class Port, class T, class U>
CheckRule<Port> rule(QLatin1StringView name, Each<Port, T> each, Within<Port, T, U> within,
                     void (*find)(Port &, const T &, const U &))
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = RuleRows::row<Port>(name, each, within);
    row.find = [find](Port &check, Subject outer, Subject inner) {
        find(check, *static_cast<const T *>(outer), *static_cast<const U *>(inner));
    };
    return row;
}

template <class Port, class T, class U, SeenOf<Port> Seen>
CheckRule<Port> rule(QLatin1StringView name, Each<Port, T> each, Parts<T, U> parts,
                     void (*find)(Seen &, const T &, const U &))
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = RuleRows::row<Seen>(name, each, parts);
    row.find = [find](Port &check, Subject outer, Subject inner) {
        RuleRows::ask(check, find, *static_cast<const T *>(outer), *static_cast<const U *>(inner));
    };
    return row;
}

/// For a function that looks at the inner subject alone.
template <class Port, class T, class U, SeenOf<Port> Seen>
CheckRule<Port> rule(QLatin1StringView name, Each<Port, T> each, Parts<T, U> parts, void (*find)(Seen &, const U &))
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = RuleRows::row<Seen>(name, each, parts);
    row.find = [find](Port &check, Subject, Subject inner) {
        RuleRows::ask(check, find, *static_cast<const U *>(inner));
    };
    return row;
}

/// Goes through the subjects of a pass, of which some need not be asked about: those whose findings are remembered.
inline void goThrough(Check &check, std::span<const LineRule> pass, const std::function<void(LineRule::Subject)> &ask)
{
    const LineRule &first = pass.front();
    FindingMemory *memory = check.memory();
    if (!memory || !std::ranges::all_of(pass, [](const LineRule &rule) { return rule.local.has_value(); })) {
        first.each.run(check, nullptr, ask);
        return;
    }
    FindingMemory::Pass &known = memory->passOf(&first, first.local->kind);
    if (std::ranges::any_of(pass, [](const LineRule &rule) { return rule.local->seesVariables; }))
        known.begin(check.line().variableChanges());
    first.each.run(check, nullptr, [&](LineRule::Subject subject) {
        check.recallOrAsk(known, first.local->key(subject), [&] { ask(subject); });
    });
    known.end();
}

inline void goThrough(ProjectCheck &check, std::span<const ProjectRule> pass,
                      const std::function<void(ProjectRule::Subject)> &ask)
{
    pass.front().each.run(check, nullptr, ask);
}

/// Asks the rules in their order. Those that stand next to each other with the same loop share one pass, so that
/// everything about a subject is told together; the same goes for the inner loop.
template <class Port>
void askRules(Port &check, std::span<const CheckRule<Port>> rules,
              typename CheckRule<Port>::Loop CheckRule<Port>::*loop = &CheckRule<Port>::each,
              typename CheckRule<Port>::Subject outer = nullptr)
{
    using Rule = CheckRule<Port>;
    using Subject = typename Rule::Subject;
    const bool isOuter = loop == &Rule::each;
    for (auto first = rules.begin(); first != rules.end();) {
        const auto end = std::find_if(first + 1, rules.end(), [&](const Rule &rule) {
            return (rule.*loop).identity != ((*first).*loop).identity || (isOuter && rule.opensPass);
        });
        const std::span<const Rule> together(first, end);
        const auto visit = [&](Subject subject) {
            if (isOuter)
                askRules(check, together, &Rule::within, subject);
            else
                std::ranges::for_each(together, [&](const Rule &rule) {
                    check.ask(rule.name, rule.locate, outer, subject);
                    rule.find(check, outer, subject);
                });
        };
        if (((*first).*loop).identity == nullptr)
            visit(nullptr);
        else if (isOuter)
            goThrough(check, together, visit);
        else
            ((*first).*loop).run(check, outer, visit);
        first = end;
    }
}
