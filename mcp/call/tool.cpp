#include "mcp/call/tool.h"

#include "mcp/call/answerform.h"
#include "mcp/session/projectsession.h"

using namespace Qt::StringLiterals;

namespace {

QString storable(QString text)
{
    if (!text.isValidUtf16())
        text = QString::fromUtf8(text.toUtf8());
    return text.replace(QChar::Null, QChar::ReplacementCharacter);
}

} // namespace

ObjectDataBase &ToolCall::store() const
{
    return session_.store();
}

QJsonValue ToolCall::value(QLatin1StringView name) const
{
    const QJsonValue value = arguments_.value(name);
    return value.isString() ? storable(value.toString()) : value;
}

QString ToolCall::text(QLatin1StringView name, const QString &fallback) const
{
    return value(name).toString(fallback);
}

Reply ToolCall::edited(const QString &sentence, bool isError) const
{
    return form_.edited(*this, sentence, isError);
}

QJsonObject Tool::descriptor() const
{
    QJsonObject properties;
    QJsonArray requiredNames;
    for (const Property &property : required) {
        properties.insert(property.name, property.schema());
        requiredNames.append(property.name);
    }
    for (const Property &property : optional)
        properties.insert(property.name, property.schema());

    QJsonObject schema{{u"type"_s, u"object"_s}, {u"properties"_s, properties}};
    if (!requiredNames.isEmpty())
        schema.insert(u"required"_s, requiredNames);
    return {{u"name"_s, name}, {u"description"_s, description}, {u"inputSchema"_s, schema}};
}

Reply Tool::run(const ToolCall &call) const
{
    for (const Guard guard : guards) {
        if (const auto refusal = guard(call))
            return *refusal;
    }
    return handler(call);
}
