#pragma once

#include "mcp/call/answerform.h"

/// Answers for assistants: short, as text and as structured content, with what an edit has changed and what the check
/// finds since; refusals tell the next step, and change nothing.
class AssistantForm : public AnswerForm
{
public:
    QJsonObject descriptor(const Tool &tool) const override;
    Reply run(ProjectSession &session, const Tool &tool, const QJsonObject &arguments) const override;
    Reply edited(const ToolCall &call, const QString &sentence, bool isError) const override;
    QByteArray line(const Reply &reply, const QJsonValue &id) const override;

    static const AnswerForm &form();
};
