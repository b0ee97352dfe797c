#pragma once

#include "store/statements/literaltext.h"
#include "store/tables/schema.h"

#include <QStringList>
#include <QVariant>

#include <optional>

struct ProjectTables;

/// One row of a group as it stands in the text form of a project.
struct TextRow
{
    QStringList groups; ///< the row's path below its table
    QStringList columns;
    QVariantList values; ///< of the columns
};

/// Writes `Objects%1` and `SubObjects%1` as the text form of a project tells them. Values have their white space
/// simplified; names and descriptions go to the pool. A row that is missing is made, with 0 in its other columns or, in
/// one of a subindex, NULL where that may stand.
class ObjectRowWriter
{
public:
    ObjectRowWriter(ProjectTables &tables, QString table);

    /// One value; nothing for an invalid one. A failure is logged.
    void writeValue(const QStringList &groups, const QString &column, const QVariant &value, Quotes quotes);
    /// A whole row, with quotes kept: one statement where it is new, with the outcome of its values one by one.
    void writeRow(const TextRow &row);

private:
    std::optional<QVariantList> keyOf(const QStringList &groups) const;
    bool isPlain(const QStringList &columns) const;
    QString condition() const;
    bool exists(const QVariantList &key) const;
    QVariant blankValue(const QString &column) const;
    QString insertion(const QStringList &columns);
    bool insertRow(const QStringList &columns, const QVariantList &values, const QVariantList &key);
    void insertWhole(const TextRow &row, const QVariantList &key);
    bool run(const QString &text, const QVariantList &values);
    static bool isAttributes(const QString &column, const QVariant &value);
    bool writeAttributes(const QVariantList &key, const QString &column, const QVariant &value);
    std::optional<QVariant> stored(const QString &column, const QVariant &value, Quotes quotes) const;

    ProjectTables &tables_;
    QString table_;
    std::optional<ProjectSchema::LineTable> family_; ///< none for a table of another kind
    QStringList keyColumns_;
    QStringList columns_; ///< of the last insertion
    QString insertion_;   ///< its statement
};
