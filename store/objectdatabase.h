#pragma once

#include "nodedict/pdomapping.h"
#include "store/spncache.h"
#include "store/statements/literaltext.h"
#include "store/statements/statements.h"
#include "store/statements/transaction.h"
#include "store/storerecords.h"
#include "store/stringpool.h"
#include "store/subobjectcache.h"

#include <QHash>
#include <QMap>
#include <QMutex>
#include <QObject>
#include <QStringList>

#include <atomic>
#include <optional>

namespace RecordColumns {
class Row;
}

/// A project: the one gateway to its database.
///
/// Nobody works on the user's file. Opening copies it to a private working copy in the application's local data folder;
/// every change lands there at once, and only a save replaces the user's file, keeping the old one as `.bak`. The
/// working copies are deleted with the store.
///
/// Records go in and out by value. Adding and updating are one operation: an existing key is updated. Writing
/// operations return false, or do nothing, while the store is blocked (`setBlocked`). A failed statement is written to
/// the debug log and reported as false; nothing throws. An operation of several statements is done whole or not at all.
///
/// Texts with single quotes: names, descriptions and the others of the string pool take them. Other texts are those of
/// a statement (`Quotes::Literal`) unless the caller has them from a file or a project and wants them kept.
///
/// One store serves all threads through one connection; the gate lets one of them in at a time.
class ObjectDataBase : public QObject
{
    Q_OBJECT

public:
    // ---- Records (store/storerecords.h) ----------------------------------------------------------------------------

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
    using Change = StoreRecords::Change;

    static constexpr quint8 transmit = StoreRecords::transmit;
    static constexpr quint8 receive = StoreRecords::receive;
    static constexpr int schemaVersion = 107;

    explicit ObjectDataBase(QObject *parent = nullptr);
    ~ObjectDataBase() override;
    Q_DISABLE_COPY_MOVE(ObjectDataBase)

    // ---- Life of the project (objectdatabase.cpp, projectopen.cpp, projectsave.cpp) --------------------------------

    /// A new empty project with line 0 in a fresh working copy.
    bool createNewDataBase();
    /// Opens a project file of any age and form. A path that ends in "ncxt" is a text project, and opening that
    /// reports true whatever its conversion says. False for anything that is no project, or (`lastError`) that another
    /// tool's protocols are in; then no project is open. The second argument has no effect.
    bool openDataBase(const QString &path, bool unused = false);
    /// Opens a text project; the result is the conversion's.
    bool openTextDatabase(const QString &path);
    /// Saves to the path, or where it is empty to the project path, in the form that the path's ending asks for. A
    /// text project reports true in any case; whether it could be written is told by `lastError`. False without an open
    /// project.
    bool saveDatabase(const QString &path);
    bool saveDatabaseAsSql(const QString &path);
    bool saveDatabaseAsText(const QString &path);
    /// Waits for statements under way (at most 5 s) and closes the connection.
    void closeDatabase();
    /// True from a successful create or open on, until one fails.
    bool isOpen() const { return statements_.isOpen(); }
    /// True if there was no place for a working copy, or a statement has failed in a way that leaves it half changed,
    /// as on a full disk: what is read from it is not to be trusted, and a save refuses it.
    bool isDamaged() const { return statements_.isDamaged(); }
    /// Why the last open or save failed; empty where there is nothing to tell the user.
    QString lastError() const { return lastError_; }
    /// The user's file, as last opened or saved; empty after an open that failed.
    QString projectPath() const { return projectPath_; }
    /// True if the hash of the file did not match its contents when it was opened.
    bool isTampered() const { return tampered_; }

    /// SHA-256 over all tables but the rows that hold the hash itself, in lower-case hexadecimal.
    QString computeFileHash();
    /// Compares the stored hash, if there is one, and notes a mismatch in MiscSettings `TamperLog`.
    void verifyFileHash();

    /// The only way to the database, for those parts of the store that are not in here.
    Statements &statements() { return statements_; }

    /// Blocks all writing operations and closes the gate for other threads, or undoes both.
    void setBlocked(bool blocked);
    bool isBlocked() const { return blocked_; }
    /// Closes the gate for other threads without blocking writes: for a job that writes.
    void closeGate() { statements_.gate().close(); }
    void openGate() { statements_.gate().open(); }
    /// While on, each successful writing statement raises `databaseWriteExecuted`.
    void setWriteTracking(bool on) { writeTracking_ = on; }

    /// A batch of writes: one transaction, of which stays what succeeded. An inner one joins the outer.
    class Transaction : public TransactionScope
    {
    public:
        explicit Transaction(ObjectDataBase &store)
            : TransactionScope(store.statements_, Kind::Batch)
        {
        }
    };

    /// Writes that belong together: unless it is committed, its end takes them back, also within a batch.
    class Step : public TransactionScope
    {
    public:
        explicit Step(ObjectDataBase &store)
            : TransactionScope(store.statements_, Kind::Step)
        {
        }
    };

    // ---- Object dictionary (objecttables.cpp, objectqueries.cpp, objectcopy.cpp) -----------------------------------

    bool addIndex(quint8 line, quint16 index, const INDEX_DATA_T &data);
    /// The values of a VISIBLE_STRING are kept in any case.
    bool addSubIndex(quint8 line, quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data,
                     Quotes quotes = Quotes::Literal);
    /// All entries in their order in one transaction; goes on after a failure, the result is the last entry's.
    bool addSubIndices(const QList<SubEntry> &entries, Quotes quotes = Quotes::Literal);
    /// Removes an object with its subindices and, unless `keepConnections`, its rows in `Connections`.
    bool removeIndex(quint8 line, quint16 index, bool keepConnections = false);
    bool removeSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections = false);
    bool removeConsumerConnection(quint8 line, quint16 index, quint8 subindex);
    bool indexExists(quint8 line, quint16 index);
    bool subIndexExists(quint8 line, quint16 index, quint8 subindex);
    bool getIndex(quint8 line, quint16 index, INDEX_DATA_T &data);
    QString getIndexName(quint8 line, quint16 index);
    void setIndexName(quint8 line, quint16 index, const QString &name);
    /// Indices from `first` to `last`, ascending.
    QList<quint16> getIndexList(quint8 line, quint16 first, quint16 last);
    /// The objects from `first` to `last`, by index, from one scan.
    QMap<quint16, INDEX_DATA_T> getIndices(quint8 line, quint16 first, quint16 last);
    /// Names of the objects from `first` to `last`, by index.
    QMap<quint16, QString> getIndexNames(quint8 line, quint16 first, quint16 last);
    /// Answers from the line's cache where that holds the key.
    bool getSubIndex(quint8 line, quint16 index, quint8 subindex, SUBINDEX_DATA_T &data);
    QList<quint8> getSubIndexList(quint8 line, quint16 index, quint8 firstSub = 0);
    /// All objects of a line, ascending, and all its subindices, by index and subindex; one scan each.
    QList<IndexEntry> getAllIndices(quint8 line);
    QList<SubEntry> getAllSubIndices(quint8 line);
    /// Keeps what `getAllSubIndices` has read last until subindices are written otherwise than by `addSubIndex` outside
    /// a transaction: a run asks for them several times, and a server checks a whole line after each edit of one.
    void keepSubIndices(bool keep)
    {
        keepsSubs_ = keep;
        keptSubs_.reset();
    }
    /// Object codes (column `objecttype`) of the indices from `first` to `last`.
    QMap<quint16, quint32> getObjectTypes(quint8 line, quint16 first, quint16 last);
    /// The subindices of all objects of a line by index and subindex, those that have no object included.
    QList<SubKey> getSubKeys(quint8 line);
    quint16 getSubIndexDataType(quint8 line, quint16 index, quint8 subindex);
    QString getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex);
    bool setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value,
                                 Quotes quotes = Quotes::Literal);
    /// Subindices whose column holds the value, as a number first, then as text; only those whose object exists.
    QList<SubKey> findSubIndices(quint8 line, const QString &column, const QString &value);
    /// Copies an object over another of this project; the target's former subindices are gone.
    bool copyIndex(quint8 fromLine, quint16 fromIndex, quint8 toLine, quint16 toIndex);
    /// Copies an object out of another store; target subindices that the source lacks are removed.
    bool copyIndexFrom(ObjectDataBase *other, quint8 fromLine, quint16 fromIndex, quint8 toLine, quint16 toIndex,
                       bool objectOnly = false);
    bool setObjectMetadata(quint8 line, quint16 index, const Metadata &metadata);
    bool setSubObjectMetadata(quint8 line, quint16 index, quint8 subindex, const Metadata &metadata);
    /// Writes one column of an object row, which is made where it is missing; the form in which text projects arrive.
    void setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                const QVariant &value, Quotes quotes = Quotes::Literal);
    void setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex, const QString &column,
                             const QVariant &value, Quotes quotes = Quotes::Literal);

    /// Loads the subindices of a line (`index` 0) or of one object into the cache that `getSubIndex` asks first.
    void cacheAllSubs(quint8 line, quint16 index);
    void clearSubCache();

    /// Id of a text in the pool, adding it where it is new; -1 on failure.
    int getStringId(const QString &text) { return strings_.idOf(text); }
    QString getString(int id) { return strings_.textOf(id); }
    void cacheStrings() { strings_.reload(); }
    /// Deletes the texts that no row refers to.
    void removeUnusedStrings();
    /// Doubles each single quote, for a text that is taken as `Quotes::Literal`.
    static void escapeQuotes(QString &text);

    // ---- Lines (linetables.cpp) ------------------------------------------------------------------------------------

    /// Adds or updates a line and makes its tables. Of an existing line five fields stay: `isbootupmanager`,
    /// `isconfigmanager`, `excludepdolinking`, `multilinedata`, `lssslave`.
    bool addNode(quint8 line, const NODE_DATA_T &data, Quotes quotes = Quotes::Literal);
    /// Removes a line; the comma lists of later lines move down by one place.
    bool removeNode(quint8 line);
    bool getNode(quint8 line, NODE_DATA_T &data);
    QList<quint8> getNodeList();
    bool nodeExists(quint8 line);
    void setNodeSqlValue(const QString &nodeId, const QString &column, const QVariant &value,
                         Quotes quotes = Quotes::Literal);
    /// The line that the description settings address.
    void setCurrentLine(quint8 line) { currentLine_ = line; }
    quint8 currentLine() const { return currentLine_; }

    // ---- Settings (settingstables.cpp) -----------------------------------------------------------------------------
    // Values are text; a missing key reads as empty. A per-line value is a comma list, one part per line; a line
    // beyond the end takes the last part. Where a quote is not spoken of, a value is kept as it is; a key is a literal.

    QString getGeneralSetting(const QString &key);
    QString getGeneralSetting(const QString &key, quint8 line);
    bool setGeneralSetting(const QString &key, const QString &value, Quotes quotes = Quotes::Literal);
    /// The parts of the other lines are kept as they are.
    bool setGeneralSetting(const QString &key, const QString &value, quint8 line, Quotes quotes = Quotes::Literal);
    /// The keys whose comma lists follow the lines when these are added, removed or cut.
    static QStringList getGeneralSettingKeys();
    bool generalSettingExists(const QString &key);
    /// All of a table, from one scan.
    QHash<QString, QString> getGeneralSettings();
    QHash<QString, QString> getJ1939Settings();
    QString getJ1939Setting(const QString &key);
    QString getJ1939Setting(const QString &key, quint8 line);
    bool setJ1939Setting(const QString &key, const QString &value);
    QString getDescriptionSetting(const QString &key);
    bool setDescriptionSetting(const QString &key, const QString &value);
    bool descriptionSettingExists(const QString &key);
    QString getEnergyBusSetting(const QString &key);
    bool setEnergyBusSetting(const QString &key, const QString &value, Quotes quotes = Quotes::Literal);
    bool removeEnergyBusSetting(const QString &key);
    QStringList getEnergyBusSettingKeys();
    QString getMiscSetting(const QString &key);
    bool setMiscSetting(const QString &key, const QString &value);
    bool miscSettingExists(const QString &key);

    // ---- J1939 (j1939tables.cpp) -----------------------------------------------------------------------------------
    // A direction is `transmit` or `receive`; 0 in a list operation means both.

    bool addPGN(quint8 line, quint32 number, const PGN &data);
    bool addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data,
                Quotes quotes = Quotes::Literal);
    bool removePGN(quint8 line, quint32 number, quint8 direction);
    bool removeSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    bool pgnExists(quint8 line, quint32 number, quint8 direction);
    bool spnExists(quint8 line, quint32 pgn, quint8 direction, quint32 spn);
    bool getPGN(quint8 line, quint32 number, quint8 direction, PGN &data);
    QString getPGNName(quint8 line, quint32 number, quint8 direction);
    quint16 getPGNMappingCount(quint8 line, quint32 number, quint8 direction);
    QList<quint32> getPGNList(quint8 line, quint8 direction, bool leaveOutSafe = false);
    /// All PGNs of a line, receive before transmit and ascending in each, and all its SPNs in the order of their
    /// places; one scan each.
    QList<PGN> getAllPGNs(quint8 line);
    QList<SPN> getAllSPNs(quint8 line);
    /// The names of all PGNs of one direction, by number, from one scan.
    QHash<quint32, QString> getPGNNames(quint8 line, quint8 direction);
    bool getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, SPN &data);
    QList<quint32> getSPNList(quint8 line, quint32 pgn, quint8 direction);
    QString getSPNName(quint8 line, quint32 pgn, quint8 direction, quint32 spn);
    quint32 getSPNDataType(quint8 line, quint32 pgn, quint8 direction, quint32 spn);
    bool cacheSPNs(quint8 line);
    /// Counts the SPNs of all PGNs anew, which every open does; without a notification.
    void repairMappingCounts();
    void clearSPNCache() { spnCache_.clear(); }
    /// True if some PGN of the line is a safety PGN (`issafe`).
    bool anySafePGN(quint8 line);

    // ---- Raw CAN (rawcantables.cpp) --------------------------------------------------------------------------------

    bool addCANID(quint8 line, quint32 id, const CANID &data);
    /// An update leaves `pos` and `bitsize` of the element as they were first inserted.
    bool addDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number, const DataElement &data,
                        Quotes quotes = Quotes::Literal);
    bool removeCANID(quint8 line, quint32 id, quint8 direction);
    bool removeDataElement(quint8 line, quint32 canid, quint32 number, quint8 direction);
    bool canidExists(quint8 line, quint32 id, quint8 direction);
    bool dataElementExists(quint8 line, quint32 canid, quint8 direction, quint32 number);
    bool getCANID(quint8 line, quint32 id, quint8 direction, CANID &data);
    QString getCANIDName(quint8 line, quint32 id, quint8 direction);
    QList<quint32> getCANIDList(quint8 line, quint8 direction);
    /// All CAN-IDs of a line, receive before transmit and ascending in each, and all its data elements by number, with
    /// the CAN-ID in `pgnnumber`; one scan each.
    QList<CANID> getAllCANIDs(quint8 line);
    QList<DataElement> getAllDataElements(quint8 line);
    /// The names of all CAN-IDs of one direction, by id, from one scan.
    QHash<quint32, QString> getCANIDNames(quint8 line, quint8 direction);
    bool getDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number, DataElement &data);
    QString getDataElementName(quint8 line, quint32 canid, quint8 direction, quint32 number);
    QList<quint32> getDataElementList(quint8 line, quint32 canid, quint8 direction);

    // ---- UDS services (udstables.cpp) ------------------------------------------------------------------------------
    // Services are those of ISO 14229-1; the lists are comma lists of numbers. Setting a column of a service without a
    // row makes the row, inactive and with its other columns empty.

    bool createUDSSettingsTable(quint8 line);
    void setUDSServiceActive(quint8 line, quint8 sid, bool active);
    void setUDSServiceSessions(quint8 line, quint8 sid, const QString &sessions);
    void setUDSServiceUserLevels(quint8 line, quint8 sid, const QString &levels);
    void setUDSServiceAuthentication(quint8 line, quint8 sid, const QString &text);
    bool getUDSServiceActive(quint8 line, quint8 sid);
    QString getUDSServiceSessions(quint8 line, quint8 sid);
    QString getUDSServiceUserLevels(quint8 line, quint8 sid);
    QString getUDSServiceAuthentication(quint8 line, quint8 sid);
    QList<UDSService> getUDSServices(quint8 line);

Q_SIGNALS:
    /// After a write: what changed.
    void updateNotify(ObjectDataBase::ChangeSet modification);
    /// An open refused a file that another tool saved.
    void wrongTool();
    void blockStateChanged(bool blockupdates);
    void databaseWriteExecuted();

private:
    // Life
    QString makeWorkingCopy(const QString &source);
    bool connectTo(const QString &workingCopy);
    void applyPragmas(int cachePages);
    void forgetCaches();
    void writeIdentity();
    bool copyWorkingCopyTo(const QString &path);
    bool fillNewDataBase();
    bool createGlobalTables();

    // Steps of an open
    bool openWorkingCopy(const QString &path);
    bool hasLines();
    void addMissingTablesAndColumns();
    void migrateLine(quint8 line);
    bool addUniqueColumnsToSubDatabase(quint8 line);
    void migrationExec(const QString &statement);
    bool savedByMatchingTool();
    void completeLine(quint8 line);
    QString inferLineType(quint8 line);
    void activateDefaultServices(quint8 line);
    void makeEdsPathsAbsolute();
    void repairAfterOpen(int fileVersion);
    int fileSchemaVersion();

    // Repairs
    void repairSPNDirections(quint8 line);
    void repairBitPositions(quint8 line);
    void repairDataElementPositions(quint8 line, quint8 direction);
    void repairSPNPositions(quint8 line, quint8 direction);
    void trimLineLists();
    void addDescriptionDefaults(quint8 line);

    // Statements
    bool run(const char *operation, const QString &text, const QVariantList &values = {});
    bool runSchema(const char *operation, const QString &text);
    bool runSubs(const char *operation, const QString &text, const QVariantList &values = {});
    bool writeRow(const char *operation, const RecordColumns::Row &row, const QString &insert, const QString &update,
                  QVariantList values);
    static std::optional<QVariantList> textsOf(const char *operation, std::optional<QVariantList> values);
    QString selectText(const RecordColumns::Row &row);
    QList<quint32> selectNumbers(const QString &text, const QVariantList &values = {});
    QHash<quint32, QString> selectNames(const QString &text, const QVariantList &values);
    void noteWrite(Statement::Effect effect);
    bool refusesSave();
    void notify(Change type, ChangeSet change = {});

    QString descriptionKey(const QString &key) const;
    QString settingOf(QLatin1StringView table, const QString &key);
    QHash<QString, QString> settingsOf(QLatin1StringView table);
    bool settingExists(QLatin1StringView table, const QString &key);
    enum class SettingWrite
    {
        Failed,
        Unchanged,
        Written
    };
    SettingWrite writeSetting(QLatin1StringView table, const QString &key, const QString &value, Quotes quotes);
    bool setAndNotify(QLatin1StringView table, const QString &key, const QString &value, Quotes quotes, Change change,
                      ChangeSet fields = {});
    bool writeNodeRow(quint8 line, const NODE_DATA_T &data, Quotes quotes);
    bool dropListPart(QLatin1StringView table, quint8 line);
    void followWrite(const SubEntry &entry, std::optional<QList<SubEntry>> kept);
    bool storeSubIndex(const SubEntry &entry, Quotes quotes);
    bool writeSubRow(const SubEntry &entry, Quotes quotes);
    void ensurePGNColumns(quint8 line);
    bool copySubs(ObjectDataBase &from, const SubKey &source, const QList<quint8> &subs, const SubKey &target);
    bool setMetadata(const QString &text, QVariantList key, const Metadata &metadata);
    enum class UDSColumn
    {
        Active,
        Sessions,
        UserLevels,
        Authentication
    };
    bool setUDSColumn(quint8 line, quint8 sid, UDSColumn column, const QString &value);
    QVariant udsValue(quint8 line, quint8 sid, UDSColumn column);

    Statements statements_;
    QStringList workingCopies_;
    QString projectPath_;
    QString lastError_;
    std::atomic<bool> blocked_ = false;
    bool tampered_ = false;
    bool writeTracking_ = false;
    quint8 currentLine_ = 0;
    StringPool strings_{statements_};
    QMutex cacheMutex_;
    SubObjectCache subCache_;
    bool keepsSubs_ = false;
    quint8 keptLine_ = 0;
    std::optional<QList<SubEntry>> keptSubs_; ///< all of `keptLine_`, as its table is
    SpnCache spnCache_;
};

Q_DECLARE_METATYPE(ObjectDataBase::ChangeSet)
