#include "stack/generatedsources.h"
#include "stack/randomproject.h"
#include "support/printing.h"
#include "support/projectscript.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// Projects made by chance: their sources compile and can be walked without a wrong access, and their other files can be
// read. A seed is run by its number, as in --gtest_filter='*/7'; NCX_SEEDS=200 runs the seeds from 1 to 200, NCX_SEEDS=
// 201-400 the next ones.

namespace {

std::pair<quint32, quint32> seeds()
{
    const QStringList limits = qEnvironmentVariable("NCX_SEEDS", u"20"_s).split(u'-');
    return {limits.size() > 1 ? limits.first().toUInt() : 1, limits.last().toUInt()};
}

class RandomProjects : public testing::TestWithParam<quint32>
{
protected:
    RandomProjects() { qputenv("SOURCE_DATE_EPOCH", "1794733920"); }
    ~RandomProjects() override { qunsetenv("SOURCE_DATE_EPOCH"); }
};

TEST_P(RandomProjects, CompileAndWalk)
{
    const RandomProject project(GetParam());
    const QString commands = project.commands().join(u'\n');
    GeneratedSources sources(project.isClassic());
    sources.setSanitized(true);
    const QString path = sources.folder() + u"/device.ncxp"_s;
    ProjectScript script;
    script.run(project.commands());
    ASSERT_TRUE(script.store()->saveDatabase(path));
    ASSERT_TRUE(writeFile(sources.folder() + u"/commands.txt"_s, commands.toUtf8()));
    SCOPED_TRACE(qPrintable(sources.folder()));
    ASSERT_TRUE(sources.openProject(path));
    ASSERT_TRUE(sources.generate());
    const QString messages = sources.messages().join(u'\n');
    EXPECT_FALSE(messages.contains("failed."_L1)) << qPrintable(messages);
    EXPECT_EQ(sources.compile(), QString());
    if (sources.hasDictionary()) {
        EXPECT_EQ(sources.link(), QString());
        for (const QString &mode : {u"dump"_s, u"start"_s, u"predefined"_s}) {
            const QString text = sources.walk({mode});
            EXPECT_FALSE(text.contains("the walker ends with"_L1)) << qPrintable(text);
        }
    }
    if (sources.hasMessages()) {
        EXPECT_EQ(sources.linkMessages(), QString());
        const QString text = sources.walk({});
        EXPECT_FALSE(text.contains("the walker ends with"_L1)) << qPrintable(text);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomProjects, testing::Range(seeds().first, seeds().second + 1),
                         [](const testing::TestParamInfo<quint32> &seed) { return std::to_string(seed.param); });

} // namespace
