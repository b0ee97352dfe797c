#include "generate/define/definemodel.h"

#include "store/objectdatabase.h"

#include <algorithm>

QString DefineModel::general(const QString &key) const
{
    return general_.text(key);
}

quint32 DefineModel::number(const QString &key) const
{
    return general_.number(key);
}

quint32 DefineModel::number(const QString &key, const LineCounts &line) const
{
    return general_.number(key, line.number);
}

quint32 DefineModel::j1939Number(const QString &key) const
{
    return j1939_.number(key);
}

QString DefineModel::energyBus(const QString &key) const
{
    return store_.getEnergyBusSetting(key);
}

bool DefineModel::hasObject(quint16 index) const
{
    return objects_.contains(index);
}

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
