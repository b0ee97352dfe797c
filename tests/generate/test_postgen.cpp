#include "generate/recorder.h"
#include "generate/run/postgenprocessor.h"
#include "generate/run/postgenprogresshandler.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;
using TestSupport::readFile;
using TestSupport::writeFile;

namespace {

class Display : public PostGenProgressHandler
{
public:
    void processStarted() override { events.append(u"started"_s); }
    void report(const QString &text) override { events.append(text); }
    void processEnded() override { events.append(u"ended"_s); }

    QStringList events;
};

const QString errorHeader = u"Post generation process error output:\n"_s;
const QString outputHeader = u"Post generation process standard output:\n"_s;
const QString completed = u"Generation completed."_s;

class PostGen : public testing::Test
{
protected:
    PostGen() { start(); }
    ~PostGen() override
    {
        QDir::setCurrent(former_);
        QFile::remove(settingsFile());
    }

    static QString settingsFile()
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
               u"/norvane/CANopen NodeComposer.ini"_s;
    }

    void start()
    {
        processor_ = std::make_unique<PostGenProcessor>(output_);
        processor_->setDatabase(project_.store());
        processor_->setProject(folder_.path(), u"device.v2"_s);
    }

    QString path(const QString &name) const { return folder_.filePath(name); }

    /// Settings of the user. Each file is longer than the one before it: the framework knows a changed file by its
    /// size, where it has been changed in quick succession.
    void user(const QByteArray &settings)
    {
        padding_ += 'x';
        QDir().mkpath(QFileInfo(settingsFile()).path());
        ASSERT_TRUE(writeFile(settingsFile(), settings + "[padding]\nx=" + padding_ + '\n'));
    }

    QString script(const QString &name, const QByteArray &lines)
    {
        EXPECT_TRUE(writeFile(path(name), "#!/bin/sh\n" + lines));
        QFile::setPermissions(path(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path(name);
    }

    /// A command of the project.
    void command(const QString &program, const QString &arguments, bool wait)
    {
        project_.misc(u"postGenEnabled"_s, u"true"_s)
            .misc(u"postgencmd"_s, program)
            .misc(u"postgencmdargs"_s, arguments)
            .misc(u"postGenWait"_s, wait ? u"true"_s : u"false"_s);
    }

    QStringList run()
    {
        output_.messages.clear();
        processor_->run();
        return output_.messages;
    }

    static inline QByteArray padding_;
    QString former_ = QDir::currentPath();
    QTemporaryDir folder_{QDir::tempPath() + u"/post gen %D-XXXXXX"_s};
    ProjectBuilder project_;
    Recorder output_;
    std::unique_ptr<PostGenProcessor> processor_;
};

} // namespace

TEST_F(PostGen, EndsWithItsMessageWhereNothingIsConfigured)
{
    EXPECT_EQ(run(), QStringList{completed});
    project_.misc(u"postGenEnabled"_s, u"true"_s); // without a command
    user("[General]\npostGenEnabled=true\npostgenerationcommand=/bin/false\nwaitPostGen=true\n");
    EXPECT_EQ(run(), QStringList{completed});
}

TEST_F(PostGen, RunsTheCommandWithItsArguments)
{
    const QString program =
        script(u"command.sh"_s, "pwd >> log\nfor a in \"$@\"; do printf '%s\\n' \"$a\" >> log; done\n");
    command(program, u"-p  %P x%Dy %N%N 100% %%N %X"_s, true);
    EXPECT_EQ(run(), (QStringList{u"Post generation process running ... "_s,
                                  u"Post generation process finished with code 0"_s, completed}));
    const QString folder = folder_.path();
    EXPECT_EQ(QString::fromUtf8(readFile(path(u"log"_s))).split(u'\n', Qt::SkipEmptyParts),
              (QStringList{folder, u"-p"_s, folder + u"/device.v2.ncxp"_s, u"x%1y"_s.arg(folder),
                           u"device.v2.ncxpdevice.v2.ncxp"_s, u"100%"_s, u"%device.v2.ncxp"_s, u"%X"_s}));
    EXPECT_EQ(QDir::currentPath(), folder);
}

TEST_F(PostGen, TakesTheUsersCommandWhereTheProjectHasNone)
{
    const QString program = script(u"own.sh"_s, "exit $1\n");
    user("[General]\npostGenEnabled=true\npostgenerationcommand=" + program.toUtf8() +
         "\npostgenerationcommandarguments=4\nwaitPostGen=true\n");
    EXPECT_EQ(run().last(), u"<b>Warning: Generation completed, but post gen process returned 4.</b>");
    command(program, u"3"_s, true);
    EXPECT_EQ(run(),
              (QStringList{u"Post generation process running ... "_s, u"Post generation process finished with code 3"_s,
                           u"<b>Warning: Generation completed, but post gen process returned 3.</b>"_s}));
    command(program, u"3"_s, false);
    EXPECT_EQ(run().last(), completed); // not waited for, and nothing is left of the code before
}

TEST_F(PostGen, PassesBothStreamsOn)
{
    command(script(u"chatty.sh"_s, "echo '  one   two'\necho >&2 'bad'\nprintf 'three\\n\\tfour'\n"
                                   "i=0; while [ $i -lt 3000 ]; do echo \"line $i of much\"; i=$((i+1)); done\n"),
            {}, true);
    const QStringList messages = run();
    EXPECT_EQ(messages.count(errorHeader), 1);
    EXPECT_EQ(messages.count(outputHeader), 1);
    EXPECT_TRUE(messages.contains(u"> \tbad"_s));
    QString everything;
    for (const QString &message : messages) {
        if (message.startsWith(u"> \t") && message != u"> \tbad")
            everything += message.sliced(3) + u' ';
    }
    EXPECT_TRUE(everything.startsWith(u"one two three four"_s)) << qPrintable(everything.first(40));
    EXPECT_TRUE(everything.trimmed().endsWith(u"line 2999 of much"_s));
    EXPECT_EQ(messages.mid(messages.size() - 2),
              (QStringList{u"Post generation process finished with code 0"_s, completed}));
}

TEST_F(PostGen, GoesOnWithoutACommandThatCannotStart)
{
    Display display;
    processor_->setProgressHandler(&display);
    command(path(u"missing.sh"_s), {}, true);
    const QStringList messages = run();
    ASSERT_EQ(messages.size(), 2);
    EXPECT_TRUE(messages.first().startsWith(u"Could not start post gen process. "_s));
    EXPECT_EQ(messages.last(), completed);
    EXPECT_EQ(display.events, QStringList{messages.first()});

    TestSupport::writeFile(path(u"plain.txt"_s), "no program");
    command(path(u"plain.txt"_s), {}, true);
    EXPECT_EQ(run().last(), completed);
}

TEST_F(PostGen, LeavesACommandAloneThatIsNotWaitedFor)
{
    // The command goes on until this test lets it end.
    command(script(u"slow.sh"_s, "echo $$ > pid.tmp; mv pid.tmp pid\nwhile [ ! -e go ]; do sleep 0.05; done\n"
                                 "echo done > ended\nexit 3\n"),
            {}, false);
    Display display;
    processor_->setProgressHandler(&display);
    EXPECT_EQ(run(), (QStringList{u"Post generation process running ... "_s, completed}));
    EXPECT_EQ(run(), QStringList{completed});
    EXPECT_EQ(display.events, (QStringList{u"started"_s, u"Post generation process is already running."_s}));
    processor_.reset();

    QElapsedTimer timer;
    timer.start();
    writeFile(path(u"go"_s), {});
    while (!QFile::exists(path(u"ended"_s)) && timer.elapsed() < 120'000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_TRUE(QFile::exists(path(u"ended"_s)));
}

TEST_F(PostGen, TakesACrashOrACancelForAFailure)
{
    command(script(u"crash.sh"_s, "kill -9 $$\n"), {}, true);
    EXPECT_TRUE(run().last().startsWith(u"<b>Warning: "_s));
    command(script(u"endless.sh"_s, "echo started\nexec sleep 100000\n"), {}, true);
    QMetaObject::invokeMethod(processor_.get(), &PostGenProcessor::cancelPostGenProcess, Qt::QueuedConnection);
    EXPECT_TRUE(run().last().startsWith(u"<b>Warning: "_s));
}

TEST_F(PostGen, ChecksTheEdsFileOfEachLine)
{
    const QString checker = script(u"bin checker.sh"_s, "echo \"$@\"\necho trouble >&2\nhead -c 12 \"$2\"\nexit 1\n");
    user("[General]\nline_ending_index=1\n[EDSChecker]\ncheckeds=true\nEDSCheckerPath=" + checker.toUtf8() + '\n');
    EXPECT_EQ(run(), QStringList{completed}); // no EDS file
    writeFile(path(u"device.v2.eds"_s), "[one]\nx=1\n");
    const QString arguments = u"-e %1/device.v2%2.eds -d %1/v301.codb\ntrouble\n%3\nx=1\n"_s;
    EXPECT_EQ(run(), (QStringList{u"EDS Checker started"_s, u"EDS Checker result:\n\n"_s,
                                  u"> "_s + arguments.arg(folder_.path(), QString(), u"[one]"_s),
                                  u"EDS Checker finished.\n"_s, completed}));
    EXPECT_EQ(readFile(path(u"device.v2.eds"_s)), "[one]\nx=1\n"); // no source of the stack

    project_.line(1, 2).line(2, 1);
    writeFile(path(u"device.v2_0.eds"_s), "[nil]\nx=1\n");
    writeFile(path(u"device.v2_2.eds"_s), "[two]\nx=1\n");
    EXPECT_EQ(run(),
              (QStringList{u"EDS Checker started for line 0"_s, u"EDS Checker result:\n\n"_s,
                           u"> "_s + arguments.arg(folder_.path(), u"_0"_s, u"[nil]"_s), u"EDS Checker finished.\n"_s,
                           u"EDS Checker started for line 2"_s, u"EDS Checker result:\n\n"_s,
                           u"> "_s + arguments.arg(folder_.path(), u"_2"_s, u"[two]"_s), u"EDS Checker finished.\n"_s,
                           completed}));

    processor_->setSkipEdsCheck(true);
    EXPECT_EQ(run(), QStringList{completed});
}

TEST_F(PostGen, GoesOnWithoutACheckerThatCannotStart)
{
    user("[EDSChecker]\ncheckeds=1\nEDSCheckerPath=/nowhere/checker\n");
    writeFile(path(u"device.v2.eds"_s), "x");
    EXPECT_EQ(run(), (QStringList{u"Start of EDS Checker failed"_s, completed}));
    user("[EDSChecker]\ncheckeds=false\nEDSCheckerPath=/nowhere/checker\n");
    EXPECT_EQ(run(), QStringList{completed});
}

TEST_F(PostGen, ConvertsTheLineEndingsOfSourcesAfterTheCommand)
{
    const auto converted = [this](const QByteArray &index) {
        user("[General]\nline_ending_index=" + index + '\n');
        for (const char *name : {"gen_define.h", "gen_objdict.c", "Directory.Build.props", "gen_user.hpp"})
            writeFile(path(QString::fromLatin1(name)), "a\r\nb\n\rc");
        EXPECT_EQ(run().last(), completed);
        EXPECT_EQ(readFile(path(u"gen_user.hpp"_s)), "a\r\nb\n\rc");
        EXPECT_EQ(readFile(path(u"gen_objdict.c"_s)), readFile(path(u"Directory.Build.props"_s)));
        EXPECT_FALSE(QFile::exists(path(u"gen_mp.c"_s)));
        return readFile(path(u"gen_define.h"_s));
    };
    EXPECT_EQ(converted("0"), "a\r\nb\n\rc");
    EXPECT_EQ(converted("1"), "a\r\nb\r\n\r\nc");
    EXPECT_EQ(converted("2"), "a\nb\n\nc");
    EXPECT_EQ(converted("3"), "a\rb\r\rc");
    EXPECT_EQ(converted("4"), "a\r\nb\n\rc");
    EXPECT_EQ(converted("text"), "a\r\nb\n\rc");
    command(script(u"write.sh"_s, "printf 'late\\n' > gen_define.h\n"), {}, true);
    EXPECT_EQ(converted("1"), "late\r\n");
}

TEST_F(PostGen, SaysOnlyWhatWentWrongWhenQuiet)
{
    processor_->setQuiet(true);
    command(script(u"command.sh"_s, "echo text\nexit 2\n"), {}, true);
    EXPECT_EQ(run(), QStringList{u"<b>Warning: Generation completed, but post gen process returned 2.</b>"_s});
}
