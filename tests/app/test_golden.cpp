#include "support/datacases.h"
#include "support/processrunner.h"
#include "support/projectscript.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// A case is a folder under tests/data/golden/ or examples/. It holds one project (.ncxt), whatever that needs, and
// perhaps
//   args        further arguments, one a line, with ${EXAMPLES} for the folder of the examples
//   rawcan.txt  raw CAN messages, which a text project cannot hold, as commands of a ProjectScript: the run then takes
//               the project as .ncxp
//   console.txt what the run says after its banner, with ${FOLDER} for its folder
//   expected/   the files that the run writes, and nothing else
// NCX_ACCEPT=1 in the environment takes the output of this build as expected, to be read as a difference.

namespace {

QSet<QString> filesIn(const QString &folder)
{
    QSet<QString> files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.insert(QDir(folder).relativeFilePath(it.next()));
    return files;
}

/// The moment of the stored output.
const QDateTime goldenMoment = QDateTime::fromSecsSinceEpoch(1794733920, Qt::UTC);

/// A day as comments and descriptions have it.
QList<QByteArray> textsOf(const QDateTime &moment)
{
    return {moment.toString(u"ddd MMM d"_s).toLatin1(), moment.toString(u"MM-dd-yy"_s).toLatin1()};
}

class Golden
{
public:
    explicit Golden(const QString &folder)
        : folder_(folder)
        , expected_(folder + u"/expected"_s)
        , scratch_(QDir::tempPath() + u"/ncx-golden-"_s + QFileInfo(folder).fileName() + u"-XXXXXX"_s)
    {
        scratch_.setAutoRemove(false);
    }

    void check()
    {
        const int failuresBefore = failures();
        copyInput();
        // Neither the language nor the time zone of the user shows in what is written.
        const ProcessResult result =
            runProgram({{u"SOURCE_DATE_EPOCH"_s, QString::number(goldenMoment.toSecsSinceEpoch())},
                        {u"TZ"_s, u"CET-1CEST,M3.5.0,M10.5.0/3"_s},
                        {u"LC_ALL"_s, u"de_DE.UTF-8"_s}});
        EXPECT_EQ(result.exitCode, 0) << qPrintable(result.output);
        EXPECT_EQ(result.errors, QString());
        takeErrorLog(result);
        const QString console = result.output.section(u'\n', 1).replace(scratch_.path(), u"${FOLDER}"_s);
        if (qEnvironmentVariableIntValue("NCX_ACCEPT") == 1)
            accept(console);
        compareFiles();
        if (QFile::exists(folder_ + u"/console.txt"_s)) {
            EXPECT_EQ(console, QString::fromUtf8(readFile(folder_ + u"/console.txt"_s)));
        }
        compileHeaders();
        if (failures() > failuresBefore)
            GTEST_LOG_(ERROR) << "output kept in " << qPrintable(scratch_.path());
        else
            scratch_.remove();
    }

    /// The number of dates in the stored output, which are those of today in a run that is told no other day.
    int checkDates()
    {
        copyInput();
        const QList<QByteArray> before = textsOf(QDateTime::currentDateTime());
        EXPECT_EQ(runProgram({{u"SOURCE_DATE_EPOCH"_s, QString()}}).exitCode, 0);
        const QList<QByteArray> after = textsOf(QDateTime::currentDateTime());
        int dated = 0;
        for (const QString &name : output()) {
            const QByteArray actual = readFile(scratch_.filePath(name));
            for (qsizetype form = 0; form < before.size(); ++form) {
                if (!readFile(expected_ + u'/' + name).contains(textsOf(goldenMoment).at(form)))
                    continue;
                ++dated;
                EXPECT_TRUE(actual.contains(before.at(form)) || actual.contains(after.at(form))) << qPrintable(name);
            }
        }
        scratch_.remove();
        return dated;
    }

private:
    static int failures()
    {
        return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    }

    void copyInput()
    {
        for (const QString &name : QDir(folder_).entryList(QDir::Files | QDir::Hidden)) {
            QFile::copy(folder_ + u'/' + name, scratch_.filePath(name));
            input_.insert(name);
        }
    }

    ProcessResult runProgram(const QList<std::pair<QString, QString>> &environment)
    {
        const QStringList projects = QDir(scratch_.path()).entryList({u"*.ncxt"_s});
        EXPECT_EQ(projects.size(), 1) << "a case holds one project";
        QString project = projects.value(0);
        if (input_.contains(u"rawcan.txt"_s))
            project = withRawCan(project);
        QStringList arguments{u"-project"_s, scratch_.filePath(project)};
        arguments += QString::fromUtf8(readFile(folder_ + u"/args"_s))
                         .replace(u"${EXAMPLES}"_s, QStringLiteral(NCX_SOURCE_DIR "/examples"))
                         .split(u'\n', Qt::SkipEmptyParts);
        ProcessRunner program(u"ncx_cli"_s);
        for (const auto &[name, value] : environment)
            program.environment(name, value);
        return program.arguments(arguments).workingFolder(scratch_.path()).run();
    }

    /// Makes the database project that the text and the messages stand for.
    QString withRawCan(const QString &textProject)
    {
        const QString project = QFileInfo(textProject).completeBaseName() + u".ncxp"_s;
        const auto store = std::make_shared<ObjectDataBase>();
        EXPECT_TRUE(store->openTextDatabase(scratch_.filePath(textProject)));
        const QString messages = QString::fromUtf8(readFile(scratch_.filePath(u"rawcan.txt"_s)));
        ProjectScript(store).run(messages.split(u'\n', Qt::SkipEmptyParts));
        EXPECT_TRUE(store->saveDatabase(scratch_.filePath(project)));
        input_.insert(project);
        return project;
    }

    /// The log holds the banner and the folder, so it is held against the console instead.
    void takeErrorLog(const ProcessResult &result)
    {
        QFile log(scratch_.filePath(u"__ncxerrorlog.txt.bak"_s));
        const QByteArray text = readFile(log.fileName());
        EXPECT_TRUE(text.contains("\nCheck of model consistency started\n"));
        EXPECT_TRUE(result.output.toUtf8().startsWith(text));
        EXPECT_TRUE(log.remove());
    }

    QSet<QString> output() const { return filesIn(scratch_.path()) - input_; }

    void accept(const QString &console)
    {
        QDir(expected_).removeRecursively();
        for (const QString &name : output()) {
            QDir().mkpath(QFileInfo(expected_ + u'/' + name).path());
            QFile::copy(scratch_.filePath(name), expected_ + u'/' + name);
        }
        if (QFile::exists(folder_ + u"/console.txt"_s))
            writeFile(folder_ + u"/console.txt"_s, console.toUtf8());
    }

    void compareFiles()
    {
        QStringList names = output().values();
        QStringList expectedNames = filesIn(expected_).values();
        names.sort();
        expectedNames.sort();
        EXPECT_EQ(names, expectedNames);
        for (const QString &name : names) {
            if (!expectedNames.contains(name))
                continue;
            // Compared line by line, so that a failure shows the lines and not the files.
            const auto lines = readFile(scratch_.filePath(name)).split('\n');
            const auto expectedLines = readFile(expected_ + u'/' + name).split('\n');
            for (qsizetype i = 0; i < std::min(lines.size(), expectedLines.size()); ++i)
                ASSERT_EQ(lines.at(i), expectedLines.at(i)) << qPrintable(name) << ":" << i + 1;
            EXPECT_EQ(lines.size(), expectedLines.size()) << qPrintable(name);
        }
    }

    void compileHeaders()
    {
        const QString header = scratch_.filePath(u"gen_indices.h"_s);
        if (!QFile::exists(header))
            return;
        const ProcessResult result = ProcessRunner(u"/usr/bin/env"_s)
                                         .arguments({u"cc"_s, u"-std=c99"_s, u"-Wall"_s, u"-Wextra"_s, u"-Werror"_s,
                                                     u"-x"_s, u"c"_s, u"-fsyntax-only"_s, header})
                                         .run();
        EXPECT_EQ(result.exitCode, 0) << qPrintable(result.errors);
    }

    QString folder_;
    QString expected_;
    QTemporaryDir scratch_;
    QSet<QString> input_;
};

class Goldens : public testing::TestWithParam<FileCase>
{
};

TEST_P(Goldens, GenerateAsExpected)
{
    Golden(GetParam().path).check();
}

TEST_P(Goldens, HaveTheDateOfToday)
{
    EXPECT_GT(Golden(GetParam().path).checkDates(), 0);
}

INSTANTIATE_TEST_SUITE_P(Projects, Goldens, testing::ValuesIn(projectCases()), caseName);

} // namespace
