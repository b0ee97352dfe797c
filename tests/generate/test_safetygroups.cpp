#include "generate/codewriter.h"
#include "generate/dialect.h"
#include "generate/j1939/safetymapping.h"
#include "generate/j1939/sdmgenerator.h"
#include "generate/stack/externdeclgenerator.h"
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
    return CodeWriter::textOf(write).remove(u'\t');
}

QString packed(const SafetyMapping::Frame &frame, const Dialect &dialect = Dialect::v4())
{
    return written([&](CodeWriter &out) { SafetyMapping::writePacking(out, frame, dialect); });
}

QString unpacked(const SafetyMapping::Frame &frame, const Dialect &dialect = Dialect::v4())
{
    return written([&](CodeWriter &out) { SafetyMapping::writeUnpacking(out, frame, u"[addrIdx]"_s, dialect); });
}

TEST(SafetyMapping, PacksSignalsOneBehindTheOther)
{
    EXPECT_EQ(packed(frameOf({2, 3, 3}, false)), u"pData[0] = 0x00u;\n"
                                                 "pData[0] |= (UNSIGNED8)(a & 0x3u);\n"
                                                 "pData[0] |= (UNSIGNED8)((b & 0x7u) << 2u);\n"
                                                 "pData[0] |= (UNSIGNED8)((c & 0x7u) << 5u);\n"_s);
    EXPECT_EQ(packed(frameOf({4, 12, 8, 6}, false)), u"pData[0] = 0x00u;\n"
                                                     "pData[0] |= (UNSIGNED8)(a & 0xfu);\n"
                                                     "pData[0] |= (UNSIGNED8)((b & 0xfu) << 4u);\n"
                                                     "pData[1] = 0x00u;\n"
                                                     "pData[1] |= (UNSIGNED8)((b & 0xff0u) >> 4u);\n"
                                                     "\n"
                                                     "pData[2] = c;\n"
                                                     "\n"
                                                     "pData[3] = 0x00u;\n"
                                                     "pData[3] |= (UNSIGNED8)(d & 0x3fu);\n"
                                                     "/* set 2 unused bits */\n"
                                                     "pData[3] |= 0xc0;\n"_s);
    EXPECT_EQ(packed(frameOf({16}, false)), u"pData[0] = (UNSIGNED8)(a & 0xffu);\n"
                                            "pData[1] = 0x00u;\n"
                                            "pData[1] |= (UNSIGNED8)((a & 0xff00u) >> 8u);\n"_s);
    EXPECT_TRUE(packed(frameOf({7}))
                    .endsWith(u"|= 0x80;\npData[1] = 0xff;\npData[2] = 0xff;\npData[3] = 0xff;\n"
                              "pData[4] = 0xff;\npData[5] = 0xff;\npData[6] = 0xff;\n"
                              "pData[7] = 0xff;\n"_s));
    EXPECT_TRUE(packed(frameOf({8, 1}, false)).endsWith(u"/* set 7 unused bits */\npData[1] |= 0xfe;\n"_s));
    EXPECT_TRUE(packed(frameOf({8}), Dialect::classic()).startsWith(u"pBuffer[0] = a;\n"_s));
}

TEST(SafetyMapping, UnpacksThem)
{
    EXPECT_EQ(unpacked(frameOf({4, 12, 8, 3, 2})), u"a[addrIdx] = pBuffer[0] & 0xfu;\n"
                                                   "b[addrIdx] = 0x00u;\n"
                                                   "b[addrIdx] |= ((UNSIGNED16)pBuffer[0] >> 4u) & 0xfu;\n"
                                                   "b[addrIdx] |= ((UNSIGNED16)pBuffer[1] << 4u) & 0xff0u;\n"
                                                   "c[addrIdx] = pBuffer[2];\n"
                                                   "d[addrIdx] = pBuffer[3] & 0x7u;\n"
                                                   "e[addrIdx] = (pBuffer[3] >> 3) & 0x3u;\n"_s);
    EXPECT_EQ(unpacked(frameOf({16})), u"a[addrIdx] = 0x00u;\n"
                                       "a[addrIdx] |= ((UNSIGNED16)pBuffer[0]);\n"
                                       "a[addrIdx] |= ((UNSIGNED16)pBuffer[1] << 8u) & 0xff00u;\n"_s);
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

// ---- Hundreds of layouts, compiled ---------------------------------------------------------------------------------

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
           "\tmemset(buffer, 0x55, sizeof buffer);\n\t{ UNSIGNED8 *%4 = buffer;\n%5\t}\n"
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
    constexpr int layouts = 400;
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

} // namespace
