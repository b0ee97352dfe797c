#include "stack/expecteddump.h"
#include "stack/generatedsources.h"
#include "support/mcpdriver.h"
#include "support/printing.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <functional>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// Every project of the goldens and examples is generated in both forms, compiled, and read back out of the compiled
// tables. What its start-up calls is held against startup.txt in its folder, where that exists; NCX_ACCEPT=1 takes the
// calls of this build. A project with a file uncompilable.txt, which says why, is passed over.

namespace {

QStringList projectFolders()
{
    QStringList folders;
    for (const QString &root : {u"/tests/data/golden"_s, u"/examples"_s}) {
        const QDir parent(QStringLiteral(NCX_SOURCE_DIR) + root);
        for (const QString &name : parent.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
            const QDir folder(parent.filePath(name));
            if (!folder.entryList({u"*.ncxt"_s}).isEmpty() && !folder.exists(u"uncompilable.txt"_s))
                folders.append(folder.path());
        }
    }
    return folders;
}

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

void readBack(const GeneratedSources &sources)
{
    const QStringList expected = expectedDump(sources.store(), sources.isClassic());
    const QStringList actual = sources.walk({u"dump"_s}).split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(difference(expected, actual), QString());
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
    QMap<QString, QString> counts = expectedCounts(sources.store());
    if (sources.isClassic()) // which takes the routed PDOs from a setting
        counts.remove(u"CO_NETWORK_ROUTING_COUNTS"_s);
    EXPECT_EQ(sources.checkCounts(counts), QString());
    if (!sources.has(u"gen_objdict.c"_s) && !sources.text(u"gen_mp.c"_s).contains("od_assign["))
        return;
    ASSERT_EQ(sources.link(), QString());
    readBack(sources);
}

TEST(CompiledSources, ReadBackAsTheProjectHasThem)
{
    for (const QString &folder : projectFolders()) {
        for (const bool classic : {false, true}) {
            SCOPED_TRACE(qPrintable(folder + (classic ? u", classic form"_s : u", V4 form"_s)));
            GeneratedSources sources(classic);
            ASSERT_TRUE(sources.openFolder(folder));
            checkSources(sources);
            if (sources.has(u"gen_objdict.c"_s))
                compareStart(sources, folder);
        }
    }
}

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

/// What no device should have.
void addOddities(ProjectBuilder &project)
{
    const auto sub = [](quint16 type, const QString &value, quint8 implementation = 0) {
        return [=](ObjectDataBase::SUBINDEX_DATA_T &data) {
            data.datatype = type;
            data.defaultvalue = value;
            data.lowlimit = u"low"_s;
            data.uplimit = u"99999999999999999999"_s;
            data.limitineds = true;
            data.accesstype = u"rw"_s;
            data.implementation = implementation;
        };
    };
    project.object(0x1005, u""_s).object(0x1016, u""_s).sub(7, u""_s).object(0x1028, u""_s);
    project.object(0x1012, u""_s).sub(0, u""_s, sub(9, u"text"_s, 1));
    project.object(0x1017, u""_s).sub(0, u""_s, sub(27, u"0x1FFFFFFFFFFFFFFFF"_s));
    project.object(0x1014, u""_s).sub(0, u""_s, sub(7, u"$NODEID+"_s));
    project.object(0x1400, u""_s).sub(2, u""_s, sub(15, u""_s)).object(0x1401, u""_s).object(0x1601, u""_s);
    project.object(0x1800, u""_s).sub(0, u""_s).sub(3, u""_s, sub(24, u"7"_s));
    project.object(0x1A00, u""_s).sub(0, u""_s, sub(5, u"200"_s, 1)).sub(1, u""_s, sub(7, u"0x77770120"_s, 1));
    project.object(0x2000, u""_s);
    for (quint16 type = 0; type < 130; ++type) {
        if (type > 105 && type < 120) // numbers of 9 bits and more are signals of messages, never objects
            continue;
        project.object(static_cast<quint16>(0x2100 + type), u""_s)
            .sub(0, u""_s, sub(type, u"no number"_s))
            .sub(1, u""_s, sub(type, u"-300"_s, 1))
            .sub(9, u""_s, sub(type, QString(), 3));
    }
    project.object(0x2300, u""_s);
    for (int subindex = 0; subindex <= 255; ++subindex)
        project.sub(static_cast<quint8>(subindex), u""_s, sub(4, QString::number(-subindex)));
    project.object(0x2301, u""_s).sub(3, u""_s).sub(255, u""_s);
    project.object(0xFFFF, u""_s).sub(0, u""_s, sub(8, u"1e999"_s));
    ObjectDataBase &store = *project.store();
    store.addSubIndex(0, 0x3000, 4, {});
    ObjectDataBase::INDEX_DATA_T object;
    object.objecttype = 5;
    store.addIndex(0, 0x3001, object);
    for (const char *key : {"limit_check", "compact_array_description", "overwrite_predef", "init_static_variables",
                            "generate_string_defaults", "lss_supported", "udsserver_supported", "isotp_supported"})
        project.general(QString::fromLatin1(key), u"1"_s);
    project.general(u"uds_physical_request_id"_s, u"no number,,"_s).general(u"co_node_id"_s, u",,"_s);
}

TEST(CompiledSources, OddProjectsAreValidC)
{
    for (const bool classic : {false, true}) {
        for (const bool severalLines : {false, true}) {
            SCOPED_TRACE(testing::Message() << (classic ? "classic" : "V4") << (severalLines ? ", several lines" : ""));
            ProjectBuilder project;
            addOddities(project);
            if (severalLines) {
                addOddities(project.line(1, 1));
                for (const char *key : {"canfd_supported", "usdo_server_enabled", "usdo_client_enabled",
                                        "usdo_server_cnt", "usdo_client_cnt"})
                    project.general(QString::fromLatin1(key), u"1"_s);
            }
            GeneratedSources sources(classic);
            const QString path = sources.folder() + u"/odd.ncxp"_s;
            ASSERT_TRUE(project.save(path));
            ASSERT_TRUE(sources.openProject(path));
            ASSERT_TRUE(sources.generate());
            ASSERT_EQ(sources.compile(), QString());
            ASSERT_EQ(sources.link(), QString());
            EXPECT_TRUE(sources.walk({u"start"_s}).endsWith("returns OK\n"_L1));
        }
    }
}

TEST(CompiledSources, ServerBesideJ1939ReadsBack)
{
    for (const bool severalLines : {false, true}) {
        SCOPED_TRACE(severalLines);
        ProjectBuilder project;
        for (quint8 line = 0; line <= (severalLines ? 1 : 0); ++line)
            project.line(line, 2)
                .object(0x1000, u"Device type"_s)
                .sub(0, u"Device type"_s)
                .object(0x2000, u"Speed"_s)
                .sub(0, u"Speed"_s, [](auto &sub) { sub.defaultvalue = u"17"_s; });
        project.j1939(u"cia510serversupport"_s, u"1"_s);
        GeneratedSources sources;
        const QString path = sources.folder() + u"/server.ncxp"_s;
        ASSERT_TRUE(project.save(path));
        ASSERT_TRUE(sources.openProject(path));
        ASSERT_TRUE(sources.generate());
        ASSERT_EQ(sources.compile(), QString());
        ASSERT_EQ(sources.link(), QString());
        readBack(sources);
    }
}

TEST(CompiledSources, RareCombinationsAreValidC)
{
    struct Row
    {
        QList<int> lineTypes;
        QStringList settings; ///< that are set, in whichever table they belong
    };
    const QStringList uds{u"udsserver_supported"_s, u"isotp_supported"_s, u"uds_server_active"_s};
    for (const Row &row :
         {Row{{5}, {u"canfd_supported"_s, u"generate_string_defaults"_s, u"overwrite_predef"_s}},
          Row{{7}, uds + QStringList{u"uds_static_indication"_s}}, Row{{5, 1}, uds + QStringList{u"canfd_supported"_s}},
          Row{{1}, uds + QStringList{u"generateML"_s}}, Row{{1, 2, 5}, {u"cia510serversupport"_s}}, Row{{2}, uds},
          Row{{2, 2}, uds}, Row{{4}, uds + QStringList{u"uds_bl_setting"_s}}}) {
        for (const bool classic : {false, true}) {
            SCOPED_TRACE(qPrintable(row.settings.join(u' ') + (classic ? u", classic"_s : QString())));
            ProjectBuilder project;
            for (quint8 line = 0; line < row.lineTypes.size(); ++line) {
                project.line(line, row.lineTypes.at(line)).object(0x1000, u"any"_s).sub(0, u"any"_s);
                project.object(0x1F2C, u"routing"_s).sub(0, u"any"_s).sub(1, u"any"_s);
                project.pgn(0xFE00, ObjectDataBase::transmit, u"any"_s).spn(1, u"any"_s);
            }
            for (const QString &key : row.settings)
                project.general(key, u"1"_s).j1939(key, u"1"_s).misc(key, u"true"_s);
            GeneratedSources sources(classic);
            ASSERT_TRUE(project.save(sources.folder() + u"/rare.ncxp"_s));
            ASSERT_TRUE(sources.openProject(sources.folder() + u"/rare.ncxp"_s) && sources.generate());
            EXPECT_EQ(sources.compile(), QString());
        }
    }
}

TEST(CompiledSources, OfADamagedProjectAreWhole)
{
    for (const bool classic : {false, true}) {
        GeneratedSources sources(classic);
        const QString project = sources.folder() + u"/damaged.ncxt"_s;
        ASSERT_TRUE(QFile::copy(QStringLiteral(NCX_SOURCE_DIR "/tests/data/stack/damaged.ncxt"), project));
        ASSERT_TRUE(sources.openProject(project));
        ASSERT_TRUE(sources.generate());
        EXPECT_EQ(sources.compile(), QString());
        EXPECT_EQ(sources.link(), QString());
    }
}

TEST(CompiledSources, RealDevicesReadBack)
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
