#include "generate/run/generationrun.h"

#include "generate/base/filegenerator.h"
#include "generate/base/outputhandlerbase.h"
#include "generate/run/generatormainhandler.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString filled(const char *format, const QString &folder, const QString &name)
{
    const QString text = QString::fromLatin1(format);
    return text.contains("%2"_L1) ? text.arg(folder, name) : text.arg(folder);
}

} // namespace

GenerationRun::GenerationRun(RunContext context, OutputHandlerBase &output, GeneratorMainHandler &handler)
    : context_(std::move(context))
    , output_(output)
    , handler_(handler)
{
}

void GenerationRun::message(const QString &text)
{
    output_.message(text);
}

QString GenerationRun::filePath(const QString &name) const
{
    return QDir(context_.outputFolder).filePath(name);
}

RunFlow GenerationRun::walk(std::span<const RunRow> rows)
{
    jobs_ = jobsOf(rows);
    RunFlow flow = RunFlow::Continue;
    for (auto row = rows.begin(); row != rows.end() && flow == RunFlow::Continue;) {
        const auto next =
            row->lineByLine ? std::find_if_not(row, rows.end(), std::mem_fn(&RunRow::lineByLine)) : row + 1;
        flow = walkTogether({row, next});
        row = next;
    }
    return flow;
}

const QList<quint8> &GenerationRun::linesOf(const RunRow &row) const
{
    return row.lines == RunLines::Project ? wholeProject_ : context_.lines;
}

qsizetype GenerationRun::jobsOf(std::span<const RunRow> rows) const
{
    qsizetype jobs = 0;
    for (const RunRow &row : rows)
        jobs += row.applies(context_)
                    ? std::ranges::count_if(linesOf(row), [&](quint8 line) { return isFor(row, line); })
                    : 0;
    return jobs;
}

RunFlow GenerationRun::walkTogether(std::span<const RunRow> rows)
{
    for (const quint8 line : linesOf(rows.front())) {
        for (const RunRow &row : rows) {
            if (!row.applies(context_) || !isFor(row, line))
                continue;
            if (!handler_.goesOn(done_++, jobs_))
                return RunFlow::EndAsWanted;
            if (const RunFlow flow = runRow(row, line); flow != RunFlow::Continue)
                return flow;
        }
    }
    return RunFlow::Continue;
}

bool GenerationRun::isFor(const RunRow &row, quint8 line) const
{
    switch (row.lines) {
    case RunLines::Project:
    case RunLines::Every:
        return true;
    case RunLines::CANopen:
        return context_.protocols(line).canOpen;
    case RunLines::J1939:
        return context_.protocols(line).j1939;
    case RunLines::RawCAN:
        return context_.protocols(line).rawCan;
    }
    return false;
}

RunFlow GenerationRun::runRow(const RunRow &row, quint8 line)
{
    const RunFlow flow = row.step ? row.step(*this, line) : runGenerator(row, line);
    QCoreApplication::processEvents();
    return flow;
}

RunFlow GenerationRun::runGenerator(const RunRow &row, quint8 line)
{
    const std::unique_ptr<FileGenerator> generator = row.make(context_, line);
    const bool combined = row.lines != RunLines::Project && context_.protocols(line).combined();
    const QString suffix = combined ? QString::fromLatin1(row.suffix) : QString();
    JobTexts texts{.started = row.started, .notWritable = row.notWritable};
    if (row.nameInTexts)
        texts.name = row.nameInTexts(context_, line);
    if (!runJob(*generator, line, suffix, texts))
        return RunFlow::Continue;
    return row.after ? row.after(*this, *generator) : RunFlow::Continue;
}

bool GenerationRun::runJob(FileGenerator &generator, quint8 line, const QString &suffix, const JobTexts &texts)
{
    generator.setMultiLine(context_.multiLine);
    generator.setDatabase(context_.store);
    generator.setOutputFolder(context_.outputFolder);
    generator.setBaseName(context_.baseName);
    generator.setLine(line);
    generator.setFileSuffix(suffix);
    const QString name = texts.name.isEmpty() ? generator.fileName() : texts.name;
    if (!generator.checkWritable()) {
        message(filled(texts.notWritable, context_.outputFolder, name));
        return false;
    }
    QObject::connect(&generator, &AbstractGenerator::progress, &handler_, &GeneratorMainHandler::generatorProgress);
    generator.startJob();
    message(filled(texts.started, context_.outputFolder, texts.startedName.isEmpty() ? name : texts.startedName));
    generator.waitForJob();
    // The generator is deleted after its row: its last progress must have arrived by then.
    QCoreApplication::processEvents();
    return true;
}
