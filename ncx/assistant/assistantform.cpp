#include "ncx/assistant/assistantform.h"

#include "ncx/assistant/assistantsession.h"
#include "ncx/guide/hints.h"
#include "ncx/guide/toolarguments.h"
#include "ncx/guide/toolnotes.h"
#include "ncx/project/identity.h"
#include "store/objectdatabase.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 extendedBit = 0x80000000U;

/// The bytes of an answer that findings may take, in each of its two forms.
constexpr qsizetype fewBytes = 620;
constexpr qsizetype anyBytes = 1 << 30;

QString withIdsAsGiven(QString text, quint32 id)
{
    return text.replace(u"0x%1"_s.arg(id | extendedBit, 0, 16), u"0x%1 (29 bits)"_s.arg(id, 0, 16));
}

/// The reply of a tool that knows a 29-bit CAN-ID by the number with the mark of such; the client does not.
Reply withIdsAsGiven(const Reply &reply, quint32 id)
{
    if (!reply.isOfTool())
        return reply;
    if (reply.isFailure())
        return Reply::refusal(withIdsAsGiven(reply.text(), id));
    QJsonObject data = reply.data().toObject();
    if (data.contains("changed"_L1)) {
        data.insert(u"changed"_s, withIdsAsGiven(data.value("changed"_L1).toString(), id));
        return Reply::both(withIdsAsGiven(reply.text(), id), data);
    }
    data.insert(u"canId"_s, u"0x%1"_s.arg(id, 0, 16));
    data.insert(u"canIdDec"_s, qint64{id});
    data.insert(u"extended"_s, true);
    return Reply::json(data);
}

/// What a tool refuses is a failure for the model to read, also where the arguments are wrong.
Reply asRefusal(const Tool &tool, const ToolCall &call, const Reply &reply)
{
    if (reply.error()) {
        const QString problem = reply.error()->value("message"_L1).toString();
        const QString end = problem.endsWith(u'.') ? QString() : u"."_s;
        return Reply::refusal(problem + end + u" Correct it and call %1 again."_s.arg(tool.name));
    }
    const QString hint = hintFor(call, reply.text());
    return hint.isEmpty() ? reply : Reply::refusal(reply.text() + u' ' + hint);
}

/// Runs an edit as a step that can be taken back; one that fails changes nothing.
Reply runEdit(AssistantSession &session, const Tool &tool, const ToolCall &call)
{
    const FindingsReport::Findings before = session.findings();
    session.journal().begin();
    ObjectDataBase::Step step(session.store());
    Reply reply = tool.run(call);
    const bool isDone = reply.isOfTool() && !reply.isFailure() && !session.isCancelled();
    if (isDone || !session.journal().hasNoted()) {
        if (!step.commit())
            return Reply::refusal(session.damage());
        if (session.journal().end(tool.name))
            session.setChanged();
        return reply;
    }
    session.journal().drop();
    session.setFindings(before);
    return reply;
}

} // namespace

const AnswerForm &AssistantForm::form()
{
    static const AssistantForm form;
    return form;
}

QJsonObject AssistantForm::descriptor(const Tool &tool) const
{
    QJsonObject descriptor = tool.descriptor();
    descriptor.insert(u"inputSchema"_s, ToolArguments(tool).inputSchema());
    const ToolNote note = ToolNote::of(tool.name);
    if (!note.description.isEmpty())
        descriptor.insert(u"description"_s, note.description);
    descriptor.insert(u"annotations"_s, note.annotations());
    descriptor.insert(u"outputSchema"_s, note.outputSchema());
    return descriptor;
}

Reply AssistantForm::run(ProjectSession &session, const Tool &tool, const QJsonObject &arguments) const
{
    auto &own = static_cast<AssistantSession &>(session);
    own.setVerbose(ToolArguments::isVerbose(arguments));
    const ToolArguments known(tool);
    const QJsonObject taken = known.toTool(arguments);
    const ToolCall call(own, tool, taken, *this);
    if (const auto problem = known.problem(arguments))
        return asRefusal(tool, call, Reply::invalidParams(*problem));
    // Lines of any protocol can be worked on together.
    Identity::takeWidest();
    const bool isEdit = ToolNote::of(tool.name).isEdit() && own.isProjectOpen();
    Reply reply = isEdit ? runEdit(own, tool, call) : tool.run(call);
    if (ToolArguments::isExtended(arguments))
        reply = withIdsAsGiven(reply, static_cast<quint32>(arguments.value("canId"_L1).toInteger()));
    return reply.isOfTool() && !reply.isFailure() ? reply : asRefusal(tool, call, reply);
}

Reply AssistantForm::edited(const ToolCall &call, const QString &sentence, bool isError) const
{
    AssistantSession &session = sessionOf(call);
    if (isError)
        return Reply::refusal(sentence);
    const FindingsReport::Findings before = session.findings();
    const FindingsReport::Findings after = session.check();
    if (const QString damage = session.damage(); !damage.isEmpty())
        return Reply::refusal(damage);
    const qsizetype most = session.isVerbose() ? anyBytes : fewBytes;
    const FindingsReport::Findings added = FindingsReport::added(before, after);
    const FindingsReport::Findings gone = FindingsReport::added(after, before);
    qsizetype untold = 0;
    const QJsonArray newGroups = FindingsReport::grouped(added, most, untold);
    const QJsonObject counts = FindingsReport::counts(after);

    QString text = sentence.trimmed() + u"\nCheck: %1"_s.arg(FindingsReport::countText(counts));
    if (!added.isEmpty() || !gone.isEmpty())
        text += u"; by this edit %1 new, %2 gone"_s.arg(added.size()).arg(gone.size());
    text += u'.';
    for (const QJsonValue group : newGroups)
        text += u'\n' + FindingsReport::line(group.toObject());
    QJsonObject data{{u"changed"_s, sentence.trimmed()},
                     {u"findings"_s, counts},
                     {u"new"_s, newGroups},
                     {u"gone"_s, FindingsReport::gone(gone)}};
    if (untold > 0) {
        data.insert(u"untold"_s, untold);
        text += u"\n%1 more: check_model tells them."_s.arg(untold);
    }
    return Reply::both(text, data);
}

QByteArray AssistantForm::line(const Reply &reply, const QJsonValue &id) const
{
    QJsonObject message{{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, id}};
    if (reply.error()) {
        message.insert(u"error"_s, *reply.error());
    } else if (reply.result()) {
        message.insert(u"result"_s, *reply.result());
    } else {
        QJsonObject result{{u"content"_s, QJsonArray{QJsonObject{{u"type"_s, u"text"_s}, {u"text"_s, reply.text()}}}}};
        if (reply.isFailure())
            result.insert(u"isError"_s, true);
        else if (reply.data().isArray())
            result.insert(u"structuredContent"_s, QJsonObject{{u"items"_s, reply.data()}});
        else if (reply.data().isObject())
            result.insert(u"structuredContent"_s, reply.data());
        message.insert(u"result"_s, result);
    }
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}
