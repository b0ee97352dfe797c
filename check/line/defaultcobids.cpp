#include "check/line/defaultcobids.h"

#include "check/line/storevalue.h"
#include "nodedict/codes.h"

bool DefaultCobId::fits(const StoreValue &cobId) const
{
    const auto value = static_cast<quint32>(cobId.magnitude & CAN::identifierBits);
    if (cobId.nodeRelative)
        return value == base;
    return !nodeId || value == base + *nodeId;
}

QList<DefaultCobId> predefinedCobIds(std::optional<quint8> nodeId)
{
    constexpr quint16 pdos = 4; // in each direction
    constexpr quint32 step = 0x100;
    constexpr quint32 firstTpdo = 0x180;
    constexpr quint32 firstRpdo = 0x200;
    QList<DefaultCobId> cobIds;
    for (quint16 pdo = 0; pdo < pdos; ++pdo) {
        cobIds.append({static_cast<quint16>(CANopen::Index::rpdos.first + pdo), firstRpdo + pdo * step, nodeId});
        cobIds.append({static_cast<quint16>(CANopen::Index::tpdos.first + pdo), firstTpdo + pdo * step, nodeId});
    }
    return cobIds;
}
