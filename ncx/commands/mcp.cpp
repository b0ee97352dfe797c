// Serves assistants.

#include "mcp/wire/streamserver.h"
#include "ncx/assistant/assistantserver.h"
#include "ncx/assistant/roots.h"
#include "ncx/commands/commands.h"
#include "ncx/usage/invocation.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr Option options[] = {
    {.name = "root"_L1,
     .letter = 'r',
     .value = "DIR"_L1,
     .text = "the client works inside of this folder alone; without it, of the one in which this is started"_L1,
     .isRepeatable = true},
};

constexpr QLatin1StringView details[] = {
    "A server of the Model Context Protocol on standard input and output, for one client: an assistant makes, reads, "
    "edits, checks, saves and builds projects through tools. It ends with its input; what is not saved by then is lost."_L1,
    "Answers are short and say the next step; edits can be undone. The tools of 'ncx_cli --mcp' are among these."_L1,
};

constexpr Example examples[] = {
    {"ncx mcp --root=/projects/device"_L1, "what a client is registered with"_L1},
};

int run(const Invocation &call)
{
    for (const QString &folder : call.values("root"_L1)) {
        if (QFileInfo(folder).isDir())
            continue;
        call.terminal().fail(u"%1: there is no such folder"_s.arg(folder));
        return CouldNot;
    }
    const ServerForm form = assistantServer(Roots(call.values("root"_L1)));
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
    .options = options,
    .details = details,
    .examples = examples,
    .run = run,
};
