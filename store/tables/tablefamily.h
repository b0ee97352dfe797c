#pragma once

#include "store/records/recordcolumns.h"
#include "store/records/storerecords.h"
#include "store/records/stringpool.h"
#include "store/statements/statements.h"
#include "store/statements/transaction.h"
#include "store/statements/writelog.h"

#include <QHash>
#include <QList>

#include <atomic>
#include <functional>
#include <optional>

/// What all tables of a project share: the statements, the texts, and who hears of changes.
class TableContext
{
public:
    using Listener = std::function<void(const StoreRecords::ChangeSet &)>;

    TableContext();
    Q_DISABLE_COPY_MOVE(TableContext)

    Statements statements;
    StringPool strings{statements};
    WriteLog writes;
    /// While set, no family writes.
    std::atomic<bool> blocked = false;
    /// Lists of whole lines that were read are kept, until something is written.
    bool keepsLists = false;

    void setListener(Listener listener) { listener_ = std::move(listener); }
    void notify(StoreRecords::Change type, StoreRecords::ChangeSet change = {}) const;
    bool isSilent() const { return silent_; }

    /// While it lives, nobody hears of changes and writes.
    class Silence
    {
    public:
        explicit Silence(TableContext &context)
            : context_(context)
        {
            context_.silent_ = true;
        }
        ~Silence() { context_.silent_ = false; }
        Q_DISABLE_COPY_MOVE(Silence)

    private:
        TableContext &context_;
    };

private:
    Listener listener_;
    bool silent_ = false;
};

/// The base of the classes that read and write a family of tables. What holds for all of them is told where
/// `ObjectDataBase` puts them together.
class TableFamily
{
public:
    Q_DISABLE_COPY_MOVE(TableFamily)

protected:
    using Change = StoreRecords::Change;

    explicit TableFamily(TableContext &context)
        : context_(context)
        , statements_(context.statements)
        , strings_(context.strings)
    {
    }
    ~TableFamily() = default;

    bool isBlocked() const { return context_.blocked; }
    void notify(Change type, const StoreRecords::ChangeSet &change) const { context_.notify(type, change); }

    // For the time of an operation that writes no other object or message of the line.
    [[nodiscard]] WriteLog::Announcement aboutObject(quint8 line, quint16 index) const
    {
        return {context_.writes, line, WriteLog::Kind::Object, index};
    }
    [[nodiscard]] WriteLog::Announcement aboutPgn(quint8 line, quint32 number, quint8 direction) const
    {
        return {context_.writes, line, WriteLog::Kind::Pgn, WriteLog::messageKey(number, direction)};
    }
    [[nodiscard]] WriteLog::Announcement aboutCanId(quint8 line, quint32 id, quint8 direction) const
    {
        return {context_.writes, line, WriteLog::Kind::CanId, WriteLog::messageKey(id, direction)};
    }
    [[nodiscard]] bool run(const char *operation, const QString &text, const QVariantList &values);
    [[nodiscard]] bool runSchema(const char *operation, const QString &text);
    QList<quint32> selectNumbers(const QString &text, const QVariantList &values = {});

    TableContext &context_;
    Statements &statements_;
    StringPool &strings_;
};
