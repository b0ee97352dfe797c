#pragma once

#include "store/metadatablob.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>
#include <QVarLengthArray>

#include <algorithm>
#include <optional>
#include <utility>

/// One row of a group as it stands in the text form of a project.
struct TextRow
{
    QStringList groups; ///< the row's path below its table
    QStringList columns;
    QVariantList values; ///< of the columns
};

/// Writes rows of `Objects%1` or `SubObjects%1` from the text form of a project: one statement for a row that is new
/// and holds nothing odd, with the outcome that the store's writers of single values would leave.
class ObjectRowWriter
{
public:
    /// `columns` are the table's.
    ObjectRowWriter(ObjectDataBase &store, const QSqlDatabase &database, QString table, QStringList columns,
                    bool isSubObject)
        : store_(store)
        , table_(std::move(table))
        , tableColumns_(std::move(columns))
        , isSubObject_(isSubObject)
        , select_(database)
        , insert_(database)
    {
        keyColumns_.append(QStringLiteral("objectindex"));
        if (isSubObject)
            keyColumns_.append(QStringLiteral("subindex"));
        isUsable_ = prepare(select_, QStringLiteral("SELECT 1 FROM %1 WHERE %2 = ?")
                                         .arg(table_, keyColumns_.join(QLatin1StringView(" = ? AND "))));
    }

    void write(const TextRow &row)
    {
        if (!isUsable_ || store_.isBlocked())
            return;
        if (row.columns != columns_)
            takeColumns(row.columns);
        if (columnsArePlain_ && hasPlainPath(row) && !exists(row)) {
            insertWhole(row);
        } else {
            for (qsizetype i = 0; i < row.columns.size(); ++i)
                writeSingle(row, i);
        }
    }

private:
    /// What a new row holds in a column that nothing is told about.
    QVariant blankValue(const QString &column) const
    {
        static const QStringList neverNull = {QStringLiteral("datatype"), QStringLiteral("accesstype"),
                                              QStringLiteral("implementation")};
        return isSubObject_ && !neverNull.contains(column) ? QVariant() : QVariant(0);
    }

    /// An object's index or a subindex as SQL reads it: decimal, or hexadecimal behind "0x".
    static std::optional<uint> numberOf(const QString &text)
    {
        bool ok = false;
        const uint number = text.toUInt(&ok, text.startsWith(QLatin1StringView("0x")) ? 16 : 10);
        return ok && text.front().isDigit() ? std::optional(number) : std::nullopt;
    }

    static bool hasPlainPath(const TextRow &row)
    {
        return std::all_of(row.groups.begin(), row.groups.end(),
                           [](const QString &group) { return numberOf(group).has_value(); });
    }

    /// Prepares the insertion of a row with these columns; the next row mostly has the same.
    void takeColumns(const QStringList &columns)
    {
        columns_ = columns;
        blanks_.clear();
        // A row cannot be given another key and written at once.
        columnsArePlain_ = std::all_of(columns.begin(), columns.end(), [this](const QString &column) {
            return tableColumns_.contains(column) && !keyColumns_.contains(column);
        });
        if (!columnsArePlain_)
            return;
        for (const QString &column : columns)
            blanks_.append(blankValue(column));
        QStringList names = keyColumns_ + columns;
        QStringList values(names.size(), QStringLiteral("?"));
        for (const QString &column : std::as_const(tableColumns_)) {
            if (const QVariant blank = blankValue(column); !names.contains(column) && !blank.isNull()) {
                names.append(column);
                values.append(blank.toString());
            }
        }
        columnsArePlain_ =
            prepare(insert_,
                    QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(table_, names.join(u','), values.join(u',')));
    }

    bool exists(const TextRow &row)
    {
        bindPath(select_, row);
        const bool found = execute(select_) && select_.next();
        select_.finish();
        return found;
    }

    static int bindPath(QSqlQuery &query, const TextRow &row)
    {
        int place = 0;
        for (const QString &group : row.groups)
            query.bindValue(place++, *numberOf(group));
        return place;
    }

    void insertWhole(const TextRow &row)
    {
        int place = bindPath(insert_, row);
        QVarLengthArray<qsizetype, 4> later;
        bool anyValue = false;
        for (qsizetype i = 0; i < row.columns.size(); ++i) {
            QVariant value = blanks_.at(i);
            if (isAttributes(row, i)) {
                // Attributes only reach a row that exists; one of which they are the first key does not yet.
                if (anyValue)
                    later.append(i);
                else
                    writeSingle(row, i);
            } else if (row.values.at(i).isValid()) {
                anyValue = true;
                if (!takeValue(row, i, value))
                    later.append(i);
            }
            insert_.bindValue(place++, value);
        }
        if (anyValue)
            execute(insert_);
        for (const qsizetype i : later)
            writeSingle(row, i);
    }

    /// The value to bind; false for one that does not mean the same bound as it does in the text of a statement.
    bool takeValue(const TextRow &row, qsizetype i, QVariant &value)
    {
        const QString text = row.values.at(i).toString();
        const QString &column = row.columns.at(i);
        if (column == QLatin1StringView("name") || column == QLatin1StringView("description")) {
            value = store_.getStringId(text);
            return true;
        }
        if (text.contains(u'\'') || text.contains(QChar::Null))
            return false;
        const bool isSimple = std::none_of(text.begin(), text.end(), [](QChar ch) { return ch.isSpace(); });
        // A null text would be bound as NULL.
        const QString simple = isSimple ? text : text.simplified();
        value = simple.isEmpty() ? QStringLiteral("") : simple;
        return true;
    }

    bool isAttributes(const TextRow &row, qsizetype i) const
    {
        return row.columns.at(i) == QLatin1StringView("metadata") && table_.back().isDigit() &&
               !MetadataBlob::parse(row.values.at(i).toByteArray()).isEmpty();
    }

    void writeSingle(const TextRow &row, qsizetype i)
    {
        static const QRegularExpression word(QStringLiteral("^\\w+$"));
        const QString &column = row.columns.at(i);
        if (!hasPlainPath(row) || !word.match(column).hasMatch())
            qDebug().noquote() << "error" << table_ << row.groups.join(u'/') << column;
        else if (isSubObject_)
            store_.setSubindexSqlValue(table_, row.groups.first(), row.groups.last(), column, row.values.at(i));
        else
            store_.setObjectIndexSqlValue(table_, row.groups.first(), column, row.values.at(i));
    }

    static bool prepare(QSqlQuery &query, const QString &statement)
    {
        query.setForwardOnly(true);
        return query.prepare(statement) || logged(query, statement);
    }

    static bool execute(QSqlQuery &query) { return query.exec() || logged(query, query.lastQuery()); }

    static bool logged(const QSqlQuery &query, const QString &statement)
    {
        qDebug().noquote() << "ObjectRowWriter" << statement << "failed:" << query.lastError().text();
        return false;
    }

    ObjectDataBase &store_;
    QString table_;
    QStringList tableColumns_;
    QStringList keyColumns_;
    bool isSubObject_;
    bool isUsable_ = false;
    QStringList columns_; ///< of the row that the insertion is prepared for
    QVariantList blanks_; ///< of those columns
    bool columnsArePlain_ = false;
    QSqlQuery select_;
    QSqlQuery insert_;
};
