// Tools that read the object dictionary of a CANopen line.

#include "mcp/tools/arguments.h"
#include "mcp/tools/dictionaryguards.h"
#include "mcp/tools/dictionaryjson.h"
#include "mcp/tools/globpattern.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/toolfamilies.h"

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

constexpr Tool dictionaryTools[] = {
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
    return dictionaryTools;
}
