#pragma once

#include "mcp/call/tool.h"

/// How a server describes and runs its tools, and how it words what they answer. This one answers in plain text: one
/// text for each call, with the summary of a model check behind each edit.
class AnswerForm
{
public:
    AnswerForm() = default;
    virtual ~AnswerForm();
    Q_DISABLE_COPY_MOVE(AnswerForm)

    /// The tool as clients list it.
    virtual QJsonObject descriptor(const Tool &tool) const;
    /// Runs a tool with arguments of any kind: tests them against its schema, then its guards, then the handler.
    virtual Reply run(ProjectSession &session, const Tool &tool, const QJsonObject &arguments) const;
    /// The reply of a tool that has changed the project, and has a sentence about that.
    virtual Reply edited(const ToolCall &call, const QString &sentence, bool isError) const;
    /// The reply to the request of that id as it goes over the wire, with a line feed.
    virtual QByteArray line(const Reply &reply, const QJsonValue &id) const;

    static const AnswerForm &plain();
};
