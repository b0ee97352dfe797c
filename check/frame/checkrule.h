#pragma once

#include "check/frame/check.h"
#include "check/frame/findingplaces.h"

#include <algorithm>
#include <concepts>
#include <functional>
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

template <class Port, class T>
CheckRule<Port> rule(QLatin1StringView name, Each<Port, T> each, void (*find)(Port &, const T &))
{
    using Subject = typename CheckRule<Port>::Subject;
    return {
        name,
        [find](Port &check, Subject outer, Subject) { find(check, *static_cast<const T *>(outer)); },
        {reinterpret_cast<void (*)()>(each),
         [each](Port &check, Subject, const std::function<void(Subject)> &visit) {
             each(check, [&visit](const T &subject) { visit(&subject); });
         }},
        {},
        false,
        [](FindingPlace &place, Subject outer, Subject) { narrow(place, *static_cast<const T *>(outer)); },
    };
}

template <class Port, class T, class U>
CheckRule<Port> rule(QLatin1StringView name, Each<Port, T> each, Within<Port, T, U> within,
                     void (*find)(Port &, const T &, const U &))
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = rule(name, each, static_cast<void (*)(Port &, const T &)>(nullptr));
    row.find = [find](Port &check, Subject outer, Subject inner) {
        find(check, *static_cast<const T *>(outer), *static_cast<const U *>(inner));
    };
    row.locate = [](FindingPlace &place, Subject outer, Subject inner) {
        narrow(place, *static_cast<const T *>(outer));
        narrow(place, *static_cast<const U *>(inner));
    };
    row.within = {reinterpret_cast<void (*)()>(within),
                  [within](Port &check, Subject outer, const std::function<void(Subject)> &visit) {
                      within(check, *static_cast<const T *>(outer), [&visit](const U &subject) { visit(&subject); });
                  }};
    return row;
}

/// For a function that looks at the inner subject alone.
template <class Port, class T, class U>
CheckRule<Port> rule(QLatin1StringView name, Each<Port, T> each, Within<Port, T, U> within,
                     void (*find)(Port &, const U &))
{
    using Subject = typename CheckRule<Port>::Subject;
    CheckRule<Port> row = rule(name, each, within, static_cast<void (*)(Port &, const T &, const U &)>(nullptr));
    row.find = [find](Port &check, Subject, Subject inner) { find(check, *static_cast<const U *>(inner)); };
    return row;
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
        if (((*first).*loop).identity != nullptr)
            ((*first).*loop).run(check, outer, visit);
        else
            visit(nullptr);
        first = end;
    }
}
