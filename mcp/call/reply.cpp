#include "mcp/call/reply.h"

#include "mcp/call/jsontext.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QString compact(const QJsonDocument &document)
{
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact));
}

} // namespace

Reply Reply::ofMethod(const QJsonObject &result)
{
    Reply reply;
    reply.result_ = result;
    return reply;
}

Reply Reply::ofError(ErrorCode code, const QString &message)
{
    Reply reply;
    reply.error_ = QJsonObject{{u"code"_s, code}, {u"message"_s, message}};
    return reply;
}

Reply Reply::text(const QString &text, bool isError)
{
    Reply reply;
    reply.text_ = text.trimmed();
    reply.isFailure_ = isError;
    return reply;
}

Reply Reply::json(const QJsonObject &object, bool isError)
{
    Reply reply = text(compact(QJsonDocument(object)), isError);
    reply.data_ = object;
    return reply;
}

Reply Reply::json(const QJsonArray &array)
{
    Reply reply = text(compact(QJsonDocument(array)));
    reply.data_ = array;
    return reply;
}

Reply Reply::both(const QString &text, const QJsonObject &object)
{
    Reply reply = Reply::text(text);
    reply.data_ = object;
    return reply;
}

QByteArray Reply::line(qint32 id) const
{
    if (isOfTool()) {
        QByteArray line = "{\"id\":" + QByteArray::number(id) + R"(,"jsonrpc":"2.0","result":{"content":[{"text":)";
        JsonText::appendQuoted(line, text_);
        line += R"(,"type":"text"}])";
        return line + (isFailure_ ? ",\"isError\":true}}\n" : "}}\n");
    }
    QJsonObject message{{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, id}};
    message.insert(error_ ? u"error"_s : u"result"_s, error_ ? *error_ : *result_);
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}
