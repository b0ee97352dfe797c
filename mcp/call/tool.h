#pragma once

#include "mcp/call/property.h"
#include "mcp/call/reply.h"

#include <initializer_list>
#include <optional>

class AnswerForm;
class ObjectDataBase;
class ProjectSession;
struct Tool;

/// One call of a tool: its arguments, which fit the tool's schema, and what they are applied to.
class ToolCall
{
public:
    ToolCall(ProjectSession &session, const Tool &tool, const QJsonObject &arguments, const AnswerForm &form)
        : session_(session)
        , tool_(tool)
        , arguments_(arguments)
        , form_(form)
    {
    }

    ProjectSession &session() const { return session_; }
    /// The store of the open project.
    ObjectDataBase &store() const;
    const Tool &tool() const { return tool_; }

    bool has(QLatin1StringView name) const { return arguments_.contains(name); }
    /// An argument as it is, a text but for what no project can hold: a null character or half a surrogate pair is
    /// replaced by a character that tells so.
    QJsonValue value(QLatin1StringView name) const;
    /// An integer argument, 0 where it is absent. Written as 7.0 it is 7.
    template <typename Integer>
    Integer number(QLatin1StringView name) const
    {
        return static_cast<Integer>(arguments_.value(name).toInteger());
    }
    /// A text argument, the fallback where it is absent.
    QString text(QLatin1StringView name, const QString &fallback = {}) const;
    /// A boolean argument, false where it is absent.
    bool flag(QLatin1StringView name) const { return arguments_.value(name).toBool(); }

    // The arguments that address an object.
    quint8 line() const { return number<quint8>(QLatin1StringView("line")); }
    quint16 index() const { return number<quint16>(QLatin1StringView("index")); }
    quint8 sub() const { return number<quint8>(QLatin1StringView("sub")); }

    /// The reply of a tool that has changed the project: its sentence and what a fresh model check says, in the form of
    /// the server; a failure if the store was damaged by the change.
    Reply edited(const QString &sentence, bool isError = false) const;

private:
    ProjectSession &session_;
    const Tool &tool_;
    const QJsonObject &arguments_;
    const AnswerForm &form_;
};

/// A test before a tool's work: the reply that refuses the call, or nothing.
using Guard = std::optional<Reply> (*)(const ToolCall &call);
using Handler = Reply (*)(const ToolCall &call);

/// A tool as data. What it is called and told is part of the interface: clients hand these texts to their model.
struct Tool
{
    QLatin1StringView name;
    QLatin1StringView description;
    std::initializer_list<Property> required;
    std::initializer_list<Property> optional;
    /// Tested in their order before the handler runs.
    std::initializer_list<Guard> guards;
    Handler handler;

    /// The descriptor that clients list.
    QJsonObject descriptor() const;
    /// Runs guards and handler.
    Reply run(const ToolCall &call) const;
};
