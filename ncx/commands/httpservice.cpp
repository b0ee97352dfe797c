#include "ncx/commands/httpservice.h"

#include "mcp/http/httpserver.h"
#include "ncx/usage/endsignals.h"
#include "ncx/usage/invocation.h"

#include <QCoreApplication>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

constexpr auto tokenVariable = "NCX_MCP_TOKEN";

/// Why a token cannot be taken; empty for one that can.
QString tokenProblem(const QByteArray &token)
{
    static const QRegularExpression form(uR"(\A[A-Za-z0-9._~+/=-]{16,}\z)"_s);
    if (form.match(QString::fromLocal8Bit(token)).hasMatch())
        return {};
    return u"%1 has to be at least 16 letters, digits and any of -._~+/=; 'openssl rand -hex 32' makes one. Without "
           u"the "
           "variable, the server makes a token and tells it."_s.arg(QLatin1StringView(tokenVariable));
}

} // namespace

int HttpService::run(const Invocation &call, const ServerForm &form)
{
    bool isNumber = false;
    const quint16 port = call.value("http"_L1).toUShort(&isNumber);
    if (!isNumber)
        return call.refuse(
            u"--http takes a port, 1 to 65535, or 0 for a free one, not '%1'"_s.arg(call.value("http"_L1)));
    const QByteArray given = qgetenv(tokenVariable);
    // What this process starts has no use for it.
    qunsetenv(tokenVariable);
    if (const QString problem = tokenProblem(given); !given.isEmpty() && !problem.isEmpty()) {
        call.terminal().fail(problem);
        return CouldNot;
    }
    const QByteArray token = given.isEmpty() ? HttpServer::secret() : given;
    const HttpLimits limits;
    HttpServer server(form, limits);
    const EndSignals signals_;
    QObject::connect(&signals_, &EndSignals::raised, &server, &HttpServer::end);
    QObject::connect(&server, &HttpServer::finished, QCoreApplication::instance(), &QCoreApplication::quit,
                     Qt::QueuedConnection);
    if (const QString problem = server.start(port, token); !problem.isEmpty()) {
        call.terminal().fail(problem);
        return CouldNot;
    }
    call.terminal().tell(u"serving http://127.0.0.1:%1/mcp to programs of this machine; a session ends after %2 hours "
                         "without a message, with what is not saved"_s.arg(server.port())
                             .arg(std::chrono::duration_cast<std::chrono::hours>(limits.idle).count()));
    call.terminal().tell(given.isEmpty()
                             ? u"clients send the header Authorization: Bearer %1"_s.arg(QString::fromLatin1(token))
                             : u"clients send the header Authorization: Bearer, with the token of %1"_s.arg(
                                   QLatin1StringView(tokenVariable)));
    return QCoreApplication::exec() == 0 ? Done : CouldNot;
}
