#include "store/objectdatabase.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QMap>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

using Files = QMap<QString, QByteArray>;

/// The folders of the goldens and examples that hold a text project.
QStringList projectFolders()
{
    QStringList folders;
    for (const QString &root : {u"/tests/data/golden"_s, u"/examples"_s}) {
        QDirIterator it(QStringLiteral(NCX_SOURCE_DIR) + root, QDir::Dirs | QDir::NoDotAndDotDot);
        while (it.hasNext()) {
            if (!QDir(it.next()).entryList({u"*.ncxt"_s}).isEmpty())
                folders.append(it.filePath());
        }
    }
    return folders;
}

struct Variable
{
    QString name;
    QString value;
};

/// All files after a run that also saves, of the project of a folder in its text form or as a database. Each run has
/// the same path: the log of the check has it, too.
Files filesOfRun(const QString &folder, bool asText, const QList<Variable> &environment)
{
    const QDir work(home().filePath(u"dates"_s));
    work.mkpath(u"."_s);
    for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
        QFile::copy(folder + u'/' + name, work.filePath(name));
    QString project = work.filePath(work.entryList({u"*.ncxt"_s}).value(0));
    if (!asText) {
        ObjectDataBase store;
        EXPECT_TRUE(store.openTextDatabase(project));
        project.replace(u".ncxt"_s, u".ncxp"_s);
        EXPECT_TRUE(store.saveDatabase(project));
    }
    ProcessRunner program(u"ncx_cli"_s);
    program.arguments(QStringList{u"-project"_s, project, u"-save"_s} +
                      QString::fromUtf8(readFile(work.filePath(u"args"_s)))
                          .replace(u"${EXAMPLES}"_s, QStringLiteral(NCX_SOURCE_DIR "/examples"))
                          .split(u'\n', Qt::SkipEmptyParts));
    program.workingFolder(work.path());
    for (const Variable &variable : environment)
        program.environment(variable.name, variable.value);
    const ProcessResult result = program.run();
    EXPECT_EQ(result.exitCode, 0) << qPrintable(result.output);
    Files files;
    QDirIterator it(work.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files.insert(work.relativeFilePath(path), readFile(path));
    }
    EXPECT_TRUE(QDir(work).removeRecursively());
    return files;
}

QList<QByteArray> textsOf(const QDateTime &moment)
{
    return {moment.toString(u"ddd MMM d"_s).toLatin1(), moment.toString(u"MM-dd-yy"_s).toLatin1()};
}

// Half past two on a day on which the second zone has no such time.
const QString moment = u"1774751400"_s;

TEST(Dates, RunsOfOneMomentWriteTheSameBytes)
{
    for (const QString &folder : projectFolders()) {
        for (const bool asText : {true, false}) {
            SCOPED_TRACE(qPrintable(folder));
            const Files first = filesOfRun(folder, asText, {{u"SOURCE_DATE_EPOCH"_s, moment}, {u"TZ"_s, u"UTC"_s}});
            const Files second = filesOfRun(folder, asText,
                                            {{u"SOURCE_DATE_EPOCH"_s, moment},
                                             {u"TZ"_s, u"CET-1CEST,M3.5.0,M10.5.0/3"_s},
                                             {u"LC_ALL"_s, u"de_DE.UTF-8"_s}});
            ASSERT_EQ(first.keys(), second.keys());
            for (auto it = first.cbegin(); it != first.cend(); ++it)
                EXPECT_TRUE(it.value() == second.value(it.key())) << qPrintable(it.key());
        }
    }
}

TEST(Dates, AreOfTodayOtherwise)
{
    int dated = 0;
    const QList<QByteArray> then = textsOf(QDateTime::fromSecsSinceEpoch(moment.toLongLong(), Qt::UTC));
    for (const QString &folder : projectFolders()) {
        SCOPED_TRACE(qPrintable(folder));
        const Files fixed = filesOfRun(folder, true, {{u"SOURCE_DATE_EPOCH"_s, moment}});
        const QList<QByteArray> before = textsOf(QDateTime::currentDateTime());
        const Files actual = filesOfRun(folder, true, {{u"SOURCE_DATE_EPOCH"_s, QString()}});
        const QList<QByteArray> after = textsOf(QDateTime::currentDateTime());
        for (auto it = fixed.cbegin(); it != fixed.cend(); ++it) {
            for (qsizetype form = 0; form < then.size(); ++form) {
                if (!it->contains(then.at(form)))
                    continue;
                ++dated;
                const QByteArray content = actual.value(it.key());
                EXPECT_TRUE(content.contains(before.at(form)) || content.contains(after.at(form)))
                    << qPrintable(it.key());
                EXPECT_FALSE(content.contains(then.at(form))) << qPrintable(it.key());
            }
        }
    }
    EXPECT_GT(dated, 100);
}

} // namespace
