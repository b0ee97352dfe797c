#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <utility>

/// A row of a table of objects, its fields by the columns that the header names; docs/import.md has them.
class CsvRow
{
public:
    enum Column : quint8
    {
        Index,
        Sub,
        DataType,
        Access,
        VarName,
        NvStorage,
        EdsName,
        Value,
        Description,
        ObjectCode,
        Size,
        Mapable,
        Implementation,
        HasDefault,
        DefaultInEds,
        Line,
        LowLimit,
        UpLimit,
        HasLimit,
        ColumnCount
    };

    /// Places of the columns in a row; -1 for those that a table lacks.
    using Places = std::array<qsizetype, ColumnCount>;

    /// Finds the columns among the names of a header, in lower case.
    static Places placesIn(const QStringList &header);

    CsvRow(QStringList fields, const Places &places)
        : fields_(std::move(fields))
        , places_(places)
    {
    }

    qsizetype fieldCount() const { return fields_.size(); }
    bool has(Column column) const { return places_[column] >= 0; }
    bool reaches(Column column) const { return has(column) && places_[column] < fields_.size(); }
    /// Empty where the row has no such field.
    QString text(Column column) const { return reaches(column) ? fields_[places_[column]] : QString(); }
    QString word(Column column) const { return text(column).trimmed().toLower(); }

    /// False for a row that ends before a column that it has to reach.
    bool isComplete() const;
    QString name(quint16 index) const;
    /// Whether the row is about an object alone.
    bool isHead() const;
    QString description() const;

private:
    const QStringList fields_;
    const Places &places_;
};
