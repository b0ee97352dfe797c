#include "ncx/assistant/assistantform.h"

#include "ncx/assistant/assistantsession.h"
#include "ncx/assistant/hints.h"
#include "ncx/assistant/toolnotes.h"
#include "ncx/project/identity.h"
#include "store/objectdatabase.h"

#include <QJsonDocument>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr Property verbose =
    Properties::boolean("verbose"_L1, "Tell all new findings, not only those that fit into 2 KB (default: false)"_L1);
constexpr Property extended = Properties::boolean(
    "extended"_L1, "The CAN-ID has 29 bits (default: false, 11 bits). canId is then 0 to 536870911."_L1);
constexpr quint32 extendedBit = 0x80000000U;
constexpr qint64 lastStandardId = 0x7ff;
constexpr qint64 lastExtendedId = 0x1fffffff;
constexpr qint64 lastLine = 239; ///< lines beyond are an editor's own and reach no file

/// The bytes of an answer that findings may take, in each of its two forms.
constexpr qsizetype fewBytes = 620;
constexpr qsizetype anyBytes = 1 << 30;

bool takesCanId(const Tool &tool)
{
    return std::ranges::any_of(tool.required, [](const Property &property) { return property.name == "canId"_L1; });
}

/// The optional arguments of a tool with those that each of its kind has here.
std::vector<Property> optionalOf(const Tool &tool)
{
    std::vector<Property> properties(tool.optional.begin(), tool.optional.end());
    if (ToolNote::of(tool.name).tellsEdit())
        properties.push_back(verbose);
    if (takesCanId(tool))
        properties.push_back(extended);
    return properties;
}

std::optional<QString> problemOf(const Tool &tool, const QJsonObject &arguments)
{
    const std::vector<Property> optional = optionalOf(tool);
    if (auto problem = argumentProblem(arguments, tool.required, optional))
        return problem;
    if (auto problem = choiceProblem(arguments, tool.required))
        return problem;
    if (auto problem = choiceProblem(arguments, optional))
        return problem;
    for (const QLatin1StringView line : {"line"_L1, "srcLine"_L1, "destLine"_L1}) {
        if (arguments.value(line).toInteger() > lastLine)
            return u"Argument \"%1\" is out of range: 0 to 239."_s.arg(line);
    }
    if (!takesCanId(tool))
        return {};
    const bool isExtended = arguments.value(extended.name).toBool();
    if (arguments.value("canId"_L1).toInteger() <= (isExtended ? lastExtendedId : lastStandardId))
        return {};
    return isExtended ? u"Argument \"canId\" is out of range: 0 to 536870911 (29 bits)."_s
                      : u"Argument \"canId\" is out of range: 0 to 2047 (11 bits), or with \"extended\": true 0 to "
                        "536870911 (29 bits)."_s;
}

/// The arguments as the tool itself knows them.
QJsonObject ownArguments(const Tool &tool, QJsonObject arguments)
{
    if (arguments.take(extended.name).toBool())
        arguments.insert(u"canId"_s, arguments.value("canId"_L1).toInteger() | qint64{extendedBit});
    if (ToolNote::of(tool.name).tellsEdit())
        arguments.remove(verbose.name);
    return arguments;
}

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
    const QString said = reply.error() ? reply.error()->value("message"_L1).toString() : reply.text();
    const QString hint = hintFor(call, said);
    const bool isArgument = reply.error().has_value();
    QString text = said;
    if (isArgument)
        text += u"%1 Correct it and call %2 again."_s.arg(text.endsWith(u'.') ? QString() : u"."_s, tool.name);
    if (!hint.isEmpty())
        text += u' ' + hint;
    return Reply::refusal(text);
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
    QJsonObject schema = descriptor.value("inputSchema"_L1).toObject();
    QJsonObject properties = schema.value("properties"_L1).toObject();
    for (const Property &property : optionalOf(tool))
        properties.insert(property.name, property.schema());
    schema.insert(u"properties"_s, properties);
    schema.insert(u"additionalProperties"_s, false);
    descriptor.insert(u"inputSchema"_s, schema);
    const ToolNote note = ToolNote::of(tool.name);
    descriptor.insert(u"annotations"_s, note.annotations());
    descriptor.insert(u"outputSchema"_s, note.outputSchema());
    return descriptor;
}

Reply AssistantForm::run(ProjectSession &session, const Tool &tool, const QJsonObject &arguments) const
{
    auto &own = static_cast<AssistantSession &>(session);
    own.setVerbose(arguments.value(verbose.name).toBool());
    const QJsonObject taken = ownArguments(tool, arguments);
    const ToolCall call(own, tool, taken, *this);
    if (const auto problem = problemOf(tool, arguments))
        return asRefusal(tool, call, Reply::invalidParams(*problem));
    // Lines of any protocol can be worked on together.
    Identity::takeWidest();
    const bool isEdit = ToolNote::of(tool.name).isEdit() && own.isProjectOpen();
    Reply reply = isEdit ? runEdit(own, tool, call) : tool.run(call);
    if (arguments.value(extended.name).toBool())
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
