#include "stack/generatedsources.h"
#include "support/datacases.h"
#include "support/mcpdriver.h"
#include "support/printing.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// Every project of the goldens and examples is generated in both forms, compiled, and read back out of the compiled
// tables, which is held against tests/data/stack/dumps. What its start-up calls is held against startup.txt in its
// folder, where that exists; NCX_ACCEPT=1 takes dumps and calls of this build. A project with a file uncompilable.txt,
// which says why, is passed over.

namespace {

/// The first lines that differ, so that a failure shows these and not the whole dictionary. "*" stands for anything.
QString difference(const QStringList &expected, const QStringList &actual)
{
    QString text;
    int shown = 0;
    for (qsizetype i = 0; i < std::max(expected.size(), actual.size()) && shown < 8; ++i) {
        const QString want = expected.value(i, u"nothing"_s);
        const QString have = actual.value(i, u"nothing"_s);
        const bool same = want.endsWith(u'*') ? have.startsWith(want.chopped(1)) : want == have;
        if (same)
            continue;
        text += u"expected %1\n     got %2\n"_s.arg(want, have);
        ++shown;
    }
    return text;
}

/// What the V4 dump says, as the classic form has it: domains and what has no array of its own are without a specifier
/// and a value, and constants of octets are texts.
QString inClassicForm(QString line)
{
    static const QRegularExpression withoutArray(u"^(\\d+ \\S+ \\S+) (DOMAIN|\\?) [A-Z_]+ "_s);
    static const QRegularExpression valueOfUnknown(u"^(\\d+ \\S+ \\S+ \\? .* value ).*"_s);
    line.replace(valueOfUnknown, u"\\1*"_s);
    return line.replace(withoutArray, u"\\1 DOMAIN - "_s).replace(" OS CONST "_L1, " VS CONST "_L1);
}

/// Holds what the walker finds in the tables against the dump of the project in tests/data/stack/dumps.
void compareDump(const GeneratedSources &sources, const QString &name)
{
    const QString path = QStringLiteral(NCX_SOURCE_DIR "/tests/data/stack/dumps/") + name + u".txt"_s;
    const QString dump = sources.walk({u"dump"_s});
    if (qEnvironmentVariableIntValue("NCX_ACCEPT") == 1 && !sources.isClassic())
        writeFile(path, dump.toUtf8());
    QStringList expected = QString::fromUtf8(readFile(path)).split(u'\n');
    EXPECT_GT(expected.size(), 2) << "no dump";
    if (sources.isClassic())
        std::ranges::transform(expected, expected.begin(), inClassicForm);
    EXPECT_EQ(difference(expected, dump.split(u'\n')), QString());
}

void compareStart(const GeneratedSources &sources, const QString &folder)
{
    const QString path = folder + u"/startup.txt"_s;
    const QString calls = sources.walk({u"start"_s}) + sources.walk({u"predefined"_s});
    if (qEnvironmentVariableIntValue("NCX_ACCEPT") == 1 && !sources.isClassic() && QFile::exists(path))
        writeFile(path, calls.toUtf8());
    if (QFile::exists(path)) {
        EXPECT_EQ(difference(QString::fromUtf8(readFile(path)).split(u'\n'), calls.split(u'\n')), QString());
    }
}

void checkSources(GeneratedSources &sources)
{
    ASSERT_TRUE(sources.generate());
    ASSERT_EQ(sources.compile(), QString());
    if (sources.hasDictionary()) {
        ASSERT_EQ(sources.link(), QString());
    }
}

class ProjectSources : public testing::TestWithParam<FileCase>
{
};

TEST_P(ProjectSources, ReadBackAsTheProjectHasThem)
{
    const QString &folder = GetParam().path;
    if (QFile::exists(folder + u"/uncompilable.txt"_s))
        GTEST_SKIP() << readFile(folder + u"/uncompilable.txt"_s).toStdString();
    for (const bool classic : {false, true}) {
        SCOPED_TRACE(classic ? "classic form" : "V4 form");
        GeneratedSources sources(classic);
        ASSERT_TRUE(sources.openFolder(folder));
        checkSources(sources);
        if (sources.hasDictionary())
            compareDump(sources, folder.section(u'/', -2).replace(u'/', u'-'));
        if (sources.has(u"gen_objdict.c"_s))
            compareStart(sources, folder);
    }
}

INSTANTIATE_TEST_SUITE_P(Projects, ProjectSources, testing::ValuesIn(projectCases()), caseName);

/// The calls of a start-up, without what is printed about their arguments.
QStringList callsOf(const QString &text)
{
    QStringList calls;
    for (const QString &line : text.split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith(u' ') && !line.startsWith("returns"_L1))
            calls.append(line);
    }
    return calls;
}

TEST(CompiledSources, StartUpEndsWithTheFirstError)
{
    for (const QString &name : {u"/examples/io_module"_s, u"/examples/two_lines"_s}) {
        SCOPED_TRACE(qPrintable(name));
        GeneratedSources sources;
        ASSERT_TRUE(sources.openFolder(QStringLiteral(NCX_SOURCE_DIR) + name));
        checkSources(sources);
        const QStringList calls = callsOf(sources.walk({u"start"_s}));
        EXPECT_GT(calls.size(), 5);
        for (qsizetype failing = 1; failing <= calls.size(); ++failing) {
            if (calls.at(failing - 1).endsWith("LED"_L1) || calls.at(failing - 1).endsWith("ID negotiation"_L1))
                continue;
            const QString text = sources.walk({u"start"_s, QString::number(failing)});
            EXPECT_EQ(callsOf(text), calls.first(failing));
            EXPECT_TRUE(text.endsWith("returns the error\n"_L1)) << qPrintable(text);
        }
    }
}

TEST(CompiledSources, OfADamagedProjectAreWhole)
{
    for (const bool classic : {false, true}) {
        GeneratedSources sources(classic);
        ASSERT_TRUE(sources.openFolder(QStringLiteral(NCX_SOURCE_DIR "/tests/data/stack")));
        checkSources(sources);
    }
}

TEST(CompiledSources, OfRealDevicesStart)
{
    const QString corpus = corpusFolder();
    if (corpus.isEmpty())
        GTEST_SKIP() << "no device files";
    const QStringList files = QDir(corpus).entryList({u"*.eds"_s, u"*.dcf"_s}, QDir::Files);
    ASSERT_FALSE(files.isEmpty());
    for (const QString &file : files) {
        SCOPED_TRACE(qPrintable(file));
        GeneratedSources sources;
        const QString project = sources.folder() + u"/device.ncxt"_s;
        ASSERT_TRUE(writeFile(project, "[GeneralSettings]\nco_node_id=1\nco_timer_interval=1000\nline0type=1\n"
                                       "init_static_variables=1\nlimit_check=1\n[Nodes]\n0\\name=can0\n"));
        ASSERT_TRUE(sources.openProject(project));
        ASSERT_TRUE(sources.importFile(QDir(corpus).filePath(file)));
        checkSources(sources);
        EXPECT_TRUE(sources.walk({u"start"_s}).endsWith("returns OK\n"_L1));
    }
}

/// Lets a client of the server make a device of the profile of I/O modules, check and generate it, and save it.
void makeDevice(const QString &path)
{
    ASSERT_TRUE(writeFile(path, "[GeneralSettings]\nline0type=1\n[DescriptionSettings]\nGranularity=8\n"
                                "[Nodes]\n0\\name=can0\n"));
    McpDriver server;
    server.ask(u"open_project"_s, {{u"path"_s, path}});
    server.ask(u"set_setting"_s, {{u"key"_s, u"co_node_id"_s}, {u"value"_s, 1}, {u"line"_s, 0}});
    server.ask(u"set_setting"_s, {{u"key"_s, u"co_timer_interval"_s}, {u"value"_s, 1000}});
    QJsonArray common;
    for (const int index : {0x1001, 0x1003, 0x1005, 0x1010, 0x1011, 0x1014, 0x1016, 0x1017, 0x1018, 0x1019, 0x1029,
                            0x1200, 0x1400, 0x1600, 0x1800, 0x1A00})
        common.append(index);
    for (const auto &[profile, indices] : {std::pair(u"401"_s, server.resourceIndices(u"401"_s)), {u"301"_s, common}}) {
        const QString told =
            server.ask(u"import_profile_indices"_s, {{u"profile"_s, profile}, {u"line"_s, 0}, {u"indices"_s, indices}});
        ASSERT_TRUE(told.startsWith(u"Imported %1 object(s)"_s.arg(indices.size()))) << qPrintable(told);
    }
    for (const auto &[index, sub, text] : {std::tuple(0x1018, 1, u"1"_s),
                                           {0x1018, 2, u"2"_s},
                                           {0x1018, 3, u"3"_s},
                                           {0x1600, 1, u"0x62000108"_s},
                                           {0x1600, 0, u"1"_s},
                                           {0x1A00, 1, u"0x60000108"_s},
                                           {0x1A00, 0, u"1"_s}})
        server.ask(u"set_subindex_value"_s,
                   {{u"line"_s, 0}, {u"index"_s, index}, {u"sub"_s, sub}, {u"defaultValue"_s, text}});
    const QString check = server.ask(u"check_model"_s);
    EXPECT_TRUE(check.startsWith("{\"errorCount\":0,"_L1)) << qPrintable(check);
    EXPECT_TRUE(server.ask(u"generate"_s).startsWith("Generation completed.\n"_L1));
    EXPECT_EQ(server.ask(u"save_project"_s), u"Project saved."_s);
    EXPECT_EQ(server.close().exitCode, 0);
}

TEST(CompiledSources, OfADeviceThatAServersClientMadeFromProfiles)
{
    GeneratedSources sources;
    const QString project = sources.folder() + u"/device.ncxt"_s;
    makeDevice(project);
    ASSERT_TRUE(sources.openProject(project));
    checkSources(sources);
}

} // namespace
