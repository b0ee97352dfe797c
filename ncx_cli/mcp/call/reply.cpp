#include "ncx_cli/mcp/call/reply.h"

#include "ncx_cli/mcp/call/jsontext.h"

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
    Reply reply;
    reply.text_ = text.trimmed();
    reply.isFailure_ = isError;
    return reply;
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
    if (result_.isEmpty() && error_.isEmpty()) {
        QByteArray line = "{\"id\":" + QByteArray::number(id) + R"(,"jsonrpc":"2.0","result":{"content":[{"text":)";
        JsonText::appendQuoted(line, text_);
        line += R"(,"type":"text"}])";
        return line + (isFailure_ ? ",\"isError\":true}}\n" : "}}\n");
    }
    QJsonObject message{{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, id}};
    message.insert(error_.isEmpty() ? u"result"_s : u"error"_s, error_.isEmpty() ? result_ : error_);
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}
