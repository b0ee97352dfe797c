#pragma once

#include "support/printing.h"

#include <QProcess>
#include <QStringList>

namespace TestSupport {

/// How a process ended and what it wrote.
struct ProcessResult
{
    int exitCode = -1; ///< -1 if it crashed or ran out of time
    QString output;
    QString errors;

    QStringList lines() const { return output.split(u'\n'); }
};

/// A program under test, with the environment of the test and what is added to it. Its input is empty.
class ProcessRunner
{
public:
    /// A path, or the bare name of one of the programs of this build.
    explicit ProcessRunner(const QString &program);

    ProcessRunner &arguments(const QStringList &arguments);
    ProcessRunner &workingFolder(const QString &folder);
    ProcessRunner &environment(const QString &name, const QString &value);

    void start();
    /// Waits for a started process, a minute at most.
    ProcessResult finish();
    ProcessResult run();

private:
    QProcess process_;
};

} // namespace TestSupport
