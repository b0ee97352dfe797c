#include "ncx/commands/texttable.h"

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype gap = 2;
constexpr qsizetype narrowestColumn = 8;

QString cut(const QString &text, qsizetype width)
{
    return text.size() <= width ? text.leftJustified(width) : text.first(width - 1) + u'~';
}

} // namespace

QStringList TextTable::lines(int width, int indentation) const
{
    const QList<qsizetype> columns = widths(width > 0 ? width - indentation : 0);
    QStringList lines;
    for (const QStringList &row : rows_) {
        QString line(indentation, u' ');
        for (qsizetype i = 0; i < columns.size(); ++i) {
            if (columns.at(i) > 0)
                line += cut(QString(row.value(i)).replace(u'\n', u' '), columns.at(i)) + QString(gap, u' ');
        }
        while (line.endsWith(u' '))
            line.chop(1);
        lines.append(line);
    }
    return lines;
}

/// 0 for a column in which nothing stands.
QList<qsizetype> TextTable::widths(int width) const
{
    QList<qsizetype> columns(rows_.first().size(), 0);
    for (const QStringList &row : rows_.sliced(1)) {
        for (qsizetype i = 0; i < columns.size(); ++i)
            columns[i] = std::max(columns.at(i), row.value(i).size());
    }
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (columns.at(i) > 0)
            columns[i] = std::max(columns.at(i), rows_.first().at(i).size());
    }
    const auto whole = [&columns] {
        return std::accumulate(columns.begin(), columns.end(), qsizetype{0},
                               [](qsizetype sum, qsizetype column) { return column > 0 ? sum + column + gap : sum; });
    };
    while (width > 0 && whole() - gap > width) {
        const auto widest = std::ranges::max_element(columns);
        if (*widest <= narrowestColumn)
            break;
        --*widest;
    }
    return columns;
}
