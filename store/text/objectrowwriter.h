#pragma once

#include "store/records/schema.h"
#include "store/statements/boundstatement.h"
#include "store/statements/literaltext.h"
#include "texttools/settingstext.h"

#include <QStringList>
#include <QVariant>

#include <optional>
#include <vector>

class ProjectTables;

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
    void writeRow(const SettingsText::Row &row);

private:
    /// How the values of a column are stored.
    enum class Kind : quint8
    {
        Text,
        Number,
        Pooled,
        Attributes
    };
    /// A value on its way into a row.
    struct Cell
    {
        QByteArrayView raw;                  ///< as it stands in the file
        bool isTaken = false;                ///< the rest tells what the row gets
        std::optional<QByteArrayView> plain; ///< ASCII that is stored as it is
        std::optional<qint64> number;        ///< that it is stored as
        QString text;                        ///< else
    };

    /// From the parts of a path, as texts or as they stand in a file.
    template <class Part>
    std::optional<QVariantList> keyOf(const QList<Part> &groups) const;
    bool isNew(const QVariantList &key);
    bool isPlain(const QStringList &columns) const;
    bool takeColumns(const std::vector<QByteArrayView> &columns);
    bool takeValues(const std::vector<QByteArrayView> &values);
    bool takeValue(Kind kind, Cell &cell);
    QString condition() const;
    bool exists(const QVariantList &key) const;
    QVariant blankValue(const QString &column) const;
    QString insertion(const QStringList &columns) const;
    void insertTaken(const QVariantList &key);
    bool run(const QString &text, const QVariantList &values);
    static bool isAttributes(const QString &column, const QVariant &value);
    bool writeAttributes(const QVariantList &key, const QString &column, const QVariant &value);
    std::optional<QVariant> stored(const QString &column, const QVariant &value, Quotes quotes) const;

    ProjectTables &tables_;
    QString table_;
    std::optional<ProjectSchema::LineTable> family_; ///< none for a table of another kind
    QStringList keyColumns_;

    // Of the last row; the next one mostly has the same columns.
    std::vector<QByteArray> columns_;
    std::vector<Kind> kinds_;
    std::vector<Cell> cells_;
    QByteArray attributes_;
    std::optional<BoundStatement> insertion_; ///< none for columns that are not written at once
    std::optional<bool> startedEmpty_;        ///< the table
    std::vector<bool> seen_;                  ///< by the number of a key: rows since
};
