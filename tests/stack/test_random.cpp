#include "candb/dbcreader.h"
#include "stack/generatedsources.h"
#include "stack/randomproject.h"
#include "support/printing.h"
#include "support/projectscript.h"
#include "support/testhome.h"
#include "texttools/helper.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDomDocument>

#include <algorithm>

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

/// The sources of the project of a seed.
class SeedSources : public GeneratedSources
{
public:
    explicit SeedSources(const RandomProject &project)
        : GeneratedSources(project.isClassic())
    {
        ProjectScript script;
        script.run(project.commands());
        EXPECT_TRUE(script.store()->saveDatabase(path(u"device.ncxp"_s)));
        EXPECT_TRUE(writeFile(path(u"commands.txt"_s), project.commands().join(u'\n').toUtf8()));
        EXPECT_TRUE(openProject(path(u"device.ncxp"_s)));
    }

    QString path(const QString &name) const { return folder() + u'/' + name; }
};

void expectCleanWalk(const GeneratedSources &sources, const QStringList &arguments)
{
    const QString text = sources.walk(arguments);
    EXPECT_FALSE(text.contains("the walker ends with"_L1)) << qPrintable(text);
}

/// The walker finds each application object of the project, and its variable where it has one that is kept by type.
void expectObjects(ObjectDataBase &store, const QString &dump)
{
    QHash<QString, QString> values;
    for (const QString &row : dump.split(u'\n'))
        values.insert(row.section(u' ', 0, 1), row.section(u" value "_s, 1).section(u'/', 0, 0));
    const QSet<quint16> withoutArray{11, 13, 15, 16, 17, 18, 19, 20, 21, 26};
    for (const quint8 line : store.getNodeList()) {
        for (const quint16 index : store.getIndexList(line, 0x2000, 0x5fff)) {
            for (const quint8 subindex : store.getSubIndexList(line, index, 0)) {
                const auto sub = store.getSubIndex(line, index, subindex).value();
                const QString place = u"%1 0x%2:%3"_s.arg(line).arg(index, 4, 16, '0'_L1).arg(subindex);
                EXPECT_EQ(values.contains(place), sub.implementation != 3) << qPrintable(place);
                if (sub.implementation == 2 && !withoutArray.contains(sub.datatype)) {
                    EXPECT_EQ(values.value(place),
                              Helper::substituteVariables(sub.varname, index, subindex, sub.sharedlines ? 0 : line));
                }
            }
        }
    }
}

/// What a run has written, by file name.
QMap<QString, QByteArray> filesIn(const QString &folder, const QStringList &patterns)
{
    QMap<QString, QByteArray> files;
    for (const QString &name : QDir(folder).entryList(patterns, QDir::Files))
        files.insert(name, readFile(folder + u'/' + name));
    return files;
}

/// Tells the first file that is another one.
void expectSameFiles(const QMap<QString, QByteArray> &expected, const QMap<QString, QByteArray> &actual)
{
    ASSERT_EQ(expected.keys().join(u' '), actual.keys().join(u' '));
    for (const auto &[name, text] : expected.asKeyValueRange())
        ASSERT_EQ(text, actual.value(name)) << qPrintable(name);
}

TEST_P(RandomProjects, CompileAndWalk)
{
    SeedSources sources((RandomProject(GetParam())));
    SCOPED_TRACE(qPrintable(sources.folder()));
    sources.setSanitized(true);
    ASSERT_TRUE(sources.generate());
    const QString messages = sources.messages().join(u'\n');
    EXPECT_FALSE(messages.contains("failed."_L1)) << qPrintable(messages);
    ASSERT_EQ(sources.compile(), QString());
    if (sources.hasDictionary()) {
        ASSERT_EQ(sources.link(), QString());
        for (const QString &mode : {u"start"_s, u"predefined"_s, u"dump"_s})
            expectCleanWalk(sources, {mode});
        expectObjects(sources.store(), sources.walk({u"dump"_s}));
    }
    if (sources.hasMessages()) {
        ASSERT_EQ(sources.linkMessages(), QString());
        expectCleanWalk(sources, {});
    }
}

TEST_P(RandomProjects, WriteFilesThatCanBeReadAgain)
{
    const RandomProject project(GetParam());
    SeedSources sources(project);
    SCOPED_TRACE(qPrintable(sources.folder()));
    ASSERT_TRUE(sources.generate());
    const QStringList patterns{u"gen_*"_s, u"*.dbc"_s, u"*.eds"_s, u"*.xdd"_s, u"*.html"_s, u"*doc.txt"_s, u"*.?csv"_s};
    const QMap<QString, QByteArray> files = filesIn(sources.folder(), patterns);
    for (const auto &[name, text] : files.asKeyValueRange()) {
        DbcReader reader;
        EXPECT_TRUE(!name.endsWith(".xdd"_L1) || QDomDocument().setContent(text)) << qPrintable(name);
        EXPECT_TRUE(!name.endsWith(".dbc"_L1) || reader.read(QString::fromUtf8(text)))
            << qPrintable(name + u": "_s + reader.errorText());
    }
    ASSERT_TRUE(sources.generate());
    expectSameFiles(files, filesIn(sources.folder(), patterns));

    // The text form has neither raw CAN nor the objects of a device with J1939 alone.
    const auto hasRawCan = [](int type) { return type == 4 || type >= 6; };
    if (std::ranges::any_of(project.lineTypes(), hasRawCan) ||
        (sources.has(u"gen_pgn.c"_s) && sources.has(u"gen_objdict.c"_s)))
        return;
    GeneratedSources again(project.isClassic());
    const QString path = again.folder() + u"/device.ncxt"_s;
    ASSERT_TRUE(sources.store().saveDatabase(path));
    ASSERT_TRUE(again.openProject(path));
    ASSERT_TRUE(again.generate());
    expectSameFiles(filesIn(sources.folder(), {u"gen_*"_s}), filesIn(again.folder(), {u"gen_*"_s}));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomProjects, testing::Range(seeds().first, seeds().second + 1),
                         [](const testing::TestParamInfo<quint32> &seed) { return std::to_string(seed.param); });

} // namespace
