#pragma once

#include "store/file/projectfile.h"
#include "store/tables/projecttables.h"
#include "store/text/textscope.h"

#include <QObject>

/// A project: the one gateway to its database.
///
/// Nobody works on the user's file. Opening copies it to a private working copy in the application's local data folder;
/// every change lands there at once, and only a save replaces the user's file, keeping the old one as `.bak`. The
/// working copies are deleted with the store.
///
/// The operations on the tables are those of its bases, a class for each family:
///   `ObjectTables`    objects and subindices of the object dictionary
///   `LineTables`      the CAN lines of the device
///   `SettingsTables`  settings of the project and of its descriptions
///   `J1939Tables`     PGNs and their SPNs
///   `RawCanTables`    CAN-IDs and their data elements
///   `UdsTables`       UDS services
/// joined by `ProjectTables`. What stands here is of the project as a whole: its file, its gate, what it tells.
///
/// Records go in and out by value. Adding and updating are one operation: an existing key is updated. Writing
/// operations return false, or do nothing, while the store is blocked (`setBlocked`). A failed statement is written to
/// the debug log and reported as false; nothing throws. An operation of several statements is done whole or not at all.
///
/// Texts with single quotes: names, descriptions and the others of the string pool take them. Other texts are those of
/// a statement (`Quotes::Literal`) unless the caller has them from a file or a project and wants them kept.
///
/// One store serves all threads through one connection; the gate lets one of them in at a time.
class ObjectDataBase : public QObject, public ProjectTables
{
    Q_OBJECT

public:
    // Records (store/records/storerecords.h)

    using Metadata = StoreRecords::Metadata;
    using INDEX_DATA_T = StoreRecords::IndexData;
    using SUBINDEX_DATA_T = StoreRecords::SubIndexData;
    using IndexEntry = StoreRecords::IndexEntry;
    using SubEntry = StoreRecords::SubEntry;
    using SubKey = StoreRecords::SubKey;
    using NODE_DATA_T = StoreRecords::NodeData;
    using PGN = StoreRecords::PGN;
    using SPN = StoreRecords::SPN;
    using CANID = StoreRecords::CANID;
    using DataElement = StoreRecords::DataElement;
    using ChangeSet = StoreRecords::ChangeSet;
    using UDSService = StoreRecords::UDSService;

    static constexpr quint8 transmit = StoreRecords::transmit;
    static constexpr quint8 receive = StoreRecords::receive;

    explicit ObjectDataBase(QObject *parent = nullptr);
    Q_DISABLE_COPY_MOVE(ObjectDataBase)

    // Life of the project (ProjectFile, TextProject)

    /// A new empty project with line 0 in a fresh working copy.
    [[nodiscard]] bool createNewDataBase() { return file_.create(); }
    /// Opens a project file of any age and form. A path that ends in "ncxt" is a text project, and opening that
    /// reports true whatever its conversion says. False for anything that is no project, or (`lastError`) that another
    /// tool's protocols are in; then no project is open. The second argument has no effect.
    [[nodiscard]] bool openDataBase(const QString &path, bool unused = false);
    /// For projects that are opened to be read and not to be saved: while on, opens do without the test of the hash and
    /// leave the working copy as large as it is.
    void setOnlyRead(bool on) { file_.setOnlyRead(on); }
    /// Opens a text project; the result is the conversion's.
    [[nodiscard]] bool openTextDatabase(const QString &path);
    /// Saves to the path, or where it is empty to the project path, in the form that the path's ending asks for. A
    /// text project reports true in any case; whether it could be written is told by `lastError`. False without an open
    /// project, and for a database file within a transaction, whose writes are not in the working copy yet.
    [[nodiscard]] bool saveDatabase(const QString &path);
    [[nodiscard]] bool saveDatabaseAsSql(const QString &path) { return file_.saveAsSql(path); }
    /// What the text form of the project would lose.
    QList<TextScope::Loss> textLosses() { return TextScope::lossesOf(*this); }
    [[nodiscard]] bool saveDatabaseAsText(const QString &path);
    /// Waits for statements under way (at most 5 s) and closes the connection.
    void closeDatabase() { file_.close(); }
    /// True from a successful create or open on, until one fails.
    bool isOpen() const { return context.statements.isOpen(); }
    /// True if there was no place for a working copy, or a statement has failed in a way that leaves it half changed,
    /// as on a full disk: what is read from it is not to be trusted, and a save refuses it.
    bool isDamaged() const { return context.statements.isDamaged(); }
    /// Why the last open or save failed; empty where there is nothing to tell the user.
    QString lastError() const { return file_.lastError(); }
    /// The user's file, as last opened or saved; empty after an open that failed.
    QString projectPath() const { return file_.path(); }
    /// True if the hash of the file did not match its contents when it was opened.
    bool isTampered() const { return file_.isTampered(); }

    /// SHA-256 over all tables but the rows that hold the hash itself, in lower-case hexadecimal.
    QString computeFileHash() { return file_.computeFileHash(); }
    /// Compares the stored hash, if there is one, and notes a mismatch in MiscSettings `TamperLog`.
    void verifyFileHash() { file_.verifyFileHash(); }

    /// The only way to the database, for a job that has no operation here.
    Statements &statements() { return context.statements; }

    /// Blocks all writing operations and closes the gate for other threads, or undoes both.
    void setBlocked(bool blocked);
    bool isBlocked() const { return context.blocked; }
    /// Closes the gate for other threads without blocking writes: for a job that writes.
    void closeGate() { statements().gate().close(); }
    void openGate() { statements().gate().open(); }
    /// What has been written of objects and messages, for those who keep what they have read.
    WriteLog &writes() { return context.writes; }
    /// While on, each successful writing statement raises `databaseWriteExecuted`.
    void setWriteTracking(bool on) { writeTracking_ = on; }

    /// A batch of writes: one transaction, of which stays what succeeded. An inner one joins the outer.
    class Transaction : public TransactionScope
    {
    public:
        explicit Transaction(ObjectDataBase &store)
            : TransactionScope(store.statements(), Kind::Batch)
        {
        }
    };

    /// Writes that belong together: unless it is committed, its end takes them back, also within a batch.
    class Step : public TransactionScope
    {
    public:
        explicit Step(ObjectDataBase &store)
            : TransactionScope(store.statements(), Kind::Step)
        {
        }
    };

    /// Writes one column of an object row, which is made where it is missing; the form in which text projects arrive.
    void setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                const QVariant &value, Quotes quotes = Quotes::Literal);
    void setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex, const QString &column,
                             const QVariant &value, Quotes quotes = Quotes::Literal);
    /// Doubles each single quote, for a text that is taken as `Quotes::Literal`.
    static void escapeQuotes(QString &text) { text.replace(u'\'', QLatin1StringView("''")); }

Q_SIGNALS:
    /// After a write: what changed.
    void updateNotify(ObjectDataBase::ChangeSet modification);
    /// An open refused a file that another tool saved.
    void wrongTool();
    void blockStateChanged(bool blockupdates);
    void databaseWriteExecuted();

private:
    void noteWrite(Statement::Effect effect);

    // A caller has no way to it but the operations.
    using ProjectContext::context;

    ProjectFile file_;
    bool writeTracking_ = false;
};

Q_DECLARE_METATYPE(ObjectDataBase::ChangeSet)
