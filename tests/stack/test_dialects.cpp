#include "stack/generatedsources.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// One project in both forms of the sources: the V4 names are mapped onto the classic ones, and what remains is the list
// of points at which the forms differ. It is kept in tests/data/dialects; NCX_ACCEPT=1 takes that of this build.

namespace {

struct Mapping
{
    const char *v4;
    const char *classic;
};

/// Words that say the same. The columns of a description row are joined as the classic form has them.
constexpr Mapping mappings[] = {
    {"\\bCORE_DTYPE_(\\w+), CO_DSPEC(_\\w+),", "CO_DTYPE_\\1\\2,"},
    {"\\bCORE_PROT_TYPE_", "MP_PROT_TYPE_"},
    {"\\bCORE_((CONST_|)STORAGE_CLASS|CONST|HANDLE_WATCHDOG|\\w+_COUNTS|COMMON_INIT_VAL_T)\\b", "CO_\\1"},
    {"\\bCAN_(LINE|MULTI_LINE)", "CO_\\1"},
    {"\\bcoreStackInit\\b", "commonStackInit"},
    {"\\bRET_PARAMETER_INVALID\\b", "RET_INVALID_PARAMETER"},
    {"\\bcore_isotp\\.h\\b", "iso_tp.h"},
    {"(CO_DTYPE_\\w+) +,", "\\1,"},
};

/// The sources of one form, with the V4 names mapped.
QByteArray mapped(const QString &project, bool classic)
{
    GeneratedSources sources(classic);
    EXPECT_TRUE(sources.openFolder(project));
    EXPECT_TRUE(sources.generate());
    QString text;
    for (const QString &name : {u"gen_objdict.c"_s, u"gen_vobjdict.c"_s, u"gen_user.h"_s}) {
        if (sources.has(name))
            text += u"---- %1\n"_s.arg(name) + QString::fromUtf8(sources.text(name));
    }
    for (const Mapping &mapping : mappings)
        text.replace(QRegularExpression(QString::fromLatin1(mapping.v4)), QString::fromLatin1(mapping.classic));
    return text.toUtf8();
}

/// The lines in which the texts differ, "-" for V4 and "+" for classic, in groups.
QByteArray difference(const QByteArray &v4, const QByteArray &classic)
{
    const QTemporaryDir folder;
    const QString v4Path = folder.filePath(u"v4"_s);
    const QString classicPath = folder.filePath(u"classic"_s);
    EXPECT_TRUE(writeFile(v4Path, v4) && writeFile(classicPath, classic));
    const ProcessResult result =
        ProcessRunner(u"/usr/bin/env"_s).arguments({u"diff"_s, u"-U0"_s, v4Path, classicPath}).run();
    QByteArray groups;
    for (const QString &line : result.output.split(u'\n', Qt::SkipEmptyParts).mid(2))
        groups += line.startsWith("@@"_L1) ? QByteArray("\n") : line.toUtf8() + '\n';
    return groups;
}

TEST(Dialects, DifferAtTheirPointsOnly)
{
    qputenv("SOURCE_DATE_EPOCH", "1794733920");
    for (const QString &project : {u"/examples/two_lines"_s, u"/tests/data/golden/all_types"_s}) {
        SCOPED_TRACE(qPrintable(project));
        const QString folder = QStringLiteral(NCX_SOURCE_DIR) + project;
        const QByteArray actual = difference(mapped(folder, false), mapped(folder, true));
        const QString path =
            QStringLiteral(NCX_SOURCE_DIR "/tests/data/dialects/") + QFileInfo(folder).fileName() + u".diff"_s;
        if (qEnvironmentVariableIntValue("NCX_ACCEPT") == 1) {
            QDir().mkpath(QFileInfo(path).path());
            EXPECT_TRUE(writeFile(path, actual));
        }
        EXPECT_EQ(QString::fromUtf8(actual), QString::fromUtf8(readFile(path)));
    }
}

} // namespace
