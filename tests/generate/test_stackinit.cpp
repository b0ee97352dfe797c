#include "generate/codewriter.h"
#include "generate/dialect.h"
#include "generate/stack/commongeneratorhelper.h"
#include "generate/stack/dictionarytables.h"
#include "generate/stack/loadindication.h"
#include "generate/stack/stackinit.h"
#include "support/projectbuilder.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using Sub = StoreRecords::SubIndexData;

namespace {

template <typename Write>
QString textOf(const Write &write)
{
    QString text;
    QTextStream stream(&text);
    CodeWriter out(stream);
    write(out);
    stream.flush();
    return text;
}

auto number(quint16 type, const QString &value)
{
    return [type, value](Sub &sub) {
        sub.datatype = type;
        sub.defaultvalue = value;
    };
}

constexpr quint16 u8 = 5;
constexpr quint16 u16 = 6;
constexpr quint16 u32 = 7;

QString commonInitOf(ProjectBuilder &project, const Dialect &dialect = Dialect::v4())
{
    return textOf([&](CodeWriter &out) { writeCommonInit(out, CommonInit::collect(*project.store()), dialect); });
}

QString udsBlocksOf(ProjectBuilder &project, const Dialect &dialect = Dialect::v4())
{
    return textOf([&](CodeWriter &out) { CommonGeneratorHelper(project.store(), dialect).writeUdsBlocks(out); });
}

QString startUpOf(ProjectBuilder &project, const Dialect &dialect = Dialect::v4())
{
    return textOf([&](CodeWriter &out) {
        writeStartUpSections(out, project.store(), collectDictionaryTables(*project.store(), {}), dialect);
    });
}

/// The functions that a text calls with `retVal` or without, in order.
QStringList callsOf(const QString &text)
{
    static const QRegularExpression call(u"^ +(?:retVal = +)?(co\\w+|isoTpInit)\\((.*)\\);$"_s,
                                         QRegularExpression::MultilineOption);
    QStringList calls;
    for (auto it = call.globalMatch(text); it.hasNext();) {
        const auto match = it.next();
        calls.append(match.captured(1) + u'(' + match.captured(2) + u')');
    }
    return calls;
}

TEST(CommonInit, NamesTheProtocolsOfEachLine)
{
    ProjectBuilder project;
    const QList<int> types{1, 2, 3, 4, 5, 6, 7};
    for (qsizetype i = 0; i < types.size(); ++i)
        project.line(static_cast<quint8>(i), types.at(i));
    project.line(40, 1); // beyond the lines that the stack counts
    EXPECT_TRUE(commonInitOf(project).contains(
        u"\t1u,\n\t{ CORE_REC_BUFFER_COUNTS },\n\t{ CORE_TR_BUFFER_COUNTS },\n\t{ CORE_COB_COUNTS }, \n"
        "\t{ CORE_PROT_TYPE_CANOPEN, CORE_PROT_TYPE_J1939, CORE_PROT_TYPE_UNKNOWN, CORE_PROT_TYPE_RAWCAN, "
        "CORE_PROT_TYPE_J1939 | CORE_PROT_TYPE_CANOPEN, CORE_PROT_TYPE_CANOPEN | CORE_PROT_TYPE_RAWCAN, "
        "CORE_PROT_TYPE_J1939 | CORE_PROT_TYPE_RAWCAN, },\n};\n"_s));
}

TEST(CommonInit, FollowsTheSettings)
{
    ProjectBuilder project;
    project.general(u"udsclient_supported"_s, u"1"_s);
    EXPECT_TRUE(commonInitOf(project).endsWith(u"\t{ CORE_PROT_TYPE_CANOPEN | CORE_PROT_TYPE_UDS, },\n};\n\n"_s));
    project.general(u"udsserver_supported"_s, u"1"_s);
    EXPECT_TRUE(commonInitOf(project).endsWith(u"\t{ ISOTP_CLIENT_COUNTS },\n\t{ ISOTP_SERVER_COUNTS },\n};\n\n"_s));
    const QString classic = commonInitOf(project, Dialect::classic());
    EXPECT_TRUE(classic.startsWith(u"CO_COMMON_INIT_VAL_T    commonInitVars = {\n"_s));
    EXPECT_TRUE(classic.contains(u"{ MP_PROT_TYPE_CANOPEN | MP_PROT_TYPE_UDS, }"_s));
    EXPECT_TRUE(classic.endsWith(u"\t{ ISOTP_SERVER_COUNTS }\n};\n\n"_s));
    // A member behind them needs the comma in both forms.
    project.line(1, 1).general(u"canfd_supported"_s, u"1"_s);
    for (const Dialect *dialect : {&Dialect::v4(), &Dialect::classic()})
        EXPECT_TRUE(
            commonInitOf(project, *dialect).endsWith(u"\t{ ISOTP_SERVER_COUNTS },\n\t{ CO_TRUE, CO_TRUE }\n};\n\n"_s));
}

TEST(UdsBlocks, RepeatShortListsAsAWhole)
{
    ProjectBuilder project;
    project.line(1, 1).line(2, 1).line(4, 1);
    project.general(u"udsserver_supported"_s, u"1"_s)
        .general(u"uds_physical_request_id"_s, u"0x7E0, 1793 ,x"_s)
        .general(u"uds_rdbip_canid"_s, u"0x6E0,"_s);
    const auto uds = UdsBlocks::collect(*project.store());
    ASSERT_TRUE(uds);
    ASSERT_EQ(uds->lines.size(), 4);
    EXPECT_EQ(uds->version, 1);
    const QList<quint32> requests{0x7e0, 0x701, 0, 0x7e0};
    const QList<quint32> periodic{0x6e0, 0x3fffffff, 0x6e0, 0x3fffffff};
    for (qsizetype i = 0; i < 4; ++i) {
        EXPECT_EQ(uds->lines.at(i).physicalRequest, requests.at(i));
        EXPECT_EQ(uds->lines.at(i).periodicData, periodic.at(i));
    }
    EXPECT_EQ(uds->lines.last().line, 4);
    EXPECT_FALSE(UdsBlocks::collect(*ProjectBuilder().store()));
}

TEST(UdsBlocks, GrowWithTheVersion)
{
    ProjectBuilder project;
    project.general(u"udsserver_supported"_s, u"1"_s).general(u"uds_server_active"_s, u"1"_s);
    const auto blocks = [&project](const QString &version) {
        project.general(u"udsserver_version"_s, version);
        return udsBlocksOf(project);
    };
    EXPECT_TRUE(blocks(u"0x100"_s)
                    .endsWith(u"CORE_CONST UDS_CONFIG_INIT_VAL_T\tudsLine0 = {\n\t0x0u,\n\t0x0u,\n"
                              "\t0x0u,\n\t0x0u,\n\t0x0u,\n\t0x0u\n};\n\n"_s));
    EXPECT_TRUE(blocks(u"2"_s).contains(u"\t0x0u,\n\t0u,\n\t0u,\n\t0u,\n\t0u,\n\tISOTP_FORMAT_NORMAL,\n"_s));
    EXPECT_FALSE(blocks(u"3"_s).contains(u"0x3fffffff"_s));
    EXPECT_TRUE(blocks(u"4"_s).contains(u"\t0x0u,\n\t0x3fffffffu,\n\t0u,\n"_s));
    project.general(u"uds_bl_setting"_s, u"1"_s);
    EXPECT_TRUE(blocks(u"4"_s).contains(u"line 0 */\nUDS_CONFIG_INIT_VAL_T\tudsLine0"_s));
}

/// A line with every service that the start-up knows.
void addServices(ProjectBuilder &project)
{
    for (const quint16 index : std::initializer_list<quint16>{0x1005, 0x1006, 0x1014, 0x1F10, 0x1300, 0x1F81})
        project.object(index, u"one"_s).sub(0, u"value"_s, number(u32, u"0x80"_s));
    project.object(0x1012, u"time"_s).sub(0, u"value"_s, number(u32, u"$nodeid+0x40000100"_s));
    project.object(0x1016, u"consumers"_s)
        .sub(0, u"count"_s)
        .sub(1, u"a"_s, number(u32, u"0"_s))
        .sub(2, u"b"_s, number(u32, u"0"_s));
    project.object(0x1017, u"heartbeat"_s).sub(0, u"value"_s, number(u16, u"7"_s));
    project.object(0x1019, u"overflow"_s).sub(0, u"value"_s, number(u8, u"3"_s));
    project.object(0x1028, u"emergencies"_s).sub(0, u"count"_s).sub(1, u"a"_s, number(u32, u"0"_s));
    for (const quint16 index : std::initializer_list<quint16>{0x1201, 0x1203, 0x1280, 0x1282})
        project.object(index, u"sdo"_s).sub(0, u"count"_s);
    project.object(0x1302, u"srdo"_s)
        .sub(0, u"count"_s)
        .sub(1, u"direction"_s, number(u8, u"1"_s))
        .sub(2, u"refresh"_s, number(u16, u"25"_s))
        .sub(5, u"first"_s, number(u32, u"0x101"_s));
    // The event time of another width than usual is a constant of that width.
    project.object(0x1801, u"tpdo"_s)
        .sub(0, u"count"_s)
        .sub(2, u"type"_s, number(u8, u"254"_s))
        .sub(5, u"event"_s, number(u32, u"0x80"_s));
    project.object(0x1A01, u"mapping"_s).sub(0, u"count"_s, [](Sub &sub) { sub.accesstype = u"rw"_s; });
    project.object(0x1400, u"rpdo"_s).sub(0, u"count"_s).sub(3, u"inhibit"_s, number(u16, u"7"_s));
    project.object(0x1600, u"mapping"_s).sub(0, u"count"_s, [](Sub &sub) { sub.accesstype = u"rw"_s; });
    for (const char *key : {"event_led", "isotp_connection_cnt", "idnego_supported", "lss_supported"})
        project.general(QString::fromLatin1(key), u"1"_s);
    project.general(u"new_init_structure"_s, u"1"_s);
}

/// Names without arguments, each once in a row.
QStringList orderOf(const QStringList &calls)
{
    QStringList order;
    for (const QString &call : calls) {
        const QString name = call.section(u'(', 0, 0);
        if (order.isEmpty() || order.last() != name)
            order.append(name);
    }
    return order;
}

TEST(StackInit, StartsTheServicesOfOneLineInTheirOrder)
{
    ProjectBuilder project;
    addServices(project);
    const QStringList calls = callsOf(startUpOf(project));
    EXPECT_EQ(orderOf(calls),
              u"coreStackInit coCanOpenStackVarInit coOdInitOdPtr coLedInit coSdoServerInit "
              "coSdoClientInit coErrorCtrlInit coEmcyProducerInit coSyncInit coEmcyConsumerInit "
              "coTimeInit coPdoTransmitInit coPdoReceiveInit coSrdInit coGfcInit coSrdoInit isoTpInit "
              "coIdNegoInit coGuardingInit coEventRegister_LOAD_PARA coLssInit coNmtInit"_s.split(u' '));
    for (const QString &call :
         {u"coSdoServerInit(1u)"_s, u"coSdoServerInit(2u)"_s, u"coSdoServerInit(4u)"_s, u"coSdoClientInit(1u)"_s,
          u"coSdoClientInit(3u)"_s, u"coEmcyConsumerInit(1u)"_s, u"coErrorCtrlInit(od_const_u16[0], 2u)"_s,
          u"coTimeInit(CO_TRUE, CO_FALSE)"_s, u"coSyncInit(od_const_u32[0], od_const_u32[0], od_const_u8[1])"_s,
          u"coSrdoInit(2u, od_const_u8[2], od_const_u16[1], 0u, 0u, od_const_u32[3], 0u)"_s,
          u"coPdoTransmitInit(2u, od_const_u8[3], 0u, od_const_u32[0], 0u, NULL)"_s,
          u"coPdoReceiveInit(1u, 0u, od_const_u16[0], 0u, NULL)"_s})
        EXPECT_TRUE(calls.contains(call)) << qPrintable(call) << " of " << qPrintable(calls.join(u'\n'));
}

TEST(StackInit, GivesEachLineItsOwnServices)
{
    ProjectBuilder project;
    project.object(0x1000, u"type"_s).sub(0, u"value"_s).object(0x100C, u"guard"_s).sub(0, u"value"_s);
    project.line(1, 1);
    addServices(project);
    const QString text = startUpOf(project);
    const QString lineZero = text.section(u"<<0>>"_s, 1).section(u"<<1>>"_s, 0, 0);
    EXPECT_EQ(callsOf(lineZero),
              QStringList({u"coOdInitOdPtr(canLine, &od_assign[0], 2, od_description, 2, NULL, "
                           "&od_data_variables)"_s,
                           u"coSdoServerInit(canLine, 1u)"_s, u"coErrorCtrlInit(canLine, 0, 0u)"_s,
                           u"isoTpInit(canLine)"_s, u"coIdNegoInit(canLine)"_s, u"coLedInit(canLine)"_s,
                           u"coLssInit(canLine)"_s, u"coNmtInit(canLine, 0u)"_s}));
    EXPECT_TRUE(lineZero.contains(u"(Node Guarding) */"_s));
    const QString lineOne = text.section(u"<<1>>"_s, 1).section(u"_finish(void)"_s, 0, 0);
    EXPECT_EQ(orderOf(callsOf(lineOne)),
              u"coOdInitOdPtr coSdoServerInit coSdoClientInit coErrorCtrlInit coEmcyProducerInit coSyncInit "
              "coEmcyConsumerInit coTimeInit coPdoTransmitInit coPdoReceiveInit coSrdInit isoTpInit coIdNegoInit "
              "coGuardingInit coGfcInit coSrdoInit coLedInit coLssInit coNmtInit"_s.split(u' '));
    EXPECT_TRUE(lineOne.contains(u"coOdInitOdPtr(canLine, &od_assign[2], "_s));
    project.general(u"canfd_supported"_s, u"1"_s);
    EXPECT_TRUE(startUpOf(project).contains(u"        commonInitVars.fdMode[CAN_LINE] = CO_TRUE;\n"
                                            "        if (pModes != NULL) {\n"
                                            "            commonInitVars.fdMode[CAN_LINE] = pModes[CAN_LINE];\n"
                                            "        }\n"
                                            "        serviceInitVars.fdMode[CAN_LINE] = CO_TRUE;\n"_s));
}

TEST(StackInit, TakesTheModesOfAllLines)
{
    ProjectBuilder project;
    for (const quint8 line : std::initializer_list<quint8>{0, 1})
        project.line(line, 1)
            .object(0x1000, u"type"_s)
            .sub(0, u"value"_s)
            .object(0x1001, u"error"_s)
            .sub(0, u"value"_s);
    project.general(u"canfd_supported"_s, u"1"_s).general(u"usdo_client_enabled"_s, u"0,1"_s);
    project.general(u"usdo_client_cnt"_s, u"1"_s);
    const QString text = startUpOf(project);
    EXPECT_TRUE(
        text.contains(u"RET_T coCanOpenStackInit(\n    CO_EVENT_STORE_T pLoadFunction\n    , BOOL_T *pModes\n)"_s));
    EXPECT_TRUE(text.contains(u"    retVal = coCanOpenStackInit_common(pLoadFunction, pModes);\n"_s));
    EXPECT_TRUE(text.contains(u"        retVal = coCanOpenStackInit_line1(1, pCoInitOpt, pModes);\n"_s));
    EXPECT_TRUE(text.contains(u"    if (pModes != NULL) {\n        if (pModes[canLine] == CO_TRUE) {\n"
                              "            retVal = coUsdoServerInit(canLine);\n"_s));
    EXPECT_EQ(text.count(u"coUsdoClientInit(canLine)"_s), 1); // of line 1 alone
    EXPECT_TRUE(text.section(u"<<1>>"_s, 1).contains(u"    if (commonInitVars.fdMode[canLine] == CO_TRUE) {\n"_s));
}

TEST(StackInit, TellsMasterFromSlave)
{
    struct Case
    {
        QString master;
        QString lss;
        QString calls;
    };
    const QList<Case> cases{
        {u"0"_s, u"0"_s, u"coNmtInit(0u)"_s},
        {u""_s, u"1"_s, u"coLssInit() coNmtInit(0u)"_s},
        {u"1"_s, u"0"_s, u"coNmtInit(1u)"_s},
        {u"1"_s, u"1"_s, u"coLssMasterInit() coNmtInit(1u)"_s},
        {u"3"_s, u"1"_s, u"coLssInit() coNmtInit(1u)"_s},
        {u"2"_s, u"0"_s, u"coNmtInit(1u) coNmtInit(0u)"_s},
        {u"2"_s, u"1"_s, u"coLssMasterInit() coNmtInit(1u) coLssInit() coNmtInit(0u)"_s},
    };
    for (const Case &entry : cases) {
        SCOPED_TRACE(qPrintable(entry.master + u' ' + entry.lss));
        ProjectBuilder project;
        project.general(u"nmtmaster"_s, entry.master).general(u"lss_supported"_s, entry.lss);
        const QString text = startUpOf(project);
        EXPECT_EQ(callsOf(text.section(u"CO_EVENT_PROFILE_STORE */"_s, 1)).join(u' '), entry.calls);
        EXPECT_EQ(text.contains(u"coCanOpenStackInitPara("_s), entry.master == "2"_L1);
    }
}

TEST(StackInit, LeavesOutWhatALineDoesNotHave)
{
    ProjectBuilder project;
    project.general(u"fct_store"_s, u" loadParameters "_s).object(0x1281, u"second client"_s).sub(0, u"count"_s);
    const QString text = startUpOf(project);
    EXPECT_FALSE(text.contains(u"coErrorCtrlInit"_s));
    EXPECT_FALSE(text.contains(u"coSdoClientInit"_s)); // the first client decides
    EXPECT_TRUE(text.contains(u"#else\n    (void)pLoadFunction;\n#endif"_s));
    EXPECT_TRUE(text.contains(u"extern CO_SERVICE_INIT_VAL_T\tserviceInitVars;\n"_s));
    EXPECT_TRUE(startUpOf(project, Dialect::classic()).contains(u"retVal = commonStackInit(&commonInitVars);\n"_s));
}

TEST(PredefinedSet, NeedsItsSetting)
{
    ProjectBuilder project;
    project.object(0x1000, u"type"_s).sub(0, u"value"_s);
    project.object(0x1800, u"tpdo"_s).sub(0, u"count"_s).sub(1, u"id"_s, number(u32, u"$NodeId+0x180"_s));
    project.object(0x1801, u"tpdo"_s).sub(0, u"count"_s).sub(1, u"id"_s, number(u32, u"$NODEID+ "_s));
    EXPECT_FALSE(startUpOf(project).contains(u"genLoadIndication"_s));
    project.general(u"overwrite_predef"_s, u"1"_s);
    EXPECT_TRUE(startUpOf(project).contains(u"\tif ((subIndex == 1) || (subIndex == 2)) {\n"
                                            "\n\t\t/* TxPDO COB IDs */\n"
                                            "\t\tcobId = nodeId + 0x180;\n"
                                            "\t\tret = coOdSetCobid(0x1800, 1, cobId);\n"
                                            "\t\tcobId = nodeId + 0;\n"
                                            "\t\tret = coOdSetCobid(0x1801, 1, cobId);\n\t}\n\treturn ret;\n}\n"_s));
}

} // namespace
