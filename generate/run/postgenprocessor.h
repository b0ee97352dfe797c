#pragma once

#include "generate/run/processstream.h"

#include <QList>
#include <QObject>
#include <QProcess>

#include <memory>

class EdsCheckerWrapper;
class ObjectDataBase;
class OutputHandlerBase;
class PostGenProgressHandler;

/// What follows the generators of a run: the user's command, the check of the generated EDS files by an outside
/// program, the line endings of the generated sources, and the last message.
///
/// The command is the project's (MiscSettings `postGenEnabled`, `postgencmd`, `postgencmdargs`, `postGenWait`) or,
/// where the project has none, the user's own (group "General": `postGenEnabled`, `postgenerationcommand`,
/// `postgenerationcommandarguments`, `waitPostGen`). Arguments stand between blanks; in them %P is the project file as
/// .ncxp, %D the output folder and %N the name of that file.
///
/// A command without the wait flag is on its own: a run does not wait for it, and it goes on when the processor is
/// deleted, or the whole program ends. Its output is passed on as long as the processor lives and the event loop turns.
class PostGenProcessor : public QObject
{
    Q_OBJECT

public:
    /// `output` outlives the processor.
    explicit PostGenProcessor(OutputHandlerBase &output, QObject *parent = nullptr);
    ~PostGenProcessor() override;
    Q_DISABLE_COPY_MOVE(PostGenProcessor)

    void setDatabase(const std::shared_ptr<ObjectDataBase> &store) { database_ = store; }
    /// Set anew before each run.
    void setProject(const QString &outputFolder, const QString &baseName);
    void setSkipEdsCheck(bool skip) { skipEdsCheck_ = skip; }
    void setSkipCommand(bool skip) { skipCommand_ = skip; }
    void setSkipLineEndings(bool skip) { skipLineEndings_ = skip; }
    /// Says nothing but what went wrong.
    void setQuiet(bool quiet) { quiet_ = quiet; }
    /// An optional display, which outlives the processor.
    void setProgressHandler(PostGenProgressHandler *handler) { progressHandler_ = handler; }

    /// Walks all steps and returns after the last; the event loop turns meanwhile.
    void run();

Q_SIGNALS:
    void proceedGeneration();
    void edsCheckFinished();

public Q_SLOTS:
    void proceedGenerationSlot();
    void startEdsCheck();
    void postGenProcessFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void postGenProcessReadyReadStandardError();
    void postGenProcessReadyReadStandardOutput();
    /// Ends the command, and the EDS checker, by force; the steps that are left follow.
    void cancelPostGenProcess();

private:
    enum class Step
    {
        Idle,
        AfterCommand,
        AfterEdsCheck,
        End
    };
    struct Command
    {
        QString program;
        QStringList arguments;
        bool wait = false;
    };

    Command configuredCommand() const;
    QStringList filledArguments(const QString &arguments) const;
    void startCommand();
    bool startProcess(const Command &command);
    void releaseProcess();
    void forward(ProcessStream &stream, const QByteArray &bytes);
    void checkNextEdsFile();
    void edsCheckerFinished();
    void convertLineEndings() const;
    void sendEndMessage();
    void say(const QString &text);

    std::shared_ptr<ObjectDataBase> database_;
    QString outputFolder_;
    QString projectBaseName_;
    std::unique_ptr<QProcess> process_;
    bool waitForProcess_ = false;
    qint32 processExitCode_ = 0;
    ProcessStream errorStream_{QStringLiteral("Post generation process error output:\n")};
    ProcessStream outputStream_{QStringLiteral("Post generation process standard output:\n")};
    bool skipEdsCheck_ = false;
    bool skipCommand_ = false;
    bool skipLineEndings_ = false;
    bool quiet_ = false;
    OutputHandlerBase &output_;
    PostGenProgressHandler *progressHandler_ = nullptr;
    Step step_ = Step::Idle;
    std::unique_ptr<EdsCheckerWrapper> edsChecker_;
    QList<quint8> edsLines_; ///< whose files are still to be checked
    bool isMultiLine_ = false;
};
