#include "ncx/project/identity.h"

#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString ofAllProtocols = u"CAN NodeComposer"_s;

} // namespace

QString Identity::widest()
{
    return ofAllProtocols;
}

void Identity::takeWidest()
{
    take(ofAllProtocols);
}

QString Identity::leastFor(ObjectDataBase &store, const QString &path)
{
    if (path.endsWith(".ncxe"_L1))
        return u"EnergyBus NodeAssistant"_s;
    LineProtocols all;
    for (const quint8 line : store.getNodeList()) {
        const LineProtocols own = LineProtocols::ofLine(store, line);
        all = {all.canOpen || own.canOpen, all.j1939 || own.j1939, all.rawCan || own.rawCan};
    }
    if (all.rawCan || (all.canOpen && all.j1939))
        return ofAllProtocols;
    return all.j1939 ? u"J1939 NodeComposer"_s : u"CANopen NodeComposer"_s;
}

bool Identity::hasTypes(ObjectDataBase &store)
{
    return std::ranges::any_of(store.getNodeList(),
                               [&store](quint8 line) { return LineProtocols::ofLine(store, line).any(); });
}

void Identity::take(const QString &application)
{
    QCoreApplication::setApplicationName(application);
    if (QCoreApplication *process = QCoreApplication::instance())
        process->setProperty("AppNameWithVersion", application);
}
