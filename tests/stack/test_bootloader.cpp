#include "stack/generatedsources.h"
#include "store/lineprotocols.h"
#include "support/printing.h"
#include "support/projectscript.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

constexpr int noLine = 0;

/// A line with something of each of its protocols, and its variables in the application.
QStringList commandsOfLine(int line, int type)
{
    const LineProtocols protocols = LineProtocols::ofType(type);
    QStringList commands{u"line %1 = %2"_s.arg(line).arg(type)};
    if (protocols.canOpen)
        commands += {u"objects 0x1000 0x1001"_s, u"sub 0x1000:0 datatype=7"_s, u"object 0x2000"_s,
                     u"sub 0x2000:0 datatype=6; implementation=2; varname=speed"_s};
    if (protocols.j1939)
        commands +=
            {u"pgn 512 tx name=Group"_s, u"spn 512 tx 1 name=Signal; datatype=5; implementation=2; varname=tank"_s};
    if (protocols.rawCan)
        commands += {u"canid 0x100 rx name=Command"_s,
                     u"signal 0x100 rx 1 name=Part; datatype=5; implementation=2; varname=part"_s};
    return commands;
}

/// What the sources of a bootloader have against the compiler, and what they lose of the project without telling.
void tryBootloader(int first, int second, bool uds, bool classic)
{
    SCOPED_TRACE(testing::Message() << "types " << first << ", " << second << (uds ? ", UDS" : "")
                                    << (classic ? ", classic" : ""));
    GeneratedSources sources(classic);
    ProjectScript script;
    script.run(commandsOfLine(0, first));
    if (second != noLine)
        script.run(commandsOfLine(1, second));
    script.run(u"general uds_bl_setting = 1"_s);
    if (uds)
        script.run(u"general udsserver_supported uds_server_active = 1"_s);
    const QString path = sources.folder() + u"/device.ncxp"_s;
    ASSERT_TRUE(script.store()->saveDatabase(path) && sources.openProject(path) && sources.generate());
    EXPECT_EQ(sources.compile(), QString());

    const bool hasRawCan = LineProtocols::ofType(first).rawCan || LineProtocols::ofType(second).rawCan;
    const QString header = QString::fromUtf8(sources.text(u"gen_define.h"_s));
    const bool isTold = !sources.messages().filter(u"raw CAN-IDs of line"_s).isEmpty();
    EXPECT_EQ(header.contains("RAWCAN_"_L1), hasRawCan && classic);
    const bool isUsed = sources.text(u"gen_mp.c"_s).contains("rawcanStackInit_line") ||
                        sources.text(u"gen_rawcan.c"_s).contains("rawcanStackInit_line");
    EXPECT_EQ(isTold, hasRawCan && !isUsed);
}

TEST(Bootloader, OfEachPairOfLinesCompilesAndTellsWhatItLeavesOut)
{
    constexpr int types[] = {1, 2, 4, 5, 6, 7};
    for (const int first : types) {
        for (const bool classic : {false, true}) {
            tryBootloader(first, noLine, true, classic);
            for (const int second : types)
                tryBootloader(first, second, (first + second) % 2 == 0, classic);
        }
        tryBootloader(first, noLine, false, false);
    }
}

} // namespace
