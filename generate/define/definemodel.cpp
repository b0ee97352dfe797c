#include "generate/define/definemodel.h"

#include <algorithm>

bool DefineModel::hasLine(bool LineProtocols::*protocol) const
{
    return std::ranges::any_of(lines, [&](const LineCounts &line) { return line.protocols.*protocol; });
}

quint32 DefineModel::total(quint32 LineCounts::*count) const
{
    quint32 sum = 0;
    for (const LineCounts &line : lines)
        sum += line.*count;
    return sum;
}
