#include "ncx/findings/advice.h"

#include <QFile>
#include <QHash>

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

/// By rule. The rows of the table are "| rule | message | cause | remedy | group |".
QHash<QString, QString> readTable()
{
    keepTable();
    QHash<QString, QString> advice;
    QFile file(u":/docs/checks.md"_s);
    if (!file.open(QIODevice::ReadOnly))
        return advice;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const QStringList cells = line.split(u" | "_s);
        if (line.startsWith("| "_L1) && cells.size() == 5)
            advice.insert(keyOf(cells.at(0).sliced(2), cells.at(4).startsWith("corrected"_L1)), sentence(cells.at(3)));
    }
    return advice;
}

} // namespace

QString adviceOn(const CheckFinding &finding)
{
    static const QHash<QString, QString> table = readTable();
    return table.value(keyOf(finding.rule, finding.kind == CheckFinding::Kind::Correction));
}
