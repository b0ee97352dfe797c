#pragma once

#include "generate/run/runtable.h"

class GeneratorMainHandler;
class OutputHandlerBase;

/// The walk over the rows of a run. It knows nothing of any generator; rows with a step of their own work through it.
class GenerationRun
{
public:
    /// `handler` hears the progress of all generators.
    GenerationRun(RunContext context, OutputHandlerBase &output, GeneratorMainHandler &handler);

    RunFlow walk(std::span<const RunRow> rows);

    const RunContext &context() const { return context_; }
    void message(const QString &text);
    /// The path of a file in the output folder.
    QString filePath(const QString &name) const;

    /// What a job says when it has started, or in place of starting; %1 is the output folder.
    struct JobTexts
    {
        const char *started = fileStarted;
        const char *notWritable = fileNotWritable;
        QString name{};        ///< %2; the file's name if empty
        QString startedName{}; ///< %2 of `started` where it is not `name`
    };
    /// Sets a generator up and runs its job to the end, its last message included. False if its file is not writable.
    bool runJob(FileGenerator &generator, quint8 line, const QString &suffix, const JobTexts &texts);

private:
    const QList<quint8> &linesOf(const RunRow &row) const;
    qsizetype jobsOf(std::span<const RunRow> rows) const;
    RunFlow walkTogether(std::span<const RunRow> rows);
    RunFlow runRow(const RunRow &row, quint8 line);
    RunFlow runGenerator(const RunRow &row, quint8 line);
    bool isFor(const RunRow &row, quint8 line) const;

    RunContext context_;
    OutputHandlerBase &output_;
    GeneratorMainHandler &handler_;
    const QList<quint8> wholeProject_{0};
    qsizetype jobs_ = 0;
    qsizetype done_ = 0;
};
