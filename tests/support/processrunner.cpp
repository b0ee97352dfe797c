#include "support/processrunner.h"

#include <QProcessEnvironment>

using namespace Qt::StringLiterals;
using namespace TestSupport;

ProcessRunner::ProcessRunner(const QString &program)
{
    process_.setProgram(program.contains(u'/') ? program : QStringLiteral(NCX_BIN_DIR "/") + program);
    process_.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    process_.setStandardInputFile(QProcess::nullDevice());
}

ProcessRunner &ProcessRunner::arguments(const QStringList &arguments)
{
    process_.setArguments(arguments);
    return *this;
}

ProcessRunner &ProcessRunner::workingFolder(const QString &folder)
{
    process_.setWorkingDirectory(folder);
    return *this;
}

ProcessRunner &ProcessRunner::environment(const QString &name, const QString &value)
{
    QProcessEnvironment environment = process_.processEnvironment();
    environment.insert(name, value);
    process_.setProcessEnvironment(environment);
    return *this;
}

void ProcessRunner::start()
{
    process_.start(QIODevice::ReadOnly);
}

ProcessResult ProcessRunner::finish()
{
    const bool ended = process_.waitForFinished(60000) && process_.exitStatus() == QProcess::NormalExit;
    return {ended ? process_.exitCode() : -1, QString::fromUtf8(process_.readAllStandardOutput()),
            QString::fromUtf8(process_.readAllStandardError())};
}

ProcessResult ProcessRunner::run()
{
    start();
    return finish();
}
