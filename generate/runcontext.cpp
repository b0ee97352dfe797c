#include "generate/runcontext.h"

#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

LineProtocols LineProtocols::ofType(int typeCode)
{
    switch (typeCode) {
    case 1:
        return {.canOpen = true};
    case 2:
        return {.j1939 = true};
    case 4:
        return {.rawCan = true};
    case 5:
        return {.canOpen = true, .j1939 = true};
    case 6:
        return {.canOpen = true, .rawCan = true};
    case 7:
        return {.j1939 = true, .rawCan = true};
    default:
        return {};
    }
}

RunContext RunContext::ofProject(const std::shared_ptr<ObjectDataBase> &store)
{
    RunContext context;
    context.store = store;
    const QList<quint8> nodes = store->getNodeList();
    for (const quint8 line : nodes) {
        if (line < firstLineWithoutProtocol) {
            const LineProtocols protocols = context.protocols(line);
            context.hasCANopen |= protocols.canOpen;
            context.hasJ1939 |= protocols.j1939;
            context.hasRawCAN |= protocols.rawCan;
        }
        if (line < firstScratchLine)
            context.lines.append(line);
    }
    context.multiLine = context.lines.size() > 1;
    return context;
}

LineProtocols RunContext::protocolsOf(ObjectDataBase &store, quint8 line)
{
    return LineProtocols::ofType(store.getGeneralSetting(u"line%1type"_s.arg(line)).toInt());
}

QString RunContext::generalSetting(const QString &key) const
{
    return store->getGeneralSetting(key);
}

bool RunContext::usesV4() const
{
    return generalSetting(u"use_core_headers"_s) == "V4"_L1;
}
