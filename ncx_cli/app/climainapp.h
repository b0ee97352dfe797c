#pragma once

#include "generate/run/generatormainhandler.h"

#include <QMap>

class CLIOutputHandler;

/// The batch mode: one pass of open, stack path, imports, modifier file, generation and save, told by the arguments.
class CLIMainApp : public QObject
{
    Q_OBJECT

public:
    /// `arguments` begin with the program's name; `output` outlives the application object.
    CLIMainApp(QStringList arguments, CLIOutputHandler *output, QObject *parent = nullptr);

    /// The exit code of the pass; one that is not 0 is told on the console first.
    qint32 exitCodeWithMessage();

public Q_SLOTS:
    /// The whole pass; runs once, inside the event loop.
    void start();
    void generatorFinished(GeneratorMainHandler::GeneratorResult result);

Q_SIGNALS:
    /// Asks for the end of the event loop. After a generation the pass still has its save to do.
    void finished();

private:
    void printHelp();
    void endWith(qint32 exitCode);
    /// The argument behind the first occurrence of an option; empty and null where there is none.
    QString valueOf(const QString &option) const;
    /// The arguments behind all occurrences of an option.
    QStringList valuesOf(const QString &option) const;

    QStringList arguments_;
    CLIOutputHandler *output_;
    GeneratorMainHandler handler_;
    QMap<QString, QString> options_;
    QMap<qint32, QString> errorTexts_;
    qint32 exitCode_ = 0;
};
