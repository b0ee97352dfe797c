#include "generate/define/cobcount.h"

#include "generate/model/linedictionary.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <array>

using namespace Qt::StringLiterals;
namespace Index = CANopen::Index;

namespace {

/// A line as the terms of the count see it.
struct Line
{
    Settings settings;
    const LineDictionary &dictionary;

    quint32 setting(const QString &key) const { return settings.number(key, dictionary.number); }
    bool isOn(const QString &key) const { return settings.isOn(key, dictionary.number); }
    bool canFd() const { return isOn(u"canfd_supported"_s); }
    bool isMaster() const { return isOn(u"nmtmaster"_s); }
    bool has(quint16 index) const { return dictionary.has(index); }
    quint32 count(CANopen::IndexRange range) const { return dictionary.count(range); }
};

quint32 onePerEntry(const Line &line, quint16 index)
{
    const quint32 subs = line.dictionary.subCount(index);
    return subs > 0 ? subs - 1 : 0;
}

quint32 heartbeats(const Line &line)
{
    const quint32 consumers = onePerEntry(line, Index::heartbeatConsumers);
    return consumers > 0 && line.isOn(u"only_one_hb_buffer"_s) ? 1 : consumers;
}

quint32 sdoServers(const Line &line)
{
    const quint32 servers = line.count(Index::sdoServers);
    return 2 * (servers == 0 && line.has(Index::deviceType) ? 1 : servers);
}

quint32 layerSetting(const Line &line)
{
    if (!line.isOn(u"lss_supported"_s))
        return 0;
    return line.canFd() && line.isMaster() ? 3 : 2;
}

quint32 assignedSlaves(const Line &line)
{
    if (!line.has(Index::slaveAssignment))
        return 0;
    const quint32 limit = line.setting(u"max_slave_assignment"_s);
    return limit != 0 ? limit : line.dictionary.subCount(Index::slaveAssignment);
}

quint32 sleepMode(const Line &line)
{
    switch (line.setting(u"sleep_mode_selection"_s)) {
    case 1: // CiA 447
        return line.isMaster() ? 16 : 2;
    case 2: // CiA 454
        return 3;
    default:
        return 0;
    }
}

quint32 flyingMaster(const Line &line)
{
    constexpr quint32 takesPart = 1U << 5;
    return (line.dictionary.value(Index::networkStartup, 0) & takesPart) != 0 ? 10 : 0;
}

constexpr std::array<quint32 (*)(const Line &), 18> terms{
    [](const Line &line) -> quint32 {
        if (!line.canFd())
            return 0;
        return line.isOn(u"usdo_client_cnt"_s) ? 4 : 2;
    },
    [](const Line &line) -> quint32 { return line.has(Index::deviceType) ? 2 : 0; },
    [](const Line &line) -> quint32 { return line.has(Index::emcyCobId) ? 1 : 0; },
    [](const Line &line) -> quint32 { return onePerEntry(line, Index::emcyConsumers); },
    sdoServers,
    [](const Line &line) -> quint32 { return line.has(Index::globalFailSafe) ? 2 : 0; },
    [](const Line &line) -> quint32 { return 2 * line.count(Index::sdoClients); },
    [](const Line &line) -> quint32 { return line.count(Index::tpdoMappings) + line.count(Index::rpdoMappings); },
    [](const Line &line) -> quint32 { return line.has(Index::syncCobId) ? 1 : 0; },
    heartbeats,
    [](const Line &line) -> quint32 { return line.has(Index::timeCobId) ? 2 : 0; },
    layerSetting,
    [](const Line &line) -> quint32 { return line.isOn(u"idnego_supported"_s) ? 2 : 0; },
    assignedSlaves,
    sleepMode,
    [](const Line &line) -> quint32 { return line.has(Index::slaveReset) ? 1 : 0; },
    [](const Line &line) -> quint32 { return 2 * line.count(Index::srdos); },
    flyingMaster,
};

} // namespace

quint32 CobCount::ofCanOpen(ObjectDataBase &store, const LineDictionary &dictionary)
{
    const Line line{Settings(store), dictionary};
    quint32 sum = additional(store, dictionary.number);
    for (const auto term : terms)
        sum += term(line);
    return sum;
}

quint32 CobCount::additional(ObjectDataBase &store, quint8 line)
{
    const QString key = u"additional_cob_count"_s;
    const Settings settings(store);
    const qsizetype entries = settings.text(key).count(u',') + 1;
    return entries > 1 && line >= entries ? static_cast<quint32>(entries) : settings.number(key, line);
}

quint32 CobCount::ofDiagnostics(ObjectDataBase &store, quint8 line)
{
    const Settings settings(store);
    quint32 sum = 0;
    if (settings.isOn(u"isotp_supported"_s))
        sum += 2 * (settings.number(u"isotp_client_con"_s, line) + settings.number(u"isotp_server_con"_s, line));
    if (settings.isOn(u"udsserver_supported"_s))
        sum += 7;
    if (settings.isOn(u"udsclient_supported"_s))
        sum += 3 * settings.number(u"uds_client_cnt"_s, line);
    return sum;
}
