#include "check/defaultcobids.h"

#include "check/storevalue.h"

namespace {

constexpr quint32 canIdBits = 0x1FFFFFFF;

struct Row
{
    quint16 index;
    quint8 subindex;
    quint32 base;
    bool nodeRelative;
};

constexpr Row rows[] = {
    {0x1005, 0, 0x80, false},                            // SYNC
    {0x1012, 0, 0x100, false},                           // TIME
    {0x1014, 0, 0x80, true},                             // EMCY
    {0x1200, 1, 0x600, true},                            // SDO server
    {0x1200, 2, 0x580, true},  {0x1400, 1, 0x200, true}, // RPDO 1 to 4
    {0x1401, 1, 0x300, true},  {0x1402, 1, 0x400, true}, {0x1403, 1, 0x500, true},
    {0x1800, 1, 0x180, true}, // TPDO 1 to 4
    {0x1801, 1, 0x280, true},  {0x1802, 1, 0x380, true}, {0x1803, 1, 0x480, true},
};

} // namespace

bool DefaultCobId::fits(const StoreValue &cobId) const
{
    const auto value = static_cast<quint32>(cobId.magnitude & canIdBits);
    if (cobId.nodeRelative)
        return nodeRelative && value == base;
    return (nodeRelative && !nodeIdIsKnown) || value == canId;
}

QList<DefaultCobId> predefinedCobIds(std::optional<quint8> nodeId)
{
    QList<DefaultCobId> cobIds;
    for (const Row &row : rows)
        cobIds.append({row.index, row.subindex, row.nodeRelative ? row.base + nodeId.value_or(0) : row.base, row.base,
                       row.nodeRelative, nodeId.has_value()});
    return cobIds;
}
