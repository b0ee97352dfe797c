#include "mcp/call/answerform.h"

#include "mcp/session/projectsession.h"

using namespace Qt::StringLiterals;

AnswerForm::~AnswerForm() = default;

const AnswerForm &AnswerForm::plain()
{
    static const AnswerForm form;
    return form;
}

QJsonObject AnswerForm::descriptor(const Tool &tool) const
{
    return tool.descriptor();
}

Reply AnswerForm::run(ProjectSession &session, const Tool &tool, const QJsonObject &arguments) const
{
    if (const auto problem = argumentProblem(arguments, tool.required, tool.optional))
        return Reply::invalidParams(*problem);
    return tool.run(ToolCall(session, tool, arguments, *this));
}

Reply AnswerForm::edited(const ToolCall &call, const QString &sentence, bool isError) const
{
    if (const QString damage = call.session().damage(); !damage.isEmpty())
        return Reply::refusal(damage);
    return Reply::text(sentence + u"\n\n"_s + call.session().checkSummary(), isError);
}

QByteArray AnswerForm::line(const Reply &reply, const QJsonValue &id) const
{
    return reply.line(id.toInt());
}
