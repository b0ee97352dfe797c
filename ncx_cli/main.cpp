#include "ncx_cli/app/climainapp.h"
#include "ncx_cli/app/clioutputhandler.h"
#include "ncx_cli/mcp/mcpmainapp.h"
#include "nodedict/cohelper.h"
#include "store/file/workingcopies.h"
#include "texttools/helper.h"
#include "texttools/processstart.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

void setIdentity(QCoreApplication &application)
{
    QCoreApplication::setApplicationName(QStringLiteral(NCX_APPLICATION_NAME));
    QCoreApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION));
    QCoreApplication::setOrganizationName(u"norvane"_s);
    application.setProperty("AppNameWithVersion", QCoreApplication::applicationName());
}

int runServer(const QCoreApplication &application)
{
    MCPMainApp server(QCoreApplication::arguments(), u"01006"_s);
    QObject::connect(&server, &MCPMainApp::finished, &application, &QCoreApplication::quit);
    QTimer::singleShot(0ms, &server, &MCPMainApp::start);
    return QCoreApplication::exec();
}

int runBatch(const QCoreApplication &application)
{
    CLIOutputHandler output;
    CLIMainApp batch(QCoreApplication::arguments(), &output);
    output.printValueAndBlank(QCoreApplication::applicationName())
        .printValueAndBlank(QCoreApplication::applicationVersion())
        .message(u"Build: %1 %2"_s.arg(QLatin1StringView(__DATE__), QLatin1StringView(__TIME__)));
    QObject::connect(&batch, &CLIMainApp::finished, &application, &QCoreApplication::quit);
    QTimer::singleShot(10ms, &batch, &CLIMainApp::start);
    QCoreApplication::exec();
    return batch.exitCodeWithMessage();
}

} // namespace

int main(int argc, char **argv)
{
    ProcessStart::limitHeaps(1);
    ProcessStart::fillStandardStreams();
    ProcessStart::installDebugLog();
    // A reader of the output that goes away must not keep the pass from its end, which may be a save.
    std::signal(SIGPIPE, SIG_IGN);
    WorkingCopies::removeOnSignals();
    QCoreApplication application(argc, argv);
    setIdentity(application);
    WorkingCopies::removeAbandoned();
    [[maybe_unused]] const Helper helper(3);
    [[maybe_unused]] const COHelper coHelper;
    return QCoreApplication::arguments().contains("--mcp"_L1) ? runServer(application) : runBatch(application);
}
