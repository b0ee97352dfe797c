#include "support/shellcase.h"

#include "support/processrunner.h"
#include "support/testhome.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString dataRoot = QStringLiteral(NCX_SOURCE_DIR "/tests/data/");

} // namespace

CaseFolder::CaseFolder(const QString &files)
{
    for (const QString &name : QDir(dataRoot + files).entryList(QDir::Files))
        QFile::copy(dataRoot + files + u'/' + name, path(name));
}

QStringList CaseFolder::said(const QString &command) const
{
    static const QRegularExpression build(u" Build: [A-Z][a-z]{2} [ \\d]\\d \\d{4} \\d\\d:\\d\\d:\\d\\d"_s);
    const ProcessResult result =
        ProcessRunner(u"/bin/sh"_s)
            .arguments({u"-c"_s, u"PATH=\"%1:$PATH\"; { %2\n} 2>&1"_s.arg(QStringLiteral(NCX_BIN_DIR), command)})
            .environment(u"TREE"_s, QStringLiteral(NCX_SOURCE_DIR))
            .workingFolder(folder_.path())
            .run();
    QStringList lines = QString(result.output)
                            .replace(folder_.path(), "${FOLDER}"_L1)
                            .replace(QStringLiteral(NCX_SOURCE_DIR), "${TREE}"_L1)
                            .replace(build, u" Build: ${BUILD}"_s)
                            .replace(QStringLiteral(NCX_PROGRAM_VERSION), "${VERSION}"_L1)
                            .split(u'\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    if (result.exitCode != 0)
        lines.append(u"[%1]"_s.arg(result.exitCode));
    return lines;
}

void CaseFolder::play(const TextCase &textCase) const
{
    QStringList played{textCase.lines.first()};
    for (const QString &line : textCase.lines.sliced(1)) {
        if (line.startsWith("$ "_L1))
            played += QStringList{line} + said(line.sliced(2));
        else if (line.startsWith("# "_L1))
            played += line;
    }
    expectCase(textCase, played + QStringList{u""_s});
}
