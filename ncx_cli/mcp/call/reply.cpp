#include "ncx_cli/mcp/call/reply.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QString compact(const QJsonDocument &document)
{
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact));
}

} // namespace

Reply Reply::result(const QJsonObject &result)
{
    Reply reply;
    reply.result_ = result;
    return reply;
}

Reply Reply::error(ErrorCode code, const QString &message)
{
    Reply reply;
    reply.error_ = {{u"code"_s, code}, {u"message"_s, message}};
    return reply;
}

Reply Reply::text(const QString &text, bool isError)
{
    QJsonObject result{{u"content"_s, QJsonArray{QJsonObject{{u"type"_s, u"text"_s}, {u"text"_s, text.trimmed()}}}}};
    if (isError)
        result.insert(u"isError"_s, true);
    return Reply::result(result);
}

Reply Reply::json(const QJsonObject &object, bool isError)
{
    return text(compact(QJsonDocument(object)), isError);
}

Reply Reply::json(const QJsonArray &array)
{
    return text(compact(QJsonDocument(array)));
}

QByteArray Reply::line(qint32 id) const
{
    QJsonObject message{{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, id}};
    message.insert(isProtocolError() ? u"error"_s : u"result"_s, content());
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}
