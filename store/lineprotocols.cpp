#include "store/lineprotocols.h"

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

LineProtocols LineProtocols::ofLine(ObjectDataBase &store, quint8 line)
{
    return ofType(store.getGeneralSetting(u"line%1type"_s.arg(line)).toInt());
}
