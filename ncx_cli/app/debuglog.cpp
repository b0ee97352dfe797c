#include "ncx_cli/app/debuglog.h"

#include <QFile>
#include <QMutex>

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

void DebugLog::install()
{
    qInstallMessageHandler(ignore);
    if (logFile().open(QIODevice::WriteOnly | QIODevice::Truncate))
        qInstallMessageHandler(appendToLog);
}
