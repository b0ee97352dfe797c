#include "ncx_cli/app/climainapp.h"
#include "ncx_cli/app/clioutputhandler.h"
#include "support/processrunner.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString helpText = u"--- CANopen NodeComposer " NCX_VERSION "  Help ---\n"
                         "\t-dbmod\t\tApply a db modification. Only for internal use.\n"
                         "\t-import\t\tSets an importfile. This argument is optional.\n"
                         "\t-project\t\tSets the project file to use. This argument is mandatory.\n"
                         "\t-s\t\tSaves the project file. Could be helpful in combination with import option.\n"
                         "\t-save\t\tSaves the project file. Could be helpful in combination with import option.\n"
                         "\t-stackpath\t\tSets the path to the stack. It is required for SRDO generation; "
                         "otherwise optional.\n"_s;

/// What the check says of a project that names no stack.
const QString noStackPath =
    u"Info: Path to protocol stack not specified. Cannot check if generated code fits to installed stack/framework.\n"
    "Specify path to protocol stack at Options -> Settings.\n"_s;

/// What a run of a project without other findings says; %1 is the folder.
const QString runText = u"\nCheck of model consistency started\n"_s + noStackPath +
                        u"\nCheck of model consistency finished.\n\n"
                        "Generation of gen_indices.h in %1 started\n"
                        "Generation of gen_indices.h generator completed. \n"
                        "Generation finished.\n"
                        "Generation completed.\n"_s;

QByteArray edsWith(int object, const char *name)
{
    return QByteArray("[ManufacturerObjects]\nSupportedObjects=1\n1=0x%1\n\n[%1]\nParameterName=%2\nObjectType=7\n"
                      "DataType=5\nAccessType=rw\nPDOMapping=0\n")
        .replace("%1", QByteArray::number(object, 16))
        .replace("%2", name);
}

class Cli : public testing::Test
{
protected:
    Cli()
    {
        ProjectBuilder project;
        project.checked().save(project_);
        original_ = readFile(project_);
    }
    ~Cli() override { EXPECT_TRUE(QDir(dataFolder()).isEmpty()) << "a working copy was left behind"; }

    QString path(const QString &name) const { return folder_.filePath(name); }
    QString written(const QString &name, const QByteArray &content) const
    {
        writeFile(path(name), content);
        return path(name);
    }
    ProcessResult run(const QStringList &arguments, const QString &program = u"ncx_cli"_s)
    {
        return ProcessRunner(program).arguments(arguments).workingFolder(folder_.path()).run();
    }
    /// What a run said after its banner. Of the files that it wrote only gen_indices.h is kept; the tests of the
    /// generators know the others.
    static QString body(const ProcessResult &result)
    {
        static const QRegularExpression others(u"^Generation of (?!gen_indices\\.h).*(started|completed\\. )\n"_s,
                                               QRegularExpression::MultilineOption);
        return result.output.section(u'\n', 1).remove(others);
    }
    QString runText() const { return ::runText.arg(folder_.path()); }
    /// The saved project, opened anew.
    std::shared_ptr<ObjectDataBase> saved() const
    {
        auto store = std::make_shared<ObjectDataBase>();
        EXPECT_TRUE(store->openDataBase(project_));
        return store;
    }

    QTemporaryDir folder_;
    QString project_ = folder_.filePath(u"device.ncxp"_s);
    QByteArray original_;
};

TEST_F(Cli, AnswersWrongOrMissingArgumentsWithHelp)
{
    struct Row
    {
        QStringList arguments;
        int exitCode;
        QString before;
        QString after;
    };
    const QString notGiven = u"Project not given.\n"_s;
    const QString noProject = u"Error - No project specified.\n"_s;
    const Row rows[] = {
        {{}, 4, {}, u"Error - Parameter error.\n"_s},
        {{u"word"_s}, 2, notGiven, noProject},
        {{u"-Project"_s, project_}, 2, notGiven, noProject},
        {{u"-project="_s + project_}, 2, notGiven, noProject},
        {{u"-save"_s, u"-project"_s}, 2, notGiven, noProject},
        {{u"-help"_s, u"-project"_s, project_}, 0, {}, {}},
        {{u"-project"_s, u"-help"_s}, 0, {}, {}},
    };
    for (const Row &row : rows) {
        const ProcessResult result = run(row.arguments);
        EXPECT_EQ(result.exitCode, row.exitCode) << qPrintable(row.arguments.join(u' '));
        EXPECT_EQ(body(result), row.before + helpText + row.after);
        EXPECT_EQ(result.errors, QString());
    }
    EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files), QStringList{u"device.ncxp"_s});
}

TEST_F(Cli, RunsAndLeavesTheProjectAlone)
{
    const ProcessResult result = ProcessRunner(u"ncx_cli"_s)
                                     .arguments({u"unknown"_s, u"-project"_s, u"device.ncxp"_s, u"-import"_s})
                                     .workingFolder(folder_.path())
                                     .environment(u"LC_ALL"_s, u"C"_s)
                                     .run();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(body(result), runText());
    EXPECT_EQ(result.errors, QString());
    static const QRegularExpression banner(
        u"^CANopen NodeComposer 4\\.3\\.3 Build: [A-Z][a-z]{2} [ \\d]\\d \\d{4} \\d\\d:\\d\\d:\\d\\d$"_s);
    EXPECT_TRUE(banner.match(result.lines().first()).hasMatch()) << qPrintable(result.lines().first());
    EXPECT_EQ(QDir(folder_.path()).entryList({u"*.bak"_s, u"*.ncxp"_s, u"gen_indices.h"_s}, QDir::Files),
              (QStringList{u"__ncxerrorlog.txt.bak"_s, u"device.ncxp"_s, u"gen_indices.h"_s}));
    EXPECT_EQ(readFile(project_), original_);
}

TEST_F(Cli, ImportsInOrderAndSaves)
{
    const QString a = written(u"a.eds"_s, edsWith(0x2000, "First"));
    const QString b = written(u"b.DCF"_s, edsWith(0x2000, "Second"));
    const QString modifier = written(u"mod.txt"_s, "GeneralSettings:co_timer_interval:1000\n");
    const ProcessResult result = run({u"-import"_s, a, u"-s"_s, u"-dbmod"_s, modifier, u"-project"_s, project_,
                                      u"-import"_s, b, u"-stackpath"_s, u"../stack"_s});
    EXPECT_EQ(result.exitCode, 0);
    const QString noFeatureFile = u"Info: No *_featureinfo_*.xml file found in protocol stack folder %1. Cannot check "
                                  "if generated code fits to installed stack/framework.\n"_s;
    EXPECT_EQ(body(result),
              runText().replace(noStackPath, noFeatureFile.arg(QDir::cleanPath(folder_.filePath(u"../stack"_s)))));
    EXPECT_EQ(readFile(project_ + u".bak"_s), original_);
    const auto store = saved();
    EXPECT_EQ(store->getIndexName(0, 0x2000), u"Second");
    EXPECT_EQ(store->getMiscSetting(u"costackpath"_s), u"../stack");
    EXPECT_EQ(store->getGeneralSetting(u"co_timer_interval"_s), u"1000");
    EXPECT_EQ(store->getGeneralSetting(u"use_core_headers"_s), u"V4");
    EXPECT_TRUE(readFile(path(u"gen_indices.h"_s)).contains("#define I_SECOND                 \t0x2000u\n"));
}

TEST_F(Cli, EndsAtTheFirstImportThatFails)
{
    const QString good = written(u"good.eds"_s, edsWith(0x2000, "Good"));
    for (const QString &bad : {path(u"missing.eds"_s), written(u"bad.xyz"_s, "x"), project_ + u".ncxt"_s}) {
        const ProcessResult result = run({u"-project"_s, project_, u"-import"_s, bad, u"-import"_s, good, u"-save"_s});
        EXPECT_EQ(result.exitCode, 5);
        EXPECT_EQ(body(result), u"Import failed: %1\nError - Import error.\n"_s.arg(bad));
    }
    EXPECT_EQ(readFile(project_), original_);
    EXPECT_FALSE(QFile::exists(path(u"gen_indices.h"_s)));
}

TEST_F(Cli, GoesOnWithImportsOfGarbageAndAnUnreadableModifier)
{
    QByteArray noise(1 << 20, '\0');
    for (qsizetype i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<char>((i * i * 31 + (i >> 7)) & 0xFF);
    QFile garbage(path(u"garbage.eds"_s));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    for (int megabyte = 0; megabyte < 100; ++megabyte)
        garbage.write(noise);
    garbage.close();
    QFile endless(path(u"endless.eds"_s));
    ASSERT_TRUE(endless.open(QIODevice::WriteOnly) && endless.resize(32 << 20));
    endless.close();
    for (const QString &file : {garbage.fileName(), endless.fileName()}) {
        const ProcessResult result =
            run({u"-project"_s, project_, u"-import"_s, file, u"-dbmod"_s, path(u"missing.txt"_s)});
        EXPECT_EQ(result.exitCode, 0) << qPrintable(file);
        EXPECT_EQ(body(result), runText());
    }
    EXPECT_EQ(readFile(project_), original_);
}

TEST_F(Cli, RefusesWhatIsNoProject)
{
    ProjectBuilder noLines;
    noLines.store()->removeNode(0);
    ASSERT_TRUE(noLines.save(path(u"nolines.ncxp"_s)));
    ASSERT_TRUE(QDir(folder_.path()).mkdir(u"folder.ncxp"_s));
    const QStringList files{
        path(u"missing.ncxp"_s),
        path(u"folder.ncxp"_s),
        u""_s,
        written(u"empty.ncxp"_s, ""),
        written(u"text.ncxp"_s, "no database\n"),
        written(u"upper.NCXT"_s, "[Nodes]\n0\\name=x\n"),
        written(u"truncated.ncxp"_s, original_.first(2000)),
        path(u"nolines.ncxp"_s),
    };
    for (const QString &file : files) {
        const QByteArray before = file.isEmpty() ? QByteArray() : readFile(file);
        const ProcessResult result = run({u"-project"_s, file, u"-save"_s});
        EXPECT_EQ(result.exitCode, 3) << qPrintable(file);
        EXPECT_EQ(body(result), u"Error - Open project failed.\n") << qPrintable(file);
        EXPECT_EQ(file.isEmpty() ? QByteArray() : readFile(file), before);
        EXPECT_FALSE(QFile::exists(file + u".bak"_s));
    }
}

TEST_F(Cli, LeavesATextThatIsNoProjectAsItIs)
{
    for (const QByteArray &text : {QByteArray("remember the milk\n"), QByteArray("[Foo]\nbar=1\n")}) {
        const QString file = written(u"notes.ncxt"_s, text);
        const ProcessResult result = run({u"-project"_s, file, u"-save"_s});
        EXPECT_EQ(result.exitCode, 7);
        EXPECT_TRUE(result.output.contains(u"ERROR - %1 is no project and is left as it is.\n"_s.arg(file)));
        EXPECT_EQ(readFile(file), text);
    }

    ASSERT_EQ(mkfifo(qPrintable(path(u"pipe.ncxt"_s)), 0600), 0);
    run({u"-project"_s, path(u"pipe.ncxt"_s), u"-save"_s});
    EXPECT_FALSE(QFileInfo(path(u"pipe.ncxt"_s)).isFile());

    run({u"-project"_s, written(u"new.ncxt"_s, ""), u"-save"_s});
    EXPECT_TRUE(readFile(path(u"new.ncxt"_s)).contains("[MiscSettings]"));
}

TEST_F(Cli, OpensNothingWithoutAPlaceForItsWorkingCopy)
{
    for (const QString &file : {project_, written(u"text.ncxt"_s, "[GeneralSettings]\nline0type=1\n")}) {
        const ProcessResult result = ProcessRunner(u"ncx_cli"_s)
                                         .arguments({u"-project"_s, file, u"-save"_s})
                                         .environment(u"XDG_DATA_HOME"_s, u"/dev/null"_s)
                                         .run();
        EXPECT_EQ(result.exitCode, 3);
        EXPECT_EQ(body(result), u"Error - Open project failed.\n");
    }
}

TEST_F(Cli, SurvivesAProjectCutAnywhere)
{
    for (qsizetype size = 1; size < original_.size(); size += 3001) {
        const ProcessResult result = run({u"-project"_s, written(u"cut.ncxp"_s, original_.first(size))});
        EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 3) << size << ": " << result.exitCode;
    }
}

TEST_F(Cli, HidesFilesThatCannotBeReadOrWritten)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root reads and writes everything";
    QFile(project_).setPermissions(QFileDevice::WriteOwner);
    EXPECT_EQ(run({u"-project"_s, project_}).exitCode, 3);
    QFile(project_).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);

    QFile(written(u"gen_indices.h"_s, "mine")).setPermissions(QFileDevice::ReadOwner);
    EXPECT_TRUE(body(run({u"-project"_s, project_}))
                    .contains(u"The file in gen_indices.h in %1 is not writable\n"_s.arg(folder_.path())));
    EXPECT_EQ(readFile(path(u"gen_indices.h"_s)), "mine");

    const QString text = written(u"t.ncxt"_s, "[GeneralSettings]\nline0type=1\n");
    QFile(folder_.path()).setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const ProcessResult result = run({u"-project"_s, project_});
    run({u"-project"_s, text, u"-save"_s});
    QFile(folder_.path()).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    EXPECT_EQ(result.exitCode, 8);
    EXPECT_TRUE(body(result).endsWith(u"ABORT - The output folder %1 is not writeable.\n"
                                      "Error - The output folder is not writeable\n"_s.arg(folder_.path())));
    EXPECT_TRUE(readFile(text).contains("FileHash="));
}

TEST_F(Cli, OpensByWhatTheBuildMayOpen)
{
    QCoreApplication::setApplicationName(u"J1939 NodeComposer"_s);
    ASSERT_TRUE(ProjectBuilder().line(0, 2).checked().save(path(u"j.ncxp"_s)));
    QCoreApplication::setApplicationName(u"CANopen NodeComposer"_s);
    const QList<std::tuple<QString, QString, int>> builds{
        {u"ncx_cli"_s, u"CANopen NodeComposer"_s, 3},
        {u"ncx_cli_j1939"_s, u"J1939 NodeComposer"_s, 0},
        {u"ncx_cli_can"_s, u"CAN NodeComposer"_s, 0},
        {u"ncx_cli_energybus"_s, u"EnergyBus NodeAssistant"_s, 0},
    };
    for (const auto &[program, name, exitCode] : builds) {
        const ProcessResult result = run({u"-project"_s, path(u"j.ncxp"_s)}, program);
        EXPECT_EQ(result.exitCode, exitCode) << qPrintable(program);
        EXPECT_TRUE(result.output.startsWith(name + u" " NCX_VERSION " Build: "_s));
        EXPECT_TRUE(QDir(dataFolder() + u"/../"_s + name).isEmpty());
        const ProcessResult server = run({u"-project"_s, u"--mcp"_s}, program);
        const bool serves = name != "EnergyBus NodeAssistant"_L1;
        EXPECT_EQ(server.exitCode, serves ? 0 : 1);
        EXPECT_EQ(server.output, QString());
        EXPECT_EQ(server.errors,
                  serves ? u""_s : u"ncx_cli --mcp is not supported for EnergyBus NodeAssistant (NEAX) builds.\n"_s);
    }
}

TEST_F(Cli, RunsTwiceAtTheSameMoment)
{
    QTemporaryDir other;
    ASSERT_TRUE(QFile::copy(project_, other.filePath(u"device.ncxp"_s)));
    for (int round = 0; round < 5; ++round) {
        ProcessRunner first(u"ncx_cli"_s);
        ProcessRunner second(u"ncx_cli"_s);
        first.arguments({u"-project"_s, project_, u"-save"_s}).start();
        second.arguments({u"-project"_s, other.filePath(u"device.ncxp"_s), u"-save"_s}).start();
        EXPECT_EQ(first.finish().exitCode, 0);
        EXPECT_EQ(second.finish().exitCode, 0);
    }
    EXPECT_EQ(saved()->getIndexName(0, 0x1000), u"Device type");
}

TEST_F(Cli, SavesEvenIfNobodyReadsItsOutput)
{
    const QString pipe = QStringLiteral("\"" NCX_BIN_DIR "/ncx_cli\" -project \"%1\" -save | true").arg(project_);
    ProcessRunner(u"/bin/sh"_s).arguments({u"-c"_s, pipe}).run();
    EXPECT_TRUE(QFile::exists(project_ + u".bak"_s));
}

TEST_F(Cli, WritesTheDebugLogWhereItIsAskedFor)
{
    const ProcessResult result = ProcessRunner(u"ncx_cli"_s)
                                     .arguments({u"-project"_s, project_, u"-dbmod"_s, written(u"m"_s, "# none\n")})
                                     .environment(u"NCX_LOG"_s, path(u"debug.log"_s))
                                     .run();
    EXPECT_EQ(body(result), runText());
    EXPECT_EQ(result.errors, QString());
    const QByteArray log = readFile(path(u"debug.log"_s));
    EXPECT_TRUE(log.contains("Applying ")) << log.constData();
    for (const char *warning : {"QObject", "QThread", "QSql", "QString::arg"})
        EXPECT_FALSE(log.contains(warning)) << log.constData();
}

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
