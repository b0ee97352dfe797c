#pragma once

#include <QObject>
#include <QStringList>
#include <QThread>

#include <atomic>
#include <memory>

class ObjectDataBase;

/// Base of all file generators: what each of them needs, and the life of a generation job on a worker thread.
///
/// A generator serves one job: set it up, `startJob`, `waitForJob`, read `errorCode` and `errorText`. Everything but
/// `doJob` is called on the thread that owns the generator, which must not delete it before the wait.
class AbstractGenerator : public QObject
{
    Q_OBJECT

public:
    /// What the setters and the job's operations report.
    enum Status : quint8
    {
        Success = 0,
        FolderMissing = 1,
        FolderNotReadable = 2,
        NoStore = 3, ///< no store, or one without any line
        UnknownLine = 4,
        JobRunning = 5,
        NoJob = 6
    };

    /// Meanings of `errorCode`; 0 is no error.
    enum Error : quint8
    {
        TemplateError = 1,
        OutputError = 2,
        StoreError = 3 ///< the generator has no store to read
    };

    explicit AbstractGenerator(QObject *parent = nullptr);
    ~AbstractGenerator() override;
    Q_DISABLE_COPY_MOVE(AbstractGenerator)

    /// True if the target file does not exist or may be written.
    virtual bool checkWritable() = 0;
    /// Names the object, moves it to a thread of its own and has `doJob` invoked there.
    virtual Status startJob() = 0;
    /// Asks a running job to end early.
    virtual Status cancelJob() = 0;
    /// A word about the result for the message of completion; empty here.
    virtual QString infoText() const;

    // All setters refuse while a job is running.

    /// Line of the job, 0 for a file of the whole project. An unknown line is reported and taken all the same.
    Status setLine(quint8 line);
    /// A store that is refused is not taken; a job without one fails.
    Status setDatabase(const std::shared_ptr<ObjectDataBase> &store);
    /// A folder that is missing or cannot be read is reported and taken all the same.
    Status setOutputFolder(const QString &folder);
    Status setBaseName(const QString &baseName);
    /// What a document's file name has before its extension: "_co", "_j1939" or "_rawcan".
    Status setFileSuffix(const QString &suffix);
    /// The project has several lines, so that names carry the line number.
    Status setMultiLine(bool multiLine);

    /// Returns when the job's thread has ended, and lets the framework process events meanwhile; at once without a job.
    /// The `progress(100)` of the job then waits in the event queue of its receivers.
    void waitForJob();

    /// What the user should know of a file that was written all the same; read after the job.
    const QStringList &warnings() const { return warnings_; }
    quint8 errorCode() const { return errorCode_; }
    QString errorText() const { return errorText_; }

    /// The stack's byte-wise initialiser of a value of a 24, 40, 48 or 64 bit type, most significant byte first; empty
    /// for a data type that needs none. 24 bit integers with sign take the signed value, all others the unsigned one.
    static QString formatLargeValue(quint32 dataType, quint64 unsignedValue, qint64 signedValue);

Q_SIGNALS:
    /// Percentage of the job; 100 is sent once, last of all, in success and in failure.
    void progress(quint8 percent);

public Q_SLOTS:
    /// The work, on the worker thread.
    virtual void doJob() = 0;

protected:
    /// The common half of every `startJob`: refuses a second job (even after the first has ended), names the object and
    /// gets `doJob` going.
    Status launch(const QString &objectName);
    /// The common half of every `cancelJob`.
    Status requestCancel();
    /// True once for each request to cancel.
    bool takeCancelRequest() { return cancelRequested_.exchange(false); }
    void setRunning(bool running) { running_ = running; }
    void quitThread();
    void readMultiLineSetting();
    void fail(quint8 code, const QString &text);
    void warn(const QStringList &texts) { warnings_ += texts; }

    quint8 line() const { return line_; }
    bool isMultiLine() const { return multiLine_; }
    /// See `RunContext::generatesMultiLine`.
    bool generatesMultiLine() const { return generateMultiLine_; }
    const QString &baseName() const { return baseName_; }
    const QString &outputFolder() const { return outputFolder_; }
    const QString &fileSuffix() const { return fileSuffix_; }
    const QString &toolVersion() const { return toolVersion_; }
    const std::shared_ptr<ObjectDataBase> &database() const { return database_; }

private:
    template <typename Member, typename Value>
    Status set(Member &member, const Value &value);

    quint8 line_ = 0;
    std::atomic<bool> cancelRequested_ = false;
    std::atomic<bool> running_ = false;
    bool multiLine_ = false;
    QString baseName_;
    QString outputFolder_;
    std::shared_ptr<ObjectDataBase> database_;
    std::unique_ptr<QThread> thread_;
    QString toolVersion_;
    bool generateMultiLine_ = false;
    quint8 errorCode_ = 0;
    QString errorText_;
    QStringList warnings_;
    QString fileSuffix_;
};
