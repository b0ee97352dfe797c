#include "check/modelchecker.h"
#include "generate/base/filegenerator.h"
#include "generate/base/utf8sink.h"
#include "generate/recorder.h"
#include "generate/run/generationrun.h"
#include "generate/run/generatormainhandler.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <unistd.h>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

/// Writes its name, or fails.
class NamedGenerator : public FileGenerator
{
public:
    explicit NamedGenerator(QString name, bool failing = false)
        : name_(std::move(name))
        , failing_(failing)
    {
    }
    QString fileName() const override
    {
        return isMultiLine() ? u"%1_%2%3.txt"_s.arg(name_).arg(line()).arg(fileSuffix()) : name_ + u".txt"_s;
    }
    void write(Utf8Sink &sink) override
    {
        sink << name_;
        if (failing_)
            fail(TemplateError, u"Broken template."_s);
    }

private:
    QString name_;
    bool failing_;
};

template <char name, bool failing = false>
std::unique_ptr<FileGenerator> make(const RunContext & /*run*/, quint8 /*line*/)
{
    return std::make_unique<NamedGenerator>(QString(QLatin1Char(name)), failing);
}

constexpr auto always = [](const RunContext &) { return true; };

class Run : public testing::Test
{
protected:
    Run()
        : handler_(&output_)
    {
        QObject::connect(&handler_, &GeneratorMainHandler::finished, &handler_,
                         [this](GeneratorMainHandler::GeneratorResult result) { results_.append(result); });
        handler_.setRunTable({});
        handler_.setCheckRules({});
    }

    QString path(const QString &name) const { return folder_.filePath(name); }
    bool exists(const QString &name) const { return QFile::exists(path(name)); }
    void open(ProjectBuilder &project)
    {
        ASSERT_TRUE(project.save(path(u"device.v2.ncxp"_s)));
        ASSERT_TRUE(handler_.openProject(path(u"device.v2.ncxp"_s)));
    }
    /// Runs, and returns the messages with the folder's path as "DIR".
    QStringList generate(bool ignoreCheckErrors = false)
    {
        output_.messages.clear();
        results_.clear();
        handler_.generate(ignoreCheckErrors);
        return QStringList(output_.messages).replaceInStrings(folder_.path(), u"DIR"_s);
    }

    QTemporaryDir folder_;
    Recorder output_;
    GeneratorMainHandler handler_;
    QList<int> results_;
};

const QStringList checkPassed{u"\nCheck of model consistency started"_s, u"\nCheck of model consistency finished.\n"_s};
const QStringList endOfRun{u"Generation finished."_s, u"Generation completed."_s};

TEST_F(Run, FailsTheJobsOfAProjectWithoutLines)
{
    ProjectBuilder project;
    open(project);
    const auto store = handler_.database();
    ASSERT_TRUE(store->removeNode(0));
    const RunRow rows[] = {{.applies = always, .make = make<'a'>, .started = "A %2 in %1"}};
    handler_.setRunTable(rows);
    EXPECT_EQ(
        generate().sliced(2),
        QStringList({u"A a.txt in DIR"_s, u"<b>ERROR - Generation of a.txt failed. The project has no line.</b>"_s}) +
            endOfRun);
    EXPECT_EQ(results_, QList<int>{GeneratorMainHandler::GenerationDone});
    EXPECT_FALSE(exists(u"a.txt"_s));

    for (const RunRow &row : runTable()) {
        if (!row.make)
            continue;
        const auto generator = row.make(RunContext::ofProject(store), 0);
        EXPECT_EQ(generator->setDatabase(store), AbstractGenerator::NoStore);
        generator->setOutputFolder(folder_.path());
        EXPECT_TRUE(generator->checkWritable());
        EXPECT_EQ(generator->startJob(), AbstractGenerator::Success);
        generator->waitForJob();
        EXPECT_EQ(generator->errorCode(), AbstractGenerator::StoreError) << row.started;
    }
}

TEST_F(Run, WalksRowsInOrderAndGroupsLineByLine)
{
    ProjectBuilder project;
    open(project.line(1, 5).line(2, 2).line(3, 3));
    const RunRow rows[] = {
        {.applies = [](const RunContext &run) { return run.hasRawCAN; }, .make = make<'x'>},
        {.applies = always, .lines = RunLines::CANopen, .suffix = "_co", .make = make<'a'>, .started = "A %2 in %1"},
        {.applies = always,
         .lines = RunLines::J1939,
         .lineByLine = true,
         .suffix = "_j",
         .make = make<'b'>,
         .started = "B %2 in %1"},
        {.applies = always,
         .lines = RunLines::Every,
         .lineByLine = true,
         .make = make<'c'>,
         .started = "C %2 in %1",
         .nameInTexts = [](const RunContext &, quint8 line) { return u"line %1"_s.arg(line); }},
        {.applies = always,
         .step =
             [](GenerationRun &run, quint8) {
                 run.message(QFileInfo(run.filePath(u"s"_s)).path());
                 return RunFlow::Continue;
             }},
    };
    handler_.setRunTable(rows);
    QStringList started = generate().filter(QRegularExpression(u"^[ABCD]"_s));
    EXPECT_EQ(started, (QStringList{u"A a_0.txt in DIR"_s, u"A a_1_co.txt in DIR"_s, u"C line 0 in DIR"_s,
                                    u"B b_1_j.txt in DIR"_s, u"C line 1 in DIR"_s, u"B b_2.txt in DIR"_s,
                                    u"C line 2 in DIR"_s, u"C line 3 in DIR"_s, u"DIR"_s}));
    EXPECT_EQ(results_, QList<int>{GeneratorMainHandler::GenerationDone});
    EXPECT_TRUE(exists(u"a_1_co.txt"_s) && exists(u"c_3.txt"_s));
}

TEST_F(Run, GoesOnAfterAFileThatFails)
{
    ProjectBuilder project;
    open(project);
    TestSupport::writeFile(path(u"b.txt"_s), "former");
    ASSERT_TRUE(QDir(folder_.path()).mkdir(u"c.txt"_s));
    const RunRow rows[] = {
        {.applies = always, .make = make<'b', true>, .started = "B in %1"},
        {.applies = always, .make = make<'c'>, .started = "C in %1"},
        {.applies = always, .make = make<'d'>, .started = "D in %1"},
    };
    handler_.setRunTable(rows);
    const QStringList messages = generate();
    EXPECT_EQ(
        messages.mid(2, 3),
        (QStringList{u"B in DIR"_s, u"<b>ERROR - Generation of b.txt failed. Broken template.</b>"_s, u"C in DIR"_s}));
    EXPECT_TRUE(messages.at(5).startsWith("<b>ERROR - Generation of c.txt failed. "_L1)) << qPrintable(messages.at(5));
    EXPECT_EQ(messages.mid(6), (QStringList{u"D in DIR"_s, u"Generation of d.txt completed. "_s} + endOfRun));
    EXPECT_EQ(results_, QList<int>{GeneratorMainHandler::GenerationDone});
    EXPECT_EQ(TestSupport::readFile(path(u"b.txt"_s)), "former");
}

TEST_F(Run, EndsAtATemplateFailure)
{
    ProjectBuilder project;
    open(project);
    const RunRow rows[] = {
        {.applies = always, .make = make<'a'>, .started = "in %1"},
        {.applies = always,
         .make = make<'b', true>,
         .started = "in %1",
         .after =
             [](GenerationRun &run, FileGenerator &generator) {
                 if (generator.errorCode() != AbstractGenerator::TemplateError)
                     return RunFlow::Continue;
                 run.message(generator.errorText());
                 return RunFlow::EndWithTemplateFailure;
             }},
        {.applies = always, .make = make<'c'>, .started = "in %1"},
    };
    handler_.setRunTable(rows);
    EXPECT_EQ(generate().last(), u"Broken template.");
    EXPECT_EQ(results_, QList<int>{GeneratorMainHandler::TemplateFailure});
    EXPECT_TRUE(exists(u"a.txt"_s) && !exists(u"b.txt"_s) && !exists(u"c.txt"_s));
}

TEST_F(Run, StopsAtCheckErrorsUnlessTheyAreIgnored)
{
    const ProjectRule errors[] = {rule<ProjectCheck>("errors"_L1, [](ProjectCheck &check) {
        check.error(u"first"_s);
        check.redError(u"second"_s);
        check.warning(WG_EDS, u"third"_s);
    })};
    const CheckRules rules{.common = errors, .canOpen = {}, .j1939 = {}, .rawCan = {}};
    ProjectBuilder project;
    open(project.misc(u"SuppressedWarningGroups"_s, u" wg_eds"_s).general(u"line0type"_s, u"3"_s));
    handler_.setCheckRules(rules);
    const QString note = u"<strong>Note: </strong>1 warning(s) suppressed by the project settings:\n"
                         "&nbsp;&nbsp;EDS/XDD documentation quality (WG_EDS): 1"_s;
    const QStringList found{checkPassed.at(0), u"<strong>Error: </strong>first"_s,
                            u"<strong><font color='red'>Error: </font></strong>second"_s,
                            u"Warning line type not set for line 0."_s, note};
    EXPECT_EQ(generate(), found + QStringList{u"ABORT - Check of model consistency finished: failed (2 errors)"_s});
    EXPECT_EQ(results_, QList<int>{GeneratorMainHandler::CheckFailed});
    EXPECT_EQ(TestSupport::readFile(path(u"__ncxerrorlog.txt"_s)), found.join(u'\n').toUtf8());
    EXPECT_FALSE(exists(u"__ncxerrorlog.txt.bak"_s));

    EXPECT_EQ(generate(true), found + QStringList{checkPassed.at(1)} + endOfRun);
    EXPECT_FALSE(exists(u"__ncxerrorlog.txt"_s));
    EXPECT_EQ(TestSupport::readFile(path(u"__ncxerrorlog.txt.bak"_s)), found.join(u'\n').toUtf8());
    TestSupport::writeFile(path(u"__ncxerrorlog.txt.bak"_s), "older");
    generate(true);
    EXPECT_EQ(TestSupport::readFile(path(u"__ncxerrorlog.txt.bak"_s)), "older");

    QStringList messages{u"old"_s};
    EXPECT_EQ(handler_.checkModel(messages), 2);
    EXPECT_EQ(messages, (QStringList{found.at(1), found.at(2), u"Warning: line type not set for line 0."_s, note}));
}

TEST_F(Run, ChecksEachLineByItsTypeUnderAHeading)
{
    const auto named = [](const QString &name) {
        return rule<Check>("named"_L1, [name](Check &check) {
            check.hint(WG_CONFIG, name + QString::number(check.line().number()));
            const bool corrects = name == u"C";
            EXPECT_EQ(corrects && check.correctCobId(0x1800, 1, {}, {}), corrects);
        });
    };
    const LineRule canOpen[] = {named(u"C"_s)};
    const LineRule j1939[] = {named(u"J"_s)};
    const LineRule rawCan[] = {named(u"R"_s)};
    const CheckRules rules{.common = {}, .canOpen = canOpen, .j1939 = j1939, .rawCan = rawCan};
    handler_.setCheckRules(rules);
    ProjectBuilder project;
    quint8 line = 0;
    for (const int type : {1, 2, 4, 5, 6, 7})
        project.line(line++, type);
    open(project.line(254, 1));
    int corrections = 0;
    QObject::connect(&handler_, &GeneratorMainHandler::doneCorrection, &handler_, [&] { ++corrections; });
    const QStringList messages = generate();
    EXPECT_EQ(messages.filter(QRegularExpression(u"^[CJR]"_s)).join(u""), u"C0J1R2C3J3C4R4J5R5");
    EXPECT_EQ(messages.mid(1, 2),
              (QStringList{u"> "_s, u"> <strong>________________________________________ Checking line 0 "
                                    "________________________________________</strong>"_s}));
    EXPECT_EQ(corrections, 1);
}

TEST_F(Run, RemovesTheAddressClaimOfJ1939LinesOnly)
{
    ProjectBuilder project;
    for (quint8 line = 0; line < 3; ++line) {
        project.line(line, line == 0 ? 4 : 2 + 3 * (line - 1));
        project.pgn(60928, ObjectDataBase::transmit, u"Claim"_s).pgn(60928, ObjectDataBase::receive, u"Claim"_s);
    }
    open(project);
    generate();
    QList<bool> left;
    for (quint8 line = 0; line < 3; ++line)
        left << handler_.database()->pgnExists(line, 60928, ObjectDataBase::transmit)
             << handler_.database()->pgnExists(line, 60928, ObjectDataBase::receive);
    EXPECT_EQ(left, (QList<bool>{true, true, false, true, false, true}));
}

TEST_F(Run, EndsWhereItsWatchSaysSo)
{
    ProjectBuilder project;
    open(project);
    const RunRow rows[] = {{.applies = always, .make = make<'a'>, .started = "A"},
                           {.applies = [](const RunContext &) { return false; }, .make = make<'b'>, .started = "B"},
                           {.applies = always, .make = make<'c'>, .started = "C"},
                           {.applies = always, .make = make<'d'>, .started = "D"}};
    handler_.setRunTable(rows);
    QStringList asked;
    handler_.setWatch([&asked](qsizetype done, qsizetype total) {
        asked.append(u"%1/%2"_s.arg(done).arg(total));
        return done < 2;
    });
    generate();
    EXPECT_EQ(asked, QStringList({u"0/3"_s, u"1/3"_s, u"2/3"_s}));
    EXPECT_EQ(results_, QList<int>{GeneratorMainHandler::GenerationEnded});
    EXPECT_TRUE(exists(u"a.txt"_s) && exists(u"c.txt"_s));
    EXPECT_FALSE(exists(u"d.txt"_s));
    handler_.setWatch({});
    generate();
    EXPECT_EQ(results_, QList<int>{GeneratorMainHandler::GenerationDone});
}

TEST_F(Run, RefusesAFolderThatIsNone)
{
    ProjectBuilder project;
    open(project);
    ASSERT_TRUE(QFile(path(u"file"_s)).open(QIODevice::WriteOnly));
    for (const QString &name : {u"missing"_s, u"file"_s}) {
        handler_.setOutputFolder(path(name));
        EXPECT_EQ(generate(),
                  checkPassed + QStringList{u"ABORT - The output folder DIR/%1 is not writeable."_s.arg(name)});
        EXPECT_EQ(results_.last(), GeneratorMainHandler::OutputFolderNotWritable);
    }
}

TEST_F(Run, NamesTheFilesThatAreNotWritable)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everything";
    const QString said = u"The %1 in DIR is not writable"_s;
    for (const auto &[type, files] :
         {std::pair(7, QStringList{u"file gen_mp.c"_s, u"file gen_extern_decl.h"_s}),
          {4, {u"file gen_rawcan.c"_s, u"file gen_extern_decl.h"_s}},
          {1,
           {u"file device.v2.csv"_s, u"file device.v2.icsv"_s, u"EDS file device.v2.eds"_s,
            u"EDS file device.v2_A.eds"_s, u"EDS file device.v2_A.eds"_s, u"XDD file 00000000_device.v2.xdd"_s}}}) {
        ProjectBuilder project;
        project.line(0, type).general(u"canfd_supported"_s, type == 1 ? u"1"_s : u"0"_s);
        project.object(0x2000, u"Tagged"_s, {{u"eds_define"_s, u"A"_s}}).sub(0, u"Tagged"_s);
        handler_.setRunTable(runTable());
        open(project);
        QStringList expected;
        for (const QString &file : files) {
            TestSupport::writeFile(path(file.section(u' ', -1)), "former");
            QFile::setPermissions(path(file.section(u' ', -1)), QFile::ReadOwner);
            expected.append(said.arg(file));
        }
        EXPECT_EQ(generate(true).filter(u"not writable"_s), expected);
        for (const QString &file : files)
            EXPECT_EQ(TestSupport::readFile(path(file.section(u' ', -1))), "former");
    }
}

TEST_F(Run, OpenForcesItsSettingsAndTakesThePath)
{
    ProjectBuilder project;
    open(project.general(u"use_core_headers"_s, u"old"_s));
    EXPECT_EQ(handler_.database()->getGeneralSetting(u"use_core_headers"_s), u"V4");
    EXPECT_EQ(handler_.database()->getGeneralSetting(u"new_init_structure"_s), u"1");
    EXPECT_EQ(handler_.projectBaseName(), u"device.v2");
    EXPECT_EQ(handler_.outputFolder(), folder_.path());
    EXPECT_EQ(handler_.projectPath(), path(u"device.v2.ncxp"_s));
    EXPECT_FALSE(handler_.openProject(path(u"missing.ncxp"_s)));
    EXPECT_EQ(handler_.outputFolder(), folder_.path());
}

TEST_F(Run, TellsOfASaveThatFails)
{
    ProjectBuilder project;
    open(project);
    handler_.saveProject();
    EXPECT_EQ(output_.messages, QStringList());
    ASSERT_TRUE(QDir(folder_.path()).removeRecursively());
    handler_.saveProject();
    EXPECT_EQ(output_.messages,
              QStringList{u"ERROR - The project cannot be written to %1."_s.arg(path(u"device.v2.ncxp"_s))});
}

TEST(OutputHandler, RemovesMarkupGreedilyUpToAFullStop)
{
    struct Row
    {
        const char *text;
        const char *plain;
    };
    const Row rows[] = {
        {"plain", "plain"},
        {"<b>ERROR - Generation of gen_define.h failed. text</b>", "ERROR - Generation of gen_define.h failed. text"},
        {"<strong>____ Checking line 1 ____</strong>", ""},
        {"<strong><font color='red'>Error: </font></strong>Timer not set in Settings -> Hardware/Target.",
         " Hardware/Target."},
        {"a < b. c > d", "a < b. c > d"},
        {"<i>one</i>\n<i>two</i>. <b>x", ". x"},
    };
    for (const Row &row : rows)
        EXPECT_EQ(OutputHandlerBase::withoutMarkup(QString::fromLatin1(row.text)).toStdString(), row.plain);
}

} // namespace
