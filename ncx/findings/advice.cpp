#include "ncx/findings/advice.h"

#include <QFile>
#include <QHash>

#include <vector>

using namespace Qt::StringLiterals;

// The linker would leave out of a static library what nothing refers to.
static void keepTable()
{
    Q_INIT_RESOURCE(ncx);
}

namespace {

/// A correction and an error may be the same rule's.
QString keyOf(const QString &rule, bool isCorrection)
{
    return isCorrection ? rule + " corrected"_L1 : rule;
}

QString sentence(QString remedy)
{
    remedy.remove(u'`');
    return remedy.isEmpty() ? remedy : remedy.first(1).toUpper() + remedy.sliced(1) + u'.';
}

/// The rows of the table are "| rule | message | cause | remedy | group |".
std::vector<AdviceRow> readTable()
{
    keepTable();
    std::vector<AdviceRow> rows;
    QFile file(u":/docs/checks.md"_s);
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const QStringList cells = line.split(u" | "_s);
        if (line.startsWith("| "_L1) && cells.size() == 5 && cells.at(0) != "| rule"_L1)
            rows.push_back({cells.at(0).sliced(2), cells.at(1), cells.at(2), cells.at(3), cells.at(4).chopped(2)});
    }
    return rows;
}

QHash<QString, QString> remedies()
{
    QHash<QString, QString> advice;
    for (const AdviceRow &row : adviceRows())
        advice.insert(keyOf(row.rule, row.group.startsWith("corrected"_L1)), sentence(row.remedy));
    return advice;
}

} // namespace

std::span<const AdviceRow> adviceRows()
{
    static const std::vector<AdviceRow> rows = readTable();
    return rows;
}

QString adviceOn(const CheckFinding &finding)
{
    static const QHash<QString, QString> table = remedies();
    return table.value(keyOf(finding.rule, finding.kind == CheckFinding::Kind::Correction));
}
