#include "generate/stack/definemodel.h"

#include "generate/stack/linesettings.h"
#include "store/objectdatabase.h"

#include <algorithm>

QString DefineModel::general(const QString &key) const
{
    return store_.getGeneralSetting(key);
}

quint32 DefineModel::number(const QString &key) const
{
    return LineSettings::number(store_, key);
}

quint32 DefineModel::number(const QString &key, const LineCounts &line) const
{
    return LineSettings::number(store_, key, line.number);
}

bool DefineModel::isSetOnALine(const QString &key) const
{
    return std::ranges::any_of(lines, [&](const LineCounts &line) { return number(key, line) > 0; });
}

quint32 DefineModel::j1939Number(const QString &key) const
{
    quint32 highest = 0;
    for (const LineCounts &line : lines) {
        if (line.protocols.j1939)
            highest = std::max(highest, LineSettings::number(store_.getJ1939Setting(key, line.number)));
    }
    return highest;
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
