#include "generate/model/linesettings.h"

#include "generate/base/runcontext.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <algorithm>

QList<quint8> LineSettings::stackLines(ObjectDataBase &store)
{
    QList<quint8> lines = store.getNodeList();
    lines.removeIf([](quint8 line) { return line >= firstLineBeyondStack; });
    std::ranges::sort(lines);
    return lines;
}

QList<quint8> LineSettings::partakingLines(ObjectDataBase &store)
{
    constexpr quint16 firstObject = 0x1000;
    constexpr quint16 lastObject = 0xFFFF;
    QList<quint8> lines = stackLines(store);
    lines.removeIf([&](quint8 line) {
        const LineProtocols protocols = LineProtocols::ofLine(store, line);
        return !protocols.j1939 && !protocols.rawCan && store.getIndexList(line, firstObject, lastObject).isEmpty();
    });
    return lines.isEmpty() ? QList<quint8>{0} : lines;
}

bool LineSettings::severalLines(ObjectDataBase &store)
{
    return RunContext::generatesMultiLine(store) || partakingLines(store).size() > 1;
}
