#include "generate/codewriter.h"
#include "generate/dialect.h"
#include "generate/stack/cppcopies.h"
#include "generate/stack/dictionarytables.h"
#include "generate/stack/objdictgenerator.h"
#include "generate/stack/objdictsections.h"
#include "nodedict/canopendatatype.h"
#include "support/projectbuilder.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;
using Sub = StoreRecords::SubIndexData;

namespace {

using Section = void (*)(CodeWriter &, const DictionaryTables &, const Dialect &);

QString written(Section section, const DictionaryTables &tables, const Dialect &dialect = Dialect::v4())
{
    QString text;
    QTextStream stream(&text);
    CodeWriter out(stream);
    section(out, tables, dialect);
    stream.flush();
    return text;
}

DictionaryTables collected(const ProjectBuilder &project)
{
    return collectDictionaryTables(*project.store(), {});
}

TEST(ObjDictSections, PlaceManagedVariablesWhereTheCompilerIsTold)
{
    ProjectBuilder project;
    project.general(u"static_memory_specifier"_s, u"__far"_s).object(0x2000, u"any"_s).sub(1, u"any"_s);
    EXPECT_EQ(written(ObjDictSections::managedVariables, collected(project)),
              u"\n/* definition of managed variables */\nstatic UNSIGNED8 CORE_STORAGE_CLASS\tod_u8[1] __far ;\n"_s);
}

TEST(ObjDictSections, TakeExpressionsAsTheyStand)
{
    ProjectBuilder project;
    project.misc(u"generateML"_s, u"true"_s).object(0x2000, u"any"_s);
    quint8 subindex = 0;
    for (const auto &[type, name] : std::vector<std::pair<quint16, QString>>{{CAN::Integer8, u"get(1)"_s},
                                                                             {CAN::Integer8, u"plain"_s},
                                                                             {CAN::Integer8, {}},
                                                                             {CAN::Unsigned24, u"get(2)"_s},
                                                                             {CAN::OctetString, u"bytes"_s},
                                                                             {CAN::Domain, u"any"_s}})
        project.sub(++subindex, u"any"_s, [&](Sub &sub) {
            sub.datatype = type;
            sub.varname = name;
            sub.implementation = Variable;
            sub.size = 5;
        });
    EXPECT_EQ(written(ObjDictSections::applicationVariables, collected(project)),
              u"\n/* definition of application variables */\n"
              "static UNSIGNED24 CORE_CONST_STORAGE_CLASS * CORE_CONST \tod_ptr_u24[1] = {\n"
              "\t&(get(2)) /* 0-0x2000:4 */};\n"
              "static INTEGER8  CORE_CONST_STORAGE_CLASS * CORE_CONST \tod_ptr_i8[3] = {\n"
              "\tget(1) /* 0-0x2000:1 */,\n"
              "\t&(plain) /* 0-0x2000:2 */,\n"
              "\tNULL /* 0-0x2000:3 */};\n"
              "static OCTET_STRING\t*od_octet_string[1] = {\n\t&(bytes[0])};\n"
              "static UNSIGNED32 CORE_STORAGE_CLASS\tod_octet_string_len[1] = {\n\t5ul};\n"
              "static UNSIGNED32 CORE_STORAGE_CLASS\tod_octet_string_actLen[1] = {\n\t5ul};\n"
              "static CO_DOMAIN_PTR\tod_domain[1] = {\n\tNULL};\n"
              "static UNSIGNED32 CORE_STORAGE_CLASS\tod_domain_len[1] = {\n\t0};\n"
              "static UNSIGNED32 CORE_STORAGE_CLASS\tod_domain_actLen[1] = {\n\t0};\n"_s);
}

TEST(ObjDictSections, BreakStringDefaultsAndKeepTheirComments)
{
    ProjectBuilder project;
    project.general(u"generate_string_defaults"_s, u"1"_s).object(0x2000, u"any"_s).object(0x2001, u"any"_s);
    EXPECT_EQ(written(ObjDictSections::stringDefaults, collected(project)), QString());
    quint8 subindex = 0;
    for (const QString &text : {u"*/ /*"_s, u"|x000102030405060708090a0b0c0d"_s})
        project.sub(++subindex, u"any"_s, [&](Sub &sub) {
            sub.datatype = CAN::VisibleString;
            sub.implementation = Variable;
            sub.defaultvalue = text;
        });
    EXPECT_EQ(written(ObjDictSections::stringDefaults, collected(project)),
              u"\n/* definition of string default values for variables */\n"
              "static CORE_CONST char stringDefaultValues[] = {\n"
              "/* * / / * */ \n"
              "0x2a, 0x2f, 0x20, 0x2f, 0x2a, \n"
              "/* |x000102030405060708090a0b0c0d */ \n"
              "0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x0c, \n0x0d, \n"
              "0x00}; \n\n"_s);
}

TEST(ObjDictSections, MeasureMappedObjectsInBytesOrBits)
{
    ProjectBuilder project;
    project.object(0x1800, u"any"_s).object(0x1A00, u"any"_s);
    const auto entry = [](const QString &value) {
        return [=](Sub &sub) {
            sub.accesstype = u"const"_s;
            sub.datatype = CAN::Unsigned32;
            sub.defaultvalue = value;
        };
    };
    project.sub(0, u"any"_s, entry(u"1"_s)).sub(1, u"any"_s, entry(u"0x20000110"_s)).sub(2, u"any"_s, entry({}));
    const QString expected = u"\n/* static PDO mapping tables */\n"
                             "/* Mapping table TPDO 1 */\n"
                             "static CO_CONST PDO_TR_MAP_TABLE_T CO_CONST_STORAGE_CLASS\tmapTableTPDO1 = {\n"
                             "\t(UNSIGNED8)1u,\n\t{\n"
                             "\t\t{NULL, %1u, CO_FALSE, 0x20000110UL },\n"
                             "\t\t{NULL, (UNSIGNED8)0u, CO_FALSE, 0ul}\n"
                             "\t}\n};\n\n"_s;
    EXPECT_EQ(written(ObjDictSections::mappingTables, collected(project), Dialect::classic()), expected.arg(2));
    project.general(u"bitwise_mapping"_s, u"1"_s);
    EXPECT_EQ(written(ObjDictSections::mappingTables, collected(project), Dialect::classic()), expected.arg(16));
}

class ObjDictFiles : public testing::Test
{
protected:
    QString path(const QString &name) const { return folder_.filePath(name); }
    QString read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void touch(const QString &name) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    void generate(const ProjectBuilder &project, bool serverMode = false) const
    {
        ObjDictGeneratorV4 generator(false);
        generator.setServerMode(serverMode);
        generator.setDatabase(project.store());
        generator.setOutputFolder(folder_.path());
        generator.setBaseName(u"device"_s);
        ASSERT_EQ(generator.startJob(), AbstractGenerator::Success);
        generator.waitForJob();
        EXPECT_EQ(generator.errorCode(), 0) << qPrintable(generator.errorText());
    }

private:
    QTemporaryDir folder_;
};

TEST_F(ObjDictFiles, HaveTheHeaderOfUserFunctionsWithStringDefaults)
{
    ProjectBuilder project;
    project.object(0x1000, u"any"_s);
    project.general(u"generate_string_defaults"_s, u"1"_s);
    generate(project);
    EXPECT_TRUE(read(u"gen_objdict.c"_s).contains(u"#include <gen_user.h>\n"_s));
    EXPECT_TRUE(read(u"gen_user.h"_s).contains(u"\nRET_T userOverwriteStringDefaultvalues(void);\n\n#endif"_s));
    EXPECT_FALSE(read(u"gen_user.h"_s).contains(u"canLine"_s));
    EXPECT_TRUE(writeCppCopies(QFileInfo(path(u"gen_user.h"_s)).path()));
    EXPECT_EQ(read(u"gen_objdict.cpp"_s), read(u"gen_objdict.c"_s));
    EXPECT_TRUE(read(u"gen_user.hpp"_s).contains(u"\nextern \"C\" RET_T userOverwriteStringDefaultvalues(void);\n"_s));

    project.general(u"generate_string_defaults"_s, u"0"_s);
    generate(project);
    EXPECT_FALSE(QFile::exists(path(u"gen_user.h"_s)));
    EXPECT_FALSE(read(u"gen_objdict.c"_s).contains(u"gen_user"_s));
}

TEST_F(ObjDictFiles, IncludeWhatTheProjectUses)
{
    ProjectBuilder project;
    project.object(0x1000, u"any"_s).general(u"applicationheader"_s, u" my.h  sub/other.h "_s);
    project.general(u"udsclient_supported"_s, u"1"_s).general(u"uds_static_indication"_s, u"1"_s);
    touch(u"no_stdlib_include.txt"_s);
    generate(project);
    EXPECT_TRUE(read(u"gen_objdict.c"_s)
                    .contains(u" */\n\n#include <gen_define.h>\n#include <co_canopen.h>\n#include <core_isotp.h>\n"
                              "#include <uds_uds.h>\n#include <uds_indication.h>\n#include <gen_indication.h>\n\n"
                              "/* application header file(s) */\n#include \"my.h\"\n#include \"sub/other.h\"\n\n"
                              "/* definition of memory specifier */\n"_s));

    generate(project, true);
    const QString server = read(u"gen_objdict.c"_s);
    EXPECT_TRUE(server.contains(u"\n#include <gen_define.h>\n#include <core_datatype.h>\n#include <co_odaccess.h>\n"
                                "#include <j1939_cam11_cam21.h>\n#include <core_isotp.h>\n#include <uds_uds.h>\n\n"_s));
    EXPECT_FALSE(server.contains(u"PDO mapping"_s));
    EXPECT_TRUE(server.contains(u"j1939OdInit(void)"_s));
    EXPECT_FALSE(server.contains(u"coCanOpenStackInit"_s));
}

} // namespace
