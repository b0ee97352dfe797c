#pragma once

#include "import/importreport.h"
#include "nodedict/codes.h"

#include <QObject>
#include <QString>
#include <QThread>

#include <atomic>
#include <memory>

class ObjectDataBase;

/// Base of all importers: brings a foreign file into one line of a project, on a thread of its own, in one transaction
/// and with the gate of the store closed to others. An importer supplies `read`.
///
/// To be called in this order: `setIndexRange`, `setLine`, `setDatabase`, `setFile`, `startImport`, `waitForEnd`. An
/// import adds to the line and overwrites what is there; it never removes anything. What is wrong in a file yields
/// fewer objects, not an error.
class BaseDataImporter : public QObject
{
    Q_OBJECT

public:
    BaseDataImporter();
    /// Waits for an import under way.
    ~BaseDataImporter() override;
    Q_DISABLE_COPY_MOVE(BaseDataImporter)

    /// Why the last import failed; empty in all importers so far.
    virtual QString lastErrorText() const = 0;

public Q_SLOTS:
    /// The import itself, on the thread of the caller.
    virtual void doImport();

public:
    bool setLine(quint8 line);
    /// False for null.
    bool setDatabase(const std::shared_ptr<ObjectDataBase> &store);
    /// False, with no file set, unless the path is that of a readable file.
    bool setFile(const QString &path);
    /// Objects outside the range, both ends included, are skipped.
    bool setIndexRange(quint32 first, quint32 last);
    /// Starts `doImport` on the importer's thread; false if an import is under way.
    bool startImport();
    /// Waits, without a limit, for the end of what `startImport` began.
    void waitForEnd();
    /// What the last import took and dropped; to be asked once it has ended.
    const ImportReport &report() const { return report_; }

Q_SIGNALS:
    void progress(int percentage);
    void importError(quint8 line, quint16 index, const QString &errorString);

protected:
    /// Reads the file, which may be missing, and writes what is in it into the store, which is there and can be
    /// written. Tells the report what comes in and what does not.
    virtual void read() = 0;
    bool isInRange(quint32 index) const { return index >= firstIndex_ && index <= lastIndex_; }

    quint8 line_ = 0;
    std::shared_ptr<ObjectDataBase> store_;
    QString filePath_;
    quint32 firstIndex_ = CANopen::Index::firstCommunicationObject;
    quint32 lastIndex_ = CANopen::Index::lastProfileObject;
    ImportReport report_;

private:
    std::atomic<bool> running_ = false;
    std::shared_ptr<QThread> thread_;
};
