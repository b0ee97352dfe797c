#include "ncx_cli/app/climainapp.h"
#include "ncx_cli/app/clioutputhandler.h"
#include "store/objectdatabase.h"
#include "support/datacases.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// A case begins in a file tests/data/cli/*.txt with a new folder, which holds what tests/data/cli/files has, and the
// project there also as device.ncxp:
//   == TITLE    what the case is about
//   # ...       a remark
//   $ COMMAND   runs a command of the shell, which finds the programs of this build
// Behind a command stands what it says, on either output, with ${FOLDER} for the folder, ${VERSION} and ${BUILD} for
// those of the programs, and [CODE] where it does not end with 0.
// NCX_ACCEPT=1 in the environment takes what this build says as expected, to be read as a difference.

namespace {

const QString dataRoot = QStringLiteral(NCX_SOURCE_DIR "/tests/data/cli/");

class CliCase
{
public:
    CliCase()
    {
        for (const QString &name : QDir(dataRoot + u"files"_s).entryList(QDir::Files))
            QFile::copy(dataRoot + u"files/"_s + name, folder_.filePath(name));
        ObjectDataBase store;
        EXPECT_TRUE(store.openTextDatabase(folder_.filePath(u"device.ncxt"_s)));
        EXPECT_TRUE(store.saveDatabase(folder_.filePath(u"device.ncxp"_s)));
    }
    ~CliCase() { EXPECT_TRUE(QDir(dataFolder()).isEmpty()) << "a working copy was left behind"; }
    Q_DISABLE_COPY_MOVE(CliCase)

    QString path(const QString &name) const { return folder_.filePath(name); }

    ProcessResult run(const QString &command)
    {
        return ProcessRunner(u"/bin/sh"_s)
            .arguments({u"-c"_s, u"PATH=\"%1:$PATH\"; { %2\n} 2>&1"_s.arg(QStringLiteral(NCX_BIN_DIR), command)})
            .workingFolder(folder_.path())
            .run();
    }

    /// What a command says, a line each.
    QStringList said(const QString &command)
    {
        static const QRegularExpression build(u" Build: [A-Z][a-z]{2} [ \\d]\\d \\d{4} \\d\\d:\\d\\d:\\d\\d"_s);
        const ProcessResult result = run(command);
        QStringList lines = QString(result.output)
                                .replace(folder_.path(), "${FOLDER}"_L1)
                                .replace(build, u" Build: ${BUILD}"_s)
                                .replace(QStringLiteral(NCX_VERSION), "${VERSION}"_L1)
                                .split(u'\n');
        if (lines.last().isEmpty())
            lines.removeLast();
        if (result.exitCode != 0)
            lines.append(u"[%1]"_s.arg(result.exitCode));
        return lines;
    }

private:
    QTemporaryDir folder_;
};

class Cli : public testing::TestWithParam<TextCase>
{
};

TEST_P(Cli, SaysWhatIsExpected)
{
    if (GetParam().path.endsWith("/rights.txt"_L1) && geteuid() == 0)
        GTEST_SKIP() << "root reads and writes everything";
    const QStringList &lines = GetParam().lines;
    QStringList played{lines.first()};
    CliCase cliCase;
    for (const QString &line : lines.sliced(1)) {
        if (line.startsWith("$ "_L1))
            played += QStringList{line} + cliCase.said(line.sliced(2));
        else if (line.startsWith("# "_L1))
            played += line;
    }
    expectCase(GetParam(), played + QStringList{u""_s});
}

INSTANTIATE_TEST_SUITE_P(Program, Cli, testing::ValuesIn(textCases(u"cli"_s, {u"== "_s})), caseName);

TEST(MainApp, TurnsTheResultOfARunIntoAnExitCode)
{
    const QList<std::tuple<GeneratorMainHandler::GeneratorResult, int, QString>> rows{
        {GeneratorMainHandler::GenerationDone, 0, u""_s},
        {GeneratorMainHandler::CheckFailed, 7, u"Error - Check of model consistency returns error.\n"_s},
        {GeneratorMainHandler::OutputFolderNotWritable, 8, u"Error - The output folder is not writeable\n"_s},
        {GeneratorMainHandler::TemplateFailure, 9, u"Error - SRDO template not found.\n"_s},
    };
    for (const auto &[runResult, exitCode, text] : rows) {
        CLIOutputHandler output;
        CLIMainApp app({}, &output);
        int finished = 0;
        QObject::connect(&app, &CLIMainApp::finished, &app, [&finished] { ++finished; });
        app.generatorFinished(runResult);
        EXPECT_EQ(app.exitCodeWithMessage(), exitCode);
        EXPECT_EQ(output.collectedText(), text);
        EXPECT_EQ(finished, 1);
    }
}

} // namespace
