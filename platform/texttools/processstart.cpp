#include "texttools/processstart.h"

#include <QFile>
#include <QMutex>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void ignore(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString & /*text*/) {}

QFile &logFile()
{
    static QFile file(qEnvironmentVariable("NCX_LOG"));
    return file;
}

void appendToLog(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    static QMutex mutex;
    const QMutexLocker locker(&mutex);
    logFile().write(qFormatLogMessage(type, context, text).toUtf8() + '\n');
    logFile().flush();
}

} // namespace

void ProcessStart::limitHeaps([[maybe_unused]] int most)
{
#ifdef M_ARENA_MAX
    mallopt(M_ARENA_MAX, most);
#endif
}

void ProcessStart::fillStandardStreams()
{
    int file = 0;
    while (file >= 0 && file <= STDERR_FILENO)
        file = open("/dev/null", O_RDWR);
    if (file > STDERR_FILENO)
        close(file);
}

void ProcessStart::installDebugLog()
{
    qInstallMessageHandler(ignore);
    if (logFile().open(QIODevice::WriteOnly | QIODevice::Truncate))
        qInstallMessageHandler(appendToLog);
}
