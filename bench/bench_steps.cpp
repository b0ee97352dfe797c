// Times the steps of a run one after another in one process: bench_steps PROJECT [DESCRIPTION]
//
// Opens the project, imports the device description, checks, generates file by file, and saves. Prints a line for each
// step: milliseconds, a tab, and what it was. A project that does not pass the check is an error.

#include "generate/base/outputhandlerbase.h"
#include "generate/run/generationrun.h"
#include "generate/run/generatormainhandler.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QStringList>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// Hears which files a row has completed.
class Listener : public OutputHandlerBase
{
public:
    void message(const QVariant &value) override
    {
        static const QRegularExpression form(u"^Generation of (.*?)(?: generator)? completed"_s);
        if (const auto match = form.match(value.toString()); match.hasMatch())
            completed_.append(match.captured(1));
    }
    QString collectedText() const override { return {}; }
    QStringList take() { return std::exchange(completed_, {}); }

private:
    QStringList completed_;
};

class StepTimer
{
public:
    StepTimer() { timer_.start(); }
    void print(const QString &step)
    {
        std::printf("%.2f\t%s\n", static_cast<double>(timer_.nsecsElapsed()) / 1e6, qPrintable(step));
        timer_.start();
    }

private:
    QElapsedTimer timer_;
};

int run(const QString &project, const QString &description)
{
    Listener listener;
    GeneratorMainHandler handler(&listener);
    StepTimer timer;
    if (!handler.openProject(project))
        return 1;
    timer.print(u"open"_s);
    if (!description.isEmpty()) {
        if (!handler.importFile(description))
            return 1;
        timer.print(u"import"_s);
    }
    QStringList messages;
    if (handler.checkModel(messages) > 0) {
        std::fprintf(stderr, "%s\n", qPrintable(messages.join(u'\n')));
        return 1;
    }
    timer.print(u"check"_s);

    RunContext context = RunContext::ofProject(handler.database());
    context.outputFolder = handler.outputFolder();
    context.baseName = handler.projectBaseName();
    for (const quint8 line : context.lines)
        handler.database()->cacheAllSubs(line, 0);
    timer.print(u"caches"_s);
    GenerationRun generation(context, listener, handler);
    for (const RunRow &row : runTable()) {
        generation.walk({&row, 1});
        const QStringList files = listener.take();
        timer.print(files.isEmpty() ? u"other"_s : files.join(u", "_s));
    }
    handler.database()->clearSubCache();
    handler.saveProject();
    timer.print(u"save"_s);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"CANopen NodeComposer"_s);
    const QStringList arguments = QCoreApplication::arguments();
    return run(arguments.value(1), arguments.value(2));
}
