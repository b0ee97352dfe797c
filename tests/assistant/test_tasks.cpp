#include "ncx/project/identity.h"
#include "stack/generatedsources.h"
#include "support/datacases.h"
#include "support/mcpdriver.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// A case is a file tests/data/assistant_tasks/*.txt: the calls by which an assistant makes a device from nothing,
// without a mistake. What it generates has to compile and to be walked.

namespace {

/// What an assistant reads over a whole task.
constexpr qsizetype mostBytes = 40 * 1024;
constexpr qsizetype mostBytesOfEdit = 2048;

class Task : public testing::TestWithParam<FileCase>
{
protected:
    Task()
    {
        const QString description = u"valve_terminal.eds"_s;
        QFile::copy(QStringLiteral(NCX_SOURCE_DIR "/examples/from_description/") + description,
                    folder_.filePath(description));
    }

    /// Plays the calls; the bytes of their answers.
    qsizetype play()
    {
        McpDriver server(u"ncx"_s, {}, folder_.path());
        qsizetype bytes = 0;
        for (const QString &line : QString::fromUtf8(readFile(GetParam().path)).split(u'\n')) {
            if (!line.startsWith("call "_L1))
                continue;
            const QString tool = line.section(u' ', 1, 1);
            const QString arguments = line.section(u' ', 2);
            server.sendCall(tool, QJsonDocument::fromJson(arguments.toUtf8()).object());
            const QByteArray reply = server.replyLine();
            EXPECT_FALSE(reply.contains("\"isError\"") || reply.contains("\"error\":{")) << reply.toStdString();
            const bool isEdit = reply.contains("\"changed\":") && tool != "import_file"_L1;
            EXPECT_TRUE(!isEdit || reply.size() <= mostBytesOfEdit) << reply.toStdString();
            bytes += reply.size() + 1;
        }
        EXPECT_EQ(server.close().exitCode, 0);
        return bytes;
    }

    QTemporaryDir folder_;
};

TEST_P(Task, EndsWithSourcesThatCompileAndWalk)
{
    EXPECT_LT(play(), mostBytes);
    const QStringList projects = QDir(folder_.path()).entryList({u"device.nc*"_s}, QDir::Files);
    Identity::takeWidest();
    GeneratedSources sources;
    ASSERT_TRUE(sources.openProject(folder_.filePath(projects.value(0))));
    ASSERT_TRUE(sources.generate());
    // What the server wrote comes in the place of what was generated here.
    const QDir out(folder_.filePath(u"out"_s));
    const QStringList written = out.entryList({u"gen_*"_s}, QDir::Files);
    ASSERT_GT(written.size(), 3);
    for (const QString &name : written) {
        const QString path = sources.folder() + u'/' + name;
        ASSERT_TRUE(QFile::remove(path) && QFile::copy(out.filePath(name), path)) << qPrintable(name);
    }
    ASSERT_EQ(sources.compile(), QString());
    if (sources.hasDictionary()) {
        ASSERT_EQ(sources.link(), QString());
        EXPECT_GT(sources.walk({u"dump"_s}).count(u'\n'), 5);
    }
    if (sources.hasMessages()) {
        ASSERT_EQ(sources.linkMessages(), QString());
        EXPECT_GT(sources.walk({}).count(u'\n'), 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Assistant, Task, testing::ValuesIn(fileCases(u"assistant_tasks"_s, {u"*.txt"_s})), caseName);

} // namespace
