#pragma once

#include "mcp/http/httplistener.h"

#include <QLatin1StringView>

#include <span>

/// Whom a server on this machine answers over HTTP, and which requests it reads: every program of the machine can
/// connect, and so can every page in a browser, which is what the token, the host and the origin are held against.
class HttpGuard
{
public:
    /// `token` is what clients show, `revisions` are those of the protocol that the server speaks, `maxBody` is in
    /// bytes.
    HttpGuard(const QByteArray &token, quint16 port, std::span<const QLatin1StringView> revisions, qsizetype maxBody);

    /// The answer to a request that goes no further, judged by all but its body; nothing for one that may come in.
    std::optional<HttpResponse> refusal(const HttpRequest &request) const;

    /// The same for the body of a POST.
    std::optional<HttpResponse> bodyRefusal(const QByteArray &body) const;

    /// A refusal in the words of the protocol, which say what to do.
    static HttpResponse refuse(int status, const QString &message, int code = invalidRequest);

    /// Errors of JSON-RPC 2.0.
    static constexpr int invalidRequest = -32600;
    static constexpr int parseError = -32700;

private:
    std::optional<HttpResponse> strangerRefusal(const HttpRequest &request) const;
    std::optional<HttpResponse> formRefusal(const HttpRequest &request) const;
    bool isHost(const QByteArray &host) const;
    bool showsToken(const QByteArray &authorization) const;

    QByteArray tokenSum_;
    quint16 port_;
    std::span<const QLatin1StringView> revisions_;
    qsizetype maxBody_;
};
