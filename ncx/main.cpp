#include "ncx/commands/commands.h"
#include "ncx/project/identity.h"
#include "ncx/usage/invocation.h"
#include "nodedict/cohelper.h"
#include "store/file/workingcopies.h"
#include "texttools/helper.h"
#include "texttools/processstart.h"

#include <QCoreApplication>

#include <csignal>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    ProcessStart::limitHeaps(1);
    ProcessStart::fillStandardStreams();
    ProcessStart::installDebugLog();
    // A reader of the answers that goes away must not keep working copies from being removed.
    std::signal(SIGPIPE, SIG_IGN);
    // A file beyond the size that the user may write is told like a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    WorkingCopies::removeOnSignals();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION));
    QCoreApplication::setOrganizationName(u"norvane"_s);
    Identity::takeWidest();
    WorkingCopies::removeAbandoned();
    [[maybe_unused]] const Helper helper(3);
    [[maybe_unused]] const COHelper coHelper;
    Terminal terminal;
    const int result = runProgram(Commands::program(), QCoreApplication::arguments().sliced(1), terminal);
    return terminal.finish() ? result : CouldNot;
}
