// Tools that read the object dictionary of a CANopen line.

#include "mcp/tools/arguments.h"
#include "mcp/tools/dictionaryguards.h"
#include "mcp/tools/dictionaryjson.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/toolfamilies.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr Property globPattern = Properties::string(
    "globPattern"_L1,
    "Glob pattern matched against the complete index name, case-insensitively. Wrap it in * to search for a word "
    "anywhere in the name: \"*controlword*\". \"control*\" matches a prefix, \"?\" a single character."_L1);

std::optional<Reply> patternIsGiven(const ToolCall &call)
{
    if (!call.text(globPattern.name).isEmpty())
        return {};
    return Reply::invalidParams(u"Argument globPattern must not be empty"_s);
}

/// Copies the set that begins at `place` with "[" as the framework's wildcard conversion does: a leading "!" negates, a
/// "]" right after that is a member, and a set that nothing closes leaves an invalid expression. Returns the last
/// place.
qsizetype convertSet(const QString &pattern, qsizetype place, QString &expression)
{
    expression += u'[';
    if (pattern.mid(place + 1, 1) == u'!') {
        expression += u'^';
        ++place;
    }
    bool first = true;
    while (++place < pattern.size() && (first || pattern.at(place) != u']')) {
        if (pattern.at(place) == u'\\')
            expression += u'\\';
        expression += pattern.at(place);
        first = false;
    }
    if (place < pattern.size())
        expression += u']';
    return place;
}

/// The expressions of what stands between the stars of a pattern.
QStringList partsBetweenStars(const QString &pattern)
{
    static const QString special = u"\\$()+.^{|}"_s;
    QStringList parts{QString()};
    for (qsizetype place = 0; place < pattern.size(); ++place) {
        const QChar c = pattern.at(place);
        if (c == u'*')
            parts.append(QString());
        else if (c == u'?')
            parts.last() += u'.';
        else if (c == u'[')
            place = convertSet(pattern, place, parts.last());
        else
            parts.last() += special.contains(c) ? QString(u'\\') + c : QString(c);
    }
    return parts;
}

/// The framework's own conversion is made for file paths: its "*" and "?" stop at a "/", which in a name is a character
/// like any other. Each part between two stars is matched at its first place and not tried again, which finds the same
/// names and keeps the time of a match from growing with the number of stars.
QRegularExpression globExpression(const QString &pattern)
{
    const QStringList parts = partsBetweenStars(pattern);
    QString expression = parts.first();
    for (const QString &part : parts.mid(1, parts.size() - 2))
        expression += u"(?>.*?%1)"_s.arg(part);
    if (parts.size() > 1)
        expression += u".*"_s + parts.last();
    return QRegularExpression(QRegularExpression::anchoredPattern(expression),
                              QRegularExpression::CaseInsensitiveOption |
                                  QRegularExpression::DotMatchesEverythingOption);
}

Reply listIndices(const ToolCall &call)
{
    return Reply::text(DictionaryJson::listing(DictionaryJson::names(call.store(), call.line())));
}

Reply getIndex(const ToolCall &call)
{
    auto object = DictionaryJson::object(call.store(), call.line(), call.index());
    if (!object)
        return DictionaryGuards::noIndex(call);
    object->insert(u"line"_s, call.line());
    return Reply::json(*object);
}

Reply getSubindex(const ToolCall &call)
{
    const auto data = call.store().getSubIndex(call.line(), call.index(), call.sub());
    if (!data)
        return DictionaryGuards::noSubindex(call);
    return Reply::json(DictionaryJson::subindex(call.sub(), *data));
}

Reply findIndices(const ToolCall &call)
{
    const QString pattern = call.text(globPattern.name);
    const QRegularExpression expression = globExpression(pattern);
    if (!expression.isValid())
        return Reply::invalidParams(u"Invalid glob pattern: %1"_s.arg(pattern));
    QMap<quint16, QString> names = DictionaryJson::names(call.store(), call.line());
    names.removeIf([&expression](const auto &entry) { return !expression.match(entry.value()).hasMatch(); });
    return Reply::text(DictionaryJson::listing(names));
}

constexpr Tool tools[] = {
    {"list_indices"_L1,
     "List the object dictionary indices defined on a line"_L1,
     {Arguments::line},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen},
     listIndices},
    {"get_index"_L1,
     "Get an object dictionary index, including its subindices, for a line"_L1,
     {Arguments::line, Arguments::index},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen},
     getIndex},
    {"get_subindex"_L1,
     "Get a single subindex of an object dictionary index for a line"_L1,
     {Arguments::line, Arguments::index, Arguments::sub},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen},
     getSubindex},
    {"find_indices"_L1,
     "Find object dictionary indices on a line by name, using a glob pattern. The pattern is matched against the "
     "complete index name and is case-insensitive, so \"*controlword*\" finds every name containing that word. Returns "
     "the matching indices in the same form as list_indices."_L1,
     {Arguments::line, globPattern},
     {},
     {projectIsOpen, keysAreGiven, patternIsGiven, storeIsReachable, lineIsCANopen},
     findIndices},
};

} // namespace

std::span<const Tool> ToolFamilies::dictionary()
{
    return tools;
}
