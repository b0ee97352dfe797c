#include "ncx_cli/app/climainapp.h"
#include "ncx_cli/app/clioutputhandler.h"
#include "store/objectdatabase.h"
#include "support/shellcase.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

/// A folder with the files of tests/data/cli/files, and the project there also as device.ncxp.
class CliFolder : public CaseFolder
{
public:
    CliFolder()
        : CaseFolder(u"cli/files"_s)
    {
        ObjectDataBase store;
        EXPECT_TRUE(store.openTextDatabase(path(u"device.ncxt"_s)));
        EXPECT_TRUE(store.saveDatabase(path(u"device.ncxp"_s)));
    }
};

class Cli : public testing::TestWithParam<TextCase>
{
};

TEST_P(Cli, SaysWhatIsExpected)
{
    if (GetParam().path.endsWith("/rights.txt"_L1) && geteuid() == 0)
        GTEST_SKIP() << "root reads and writes everything";
    CliFolder().play(GetParam());
    EXPECT_TRUE(QDir(dataFolder()).isEmpty()) << "a working copy was left behind";
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
