#pragma once

#include "store/tables/subobjectcache.h"
#include "store/tables/tablefamily.h"

#include <QMap>
#include <QMutex>

/// The object dictionary of a line: `Objects%1` and `SubObjects%1` (objecttables.cpp, and objectqueries.cpp for single
/// columns, removals and copies).
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
    [[nodiscard]] bool addSubIndex(quint8 line, quint16 index, quint8 subindex, const Sub &data, Quotes quotes);
    [[nodiscard]] bool addSubIndices(const QList<SubEntry> &entries, Quotes quotes);
    [[nodiscard]] bool removeIndex(quint8 line, quint16 index, bool keepConnections);
    [[nodiscard]] bool removeSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections);
    [[nodiscard]] bool removeConsumerConnection(quint8 line, quint16 index, quint8 subindex);
    [[nodiscard]] bool setObjectMetadata(quint8 line, quint16 index, const Metadata &metadata);
    [[nodiscard]] bool setSubObjectMetadata(quint8 line, quint16 index, quint8 subindex, const Metadata &metadata);
    [[nodiscard]] bool copyIndex(quint8 fromLine, quint16 fromIndex, quint8 toLine, quint16 toIndex);
    /// Copies an object out of the tables of another project.
    [[nodiscard]] bool copyIndexFrom(ObjectTables &other, quint8 fromLine, quint16 fromIndex, quint8 toLine,
                                     quint16 toIndex, bool objectOnly);

    [[nodiscard]] std::optional<Index> getIndex(quint8 line, quint16 index);
    QList<IndexEntry> getAllIndices(quint8 line);
    [[nodiscard]] std::optional<Sub> getSubIndex(quint8 line, quint16 index, quint8 subindex);
    QList<SubEntry> getAllSubIndices(quint8 line);
    QList<SubEntry> getSubIndices(quint8 line, quint16 index);

    bool indexExists(quint8 line, quint16 index);
    bool subIndexExists(quint8 line, quint16 index, quint8 subindex);
    QString getIndexName(quint8 line, quint16 index);
    [[nodiscard]] bool setIndexName(quint8 line, quint16 index, const QString &name);
    QList<quint16> getIndexList(quint8 line, quint16 first, quint16 last);
    QMap<quint16, QString> getIndexNames(quint8 line, quint16 first, quint16 last);
    QList<quint8> getSubIndexList(quint8 line, quint16 index, quint8 firstSub);
    quint16 getSubIndexDataType(quint8 line, quint16 index, quint8 subindex);
    QString getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex);
    [[nodiscard]] bool setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value,
                                               Quotes quotes);
    QList<SubKey> findSubIndices(quint8 line, const QString &column, const QString &value);

    void cacheAllSubs(quint8 line, quint16 index);
    void clearSubCache();
    void keepSubIndices(bool keep);
    /// Forgets what `keepSubIndices` keeps.
    void dropKept() { keptSubs_.reset(); }

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
    std::optional<QList<SubEntry>> keptSubs_; ///< all of `keptLine_`, as its table is
};
