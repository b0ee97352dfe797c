#pragma once

#include "store/tables/subobjectcache.h"
#include "store/tables/tablefamily.h"

#include <QMap>
#include <QMutex>

/// The object dictionary of a line: `Objects%1` and `SubObjects%1` (objecttables.cpp, and objectqueries.cpp for single
/// columns, removals and copies). Lists are in ascending order of their addresses.
class ObjectTables : public TableFamily
{
public:
    using Index = StoreRecords::IndexData;
    using Sub = StoreRecords::SubIndexData;
    using IndexEntry = StoreRecords::IndexEntry;
    using SubEntry = StoreRecords::SubEntry;
    using SubKey = StoreRecords::SubKey;
    using Metadata = StoreRecords::Metadata;

    explicit ObjectTables(TableContext &context)
        : TableFamily(context)
    {
    }

    [[nodiscard]] bool addIndex(quint8 line, quint16 index, const Index &data);
    /// The values of a VISIBLE_STRING are kept in any case.
    [[nodiscard]] bool addSubIndex(quint8 line, quint16 index, quint8 subindex, const Sub &data,
                                   Quotes quotes = Quotes::Literal);
    /// All entries in their order in one transaction; goes on after a failure, the result is the last entry's.
    [[nodiscard]] bool addSubIndices(const QList<SubEntry> &entries, Quotes quotes = Quotes::Literal);
    /// Removes an object with its subindices and, unless `keepConnections`, its rows in `Connections`.
    [[nodiscard]] bool removeIndex(quint8 line, quint16 index, bool keepConnections = false);
    [[nodiscard]] bool removeSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections = false);
    [[nodiscard]] bool removeConsumerConnection(quint8 line, quint16 index, quint8 subindex);
    [[nodiscard]] bool setObjectMetadata(quint8 line, quint16 index, const Metadata &metadata);
    [[nodiscard]] bool setSubObjectMetadata(quint8 line, quint16 index, quint8 subindex, const Metadata &metadata);
    /// Copies an object over another of this project; the target's former subindices are gone.
    [[nodiscard]] bool copyIndex(quint8 fromLine, quint16 fromIndex, quint8 toLine, quint16 toIndex);
    /// Copies an object out of another project; target subindices that the source lacks are removed.
    [[nodiscard]] bool copyIndexFrom(ObjectTables *other, quint8 fromLine, quint16 fromIndex, quint8 toLine,
                                     quint16 toIndex, bool objectOnly = false);

    [[nodiscard]] std::optional<Index> getIndex(quint8 line, quint16 index);
    /// Answers from the line's cache where that holds the key.
    [[nodiscard]] std::optional<Sub> getSubIndex(quint8 line, quint16 index, quint8 subindex);
    /// All objects of a line, and all its subindices; one scan each.
    QList<IndexEntry> getAllIndices(quint8 line);
    QList<SubEntry> getAllSubIndices(quint8 line);
    QList<SubEntry> getSubIndices(quint8 line, quint16 index);

    bool indexExists(quint8 line, quint16 index);
    bool subIndexExists(quint8 line, quint16 index, quint8 subindex);
    QString getIndexName(quint8 line, quint16 index);
    /// Names an object that exists.
    [[nodiscard]] bool setIndexName(quint8 line, quint16 index, const QString &name);
    /// Of the objects from `first` to `last`.
    QList<quint16> getIndexList(quint8 line, quint16 first, quint16 last);
    QMap<quint16, QString> getIndexNames(quint8 line, quint16 first, quint16 last);
    QList<quint8> getSubIndexList(quint8 line, quint16 index, quint8 firstSub = 0);
    quint16 getSubIndexDataType(quint8 line, quint16 index, quint8 subindex);
    QString getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex);
    [[nodiscard]] bool setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value,
                                               Quotes quotes = Quotes::Literal);
    /// Subindices whose column holds the value, as a number first, then as text; only those whose object exists.
    QList<SubKey> findSubIndices(quint8 line, const QString &column, const QString &value);

    /// Loads the subindices of a line (`index` 0) or of one object into the cache that `getSubIndex` asks first.
    void cacheAllSubs(quint8 line, quint16 index);
    void clearSubCache();
    /// Keeps what `getAllSubIndices` has read last until subindices are written otherwise than by `addSubIndex` outside
    /// a transaction: a run asks for them several times, and a server checks a whole line after each edit of one. The
    /// objects that `getAllIndices` has read are kept with them, and the messages that the other families have read,
    /// until anything at all is written.
    void keepSubIndices(bool keep);
    void dropKeptObjects()
    {
        keptSubs_.reset();
        dropKeptIndices();
    }
    void dropKeptIndices() { keptIndices_.reset(); }

private:
    bool runSubs(const char *operation, const QString &text, const QVariantList &values);
    /// The insertion of subindices of one line, kept prepared for the next.
    struct SubInsertion;
    bool writeSubRow(const SubEntry &entry, Quotes quotes, std::optional<SubInsertion> &insertion);
    bool storeSubIndex(const SubEntry &entry, Quotes quotes, std::optional<SubInsertion> &insertion);
    void followWrite(const SubEntry &entry, std::optional<QList<SubEntry>> kept);
    bool setMetadata(const QString &text, QVariantList key, const Metadata &metadata);
    bool copySubs(ObjectTables &from, const SubKey &source, const QList<quint8> &subs, const SubKey &target);

    QMutex cacheMutex_;
    SubObjectCache subCache_;
    bool keepsSubs_ = false;
    quint8 keptLine_ = 0;
    std::optional<QList<SubEntry>> keptSubs_;                         ///< all of `keptLine_`, as its table is
    std::optional<std::pair<quint8, QList<IndexEntry>>> keptIndices_; ///< of a line, too
};
