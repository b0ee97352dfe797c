#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/j1939/safetymapping.h"
#include "generate/j1939/sdmgenerator.h"
#include "generate/names/externdeclgenerator.h"
#include "generatedc.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

constexpr quint8 tx = ObjectDataBase::transmit;
constexpr quint8 rx = ObjectDataBase::receive;

SafetyMapping::Frame frameOf(const QList<quint32> &sizes, bool isClassical = true)
{
    SafetyMapping::Frame frame{.isClassical = isClassical};
    for (const quint32 bits : sizes)
        frame.items.append(
            {.variable = QString(QChar(static_cast<char16_t>(u'a' + frame.items.size()))), .bits = bits});
    return frame;
}

QString written(const std::function<void(CodeWriter &)> &write)
{
    return CodeWriter::textOf(write);
}

QString packed(const SafetyMapping::Frame &frame, const Dialect &dialect = Dialect::v4())
{
    return written([&](CodeWriter &out) { SafetyMapping::writePacking(out, frame, dialect); });
}

QString unpacked(const SafetyMapping::Frame &frame, const Dialect &dialect = Dialect::v4())
{
    return written([&](CodeWriter &out) { SafetyMapping::writeUnpacking(out, frame, u"[addrIdx]"_s, dialect); });
}

TEST(SafetyMapping, HasTheFormsThatTheStackKnows)
{
    EXPECT_EQ(packed(frameOf({4, 12, 8, 7}, false)), u"pData[0] = 0x00u;\n"
                                                     "pData[0] |= (UNSIGNED8)(a & 0xfu);\n"
                                                     "pData[0] |= (UNSIGNED8)((b & 0xfu) << 4u);\n"
                                                     "pData[1] |= (UNSIGNED8)((b & 0xff0u) >> 4u);\n"
                                                     "\n"
                                                     "pData[2] = c;\n"
                                                     "\n"
                                                     "pData[3] = 0x00u;\n"
                                                     "pData[3] |= (UNSIGNED8)(d & 0x7fu);\n"
                                                     "/* set 1 unused bits */\n"
                                                     "pData[3] |= 0x80;\n"_s);
    EXPECT_TRUE(packed(frameOf({8}), Dialect::classic()).startsWith(u"pBuffer[0] = a;\npBuffer[1] = 0xff;\n"_s));
    EXPECT_EQ(unpacked(frameOf({4, 4, 32}), Dialect::classic()),
              u"a[addrIdx] = (UNSIGNED8) ((pBuffer[0] >> 0) & 0x0fu);\n"
              "b[addrIdx] = (UNSIGNED8) ((pBuffer[0] >> 4) & 0x0fu);\n"
              "c[addrIdx] = (UNSIGNED32)pBuffer[1];\n"
              "c[addrIdx] |= (UNSIGNED32)(pBuffer[2]) << 8;\n"
              "c[addrIdx] |= (UNSIGNED32)(pBuffer[3]) << 16;\n"
              "c[addrIdx] |= (UNSIGNED32)(pBuffer[4]) << 24;\n"_s);
}

TEST(SafetyMapping, RefusesWhatItCannotExpress)
{
    const auto placed = [](const QList<quint32> &positions) {
        SafetyMapping::Frame frame = frameOf({4, 8, 4});
        for (qsizetype i = 0; i < frame.items.size(); ++i)
            frame.items[i].position = positions.at(i);
        return frame;
    };
    SafetyMapping::Frame nameless = frameOf({8, 8});
    nameless.items.last().variable.clear();
    const QList<std::pair<SafetyMapping::Frame, bool>> cases{
        {frameOf({}), false},
        {frameOf({8, 0}), false},
        {nameless, false},
        {frameOf({64}), true},
        {frameOf({64, 1}), false},
        {frameOf({64, 64, 7}, false), true},
        {frameOf({64, 64, 64, 64, 64, 64, 64, 64}, false), true},
        {frameOf({64, 64, 64, 64, 64, 64, 64, 64, 2}, false), false},
        {placed({0, 0, 0}), true},
        {placed({0, 4, 12}), true},
        {placed({0, 4, 13}), false},
        {placed({0, 3, 12}), false},
        {placed({8, 0, 12}), false},
    };
    for (const auto &[frame, supported] : cases) {
        EXPECT_EQ(SafetyMapping::isSupported(frame), supported) << qPrintable(packed(frame));
        EXPECT_EQ(packed(frame) == u"#error SDM structure not supported\n", !supported);
        EXPECT_EQ(unpacked(frame) == u"#error SDM structure not supported\n", !supported);
    }
}

QList<quint32> randomSizes(std::mt19937 &random, bool isClassical)
{
    const auto pick = [&random](quint32 count) { return static_cast<quint32>(random() % count); };
    QList<quint32> sizes;
    quint32 left = isClassical ? 64 : 512;
    const quint32 wanted = 1 + pick(8);
    // Small widths are as likely as large ones: they meet all offsets.
    while (left > 0 && static_cast<quint32>(sizes.size()) < wanted) {
        sizes.append(1 + pick(std::min(left, pick(2) == 0 ? 9U : 64U)));
        left -= sizes.last();
    }
    return sizes;
}

/// A C function that packs random values of one layout, holds the bytes against a count of single bits, and unpacks.
QString roundTrip(int number, const SafetyMapping::Frame &frame, const Dialect &dialect)
{
    QStringList locals;
    QStringList values;
    QStringList checks;
    quint32 position = 0;
    for (const SafetySignal &signal : frame.items) {
        const QString mask = Code::hex(~quint64{0} >> (64 - signal.bits));
        const QString type = signal.bits <= 8    ? u"UNSIGNED8"_s
                             : signal.bits <= 16 ? u"UNSIGNED16"_s
                             : signal.bits <= 32 ? u"UNSIGNED32"_s
                                                 : u"UNSIGNED64"_s;
        locals.append(u"\t%1 %2, %2In[3]; uint64_t %2Value;\n"_s.arg(type, signal.variable));
        // What lies beyond a signal's width must not reach the message.
        values.append(u"\t%1Value = next() & 0x%2u; %1 = (%3)(%1Value | (next() & ~(uint64_t)0x%2u));\n"
                      "\tput(expected, %4, %5, %1Value);\n"_s.arg(signal.variable, mask, type, Code::dec(position),
                                                                  Code::dec(signal.bits)));
        checks.append(u"\tif (%1In[2] != %1Value) return 2;\n"_s.arg(signal.variable));
        position += signal.bits;
    }
    SafetyMapping::Frame received = frame;
    for (SafetySignal &signal : received.items)
        signal.variable += u"In"_s;
    const auto statements = [&](bool pack) {
        return written([&](CodeWriter &out) {
            if (pack)
                SafetyMapping::writePacking(out, frame, dialect);
            else
                SafetyMapping::writeUnpacking(out, received, u"[addrIdx]"_s, dialect);
        });
    };
    return u"static int layout%1(void)\n{\n\tUNSIGNED8 buffer[80], expected[80];\n%2"
           "\tconst int addrIdx = 2;\n\tmemset(expected, 0xff, sizeof expected);\n%3"
           "\tmemset(buffer, 0, %6); memset(buffer + %6, 0x55, sizeof buffer - %6);\n\t{ UNSIGNED8 *%4 = "
           "buffer;\n%5\t}\n"
           "\tif (memcmp(buffer, expected, %6) != 0 || buffer[%6] != 0x55) return 1;\n"
           "\t{ const UNSIGNED8 *pBuffer = buffer;\n%7\t}\n%8\treturn 0;\n}\n"_s.arg(
               QString::number(number), locals.join(QString()), values.join(QString()), dialect.safetyBuffer,
               statements(true), Code::dec(SafetyMapping::length(frame)), statements(false), checks.join(QString()));
}

constexpr auto oracle = uR"(
#include <stdint.h>
#include <stdio.h>
#include <string.h>
typedef uint8_t UNSIGNED8;
typedef uint16_t UNSIGNED16;
typedef uint32_t UNSIGNED32;
typedef uint64_t UNSIGNED64;
static uint64_t state = 1939;
static uint64_t next(void)
{
	state = state * 6364136223846793005u + 1442695040888963407u;
	return state ^ (state >> 31);
}
/* one bit after the other */
static void put(UNSIGNED8 *pBytes, unsigned position, unsigned bits, uint64_t value)
{
	unsigned i;
	for (i = 0; i < bits; i++) {
		const unsigned at = position + i;
		const UNSIGNED8 bit = (UNSIGNED8)(1u << (at % 8));
		if ((value >> i) & 1u) pBytes[at / 8] |= bit; else pBytes[at / 8] &= (UNSIGNED8)~bit;
	}
}
)";

TEST(SafetyMapping, CarriesRandomLayoutsThereAndBack)
{
    constexpr int layouts = 300;
    std::mt19937 random(76);
    QString source = QString::fromUtf16(oracle);
    QString calls;
    for (int i = 0; i < layouts; ++i) {
        const bool isClassical = i % 2 == 0;
        const SafetyMapping::Frame frame = frameOf(randomSizes(random, isClassical), isClassical);
        ASSERT_TRUE(SafetyMapping::isSupported(frame));
        source += roundTrip(i, frame, i % 4 < 2 ? Dialect::v4() : Dialect::classic());
        calls += u"\t\tif ((error = layout%1()) != 0) { printf(\"%1: %d\\n\", error); return 1; }\n"_s.arg(i);
    }
    source += u"int main(void)\n{\n\tint i, error;\n\tfor (i = 0; i < 50; i++) {\n%1\t}\n\treturn 0;\n}\n"_s.arg(calls);
    const GeneratedC folder;
    folder.add(u"layouts.c"_s, source);
    const ProcessResult build = folder.build({u"layouts.c"_s});
    ASSERT_EQ(build.exitCode, 0) << qPrintable(build.errors.left(2000));
    const ProcessResult result = folder.run();
    EXPECT_EQ(result.exitCode, 0) << "layout and step: " << qPrintable(result.output);
}

const QString stackFolder = QStringLiteral(NCX_SOURCE_DIR "/examples/stack");

/// The classic template data as they would lie beside the program.
class ExampleTemplates : public PlainTemplateSource
{
public:
    std::optional<QString> text(const QString &path) const override
    {
        return PlainTemplateSource::text(stackFolder + u'/' + path.section(u'/', -2));
    }
};

void addGroup(ProjectBuilder &project, quint32 number, quint8 direction, quint8 type,
              const QList<std::pair<quint32, QString>> &items)
{
    project.pgn(number, direction, u"Group"_s, [type](auto &pgn) {
        pgn.issafe = true;
        pgn.safetytype = type;
        pgn.cycletime_ms = 50;
        pgn.srvt_ms = 120;
        pgn.edp_dp_key = 1;
    });
    quint32 spn = 100;
    for (const auto &[dataType, variable] : items)
        project.spn(spn++, variable, [&](auto &signal) {
            signal.datatype = dataType;
            signal.varname = variable;
        });
}

/// A device that sends one group, behind another on the same line, and receives one, from up to two senders.
ProjectBuilder safetyDevice()
{
    ProjectBuilder project;
    project.misc(u"costackpath"_s, stackFolder).j1939(u"safetysupport"_s, u"1"_s);
    project.j1939(u"sdm_rec_addr_cnt"_s, u"2"_s).j1939(u"sdm_loop_counter"_s, u"7"_s).line(0, 2);
    project.pgn(61000, tx, u"Ordinary"_s).spn(1, u"Any"_s);
    addGroup(project, 61440, tx, 1, {{100, u"twoBits"_s}});
    addGroup(project, 61441, tx, 3, {{102, u"four"_s}, {109, u"twelve"_s}, {22, u"long24"_s}, {1, u"flag"_s}});
    addGroup(project, 61442, rx, 2, {{103, u"five"_s}, {115, u"nineteen"_s}});
    return project;
}

const QString exchange = uR"(
#include <stdio.h>
#include <gen_extern_decl.h>
#include <j1939_j1939.h>
int main(void)
{
	const UNSIGNED8 received[8] = { 0x55, 0xaa, 0x7e, 0xff, 0xff, 0xff, 0xff, 0xff };
	UNSIGNED8 sent[8];
	unsigned i, length;

	memset(sent, 0x55, sizeof sent);

	four = 0x5; twelve = 0xabc; long24 = 0x123456; flag = 1;
	length = genSdgTransmitMapping(LINE 1, sent);
	printf("sent %u:", length);
	for (i = 0; i < length; i++) printf(" %02x", sent[i]);
	printf("\npgn %lx %lx sct %lu none %lu\n", (unsigned long)genSdgGetTxPgn(LINE 1), (unsigned long)genSdgGetRxPgn(LINE 0),
		(unsigned long)genSdgGetTxSct(LINE 1), (unsigned long)genSdgGetTxPgn(LINE 2));
	printf("index %u %u\n", getRecSdgIdx(LINE 0x1f002), getRecSdgIdx(LINE 0x1f003));
	printf("config %lu %d %u, records %d %d\n", (unsigned long)getRecSdgConfig(LINE 0)->validationTime,
		(int)getRecSdgConfig(LINE 0)->type, getRecSdgConfig(LINE 0)->profile, getRecSdg(LINE SENDERS - 1) != NULL,
		getRecSdg(LINE SENDERS) != NULL);
	printf("got %d:", genSdgReceiveMapping(LINE 0, SENDERS - 1, received) == RET_OK);
	printf(" %x %lx\n", VALUE(five), (unsigned long)VALUE(nineteen));
	printf("unknown %d %d\n", genSdgTransmitMapping(LINE 2, sent) == 0, genSdgReceiveMapping(LINE 1, 0, received) != RET_OK);
	return 0;
}
)"_s;

QString safetyDefines(bool v4, bool multiLine)
{
    QString text =
        u"#define J1939_SUPPORTED 1u\n#define J1939_SDG_SUPPORTED 1u\n#define J1939_SDG_TRANS_CNT 2u\n"
        "#define J1939_SDG_REC_CNT 1u\n#define J1939_SDG_TRANS_COUNTS 2u\n#define J1939_SDG_REC_COUNTS 1u\n"_s;
    if (v4)
        text += u"#define CORE_REC_BUFFER_CNT 1u\n#define J1939_SDG_REC_ADDR_CNT 2u\n#define SENDERS 2u\n"
                "#define VALUE(name) name[1]\n"_s;
    else
        text += u"#define SENDERS 1u\n#define VALUE(name) name\n"_s;
    if (multiLine)
        return text + (v4 ? u"#define CAN_MULTI_LINE 1u\n#define CAN_MULTI_LINE_CNT 1u\n#define LINE 0,\n"_s
                          : u"#define CO_MULTI_LINE 1u\n#define CO_MULTI_LINE_CNT 1u\n#define LINE 0,\n"_s);
    return text + u"#define LINE\n"_s;
}

TEST(SdmGenerator, MakesADeviceThatExchangesItsData)
{
    const ProjectBuilder project = safetyDevice();
    for (const bool v4 : {true, false}) {
        for (const bool multiLine : {false, true}) {
            SCOPED_TRACE(v4 ? "V4" : "classic");
            const GeneratedC folder;
            const auto variables = v4 ? std::make_unique<ExtDeclGeneratorV4>() : std::make_unique<ExtDeclGenerator>();
            const auto module = v4 ? std::make_unique<SDMGeneratorV4>() : std::make_unique<SDMGenerator>();
            if (!v4)
                module->setTemplateSource(std::make_unique<ExampleTemplates>());
            folder.generate(*variables, project, multiLine);
            folder.generate(*module, project, multiLine);
            ASSERT_EQ(module->errorText(), QString());
            EXPECT_EQ(module->infoText(), u"2 transmitted, 1 received safety data groups");
            folder.add(u"gen_define.h"_s, safetyDefines(v4, multiLine));
            folder.add(u"exchange.c"_s, exchange);
            const ProcessResult build = folder.build({u"gen_sdg.c"_s, u"gen_var_decl.c"_s, u"exchange.c"_s},
                                                     {u"-DNJX_USE_GENERATED_VARIABLES"_s});
            ASSERT_EQ(build.exitCode, 0) << qPrintable(build.errors);
            EXPECT_EQ(folder.run().output,
                      u"sent 8: c5 ab 56 34 12 ff ff ff\npgn 1f001 1f002 sct 50 none 0\nindex 0 1\n"
                      "config 120 1 1, records 1 0\ngot 1: 15 3f552\nunknown 1 1\n");
        }
    }
}

/// A template wherever one is looked for.
class AnyTemplate : public TemplateSource
{
public:
    std::optional<QString> text(const QString & /*path*/) const override { return u"__GEN_SDG_INCLUDES__"_s; }
};

TEST(SdmGenerator, TellsWhichTemplateItMisses)
{
    struct Case
    {
        QString stackPath;
        QString canFd;
        bool multiLine;
        QString expected;
    };
    const GeneratedC folder;
    const QList<Case> cases{
        {{}, u"0"_s, false, u"/j1939_lib_sl/src/gen_sdg.tpl (configured stack path: )"_s},
        {u"/none"_s, u"1"_s, false, u"/none/j1939_lib_fd_sl/src/gen_sdg.tpl (configured stack path: /none)"_s},
        {u"/none"_s, u"1"_s, true, u"/none/j1939_lib_fd_ml/src/gen_sdg.tpl (configured stack path: /none)"_s},
        {u"none"_s, u"0"_s, true,
         folder.path(u"none"_s) + u"/j1939_lib_ml/src/gen_sdg.tpl (configured stack path: none)"_s},
    };
    for (const Case &row : cases) {
        ProjectBuilder project = safetyDevice();
        project.misc(u"costackpath"_s, row.stackPath).general(u"canfd_supported"_s, row.canFd);
        SDMGeneratorV4 generator;
        if (row.stackPath.isEmpty())
            generator.setTemplateSource(std::make_unique<AnyTemplate>());
        folder.generate(generator, project, row.multiLine);
        EXPECT_EQ(generator.errorText(), u"Could not find template file: "_s + row.expected);
        EXPECT_NE(generator.errorCode(), 0);
        EXPECT_FALSE(QFile::exists(folder.path(u"gen_sdg.c"_s)));
    }
}

} // namespace
