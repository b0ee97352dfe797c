#include "mcp/http/httpguard.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QByteArray sumOf(const QByteArray &token)
{
    return QCryptographicHash::hash(token, QCryptographicHash::Sha256);
}

/// A page of this machine, whatever port it was loaded from.
bool isLocalOrigin(const QByteArray &origin)
{
    static const QRegularExpression local(uR"(\Ahttps?://(localhost|127\.0\.0\.1|\[::1\])(:\d{1,5})?\z)"_s,
                                          QRegularExpression::CaseInsensitiveOption);
    return local.match(QString::fromLatin1(origin)).hasMatch();
}

/// The value of a header without its parameters.
QByteArray plainType(const QByteArray &value)
{
    const qsizetype end = value.indexOf(';');
    return (end < 0 ? value : value.first(end)).trimmed().toLower();
}

/// True if a client takes both forms of an answer, JSON and a stream of events.
bool takesBothForms(const QByteArray &accept)
{
    if (accept.isEmpty())
        return true;
    QByteArrayList types;
    for (const QByteArray &type : accept.split(','))
        types.append(plainType(type));
    const auto takes = [&types](const QByteArray &type) {
        return types.contains(type) || types.contains("*/*") || types.contains(type.first(type.indexOf('/')) + "/*");
    };
    return takes("application/json") && takes("text/event-stream");
}

bool isId(const QJsonValue &id)
{
    return id.isString() || id.isDouble();
}

HttpResponse with(HttpResponse response, const QByteArray &header, const QByteArray &value)
{
    response.headers.insert(header, value);
    return response;
}

} // namespace

HttpGuard::HttpGuard(const QByteArray &token, quint16 port, std::span<const QLatin1StringView> revisions,
                     qsizetype maxBody)
    : tokenSum_(sumOf(token))
    , port_(port)
    , revisions_(revisions)
    , maxBody_(maxBody)
{
}

HttpResponse HttpGuard::refuse(int status, const QString &message, int code)
{
    const QJsonObject error{{u"code"_s, code}, {u"message"_s, message}};
    const QJsonObject body{{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, QJsonValue::Null}, {u"error"_s, error}};
    return {.status = status,
            .headers = {{"Content-Type", "application/json"}},
            .body = QJsonDocument(body).toJson(QJsonDocument::Compact)};
}

std::optional<HttpResponse> HttpGuard::refusal(const HttpRequest &request) const
{
    if (auto refusal = strangerRefusal(request))
        return refusal;
    return formRefusal(request);
}

std::optional<HttpResponse> HttpGuard::strangerRefusal(const HttpRequest &request) const
{
    constexpr int forbidden = 403;
    constexpr int unauthorized = 401;
    if (!isHost(request.header("host")))
        return refuse(forbidden, u"Host has to be 127.0.0.1:%1 or localhost:%1."_s.arg(port_));
    if (request.headers.contains("origin") && !isLocalOrigin(request.header("origin")))
        return refuse(forbidden, u"Pages of other machines are not served: Origin has to be absent or of localhost."_s);
    if (request.headers.contains("authorization")) {
        if (!showsToken(request.header("authorization"))) {
            return with(refuse(unauthorized, u"This is not the token that the server was started with."_s),
                        "WWW-Authenticate", R"(Bearer realm="ncx", error="invalid_token")");
        }
        return {};
    }
    return with(
        refuse(unauthorized, u"Send the token that the server was started with: Authorization: Bearer TOKEN."_s),
        "WWW-Authenticate", R"(Bearer realm="ncx")");
}

std::optional<HttpResponse> HttpGuard::formRefusal(const HttpRequest &request) const
{
    if (request.path != "/mcp")
        return refuse(404, u"The server is at /mcp."_s);
    if (request.method != "POST" && request.method != "DELETE") {
        return with(refuse(405,
                           u"Send messages with POST, end a session with DELETE. There is no stream to GET: all that "
                           "the server has to say comes in the answer to a POST."_s),
                    "Allow", "POST, DELETE");
    }
    const QByteArray revision = request.header("mcp-protocol-version");
    if (!revision.isEmpty() && std::ranges::find(revisions_, QLatin1StringView(revision)) == revisions_.end()) {
        QStringList known;
        for (const QLatin1StringView one : revisions_)
            known.append(one);
        return refuse(400, u"MCP-Protocol-Version has to be one of %1."_s.arg(known.join(", "_L1)));
    }
    if (request.method != "POST")
        return {};
    if (plainType(request.header("content-type")) != "application/json" || request.headers.contains("content-encoding"))
        return refuse(415, u"Send one message as Content-Type: application/json, not compressed."_s);
    if (!takesBothForms(request.header("accept")))
        return refuse(406, u"Accept has to have both application/json and text/event-stream."_s);
    const bool hasLength = request.headers.contains("content-length");
    if (!hasLength && !request.headers.contains("transfer-encoding"))
        return refuse(411, u"Content-Length is missing."_s);
    if (request.header("content-length").toLongLong() > maxBody_)
        return refuse(413, u"A message has at most %1 bytes."_s.arg(maxBody_));
    return {};
}

std::optional<HttpResponse> HttpGuard::bodyRefusal(const QByteArray &body) const
{
    if (body.size() > maxBody_)
        return refuse(413, u"A message has at most %1 bytes."_s.arg(maxBody_));
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        return refuse(400, u"The body is no JSON: %1."_s.arg(error.errorString()), parseError);
    if (document.isArray())
        return refuse(400, u"The body is a batch; send each message in a POST of its own."_s);
    const QJsonObject message = document.object();
    const bool isCall =
        message.value("method"_L1).isString() && (!message.contains("id"_L1) || isId(message.value("id"_L1)));
    const bool isReply = message.contains("result"_L1) || message.contains("error"_L1);
    if (message.value("jsonrpc"_L1) != "2.0"_L1 || !(isCall || isReply))
        return refuse(400, u"The body is no request, notification or reply of JSON-RPC 2.0."_s);
    return {};
}

bool HttpGuard::isHost(const QByteArray &host) const
{
    constexpr quint16 usualPort = 80;
    for (const QByteArray name : {"127.0.0.1", "localhost"}) {
        if (host.toLower() == name + ':' + QByteArray::number(port_) || (port_ == usualPort && host.toLower() == name))
            return true;
    }
    return false;
}

bool HttpGuard::showsToken(const QByteArray &authorization) const
{
    static const QByteArray scheme = "bearer ";
    if (!authorization.toLower().startsWith(scheme))
        return false;
    // Sums have one length, and all of them is compared whatever is found: the time tells nothing of the token.
    const QByteArray shown = sumOf(authorization.sliced(scheme.size()).trimmed());
    int difference = 0;
    for (qsizetype i = 0; i < shown.size(); ++i)
        difference |= shown.at(i) ^ tokenSum_.at(i);
    return difference == 0;
}
