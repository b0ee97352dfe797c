#include "mcp/tools/dictionaryguards.h"

#include "mcp/tools/dictionaryjson.h"

using namespace Qt::StringLiterals;

namespace {

bool hasIndex(const ToolCall &call)
{
    return call.store().indexExists(call.line(), call.index());
}

bool hasSubindex(const ToolCall &call)
{
    return call.store().subIndexExists(call.line(), call.index(), call.sub());
}

/// A sentence with the object as %1 and the line as %2.
Reply refusal(const ToolCall &call, const QString &object, const QString &sentence)
{
    return Reply::refusal(sentence.arg(object, QString::number(call.line())));
}

} // namespace

Reply DictionaryGuards::noIndex(const ToolCall &call)
{
    return refusal(call, DictionaryJson::indexText(call.index()), u"Index %1 does not exist on line %2."_s);
}

Reply DictionaryGuards::noSubindex(const ToolCall &call)
{
    return refusal(call, DictionaryJson::subindexText(call.index(), call.sub()),
                   u"Subindex %1 does not exist on line %2."_s);
}

std::optional<Reply> DictionaryGuards::indexExists(const ToolCall &call)
{
    if (hasIndex(call))
        return {};
    return noIndex(call);
}

std::optional<Reply> DictionaryGuards::indexIsNew(const ToolCall &call)
{
    if (!hasIndex(call))
        return {};
    return refusal(call, DictionaryJson::indexText(call.index()), u"Index %1 already exists on line %2."_s);
}

std::optional<Reply> DictionaryGuards::subindexExists(const ToolCall &call)
{
    if (hasSubindex(call))
        return {};
    return noSubindex(call);
}

std::optional<Reply> DictionaryGuards::subindexIsNew(const ToolCall &call)
{
    if (!hasSubindex(call))
        return {};
    return refusal(call, DictionaryJson::subindexText(call.index(), call.sub()),
                   u"Subindex %1 already exists on line %2."_s);
}
