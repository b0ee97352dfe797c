#include "generate/codewriter.h"
#include "generate/dialect.h"
#include "generate/stack/definegenerator.h"
#include "generate/stack/indicationgenerator.h"
#include "generate/stack/indicationpointers.h"
#include "generate/stack/indications.h"
#include "support/processrunner.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class Indication : public testing::Test
{
protected:
    QString header(const ProjectBuilder &project, SourceForm form) const
    {
        if (form == SourceForm::V4)
            run<indicationgeneratorv4>(project);
        else
            run<indicationgenerator>(project);
        return QString::fromUtf8(readFile(folder_.filePath(u"gen_indication.h"_s)));
    }
    /// The lines between the guards.
    QStringList body(const ProjectBuilder &project, SourceForm form = SourceForm::V4) const
    {
        return header(project, form)
            .section(u"#define GEN_INDICATION 1\n\n"_s, 1)
            .section(u"#endif /* GEN_INDICATION*/"_s, 0, 0)
            .split(u'\n', Qt::SkipEmptyParts);
    }

    template <typename Generator>
    void run(const ProjectBuilder &project) const
    {
        Generator generator;
        generator.setDatabase(project.store());
        generator.setOutputFolder(folder_.path());
        generator.setBaseName(u"device"_s);
        generator.startJob();
        generator.waitForJob();
        EXPECT_EQ(generator.errorText(), QString());
    }

    QTemporaryDir folder_;
};

QStringList pointers(const ProjectBuilder &project, const Dialect &dialect = Dialect::v4())
{
    QString text;
    QTextStream stream(&text);
    CodeWriter out(stream);
    writeIndicationPointers(out, *project.store(), dialect);
    writeUdsIndicationPointers(out, *project.store(), dialect);
    return text.split(u'\n', Qt::SkipEmptyParts).mid(1);
}

/// A project that names a function for every event, each after its setting.
void nameAll(ProjectBuilder &project)
{
    for (const auto &events :
         {Indications::canOpenEvents(), Indications::usdoServerEvents(), Indications::usdoClientEvents()}) {
        for (const Indications::Event &event : events)
            project.general(event.key, "on_"_L1 + event.key);
    }
    for (const Indications::UdsEvent &event : Indications::udsEvents())
        project.general(event.key, "on_"_L1 + event.key);
    for (const QString &key : {u"usdo_server_enabled"_s, u"usdo_client_enabled"_s, u"uds_static_indication"_s})
        project.general(key, u"1"_s);
}

TEST_F(Indication, SaysWhereThereAreNoFunctions)
{
    ProjectBuilder project;
    project.general(u"fct_nmt"_s, u"  "_s).general(u"usdo_client_read_ind_function"_s, u"f"_s);
    EXPECT_TRUE(body(project).contains(u"   There are not any static indication functions defined."_s));
    EXPECT_EQ(pointers(project), QStringList());
    // A function that is bound without a prototype is there all the same.
    EXPECT_EQ(body(project.general(u"fct_manager"_s, u"onManager"_s)), QStringList());
}

TEST_F(Indication, DeclaresAndBindsFunctionsInTheirOrder)
{
    ProjectBuilder project;
    project.general(u"fct_mpdo"_s, u"onMpdo"_s).general(u"fct_manager"_s, u"onManager"_s);
    project.general(u"fct_sdo_server_write"_s, u" onWrite "_s)
        .general(u"note_fct_sdo_server_write"_s, u"see */ there"_s);
    project.general(u"fct_sdo_server_check_write"_s, u"onCheck"_s).general(u"fct_can"_s, u"onCan"_s);
    project.general(u"usdo_server_domain_read_ind_function"_s, u"onRead"_s);
    project.general(u"usdo_server_enabled"_s, u"0,1"_s).line(1, 1);
    project.general(u"uds_fct_generic"_s, u"onGeneric"_s).general(u"uds_static_indication"_s, u"1"_s);
    EXPECT_EQ(
        body(project),
        (QStringList{
            u"/* see * / there */"_s,
            u"RET_T onWrite(CORE_CONST CO_EVENT_SDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_SDO_SERVER_PARA_T *pPara);"_s,
            u"void onCan(CORE_CAN_STATE_T canState);"_s,
            u"void onMpdo(CORE_CONST CO_EVENT_MPDO_PARA_T *pPara);"_s,
            u"RET_T onRead(CORE_CONST CO_EVENT_USDO_SERVER_DOMAIN_PARA_T *pPara);"_s,
            u"#if UDS_EVENT_STATIC_GENERIC_FCT"_s,
            u"UNSIGNED8 onGeneric(UDS_GENERIC_PARA_T *pPara);"_s,
            u"#endif"_s,
        }));
    EXPECT_EQ(pointers(project),
              (QStringList{
                  u"CORE_CONST CO_EVENT_SDO_SERVER_FUNCTION_T coEventSdoServerWriteInd = onWrite;"_s,
                  u"CORE_CONST CORE_EVENT_CAN_STATE_T coreEventCanStateInd = onCan;"_s,
                  u"CORE_CONST CO_EVENT_MANAGER_BOOTUP_T coEventManagerInd = onManager;"_s,
                  u"CORE_CONST CO_EVENT_MPDO_T coEventMPdoInd = onMpdo;"_s,
                  u"CORE_CONST CO_EVENT_USDO_SERVER_DOMAIN_READ_T coEventUsdoServerDomainReadInd = onRead;"_s,
                  u"#if UDS_EVENT_STATIC_GENERIC_FCT"_s,
                  u"CORE_CONST UDS_EVENT_GENERIC_FCT_T udsGenericInd = onGeneric;"_s,
                  u"#endif"_s,
              }));
    EXPECT_EQ(
        body(project, SourceForm::Classic),
        (QStringList{
            u"/* see * / there */"_s,
            u"RET_T onWrite(BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex);"_s,
            u"RET_T onCheck(BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, const UNSIGNED8 *pData);"_s,
            u"void onCan(CO_CAN_STATE_T canState);"_s,
            u"void onManager(UNSIGNED8 node, CO_MANAGER_EVENT_T event);"_s,
            u"void onMpdo(UNSIGNED16 pdoNr, UNSIGNED16 index, UNSIGNED8 subIndex);"_s,
            u"RET_T onRead(CO_CONST CO_EVENT_USDO_SERVER_DOMAIN_PARA_T *pPara);"_s,
        }));
    EXPECT_EQ(pointers(project, Dialect::classic()).value(2),
              u"CO_CONST CO_EVENT_CAN_STATE_T coreEventCanStateInd = onCan;");

    project.object(0x1000, u"o"_s).line(0, 1).object(0x1000, u"o"_s);
    EXPECT_TRUE(body(project).contains(u"void onCan(CAN_LINE_TYPE CAN_LINE, CORE_CAN_STATE_T canState);"_s));
    EXPECT_TRUE(
        body(project, SourceForm::Classic).contains(u"void onCan(UNSIGNED8 CO_LINE, CO_CAN_STATE_T canState);"_s));
}

TEST_F(Indication, CompilesWithAFunctionForEachEvent)
{
    for (const Dialect &dialect : {Dialect::v4(), Dialect::classic()}) {
        for (const bool multiLine : {false, true}) {
            SCOPED_TRACE(testing::Message() << (dialect.form == SourceForm::V4 ? "V4" : "classic") << multiLine);
            ProjectBuilder project;
            nameAll(project);
            project.misc(u"generateML"_s, multiLine ? u"true"_s : u"false"_s).object(0x1000, u"o"_s);
            QString source = u"#include <gen_define.h>\n#include <co_canopen.h>\n#include <stack_indication_types.h>\n"
                             "#include <gen_indication.h>\n"_s;
            if (dialect.form == SourceForm::V4) {
                run<GenDefineGenerator>(project);
                source.replace("<stack_indication_types.h>"_L1, "<uds_indication.h>"_L1);
                source += u"void on_fct_manager(STACK_EVENT_LINE CORE_CONST CO_EVENT_MANAGER_PARA_T *);\n"_s;
            } else {
                run<CoDefineGenerator>(project);
            }
            header(project, dialect.form);
            const QStringList bound = pointers(project, dialect);
            EXPECT_GT(bound.size(), dialect.form == SourceForm::V4 ? 70 : 40);
            ASSERT_TRUE(writeFile(folder_.filePath(u"pointers.c"_s), (source + bound.join(u'\n') + u'\n').toUtf8()));
            const ProcessResult result =
                ProcessRunner(u"/usr/bin/env"_s)
                    .arguments({u"cc"_s, u"-std=c99"_s, u"-Wall"_s, u"-Wextra"_s, u"-Werror"_s, u"-fsyntax-only"_s,
                                u"-I"_s + folder_.path(),
                                u"-I"_s + QStringLiteral(NCX_SOURCE_DIR "/tests/stack/include"),
                                folder_.filePath(u"pointers.c"_s)})
                    .run();
            EXPECT_EQ(result.errors, QString());
        }
    }
}

} // namespace
