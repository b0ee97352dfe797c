#pragma once

#include "store/file/projectfile.h"
#include "store/file/repairs.h"
#include "store/statements/literaltext.h"
#include "store/statements/statements.h"
#include "store/statements/transaction.h"
#include "store/tables/projecttables.h"
#include "store/tables/storerecords.h"
#include "store/text/textproject.h"
#include "store/text/textscope.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QStringList>

#include <optional>
#include <tuple>

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
    // Records (store/tables/storerecords.h)

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
    /// Opens a text project; the result is the conversion's.
    [[nodiscard]] bool openTextDatabase(const QString &path) { return TextProject::open(file_, tables_, path); }
    /// Saves to the path, or where it is empty to the project path, in the form that the path's ending asks for. A
    /// text project reports true in any case; whether it could be written is told by `lastError`. False without an open
    /// project, and for a database file within a transaction, whose writes are not in the working copy yet.
    [[nodiscard]] bool saveDatabase(const QString &path);
    [[nodiscard]] bool saveDatabaseAsSql(const QString &path) { return file_.saveAsSql(path); }
    /// What the text form of the project would lose.
    QList<TextScope::Loss> textLosses() { return TextScope::lossesOf(tables_); }
    [[nodiscard]] bool saveDatabaseAsText(const QString &path) { return TextProject::save(file_, tables_, path); }
    /// Waits for statements under way (at most 5 s) and closes the connection.
    void closeDatabase() { file_.close(); }
    /// True from a successful create or open on, until one fails.
    bool isOpen() const { return tables_.context.statements.isOpen(); }
    /// True if there was no place for a working copy, or a statement has failed in a way that leaves it half changed,
    /// as on a full disk: what is read from it is not to be trusted, and a save refuses it.
    bool isDamaged() const { return tables_.context.statements.isDamaged(); }
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
    Statements &statements() { return tables_.context.statements; }

    /// Blocks all writing operations and closes the gate for other threads, or undoes both.
    void setBlocked(bool blocked);
    bool isBlocked() const { return tables_.context.blocked; }
    /// Closes the gate for other threads without blocking writes: for a job that writes.
    void closeGate() { statements().gate().close(); }
    void openGate() { statements().gate().open(); }
    /// What has been written of objects and messages, for those who keep what they have read.
    WriteLog &writes() { return tables_.context.writes; }
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

    // Object dictionary (ObjectTables)

    [[nodiscard]] bool addIndex(quint8 line, quint16 index, const INDEX_DATA_T &data)
    {
        return tables_.objects.addIndex(line, index, data);
    }
    /// The values of a VISIBLE_STRING are kept in any case.
    [[nodiscard]] bool addSubIndex(quint8 line, quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data,
                                   Quotes quotes = Quotes::Literal)
    {
        return tables_.objects.addSubIndex(line, index, subindex, data, quotes);
    }
    /// All entries in their order in one transaction; goes on after a failure, the result is the last entry's.
    [[nodiscard]] bool addSubIndices(const QList<SubEntry> &entries, Quotes quotes = Quotes::Literal)
    {
        return tables_.objects.addSubIndices(entries, quotes);
    }
    /// Removes an object with its subindices and, unless `keepConnections`, its rows in `Connections`.
    [[nodiscard]] bool removeIndex(quint8 line, quint16 index, bool keepConnections = false)
    {
        return tables_.objects.removeIndex(line, index, keepConnections);
    }
    [[nodiscard]] bool removeSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections = false)
    {
        return tables_.objects.removeSubIndex(line, index, subindex, keepConnections);
    }
    [[nodiscard]] bool removeConsumerConnection(quint8 line, quint16 index, quint8 subindex)
    {
        return tables_.objects.removeConsumerConnection(line, index, subindex);
    }
    bool indexExists(quint8 line, quint16 index) { return tables_.objects.indexExists(line, index); }
    bool subIndexExists(quint8 line, quint16 index, quint8 subindex)
    {
        return tables_.objects.subIndexExists(line, index, subindex);
    }
    [[nodiscard]] std::optional<INDEX_DATA_T> getIndex(quint8 line, quint16 index)
    {
        return tables_.objects.getIndex(line, index);
    }
    QString getIndexName(quint8 line, quint16 index) { return tables_.objects.getIndexName(line, index); }
    /// Names an object that exists.
    void setIndexName(quint8 line, quint16 index, const QString &name)
    {
        std::ignore = tables_.objects.setIndexName(line, index, name);
    }
    /// Indices from `first` to `last`, ascending.
    QList<quint16> getIndexList(quint8 line, quint16 first, quint16 last)
    {
        return tables_.objects.getIndexList(line, first, last);
    }
    /// Names of the objects from `first` to `last`, by index.
    QMap<quint16, QString> getIndexNames(quint8 line, quint16 first, quint16 last)
    {
        return tables_.objects.getIndexNames(line, first, last);
    }
    /// Answers from the line's cache where that holds the key.
    [[nodiscard]] std::optional<SUBINDEX_DATA_T> getSubIndex(quint8 line, quint16 index, quint8 subindex)
    {
        return tables_.objects.getSubIndex(line, index, subindex);
    }
    QList<quint8> getSubIndexList(quint8 line, quint16 index, quint8 firstSub = 0)
    {
        return tables_.objects.getSubIndexList(line, index, firstSub);
    }
    /// All objects of a line, ascending, and all its subindices, by index and subindex; one scan each.
    QList<IndexEntry> getAllIndices(quint8 line) { return tables_.objects.getAllIndices(line); }
    QList<SubEntry> getAllSubIndices(quint8 line) { return tables_.objects.getAllSubIndices(line); }
    /// Those of one object, ascending.
    QList<SubEntry> getSubIndices(quint8 line, quint16 index) { return tables_.objects.getSubIndices(line, index); }
    /// Keeps what `getAllSubIndices` has read last until subindices are written otherwise than by `addSubIndex` outside
    /// a transaction: a run asks for them several times, and a server checks a whole line after each edit of one.
    void keepSubIndices(bool keep) { tables_.objects.keepSubIndices(keep); }
    quint16 getSubIndexDataType(quint8 line, quint16 index, quint8 subindex)
    {
        return tables_.objects.getSubIndexDataType(line, index, subindex);
    }
    QString getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex)
    {
        return tables_.objects.getSubIndexDefaultValue(line, index, subindex);
    }
    [[nodiscard]] bool setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value,
                                               Quotes quotes = Quotes::Literal)
    {
        return tables_.objects.setSubIndexDefaultValue(line, index, subindex, value, quotes);
    }
    /// Subindices whose column holds the value, as a number first, then as text; only those whose object exists.
    QList<SubKey> findSubIndices(quint8 line, const QString &column, const QString &value)
    {
        return tables_.objects.findSubIndices(line, column, value);
    }
    /// Copies an object over another of this project; the target's former subindices are gone.
    [[nodiscard]] bool copyIndex(quint8 fromLine, quint16 fromIndex, quint8 toLine, quint16 toIndex)
    {
        return tables_.objects.copyIndex(fromLine, fromIndex, toLine, toIndex);
    }
    /// Copies an object out of another store; target subindices that the source lacks are removed.
    [[nodiscard]] bool copyIndexFrom(ObjectDataBase *other, quint8 fromLine, quint16 fromIndex, quint8 toLine,
                                     quint16 toIndex, bool objectOnly = false)
    {
        return other &&
               tables_.objects.copyIndexFrom(other->tables_.objects, fromLine, fromIndex, toLine, toIndex, objectOnly);
    }
    [[nodiscard]] bool setObjectMetadata(quint8 line, quint16 index, const Metadata &metadata)
    {
        return tables_.objects.setObjectMetadata(line, index, metadata);
    }
    [[nodiscard]] bool setSubObjectMetadata(quint8 line, quint16 index, quint8 subindex, const Metadata &metadata)
    {
        return tables_.objects.setSubObjectMetadata(line, index, subindex, metadata);
    }
    /// Writes one column of an object row, which is made where it is missing; the form in which text projects arrive.
    void setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                const QVariant &value, Quotes quotes = Quotes::Literal);
    void setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex, const QString &column,
                             const QVariant &value, Quotes quotes = Quotes::Literal);

    /// Loads the subindices of a line (`index` 0) or of one object into the cache that `getSubIndex` asks first.
    void cacheAllSubs(quint8 line, quint16 index) { tables_.objects.cacheAllSubs(line, index); }
    void clearSubCache() { tables_.objects.clearSubCache(); }

    /// Id of a text in the pool, adding it where it is new; -1 on failure.
    int getStringId(const QString &text) { return tables_.context.strings.idOf(text); }
    QString getString(int id) { return tables_.context.strings.textOf(id); }
    void cacheStrings() { tables_.context.strings.reload(); }
    /// Deletes the texts that no row refers to.
    void removeUnusedStrings() { std::ignore = tables_.removeUnusedStrings(); }
    /// Doubles each single quote, for a text that is taken as `Quotes::Literal`.
    static void escapeQuotes(QString &text) { text.replace(u'\'', QLatin1StringView("''")); }

    // Lines (LineTables)

    /// Adds or updates a line and makes its tables. Of an existing line five fields stay: `isbootupmanager`,
    /// `isconfigmanager`, `excludepdolinking`, `multilinedata`, `lssslave`.
    [[nodiscard]] bool addNode(quint8 line, const NODE_DATA_T &data, Quotes quotes = Quotes::Literal)
    {
        return tables_.lines.addNode(line, data, quotes);
    }
    /// Removes a line; the comma lists of later lines move down by one place.
    [[nodiscard]] bool removeNode(quint8 line) { return tables_.lines.removeNode(line); }
    [[nodiscard]] std::optional<NODE_DATA_T> getNode(quint8 line) { return tables_.lines.getNode(line); }
    QList<quint8> getNodeList() { return tables_.lines.getNodeList(); }
    bool nodeExists(quint8 line) { return tables_.lines.nodeExists(line); }
    void setNodeSqlValue(const QString &nodeId, const QString &column, const QVariant &value,
                         Quotes quotes = Quotes::Literal);
    /// The line that the description settings address.
    void setCurrentLine(quint8 line) { tables_.settings.setCurrentLine(line); }
    quint8 currentLine() const { return tables_.settings.currentLine(); }

    // Settings (SettingsTables)
    // Values are text; a missing key reads as empty. A per-line value is a comma list, one part per line; a line
    // beyond the end takes the last part. Where a quote is not spoken of, a value is kept as it is; a key is a literal.

    QString getGeneralSetting(const QString &key) { return tables_.settings.getGeneralSetting(key); }
    QString getGeneralSetting(const QString &key, quint8 line) { return tables_.settings.getGeneralSetting(key, line); }
    [[nodiscard]] bool setGeneralSetting(const QString &key, const QString &value, Quotes quotes = Quotes::Literal)
    {
        return tables_.settings.setGeneralSetting(key, value, quotes);
    }
    /// The parts of the other lines are kept as they are.
    [[nodiscard]] bool setGeneralSetting(const QString &key, const QString &value, quint8 line,
                                         Quotes quotes = Quotes::Literal)
    {
        return tables_.settings.setGeneralSetting(key, value, line, quotes);
    }
    /// The keys whose comma lists follow the lines when these are added, removed or cut.
    static QStringList getGeneralSettingKeys() { return SettingsTables::getGeneralSettingKeys(); }
    bool generalSettingExists(const QString &key) { return tables_.settings.generalSettingExists(key); }
    /// All of a table, from one scan.
    QHash<QString, QString> getGeneralSettings() { return tables_.settings.getGeneralSettings(); }
    QHash<QString, QString> getJ1939Settings() { return tables_.settings.getJ1939Settings(); }
    QString getJ1939Setting(const QString &key) { return tables_.settings.getJ1939Setting(key); }
    QString getJ1939Setting(const QString &key, quint8 line) { return tables_.settings.getJ1939Setting(key, line); }
    [[nodiscard]] bool setJ1939Setting(const QString &key, const QString &value)
    {
        return tables_.settings.setJ1939Setting(key, value);
    }
    QString getDescriptionSetting(const QString &key) { return tables_.settings.getDescriptionSetting(key); }
    [[nodiscard]] bool setDescriptionSetting(const QString &key, const QString &value)
    {
        return tables_.settings.setDescriptionSetting(key, value);
    }
    bool descriptionSettingExists(const QString &key) { return tables_.settings.descriptionSettingExists(key); }
    QString getEnergyBusSetting(const QString &key) { return tables_.settings.getEnergyBusSetting(key); }
    [[nodiscard]] bool setEnergyBusSetting(const QString &key, const QString &value, Quotes quotes = Quotes::Literal)
    {
        return tables_.settings.setEnergyBusSetting(key, value, quotes);
    }
    [[nodiscard]] bool removeEnergyBusSetting(const QString &key)
    {
        return tables_.settings.removeEnergyBusSetting(key);
    }
    QStringList getEnergyBusSettingKeys() { return tables_.settings.getEnergyBusSettingKeys(); }
    QString getMiscSetting(const QString &key) { return tables_.settings.getMiscSetting(key); }
    [[nodiscard]] bool setMiscSetting(const QString &key, const QString &value)
    {
        return tables_.settings.setMiscSetting(key, value);
    }
    bool miscSettingExists(const QString &key) { return tables_.settings.miscSettingExists(key); }

    // J1939 (J1939Tables)
    // A direction is `transmit` or `receive`; 0 in a list operation means both.

    [[nodiscard]] bool addPGN(quint8 line, quint32 number, const PGN &data)
    {
        return tables_.j1939.addPGN(line, number, data);
    }
    [[nodiscard]] bool addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data,
                              Quotes quotes = Quotes::Literal)
    {
        return tables_.j1939.addSPN(line, pgn, direction, spn, data, quotes);
    }
    [[nodiscard]] bool removePGN(quint8 line, quint32 number, quint8 direction)
    {
        return tables_.j1939.removePGN(line, number, direction);
    }
    [[nodiscard]] bool removeSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
    {
        return tables_.j1939.removeSPN(line, pgn, spn, direction);
    }
    bool pgnExists(quint8 line, quint32 number, quint8 direction)
    {
        return tables_.j1939.pgnExists(line, number, direction);
    }
    bool spnExists(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
    {
        return tables_.j1939.spnExists(line, pgn, direction, spn);
    }
    [[nodiscard]] std::optional<PGN> getPGN(quint8 line, quint32 number, quint8 direction)
    {
        return tables_.j1939.getPGN(line, number, direction);
    }
    QString getPGNName(quint8 line, quint32 number, quint8 direction)
    {
        return tables_.j1939.getPGNName(line, number, direction);
    }
    quint16 getPGNMappingCount(quint8 line, quint32 number, quint8 direction)
    {
        return tables_.j1939.getPGNMappingCount(line, number, direction);
    }
    QList<quint32> getPGNList(quint8 line, quint8 direction, bool leaveOutSafe = false)
    {
        return tables_.j1939.getPGNList(line, direction, leaveOutSafe);
    }
    /// All PGNs of a line, receive before transmit and ascending in each, and all its SPNs in the order of their
    /// places; one scan each.
    QList<PGN> getAllPGNs(quint8 line) { return tables_.j1939.getAllPGNs(line); }
    QList<SPN> getAllSPNs(quint8 line) { return tables_.j1939.getAllSPNs(line); }
    /// Those of one PGN, in the same order.
    QList<SPN> getSPNs(quint8 line, quint32 pgn, quint8 direction)
    {
        return tables_.j1939.getSPNs(line, pgn, direction);
    }
    /// The names of all PGNs of one direction, by number, from one scan.
    QHash<quint32, QString> getPGNNames(quint8 line, quint8 direction)
    {
        return tables_.j1939.getPGNNames(line, direction);
    }
    [[nodiscard]] std::optional<SPN> getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
    {
        return tables_.j1939.getSPN(line, pgn, direction, spn);
    }
    QList<quint32> getSPNList(quint8 line, quint32 pgn, quint8 direction)
    {
        return tables_.j1939.getSPNList(line, pgn, direction);
    }
    QString getSPNName(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
    {
        return tables_.j1939.getSPNName(line, pgn, direction, spn);
    }
    quint32 getSPNDataType(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
    {
        return tables_.j1939.getSPNDataType(line, pgn, direction, spn);
    }
    [[nodiscard]] bool cacheSPNs(quint8 line) { return tables_.j1939.cacheSPNs(line); }
    /// Counts the SPNs of all PGNs anew, which every open does; without a notification.
    [[nodiscard]] bool repairMappingCounts() { return Repairs::mappingCounts(tables_); }
    void clearSPNCache() { tables_.j1939.clearSPNCache(); }
    /// True if some PGN of the line is a safety PGN (`issafe`).
    bool anySafePGN(quint8 line) { return tables_.j1939.anySafePGN(line); }

    // Raw CAN (RawCanTables)

    [[nodiscard]] bool addCANID(quint8 line, quint32 id, const CANID &data)
    {
        return tables_.rawCan.addCANID(line, id, data);
    }
    /// An update leaves `pos` and `bitsize` of the element as they were first inserted.
    [[nodiscard]] bool addDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number,
                                      const DataElement &data, Quotes quotes = Quotes::Literal)
    {
        return tables_.rawCan.addDataElement(line, canid, direction, number, data, quotes);
    }
    [[nodiscard]] bool removeCANID(quint8 line, quint32 id, quint8 direction)
    {
        return tables_.rawCan.removeCANID(line, id, direction);
    }
    [[nodiscard]] bool removeDataElement(quint8 line, quint32 canid, quint32 number, quint8 direction)
    {
        return tables_.rawCan.removeDataElement(line, canid, number, direction);
    }
    bool canidExists(quint8 line, quint32 id, quint8 direction)
    {
        return tables_.rawCan.canidExists(line, id, direction);
    }
    bool dataElementExists(quint8 line, quint32 canid, quint8 direction, quint32 number)
    {
        return tables_.rawCan.dataElementExists(line, canid, direction, number);
    }
    [[nodiscard]] std::optional<CANID> getCANID(quint8 line, quint32 id, quint8 direction)
    {
        return tables_.rawCan.getCANID(line, id, direction);
    }
    QString getCANIDName(quint8 line, quint32 id, quint8 direction)
    {
        return tables_.rawCan.getCANIDName(line, id, direction);
    }
    QList<quint32> getCANIDList(quint8 line, quint8 direction) { return tables_.rawCan.getCANIDList(line, direction); }
    /// All CAN-IDs of a line, receive before transmit and ascending in each, and all its data elements by number, with
    /// the CAN-ID in `pgnnumber`; one scan each.
    QList<CANID> getAllCANIDs(quint8 line) { return tables_.rawCan.getAllCANIDs(line); }
    QList<DataElement> getAllDataElements(quint8 line) { return tables_.rawCan.getAllDataElements(line); }
    /// Those of one CAN-ID, in the same order.
    QList<DataElement> getDataElements(quint8 line, quint32 canid, quint8 direction)
    {
        return tables_.rawCan.getDataElements(line, canid, direction);
    }
    /// The names of all CAN-IDs of one direction, by id, from one scan.
    QHash<quint32, QString> getCANIDNames(quint8 line, quint8 direction)
    {
        return tables_.rawCan.getCANIDNames(line, direction);
    }
    [[nodiscard]] std::optional<DataElement> getDataElement(quint8 line, quint32 canid, quint8 direction,
                                                            quint32 number)
    {
        return tables_.rawCan.getDataElement(line, canid, direction, number);
    }
    QString getDataElementName(quint8 line, quint32 canid, quint8 direction, quint32 number)
    {
        return tables_.rawCan.getDataElementName(line, canid, direction, number);
    }
    QList<quint32> getDataElementList(quint8 line, quint32 canid, quint8 direction)
    {
        return tables_.rawCan.getDataElementList(line, canid, direction);
    }

    // UDS services (UdsTables)
    // Services are those of ISO 14229-1; the lists are comma lists of numbers. Setting a column of a service without a
    // row makes the row, inactive and with its other columns empty.

    [[nodiscard]] bool createUDSSettingsTable(quint8 line) { return tables_.uds.createUDSSettingsTable(line); }
    void setUDSServiceActive(quint8 line, quint8 sid, bool active)
    {
        std::ignore = tables_.uds.setActive(line, sid, active);
    }
    void setUDSServiceSessions(quint8 line, quint8 sid, const QString &sessions)
    {
        std::ignore = tables_.uds.set(line, sid, UdsTables::Column::Sessions, sessions);
    }
    void setUDSServiceUserLevels(quint8 line, quint8 sid, const QString &levels)
    {
        std::ignore = tables_.uds.set(line, sid, UdsTables::Column::UserLevels, levels);
    }
    void setUDSServiceAuthentication(quint8 line, quint8 sid, const QString &text)
    {
        std::ignore = tables_.uds.set(line, sid, UdsTables::Column::Authentication, text);
    }
    bool getUDSServiceActive(quint8 line, quint8 sid) { return tables_.uds.isActive(line, sid); }
    QString getUDSServiceSessions(quint8 line, quint8 sid)
    {
        return tables_.uds.text(line, sid, UdsTables::Column::Sessions);
    }
    QString getUDSServiceUserLevels(quint8 line, quint8 sid)
    {
        return tables_.uds.text(line, sid, UdsTables::Column::UserLevels);
    }
    QString getUDSServiceAuthentication(quint8 line, quint8 sid)
    {
        return tables_.uds.text(line, sid, UdsTables::Column::Authentication);
    }
    QList<UDSService> getUDSServices(quint8 line) { return tables_.uds.getUDSServices(line); }

Q_SIGNALS:
    /// After a write: what changed.
    void updateNotify(ObjectDataBase::ChangeSet modification);
    /// An open refused a file that another tool saved.
    void wrongTool();
    void blockStateChanged(bool blockupdates);
    void databaseWriteExecuted();

private:
    void noteWrite(Statement::Effect effect);

    ProjectTables tables_;
    ProjectFile file_;
    bool writeTracking_ = false;
};

Q_DECLARE_METATYPE(ObjectDataBase::ChangeSet)
