#pragma once

#include <QList>
#include <QStringList>

/// Rows in columns, for a terminal of some width: where they do not fit, the widest columns are cut.
class TextTable
{
public:
    explicit TextTable(QStringList heads)
        : rows_{std::move(heads)}
    {
    }

    void add(const QStringList &row) { rows_.append(row); }
    bool isEmpty() const { return rows_.size() == 1; }
    /// The lines, heads first; columns in which nothing stands are left out. 0 for any width.
    QStringList lines(int width, int indentation = 0) const;

private:
    QList<qsizetype> widths(int width) const;

    QList<QStringList> rows_;
};
