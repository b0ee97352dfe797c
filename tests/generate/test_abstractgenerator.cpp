#include "generate/base/filegenerator.h"
#include "generate/base/utf8sink.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QThread>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

/// Writes a text, and notes what the store and the thread were like meanwhile.
class TextGenerator : public FileGenerator
{
public:
    QString fileName() const override { return u"out"_s + fileSuffix() + u".txt"_s; }
    void write(Utf8Sink &sink) override
    {
        onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
        storeWasBlocked = !database()->setMiscSetting(u"x"_s, u"y"_s);
        setterDuringJob = setBaseName(u"late"_s);
        multiLineSetting = generatesMultiLine();
        sink << u"Zähler\n"_s;
        if (losingFolder)
            QDir(outputFolder()).removeRecursively();
    }

    bool losingFolder = false;
    bool onMainThread = true;
    bool storeWasBlocked = false;
    bool multiLineSetting = false;
    Status setterDuringJob = Success;
};

class Generator : public testing::Test
{
protected:
    QString filePath(const QString &name) const { return folder_.filePath(name); }
    void runJob()
    {
        generator_.setDatabase(project_.store());
        generator_.setOutputFolder(folder_.path());
        EXPECT_EQ(generator_.startJob(), AbstractGenerator::Success);
        EXPECT_EQ(generator_.startJob(), AbstractGenerator::JobRunning);
        generator_.waitForJob();
        QCoreApplication::processEvents();
    }

    QTemporaryDir folder_;
    ProjectBuilder project_;
    TextGenerator generator_;
};

TEST_F(Generator, SettersReportWhatIsWrong)
{
    EXPECT_EQ(generator_.setDatabase(nullptr), AbstractGenerator::NoStore);
    EXPECT_EQ(generator_.setDatabase(std::make_shared<ObjectDataBase>()), AbstractGenerator::NoStore);
    EXPECT_EQ(generator_.setLine(0), AbstractGenerator::UnknownLine);
    EXPECT_EQ(generator_.setDatabase(project_.store()), AbstractGenerator::Success);
    EXPECT_EQ(generator_.setLine(0), AbstractGenerator::Success);
    EXPECT_EQ(generator_.setLine(3), AbstractGenerator::UnknownLine);
    EXPECT_EQ(generator_.setOutputFolder(folder_.path()), AbstractGenerator::Success);
    EXPECT_EQ(generator_.setOutputFolder(filePath(u"missing"_s)), AbstractGenerator::FolderMissing);
    EXPECT_EQ(generator_.cancelJob(), AbstractGenerator::NoJob);
}

TEST_F(Generator, RunsOnItsOwnThreadWithTheStoreBlocked)
{
    project_.misc(u"generateML"_s, u"true"_s);
    generator_.setFileSuffix(u"_co"_s);
    QList<int> progress;
    QObject::connect(&generator_, &AbstractGenerator::progress, QCoreApplication::instance(),
                     [&progress](quint8 percent) { progress.append(percent); });
    runJob();
    EXPECT_EQ(progress, QList<int>{100});
    EXPECT_EQ(generator_.errorCode(), 0);
    EXPECT_EQ(generator_.objectName(), u"out_co.txt");
    EXPECT_EQ(TestSupport::readFile(filePath(u"out_co.txt"_s)), "Zähler\n");
    EXPECT_FALSE(generator_.onMainThread);
    EXPECT_TRUE(generator_.storeWasBlocked);
    EXPECT_TRUE(generator_.multiLineSetting);
    EXPECT_EQ(generator_.setterDuringJob, AbstractGenerator::JobRunning);
    EXPECT_FALSE(project_.store()->isBlocked());
    EXPECT_TRUE(project_.store()->setMiscSetting(u"x"_s, u"z"_s));
}

TEST_F(Generator, IsWaitedForToItsVeryEnd)
{
    std::atomic<bool> sent = false;
    const auto slow = [&sent] {
        QThread::msleep(30);
        sent = true;
    };
    QObject::connect(&generator_, &AbstractGenerator::progress, &generator_, slow, Qt::DirectConnection);
    generator_.setDatabase(project_.store());
    generator_.setOutputFolder(folder_.path());
    generator_.startJob();
    generator_.waitForJob();
    EXPECT_TRUE(sent);
}

TEST_F(Generator, ReportsAFileThatCannotBeOpenedFilledOrPutInPlace)
{
    QFile::link(u"/dev/full"_s, filePath(u"out.txt"_s));
    runJob();
    EXPECT_EQ(generator_.errorCode(), AbstractGenerator::OutputError);
    EXPECT_TRUE(generator_.errorText().contains("out.txt"_L1)) << qPrintable(generator_.errorText());

    TextGenerator other;
    other.setDatabase(project_.store());
    other.setOutputFolder(filePath(u"missing"_s));
    EXPECT_TRUE(other.checkWritable());
    other.startJob();
    other.waitForJob();
    EXPECT_EQ(other.errorCode(), AbstractGenerator::OutputError);
    EXPECT_FALSE(project_.store()->isBlocked());

    TextGenerator last;
    last.losingFolder = true;
    last.setFileSuffix(u"_last"_s);
    last.setDatabase(project_.store());
    last.setOutputFolder(folder_.path());
    last.startJob();
    last.waitForJob();
    EXPECT_EQ(last.errorCode(), AbstractGenerator::OutputError);
}

} // namespace
