#include "generate/base/runcontext.h"

#include "store/objectdatabase.h"
#include "store/settings.h"

using namespace Qt::StringLiterals;

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
    return LineProtocols::ofLine(store, line);
}

bool RunContext::generatesMultiLine(ObjectDataBase &store)
{
    return store.getMiscSetting(u"generateML"_s) == "true"_L1;
}

bool RunContext::isOn(const QString &key) const
{
    return Settings(*store).isOn(key);
}

bool RunContext::isOnForJ1939(const QString &key) const
{
    return Settings(*store, Settings::Table::J1939).onAnyLine(key);
}

bool RunContext::usesV4() const
{
    return Settings(*store).text(u"use_core_headers"_s) == "V4"_L1;
}
