#pragma once

#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

#include <optional>

class ObjectDataBase;

/// One row of a group as it stands in the text form of a project.
struct TextRow
{
    QStringList groups; ///< the row's path below its table
    QStringList columns;
    QVariantList values; ///< of the columns
};

/// Writes rows of `Objects%1` or `SubObjects%1` from the text form of a project: one statement for a row that is new
/// and holds nothing odd, with the outcome that the store's writers of single values would leave. Other than those it
/// keeps a value with a single quote in it.
class ObjectRowWriter
{
public:
    /// `columns` are the table's.
    ObjectRowWriter(ObjectDataBase &store, const QSqlDatabase &database, QString table, QStringList columns,
                    bool isSubObject);

    void write(const TextRow &row);

private:
    QVariant blankValue(const QString &column) const;
    void takeColumns(const QStringList &columns);
    bool exists(const TextRow &row);
    void insertWhole(const TextRow &row);
    bool takeValue(const TextRow &row, qsizetype i, QVariant &value);
    bool isAttributes(const TextRow &row, qsizetype i) const;
    void writeSingle(const TextRow &row, qsizetype i);

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
