#pragma once

#include "check/frame/checkrules.h"
#include "check/frame/finding.h"
#include "check/frame/findingmemory.h"
#include "generate/run/runtable.h"

#include <QMap>
#include <QObject>
#include <QStringList>

#include <functional>

class AbstractGenerator;
class ModelChecker;
class ObjectDataBase;
class OutputHandlerBase;
class PostGenProcessor;

/// The driver behind all modes of the program: owns the project, and opens, imports, checks, generates and saves it.
///
/// All operations run on the main thread and return when they are done; while a generator works, the event loop turns.
/// Only `saveProject` writes the project file.
class GeneratorMainHandler : public QObject
{
    Q_OBJECT

public:
    enum GeneratorResult
    {
        GenerationDone = 0,
        CheckFailed = 2,             ///< the model check found errors, which were not to be ignored
        OutputFolderNotWritable = 3, ///< nothing was generated
        TemplateFailure = 4,         ///< a template of the stack is missing or broken; earlier files stay
        GenerationEnded = 5          ///< by who watches it; earlier files stay
    };
    Q_ENUM(GeneratorResult)

    /// `output` receives all texts and outlives the handler.
    explicit GeneratorMainHandler(OutputHandlerBase *output, QObject *parent = nullptr);
    ~GeneratorMainHandler() override;
    Q_DISABLE_COPY_MOVE(GeneratorMainHandler)

    const std::shared_ptr<ObjectDataBase> &database() const { return database_; }
    QString outputFolder() const { return outputFolder_; }
    /// Another folder for the files of a run than that of the project.
    void setOutputFolder(const QString &folder) { outputFolder_ = folder; }
    QString projectBaseName() const { return projectBaseName_; }
    QString projectPath() const { return projectPath_; }
    /// True for a text project in which nothing could be read.
    bool isUnreadText() const { return isUnreadText_; }

    /// Folder of the protocol stack, kept in the project.
    void setStackPath(const QString &path);
    /// Brings a file into line 0, or a second project into all lines. False if the file is missing, cannot be read or
    /// is of no known kind; what an importer finds wrong inside it does not count.
    bool importFile(const QString &path);
    /// False if the modifier file cannot be read or one of its lines was refused.
    bool applyDbModifier(const QString &path);
    /// The model check alone. Returns the number of errors; `messages` receives all texts in order. Checks one after
    /// the other look only at what was written between them.
    qint32 checkModel(QStringList &messages);
    /// What the model check of an open project has found, as values.
    struct ModelFindings
    {
        QList<CheckFinding> findings;
        qint32 errors = 0;
        QMap<WarningGroup, int> suppressed; ///< number of warnings held back
    };
    /// Looks at the project as a run does.
    ModelFindings findInModel();
    /// Looks at what was written since the last time, and takes nothing out of the project but what the check corrects.
    ModelFindings findAfterEdit();
    /// Has a PDO that maps nothing told as an error by checks and runs, and not taken off the bus.
    void setKeepsPdos(bool keeps) { keepsPdos_ = keeps; }
    /// The whole run; its outcome goes out through `finished`.
    void generate(bool ignoreCheckErrors);
    /// Saves to the file that was opened; a failure is told as a message. A text project in which nothing could be read
    /// is not overwritten.
    void saveProject();
    /// What follows the generators of a run.
    void runPostGenProcess();
    /// Which of its steps are done; all of them unless told.
    struct PostGenSteps
    {
        bool command = true;
        bool edsCheck = true;
        bool lineEndings = true;
    };
    void setPostGenSteps(const PostGenSteps &steps) { postGenSteps_ = steps; }

    /// Replaces the rules of the check.
    void setCheckRules(const CheckRules &rules)
    {
        checkRules_ = rules;
        checkMemory_.clear();
    }
    /// Asked before each job of a run, of which `done` of `total` are done; a false ends the run there.
    using Watch = std::function<bool(qsizetype done, qsizetype total)>;
    void setWatch(Watch watch) { watch_ = std::move(watch); }
    bool goesOn(qsizetype done, qsizetype total) const { return !watch_ || watch_(done, total); }
    /// Replaces the rows of the run.
    void setRunTable(std::span<const RunRow> rows) { runRows_ = rows; }

public Q_SLOTS:
    /// False if the file is missing or no project of this program, or there is no place for its working copy. The
    /// former project stays open then only in name: there is no way back to it.
    bool openProject(const QString &filePath);
    void handleCheckError(const QString &errorString);
    /// The end of a generator's job, at 100 percent.
    void generatorProgress(quint8 progress);

Q_SIGNALS:
    void finished(GeneratorMainHandler::GeneratorResult result);
    /// The check has corrected something in the project.
    void doneCorrection();
    /// What the check of a run has found, at its end.
    void checked(const GeneratorMainHandler::ModelFindings &model);

private:
    struct CheckVoice;
    qint32 checkProject(ModelChecker &checker, const QList<quint8> &lines, const CheckVoice &voice);
    ModelFindings findWith(ModelChecker &checker, const QList<quint8> &lines);
    bool passesCheck(const RunContext &context, bool ignoreCheckErrors);
    GeneratorResult runStages(bool ignoreCheckErrors);
    void removeAddressClaims(const RunContext &context);
    void writeErrorLog() const;
    void retireErrorLog() const;
    QString errorLogPath() const;

    std::shared_ptr<ObjectDataBase> database_;
    QString outputFolder_;
    QString projectBaseName_;
    QString projectPath_;
    bool isUnreadText_ = false;
    OutputHandlerBase *output_;
    std::shared_ptr<PostGenProcessor> postGenProcessor_;
    PostGenSteps postGenSteps_;
    CheckRules checkRules_ = CheckRules::builtIn();
    CheckMemory checkMemory_;
    bool keepsPdos_ = false;
    std::span<const RunRow> runRows_ = runTable();
    Watch watch_;
};
