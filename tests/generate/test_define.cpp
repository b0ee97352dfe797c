#include "generate/defineheader.h"
#include "generate/generatormainhandler.h"
#include "generate/outputhandlerbase.h"
#include "generate/stack/projectprops.h"
#include "generate/stack/usersection.h"
#include "support/testhome.h"

#include <QDir>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

constexpr quint8 rx = ObjectDataBase::receive;

// ---- Counts ------------------------------------------------------------------------------------------------------

TEST_F(Define, CountsTheObjectsOfEachLine)
{
    ProjectBuilder project;
    objects(project, {0x1000, 0x1200, 0x1201, 0x1280, 0x1400, 0x1401, 0x1800, 0x1301, 0x0FFF, 0x2000});
    subs(project.object(0x1F81, u"o"_s), 3);
    subs(project.object(0x1016, u"o"_s), 2);
    project.line(2, 1);
    objects(project, {0x1000, 0x1800});
    subs(project.object(0x1003, u"o"_s), 4);
    subs(project.object(0x1010, u"o"_s), 2);
    project.line(3, 1); // without objects
    project.general(u"receivebuffersize"_s, u"20,,0x30"_s).general(u"co_node_id"_s, u"0x20,33, 5"_s);
    project.general(u"co_node_id_fct"_s, u"nodeId"_s).general(u"max_slave_assignment"_s, u"0,,7"_s);
    expectValues(v4(project), {{u"CAN_MULTI_LINE"_s, u"1u"_s},
                               {u"CAN_MULTI_LINE_CNT"_s, u"2u"_s},
                               {u"CO_MAX_ASSIGN_COUNTS"_s, u"4u, 7u"_s},
                               {u"CO_GUARDING_COUNTS"_s, u"CO_MAX_ASSIGN_COUNTS"_s},
                               {u"CO_GUARDING_CNT"_s, u"11u"_s},
                               {u"CO_HB_CONSUMER_CNT"_s, u"3u"_s},
                               {u"CO_STORE_CNT_MAX"_s, u"3u"_s},
                               {u"CO_SDO_SERVER_CNT"_s, u"3u"_s},
                               {u"CO_NODE_IDS"_s, u"0x20,33, 5"_s},
                               {u"CO_NODE_ID_FUNCTIONS"_s, u"nodeId,nodeId"_s},
                               {u"CORE_REC_BUFFER_COUNTS"_s, u"20u, 0x30u"_s},
                               {u"CORE_TR_BUFFER_COUNTS"_s, u"5u, 5u"_s},
                               {u"CORE_CONFIG_REC_BUFFER_CNT"_s, u"68u"_s},
                               {u"CO_NETWORK_ROUTING_CNT"_s, u"none"_s}});
    // A single line is written like one of several where the project asks for it.
    ProjectBuilder single;
    single.general(u"co_node_id"_s, u",,,,"_s);
    expectValues(v4(single), {{u"CAN_MULTI_LINE_CNT"_s, u"none"_s}, {u"CO_NODE_IDS"_s, u"0,0,0,0,0"_s}});
    expectValues(v4(single.general(u"co_node_id"_s, {})), {{u"CO_NODE_IDS"_s, u"0"_s}});
    expectValues(v4(single.misc(u"generateML"_s, u"true"_s)), {{u"CAN_MULTI_LINE_CNT"_s, u"1u"_s}});
}

TEST_F(Define, GivesALineWithoutSdoObjectsTheServersOfItsProtocol)
{
    struct Row
    {
        int type;
        const char *canFd;
        const char *cia510;
        const char *servers;
        const char *clients;
    };
    for (const Row &row : {Row{1, "0", "1", "1u", "0u"}, Row{1, "1", "1", "0u", "0u"}, Row{2, "0", "1", "1u", "1u"},
                           Row{2, "0", "0", "0u", "0u"}, Row{7, "1", "1", "1u", "1u"}, Row{5, "0", "1", "0u", "0u"}}) {
        SCOPED_TRACE(row.type);
        ProjectBuilder project;
        project.line(0, row.type).general(u"canfd_supported"_s, QString::fromLatin1(row.canFd));
        project.j1939(u"cia510serversupport"_s, QString::fromLatin1(row.cia510));
        project.j1939(u"cia510clientsupport"_s, QString::fromLatin1(row.cia510));
        objects(project, {0x2000});
        const Header header = v4(project);
        const bool j1939 = row.type != 1;
        EXPECT_EQ(header.value(j1939 ? u"J1939_SSDO_COUNTS"_s : u"CO_SSDO_COUNTS"_s), QLatin1StringView(row.servers));
        EXPECT_EQ(header.value(j1939 ? u"J1939_CSDO_COUNTS"_s : u"CO_CSDO_COUNTS"_s), QLatin1StringView(row.clients));
    }
}

TEST_F(Define, CountsTheMessagesOfALine)
{
    struct Row
    {
        const char *what;
        std::function<void(ProjectBuilder &)> change;
        int more; ///< than the device of object 0x1000 alone has: 2, and 2 of its SDO server
    };
    const auto has = [](quint16 index, quint8 last = 0) {
        return [=](ProjectBuilder &project) { subs(project.object(index, u"o"_s), last); };
    };
    const auto set = [](const QString &key, const QString &value) {
        return [=](ProjectBuilder &project) { project.general(key, value); };
    };
    const auto both = [](const auto &first, const auto &second) {
        return [=](ProjectBuilder &project) {
            first(project);
            second(project);
        };
    };
    const QList<Row> rows{
        {"nothing", [](ProjectBuilder &) {}, 0},
        {"FD", set(u"canfd_supported"_s, u"1"_s), 2},
        {"FD client", both(set(u"canfd_supported"_s, u"1"_s), set(u"usdo_client_cnt"_s, u"1"_s)), 4},
        {"emergency", has(0x1014), 1},
        {"emergency consumers", has(0x1028, 3), 3},
        {"a server", has(0x1200), 0},
        {"two servers", both(has(0x1200), has(0x1201)), 2},
        {"GFC", has(0x1300), 2},
        {"client", has(0x1280), 2},
        {"mappings", both(has(0x1600), has(0x1BFF)), 2},
        {"SYNC", has(0x1005), 1},
        {"heartbeats", has(0x1016, 4), 4},
        {"no heartbeats", has(0x1016), 0},
        {"one heartbeat buffer", both(has(0x1016, 4), set(u"only_one_hb_buffer"_s, u"1"_s)), 1},
        {"TIME", has(0x1012), 2},
        {"LSS", set(u"lss_supported"_s, u"1"_s), 2},
        {"LSS master", both(set(u"lss_supported"_s, u"1"_s), set(u"nmtmaster"_s, u"1"_s)), 2},
        {"LSS master with FD",
         both(both(set(u"lss_supported"_s, u"1"_s), set(u"nmtmaster"_s, u"1"_s)), set(u"canfd_supported"_s, u"1"_s)),
         2 + 3},
        {"ID negotiation", set(u"idnego_supported"_s, u"1"_s), 2},
        {"slaves", has(0x1F81, 4), 5},
        {"slave limit", both(has(0x1F81, 4), set(u"max_slave_assignment"_s, u"3"_s)), 3},
        {"slave limit alone", set(u"max_slave_assignment"_s, u"3"_s), 0},
        {"sleep", set(u"sleep_mode_selection"_s, u"1"_s), 2},
        {"sleep master", both(set(u"sleep_mode_selection"_s, u"1"_s), set(u"nmtmaster"_s, u"2"_s)), 16},
        {"EnergyBus sleep", set(u"sleep_mode_selection"_s, u"2"_s), 3},
        {"SRD", has(0x1F10), 1},
        {"SRDO", has(0x1301), 2},
        {"additional", set(u"additional_cob_count"_s, u"6"_s), 6},
        {"additional list", set(u"additional_cob_count"_s, u"6,9"_s), 6},
        {"flying master",
         [](ProjectBuilder &project) { project.object(0x1F80, u"o"_s).sub(0, u"s"_s, withDefault(u"0x20"_s)); }, 10},
        {"no flying master", has(0x1F80), 0},
        {"ISO-TP", both(set(u"isotp_supported"_s, u"1"_s), set(u"isotp_client_con"_s, u"2"_s)), 4},
        {"UDS server", set(u"udsserver_supported"_s, u"1"_s), 7},
        {"UDS clients", both(set(u"udsclient_supported"_s, u"1"_s), set(u"uds_client_cnt"_s, u"2"_s)), 6},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        ProjectBuilder project;
        objects(project, {0x1000});
        row.change(project);
        const QString count = u"%1u"_s.arg(row.more + 4);
        expectValues(v4(project), {{u"CORE_COB_COUNTS"_s, count}, {u"CORE_COB_CNT"_s, count}});
    }
    // A list that is too short adds its number of entries; a line without a device type does not reach the sum.
    ProjectBuilder lines;
    lines.general(u"additional_cob_count"_s, u"6,9"_s);
    objects(lines, {0x1000}).line(1, 1);
    objects(lines, {0x2000}).line(2, 1);
    objects(lines, {0x1000});
    expectValues(v4(lines), {{u"CORE_COB_COUNTS"_s, u"10u, 9u, 6u"_s}, {u"CORE_COB_CNT"_s, u"16u"_s}});
}

TEST_F(Define, ReadsTheServicesOutOfTheDictionary)
{
    ProjectBuilder project;
    project.object(0x1000, u"o"_s).sub(0, u"s"_s, withDefault(u"0x00020192"_s));
    subs(project.object(0x1400, u"o"_s), 4);
    subs(project.object(0x1800, u"o"_s), 2);
    project.object(0x1600, u"o"_s).sub(0, u"s"_s, withDefault(u"3"_s)).sub(1, u"s"_s).sub(2, u"s"_s).sub(3, u"s"_s);
    subs(project.object(0x1A00, u"o"_s), 1);
    objects(project, {0x1F80});
    expectValues(v4(project), {{u"CO_PROFILE_402"_s, u"1u"_s},
                               {u"CO_PDO_REC_TIMER_SUPPORTED"_s, u"none"_s},
                               {u"CORE_INHIBIT_SUPPORTED"_s, u"none"_s},
                               {u"CO_MAX_MAP_ENTRIES"_s, u"3u"_s},
                               {u"CO_REC_PDO_DYN_MAP_ENTRIES"_s, u"1u"_s},
                               {u"CO_TR_PDO_DYN_MAP_ENTRIES"_s, u"none"_s},
                               {u"CO_MPDO_CONSUMER"_s, u"none"_s},
                               {u"CO_FLYING_MASTER_SUPPORTED"_s, u"none"_s},
                               {u"CO_SELF_STARTING_DEVICE"_s, u"1u"_s},
                               {u"CO_EXTENDED_DATA_TYPES"_s, u"none"_s},
                               {u"CO_UTF8_DATA_TYPE"_s, u"none"_s}});
    subs(project.object(0x1400, u"o"_s), 5);
    subs(project.object(0x1800, u"o"_s), 3);
    project.object(0x1A00, u"o"_s).sub(0, u"s"_s, withDefault(u"0xFE"_s));
    project.general(u"nmtmaster"_s, u"1"_s);
    project.object(0x2000, u"o"_s).sub(0, u"s"_s, withDefault(u"0"_s, 0x18)).sub(1, u"s"_s, withDefault(u""_s, 124));
    expectValues(v4(project), {{u"CO_PDO_REC_TIMER_SUPPORTED"_s, u"1u"_s},
                               {u"CORE_INHIBIT_SUPPORTED"_s, u"1u"_s},
                               {u"CO_TR_PDO_DYN_MAP_ENTRIES"_s, u"1u"_s},
                               {u"CO_MPDO_PRODUCER"_s, u"1u"_s},
                               {u"CO_MPDO_CONSUMER"_s, u"none"_s},
                               {u"CO_MPDO_SAM"_s, u"1u"_s},
                               {u"CO_MPDO_DAM"_s, u"none"_s},
                               {u"CO_FLYING_MASTER_SUPPORTED"_s, u"1u"_s},
                               {u"CO_SELF_STARTING_DEVICE"_s, u"none"_s},
                               {u"CO_EXTENDED_DATA_TYPES"_s, u"1u"_s},
                               {u"CO_UTF8_DATA_TYPE"_s, u"1u"_s}});
    // The classic form asks settings instead.
    project.general(u"routing_counts"_s, u"2"_s);
    expectValues(classic(project), {{u"CO_FLYING_MASTER_SUPPORTED"_s, u"none"_s},
                                    {u"CO_NETWORK_ROUTING_CNT"_s, u"2u"_s},
                                    {u"CO_INHIBIT_SUPPORTED"_s, u"1u"_s}});
}

// ---- Sections ----------------------------------------------------------------------------------------------------

TEST_F(Define, LeavesRawCanOutOfABootloader)
{
    ProjectBuilder project;
    project.line(0, 4).general(u"uds_bl_setting"_s, u"1"_s).canId(0x100, rx, u"a"_s);
    expectValues(v4(project), {{u"CANOPEN_SUPPORTED"_s, u"none"_s},
                               {u"RAWCAN_SUPPORTED"_s, u"none"_s},
                               {u"GEN_RAWCAN_INIT_STRUCT_VERSION"_s, u"none"_s},
                               {u"CORE_REC_BUFFER_COUNTS"_s, u"10u"_s}});
    EXPECT_EQ(v4(project).text().count("BUFFER_COUNTS"_L1), 2);
    expectValues(classic(project), {{u"RAWCAN_SUPPORTED"_s, u"1u"_s}, {u"CO_REC_BUFFER_COUNTS"_s, u"10u"_s}});
}

TEST_F(Define, ReadsSettings)
{
    ProjectBuilder project;
    project.general(u"event_pdo"_s, u"0x10"_s).general(u"event_nmt"_s, u"0"_s).general(u"event_sync"_s, u"LIMIT"_s);
    project.general(u"object_changed_event"_s, u"2"_s)
        .general(u"fct_nmt"_s, u"  "_s)
        .general(u"fct_led_red"_s, u" led"_s);
    project.general(u"sdo_blocktransfer_block_size"_s, u"20"_s).general(u"limit_check"_s, u"x"_s);
    project.general(u"udsserver_supported"_s, u"1"_s).general(u"uds_session_timeout"_s, u"5000"_s);
    project.general(u"uds_fct_ioctrl"_s, u"io"_s).general(u"overwrite_predef"_s, u"1"_s);
    project.general(u"co_srdo_interval"_s, u"MY_INTERVAL"_s).general(u"co_timer_interval"_s, u"1000"_s);
    const Values expected{{u"CO_EVENT_DYNAMIC_PDO"_s, u"0x10u"_s},
                          {u"CO_EVENT_DYNAMIC_NMT"_s, u"none"_s},
                          {u"CO_EVENT_DYNAMIC_SYNC"_s, u"none"_s},
                          {u"CO_EVENT_DYNAMIC_OBJECT_CHANGED"_s, u"2u"_s},
                          {u"CORE_OBJECT_CHANGED"_s, u"1u"_s},
                          {u"CO_EVENT_STATIC_NMT"_s, u"none"_s},
                          {u"CO_EVENT_STATIC_LED"_s, u"1u"_s},
                          {u"CO_SDO_BLOCK_SIZE"_s, u"none"_s},
                          {u"CO_CONFIG_LIMIT_CHECK"_s, u"none"_s},
                          {u"ISOTP_SUPPORTED"_s, u"1u"_s},
                          {u"ISOTP_SERVER_COUNTS"_s, u"2u"_s},
                          {u"ISOTP_CLIENT_COUNTS"_s, u"1u"_s},
                          {u"GEN_UDS_INIT_STRUCT_VERSION"_s, u"1u"_s},
                          {u"UDS_SESSION_TIMEOUT"_s, u"5000u"_s},
                          {u"UDS_EVENT_STATIC_IOCTRL"_s, u"none"_s},
                          {u"GEN_OVERWRITE_PREDEF_CONN_SET"_s, u"1u"_s},
                          {u"CO_SRDO_TIMER_INTERVAL"_s, u"MY_INTERVAL"_s},
                          {u"CORE_TIMER_INTERVAL"_s, u"1000u"_s}};
    expectValues(v4(project), expected);
    project.general(u"enable_dynamic"_s, u"0"_s).general(u"uds_static_indication"_s, u"1"_s);
    expectValues(v4(project), {{u"CO_EVENT_DYNAMIC_PDO"_s, u"none"_s}, {u"UDS_EVENT_STATIC_IOCTRL"_s, u"1u"_s}});
    expectValues(classic(project), {{u"UDS_EVENT_STATIC_IOCTRL"_s, u"none"_s}});
}

TEST_F(Define, WritesTheTargets)
{
    const auto section = [&](const ProjectBuilder &project) {
        const QString text = v4(project).text();
        return text.section(u"/* Hardware settings */\n"_s, 1).section(u"/* do not modify"_s, 0, 0);
    };
    ProjectBuilder project;
    project.general(u"co_timer_interval"_s, u"500"_s).general(u"endian"_s, u"1"_s).general(u"drv_filter"_s, u"1"_s);
    project.general(u"hw_defines"_s, u"#define LED 1"_s).general(u"targetsettings_0_name"_s, u"board */"_s);
    const QString body =
        u"#define CORE_TIMER_INTERVAL\t500u\n#define CORE_BIG_ENDIAN\t1u\n#define CORE_DRV_FILTER\t1u\n"
        "\n/* target-specific defines */\n#define LED 1\n"_s;
    EXPECT_EQ(section(project), u"#define TARGET_0 1u\n"_s + body);
    project.general(u"all_targets"_s, u"1"_s).general(u"target_id"_s, u"BOARD"_s);
    EXPECT_EQ(section(project),
              u"#define BOARD 1u\n#ifdef BOARD /* board * / */\n"_s + body + u"#endif /* BOARD*/ \n\n"_s);

    project.general(u"targetsettings_cnt"_s, u"2"_s).general(u"targetsettings_1_targetid"_s, u"SECOND"_s);
    project.general(u"targetsettings_1_groupfilter"_s, u"1"_s).general(u"targetsettings_1_timer"_s, u"250"_s);
    const QString second = u"#define CORE_TIMER_INTERVAL\t250u\n#define CORE_DRV_GROUP_FILTER\t1u\n"_s;
    EXPECT_EQ(section(project),
              u"#ifdef TARGET_0 /* board * / */\n#define CORE_TIMER_INTERVAL\t0u\n#endif /* TARGET_0*/ \n\n"
              "#ifdef SECOND\n%1#endif /* SECOND*/ \n\n"_s.arg(second));
    project.general(u"all_targets"_s, u"0"_s).general(u"targetsettings_active"_s, u"1"_s);
    EXPECT_EQ(section(project), u"#define SECOND 1u\n"_s + second);
    project.general(u"targetsettings_active"_s, u"7"_s);
    EXPECT_EQ(section(project), u"#define TARGET_0 1u\n#define CORE_TIMER_INTERVAL\t0u\n"_s);
}

// ---- What survives a generation ----------------------------------------------------------------------------------

TEST_F(Define, KeepsTheUserSectionByteForByte)
{
    ProjectBuilder project;
    const QByteArray start = "/* user-specific section: start */\n";
    const QByteArray end = "/* user-specific section: end */\n\n#endif /* GEN_DEFINE_H */\n";
    EXPECT_EQ(v4(project).userSection(), QString());
    EXPECT_TRUE(readFile(path()).endsWith(start + "\n" + end));

    const QByteArray mine(
        "\r\n#define MINE\t\"\xe4\xff ${NAME}\"\r\n/* user-specific section: start */\n\t \n#define X\n");
    QByteArray file = readFile(path());
    file.replace(start + "\n" + end, start + mine + end);
    for (int run = 0; run < 2; ++run) {
        ASSERT_TRUE(writeFile(path(), file));
        EXPECT_TRUE(v4(project).userSection().contains("#define MINE"_L1));
        file = readFile(path());
        EXPECT_TRUE(file.endsWith(start + mine + end));
    }
    // A project may have its line ends converted to those of another system, carriage returns alone included.
    project.general(u"generate_generation_counter"_s, u"1"_s);
    file = readFile(path());
    ASSERT_TRUE(
        writeFile(path(), file.replace(start + mine + end, start + "#define MINE\n" + end).replace('\n', '\r')));
    EXPECT_EQ(v4(project).value(u"GEN_GENERATION_COUNT"_s), u"1ul");
    EXPECT_TRUE(readFile(path()).endsWith(start + "#define MINE\r" + end));
    ASSERT_TRUE(writeFile(path(), readFile(path()).replace('\n', '\r')));
    EXPECT_EQ(v4(project).value(u"GEN_GENERATION_COUNT"_s), u"2ul");
    EXPECT_TRUE(readFile(path()).endsWith(start + "#define MINE\r" + end));
    // Without its end mark the section ends where the file does.
    EXPECT_EQ(FormerDefines::parse(start + mine + "\n#endif /* GEN_DEFINE_H */\n").userSection, mine + "\n");
    EXPECT_EQ(FormerDefines::parse(mine).userSection, "\t \n#define X\n");
}

TEST_F(Define, CountsGenerations)
{
    ProjectBuilder project;
    const auto count = [&] { return v4(project).value(u"GEN_GENERATION_COUNT"_s); };
    EXPECT_EQ(count(), u"none");
    project.general(u"generate_generation_counter"_s, u"1"_s)
        .general(u"user_defines"_s, u"#undef GEN_GENERATION_COUNT"_s);
    EXPECT_EQ(count(), u"1ul");
    EXPECT_EQ(count(), u"2ul");
    QByteArray file = readFile(path());
    ASSERT_TRUE(writeFile(path(), file.replace("GEN_GENERATION_COUNT\t2ul\n", "GEN_GENERATION_COUNT\t0x1Ful\r\n")));
    EXPECT_EQ(count(), u"32ul");
    ASSERT_TRUE(writeFile(path(), "#define GEN_GENERATION_COUNT\t5\n")); // shorter than the suffix
    EXPECT_EQ(count(), u"1ul");
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_EQ(count(), u"1ul");
    project.general(u"generate_generation_counter"_s, u"0"_s);
    EXPECT_EQ(count(), u"none");
}

class Recorder : public OutputHandlerBase
{
public:
    void message(const QVariant &value) override { messages.append(value.toString()); }
    void forwardMessage(const QVariant & /*value*/) override {}
    QString collectedText() const override { return {}; }

    QStringList messages;
};

TEST_F(Define, TellsTheRunAboutTheUserSectionAndTheProps)
{
    ProjectBuilder project;
    project.general(u"gen_csharp_props"_s, u"1"_s);
    ASSERT_TRUE(project.save(folder_.filePath(u"device.ncxp"_s)));
    Recorder output;
    GeneratorMainHandler handler(&output);
    ASSERT_TRUE(handler.openProject(folder_.filePath(u"device.ncxp"_s)));
    const auto said = [&] {
        output.messages.clear();
        handler.generate(true);
        return output.messages.filter(QRegularExpression(u"gen_define"_s)).replaceInStrings(folder_.path(), u"DIR"_s);
    };
    const QString started = u"Generation of gen_define.h in DIR started"_s;
    const QString completed = u"Generation of gen_define.h completed. "_s;
    const QString props = u"Generation of gen_define.props and Directory.Build.props in DIR finished"_s;
    EXPECT_EQ(said(), (QStringList{started, completed, props}));
    QByteArray file = readFile(path());
    ASSERT_TRUE(writeFile(path(), file.replace("section: start */\n", "section: start */\n#define MINE\n")));
    EXPECT_EQ(said(),
              (QStringList{started, completed, u"gen_define.h contains user section:\n#define MINE\n\n"_s, props}));
    EXPECT_TRUE(readFile(folder_.filePath(u"gen_define.props"_s)).contains(";MINE</DefineConstants>"));

    QFile::remove(folder_.filePath(u"gen_define.props"_s));
    QDir(folder_.path()).mkdir(u"gen_define.props"_s);
    EXPECT_EQ(said().last(), u"The files gen_define.props and Directory.Build.props in DIR are not writable");
}

TEST_F(Define, FeedsTheBuildOfACSharpWrapper)
{
    EXPECT_EQ(ProjectProps::macroNames("#define A 1\r\n  # \tdefine\t B2_(x) x\n#define A 2\n#define 1C\n#defineD\n"
                                       "// #define E\n#define F\r#define G\r"),
              (QStringList{u"A"_s, u"B2_"_s, u"F"_s, u"G"_s}));

    EXPECT_TRUE(ProjectProps::write(folder_.path()));
    EXPECT_FALSE(QFile::exists(folder_.filePath(u"gen_define.props"_s)));
    EXPECT_EQ(readFile(folder_.filePath(u"Directory.Build.props"_s)),
              R"xml(<?xml version="1.0" encoding="utf-8"?>
<!-- Auto-imported by MSBuild. Pulls in the generated define -->
<!-- symbols (gen_define.props) if present; no error if absent. -->
<Project>
  <Import Project="$(MSBuildThisFileDirectory)gen_define.props"
          Condition="Exists('$(MSBuildThisFileDirectory)gen_define.props')" />
</Project>
)xml");
    ASSERT_TRUE(writeFile(path(), "#define A 1\n#define B 1\n"));
    EXPECT_TRUE(ProjectProps::write(folder_.path()));
    EXPECT_EQ(readFile(folder_.filePath(u"gen_define.props"_s)),
              R"(<?xml version="1.0" encoding="utf-8"?>
<!-- Auto-generated from gen_define.h - do not edit. -->
<!-- C# conditional-compilation symbols that make the #if in the -->
<!-- generated wrapper match the compiled stack_wrapper DLL. -->
<!-- Imported automatically by Directory.Build.props when present. -->
<Project>
<PropertyGroup>
<DefineConstants>$(DefineConstants);A;B</DefineConstants>
</PropertyGroup>
</Project>
)");
    QFile::remove(folder_.filePath(u"gen_define.props"_s));
    QDir(folder_.path()).mkdir(u"gen_define.props"_s);
    EXPECT_FALSE(ProjectProps::write(folder_.path()));
}

} // namespace
