#include "generate/base/templates.h"
#include "generate/run/generatormainhandler.h"
#include "generate/srdo/srdogenerator.h"
#include "generatedc.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString stackFolder = QStringLiteral(NCX_SOURCE_DIR "/examples/stack");

/// One SRDO of a line: 1 sends, 2 receives.
void addSrdo(ProjectBuilder &project, quint16 number, int direction, const QStringList &mapping)
{
    const auto value = [](const QString &text) {
        return [text](StoreRecords::SubIndexData &sub) { sub.defaultvalue = text; };
    };
    project.object(0x1300 + number, u"SRDO"_s).sub(1, u"Direction"_s, value(QString::number(direction)));
    project.sub(2, u"Refresh time"_s, value(u"25"_s)).sub(3, u"Validation time"_s, value(u"20"_s));
    project.sub(5, u"COB-ID 1"_s, value(number == 1 ? u"$NODEID+0xff"_s : u"0x105"_s)).sub(6, u"COB-ID 2"_s, value({}));
    project.object(0x1380 + number, u"Mapping"_s).sub(0, u"Entries"_s, value(QString::number(mapping.size())));
    for (qsizetype i = 0; i < mapping.size(); ++i)
        project.sub(static_cast<quint8>(i + 1), u"Entry"_s, value(mapping.at(i)));
}

void addVariable(ProjectBuilder &project, quint16 index, quint16 dataType, const QString &name)
{
    project.object(index, name).sub(0, name, [&](auto &sub) {
        sub.datatype = dataType;
        sub.implementation = 2;
        sub.varname = name;
    });
}

/// A device that sends and receives, and tells what it got.
ProjectBuilder safetyDevice()
{
    ProjectBuilder project;
    project.misc(u"costackpath"_s, stackFolder);
    const QList<std::pair<quint16, QString>> variables{{5, u"Mode"_s}, {3, u"Speed"_s}, {8, u"Torque"_s}};
    for (quint16 i = 0; i < variables.size(); ++i) {
        for (const auto &[base, prefix] :
             {std::pair{0x2000, u"out"_s}, {0x2010, u"outInv"_s}, {0x2020, u"in"_s}, {0x2030, u"inInv"_s}})
            addVariable(project, static_cast<quint16>(base + i), variables.at(i).first,
                        prefix + variables.at(i).second);
    }
    // The last two entries are a gap of a byte in either message.
    addSrdo(project, 1, 1,
            {u"0x20000008"_s, u"0x20100008"_s, u"0x20010010"_s, u"0x20110010"_s, u"0x20020020"_s, u"0x20120020"_s});
    addSrdo(project, 2, 2,
            {u"0x20200008"_s, u"0x20300008"_s, u"0x00050008"_s, u"0x00050008"_s, u"0x20210010"_s, u"0x20310010"_s,
             u"0x20220020"_s, u"0x20320020"_s});
    // One that shares its data, and one that is switched off: the dictionary has its object in the module all the same.
    addSrdo(project, 4, 2, {u"0x20200008"_s, u"0x20300008"_s});
    addVariable(project, 0x2040, 5, u"spare"_s);
    addSrdo(project, 5, 2, {u"0x20400008"_s});
    project.sub(0, u"Entries"_s);
    return project;
}

const QString defines = u"#define CORE_REC_BUFFER_CNT 1u\n#define CO_SRDO_SUPPORTED 1u\n"
                        "#define SRDO_OD_ENTRY_U8_CNT 5u\n#define SRDO_OD_ENTRY_I16_CNT 4u\n"
                        "#define SRDO_OD_ENTRY_R32_CNT 4u\n"_s;

const QString exchange = uR"(
#include <stdio.h>
#include <string.h>
#include <co_canopen.h>
int main(void)
{
	const UNSIGNED8 normal[8] = { 7, 0, 0xfe, 0xff, 0, 0, 0x20, 0x41 };
	const REAL32 torque = 2.5f;
	CO_SRDO_TIMER_T timer = { 0 };
	UNSIGNED8 sent[8] = { 0 }, inverted[8] = { 0 }, bytes[4];
	unsigned i;

	srdoInit(LINE 3, &timer);
	printf("too early %d\n", srdoTransmit(LINE 1, sent, inverted, 7) != RET_OK);
	srdoSetConfigurationValid(LINE 1);
	srdoSetNmtState(LINE CO_NMT_STATE_OPER);

	*(UNSIGNED8 *)srdoGetObject(LINE 0x2000, 0) = 5;
	*(INTEGER16 *)srdoGetObject(LINE 0x2001, 0) = -2;
	*(REAL32 *)srdoGetObject(LINE 0x2002, 0) = torque;
	printf("unlike %d\n", srdoTransmit(LINE 1, sent, inverted, 7) != RET_OK);
	*(UNSIGNED8 *)srdoGetObject(LINE 0x2010, 0) = (UNSIGNED8)~5;
	*(INTEGER16 *)srdoGetObject(LINE 0x2011, 0) = 1;
	memcpy(bytes, &torque, 4);
	for (i = 0; i < 4; i++) bytes[i] = (UNSIGNED8)~bytes[i];
	memcpy(srdoGetObject(LINE 0x2012, 0), bytes, 4);
	printf("sent %d:", srdoTransmit(LINE 1, sent, inverted, 7) == RET_OK);
	for (i = 0; i < 7; i++) printf(" %02x", sent[i]);

	for (i = 0; i < 8; i++) inverted[i] = (UNSIGNED8)~normal[i];
	inverted[3] ^= 1;
	printf("\nspoilt %d", srdoReceive(LINE 2, normal, inverted, 8) != RET_OK);
	printf(" %d", *(INTEGER16 *)srdoGetObject(LINE 0x2021, 0));
	inverted[3] ^= 1;
	printf("\ngot %d", srdoReceive(LINE 2, normal, inverted, 8) == RET_OK);
	printf(" %u", *(UNSIGNED8 *)srdoGetObject(LINE 0x2020, 0));
	printf(" %d", *(INTEGER16 *)srdoGetObject(LINE 0x2021, 0));
	printf(" %.1f", (double)*(REAL32 *)srdoGetObject(LINE 0x2022, 0));
	printf(" %d\n", *(INTEGER16 *)srdoGetObject(LINE 0x2031, 0));
	printf("off %d\n", srdoGetObject(LINE 0x2040, 0) != NULL);
	printf("unknown %d %d\n", srdoGetObject(LINE 0x2050, 0) == NULL, srdoReceive(LINE 3, normal, inverted, 8) != RET_OK);
	return 0;
}
)"_s;

void checkExchange(bool multiLine)
{
    const ProjectBuilder project = safetyDevice();
    const GeneratedC folder;
    SrdoGeneratorStatic generator;
    generator.setStaticData(true);
    folder.generate(generator, project, multiLine);
    ASSERT_EQ(generator.errorCode(), 0) << qPrintable(generator.errorText());
    folder.add(u"gen_define.h"_s,
               defines + (multiLine ? u"#define CAN_MULTI_LINE 1u\n#define LINE 0,\n"_s : u"#define LINE\n"_s));
    folder.add(u"exchange.c"_s, exchange);
    const ProcessResult build = folder.build({u"gen_srdo.c"_s, u"exchange.c"_s});
    ASSERT_EQ(build.exitCode, 0) << qPrintable(build.errors);
    EXPECT_EQ(folder.run().output, u"too early 1\nunlike 1\nsent 1: 05 fe ff 00 00 20 40\nspoilt 1 0\n"
                                   "got 1 7 -2 10.0 1\noff 1\nunknown 1 1\n");
}

TEST(SrdoGenerator, MakesADeviceThatExchangesItsData)
{
    checkExchange(false);
    checkExchange(true);
}

/// Templates given as texts.
class GivenTemplates : public TemplateSource
{
public:
    explicit GivenTemplates(QHash<QString, QString> texts)
        : texts_(std::move(texts))
    {
    }
    std::optional<QString> text(const QString &path) const override
    {
        const auto it = texts_.constFind(path.section(u'/', -2));
        return it == texts_.constEnd() ? std::nullopt : std::optional(*it);
    }

private:
    QHash<QString, QString> texts_;
};

TEST(SrdoGenerator, NeedsATemplate)
{
    struct Case
    {
        QHash<QString, QString> texts;
        QString expected;
    };
    const QString missing = u"Template file not found."_s;
    const QList<Case> cases{
        {{}, missing},
        {{{u"data/srdo.data"_s, u"no placeholder"_s}, {u"data/srdoproto.data"_s, {}}}, missing},
        {{{u"data/srdo.data"_s, u"__GEN_SRDO_OD_ENTRY__"_s}}, missing},
        {{{u"data/srdo.data"_s, u"__GEN_SRDO_RECEICE_MAPPING1__ __GEN_OTHER__\n"_s},
          {u"data/srdoproto.data"_s, u"tail"_s}},
         {}},
    };
    for (const Case &row : cases) {
        ProjectBuilder project;
        project.general(u"srdo_loop_counter"_s, u"9"_s);
        const GeneratedC folder;
        SrdoGenerator generator;
        generator.setTemplateSource(std::make_unique<GivenTemplates>(row.texts));
        folder.generate(generator, project);
        EXPECT_EQ(generator.errorText(), row.expected);
        EXPECT_EQ(generator.errorCode(), row.expected.isEmpty() ? 0 : AbstractGenerator::TemplateError);
        EXPECT_EQ(folder.text(u"gen_srdo.c"_s),
                  row.expected.isEmpty() ? u" __GEN_OTHER__\n\n/*\n* SRDO_LOOP_COUNTER defines, how many srdo timer "
                                           "interrupts are allowed\n*/\n#define SRDO_LOOP_COUNTER\t9u\n\ntail"_s
                                         : QString());
    }
}

TEST(Templates, AreFilledInOnePass)
{
    const TemplateValues values{{u"A"_s, u"__GEN_B__"_s}, {u"B"_s, u"b"_s}, {u"SDG_X"_s, {}}};
    EXPECT_EQ(Templates::fill(u"<__GEN_A__|__GEN_B____GEN_SDG_X__>"_s, values), u"<__GEN_B__|b>"_s);
    EXPECT_EQ(Templates::fill(u"__GEN_ x"_s, values), std::nullopt);
    EXPECT_EQ(Templates::pathInStack(u"../stack"_s, u"/a/b"_s, u"/c.tpl"_s), u"/a/stack/c.tpl");
    EXPECT_EQ(Templates::pathInStack({}, u"/a/b"_s, u"/c.tpl"_s), u"/c.tpl");
}

} // namespace
