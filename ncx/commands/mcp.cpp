// Serves assistants.

#include "mcp/wire/streamserver.h"
#include "ncx/assistant/assistantserver.h"
#include "ncx/assistant/roots.h"
#include "ncx/commands/commands.h"
#include "ncx/commands/httpservice.h"
#include "ncx/usage/invocation.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr Option mcpOptions[] = {
    {.name = "root"_L1,
     .letter = 'r',
     .value = "DIR"_L1,
     .text = "the client works inside of this folder alone; without it, of the one in which this is started"_L1,
     .isRepeatable = true},
    {.name = "http"_L1,
     .value = "PORT"_L1,
     .text = "listen on this port of 127.0.0.1, for several clients; 0 takes a free port and tells it"_L1},
};

constexpr QLatin1StringView mcpDetails[] = {
    "A server of the Model Context Protocol on standard input and output, for one client: an assistant makes, reads, "
    "edits, checks, saves and builds projects through tools. It ends with its input; what is not saved by then is lost."_L1,
    "With --http it is one over Streamable HTTP instead, at /mcp, which no other machine reaches. A client shows the "
    "token that is told at the start, or that NCX_MCP_TOKEN has, and has a session with a project of its own. SIGINT "
    "and "
    "SIGTERM end the server."_L1,
    "Answers are short and say the next step; edits can be undone. The tools of 'ncx_cli --mcp' are among these."_L1,
};

constexpr Example mcpExamples[] = {
    {"ncx mcp --root=/projects/device"_L1, "what a client is registered with"_L1},
    {"NCX_MCP_TOKEN=$(cat token) ncx mcp --http=8123"_L1,
     "serve http://127.0.0.1:8123/mcp to whoever knows the token"_L1},
};

int runMcp(const Invocation &call)
{
    for (const QString &folder : call.values("root"_L1)) {
        if (QFileInfo(folder).isDir())
            continue;
        call.terminal().fail(u"%1: there is no such folder"_s.arg(folder));
        return CouldNot;
    }
    const ServerForm form = assistantServer(Roots(call.values("root"_L1)));
    if (call.isSet("http"_L1))
        return HttpService::run(call, form);
    StreamServer server(form);
    QObject::connect(&server, &StreamServer::finished, QCoreApplication::instance(), &QCoreApplication::quit);
    QTimer::singleShot(0, &server, &StreamServer::start);
    return QCoreApplication::exec() == 0 ? Done : CouldNot;
}

} // namespace

constexpr Command Commands::mcp{
    .name = "mcp"_L1,
    .summary = "serve an assistant that builds devices"_L1,
    .operands = {},
    .options = mcpOptions,
    .details = mcpDetails,
    .examples = mcpExamples,
    .run = runMcp,
};
