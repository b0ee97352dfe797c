// How the model of gen_define.h is read from the store.

#include "generate/define/cobcount.h"
#include "generate/define/definemodel.h"
#include "generate/model/linedictionary.h"
#include "generate/model/linemessages.h"
#include "generate/model/linesettings.h"
#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "store/objectdatabase.h"
#include "texttools/numbertext.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;
using CANopen::IndexRange;
namespace Index = CANopen::Index;

namespace {

/// Subindex 0 of the mapping of a multiplexed PDO (CiA 301).
constexpr quint32 sourceAddressMode = 254;
constexpr quint32 destinationAddressMode = 255;

/// Types whose values the stack keeps in tables of their own, byte by byte.
constexpr std::array wideTypes{CAN::TimeOfDay,  CAN::Integer24,  CAN::Real64,     CAN::Integer40,
                               CAN::Integer48,  CAN::Integer56,  CAN::Integer64,  CAN::Unsigned24,
                               CAN::Unsigned40, CAN::Unsigned48, CAN::Unsigned56, CAN::Unsigned64};

/// The type that stands for all that a value of this type is stored with.
quint16 storedAs(quint16 dataType)
{
    const bool isByte = dataType == CAN::Boolean || (dataType >= CAN::Unsigned2 && dataType <= CAN::Unsigned7);
    return isByte ? quint16{CAN::Unsigned8} : dataType;
}

} // namespace

class DefineCollector
{
public:
    DefineCollector(ObjectDataBase &store, DefineModel &model)
        : store_(store)
        , model_(model)
    {
    }

    void collect();

private:
    void countLine(const LineDictionary &dictionary);
    void countObjects(LineCounts &line, const LineDictionary &dictionary) const;
    void countSdo(LineCounts &line, const LineDictionary &dictionary) const;
    void countConnections(LineCounts &line) const;
    void countGroups(LineCounts &line);
    void countCanIds(LineCounts &line);
    quint32 cobs(const LineCounts &line, const LineDictionary &dictionary) const;
    void readProfile(const std::vector<LineDictionary> &dictionaries);
    void readPdos(const LineDictionary &dictionary);
    void readMappings(const LineDictionary &dictionary, IndexRange mappings, bool &multiplexed);
    quint32 dynamicMappings(const LineDictionary &dictionary, IndexRange pdos) const;
    void readNetworkStart(const LineDictionary &dictionary);
    void readStaticSrdo(const LineDictionary &dictionary);
    void readTypes(const LineDictionary &dictionary);
    void readAuthentication();
    void readEnergyBus();
    quint32 setting(const QString &key, const LineCounts &line) const { return model_.number(key, line); }
    bool isOn(const QString &key, const LineCounts &line) const { return model_.general_.isOn(key, line.number); }
    QString text(const QString &key, const LineCounts &line) const { return model_.general_.text(key, line.number); }

    ObjectDataBase &store_;
    DefineModel &model_;
};

DefineModel DefineModel::collect(ObjectDataBase &store, const Options &options)
{
    DefineModel model(store);
    model.options = options;
    DefineCollector(store, model).collect();
    return model;
}

void DefineCollector::collect()
{
    model_.canFd = model_.isSet(u"canfd_supported"_s);
    std::vector<LineDictionary> dictionaries;
    for (const quint8 number : LineSettings::partakingLines(store_))
        dictionaries.emplace_back(store_, number, quint16{0});
    model_.severalLines = dictionaries.size() > 1 || model_.options.generateMultiLine;

    for (const LineDictionary &dictionary : dictionaries) {
        countLine(dictionary);
        for (const LineObject &object : dictionary.range(Index::all))
            model_.objects_.insert(object.index);
        readPdos(dictionary);
        readNetworkStart(dictionary);
        readStaticSrdo(dictionary);
        readTypes(dictionary);
    }
    readProfile(dictionaries);
    readAuthentication();
    readEnergyBus();
}

void DefineCollector::countLine(const LineDictionary &dictionary)
{
    LineCounts line{.number = dictionary.number, .protocols = RunContext::protocolsOf(store_, dictionary.number)};
    line.receiveBuffer = text(u"receivebuffersize"_s, line);
    line.transmitBuffer = text(u"transmitbuffersize"_s, line);
    line.nodeIdFunction = text(u"co_node_id_fct"_s, line);
    countObjects(line, dictionary);
    countSdo(line, dictionary);
    countConnections(line);
    if (line.protocols.j1939)
        countGroups(line);
    if (line.protocols.rawCan)
        countCanIds(line);
    line.cobs = cobs(line, dictionary);
    model_.lines.push_back(line);
}

void DefineCollector::countObjects(LineCounts &line, const LineDictionary &dictionary) const
{
    line.hasDeviceType = dictionary.has(Index::deviceType);
    line.objects = dictionary.count(Index::all);
    line.txPdos = dictionary.count(Index::tpdos);
    line.rxPdos = dictionary.count(Index::rpdos);
    line.txMappings = dictionary.count(Index::tpdoMappings);
    line.rxMappings = dictionary.count(Index::rpdoMappings);
    line.srdos = dictionary.count(Index::srdos);
    line.assignedSlaves = dictionary.subCount(Index::slaveAssignment);
    const quint32 maxAssigned = setting(u"max_slave_assignment"_s, line);
    line.maxAssignedSlaves = maxAssigned != 0 ? maxAssigned : line.assignedSlaves;
    line.errorControls = dictionary.subCount(Index::heartbeatConsumers);
    line.storeEntries = dictionary.subCount(Index::storeParameters);
    line.errorHistory = dictionary.subCount(Index::errorHistory);
    line.activeErrors = dictionary.subCount(Index::activeErrors);
    line.emergencyConsumers = dictionary.subCount(Index::emcyConsumers);
    line.networkRoutes = dictionary.subCount(Index::networkRouting);
}

/// The servers and clients that have objects. Where there are none, a classical CANopen device still has its default
/// server (CiA 301), and a J1939 device has those of its CAM11 and CAM21 support (CiA 510).
void DefineCollector::countSdo(LineCounts &line, const LineDictionary &dictionary) const
{
    const bool canOpenOnly = line.protocols.canOpen && !line.protocols.combined();
    const bool j1939 = line.protocols.j1939 && !line.protocols.canOpen;
    const auto supports = [&](const QString &key) { return j1939 && model_.j1939_.isOn(key, line.number); };
    line.sdoServers = dictionary.count(Index::sdoServers);
    if (line.sdoServers == 0 && ((canOpenOnly && !model_.canFd) || supports(u"cia510serversupport"_s)))
        line.sdoServers = 1;
    line.sdoClients = dictionary.count(Index::sdoClients);
    if (line.sdoClients == 0 && supports(u"cia510clientsupport"_s))
        line.sdoClients = 1;
    if (isOn(u"usdo_server_enabled"_s, line))
        line.usdoServers = setting(u"usdo_server_cnt"_s, line);
    if (isOn(u"usdo_client_enabled"_s, line))
        line.usdoClients = setting(u"usdo_client_cnt"_s, line);
}

/// A UDS server receives its physical and its functional requests on two connections, and answers on a third; a client
/// sends on one and receives on another.
void DefineCollector::countConnections(LineCounts &line) const
{
    if (isOn(u"isotp_supported"_s, line)) {
        line.isoTpClients = setting(u"isotp_client_con"_s, line);
        line.isoTpServers = setting(u"isotp_server_con"_s, line);
    }
    if (isOn(u"udsserver_supported"_s, line)) {
        line.isoTpClients += 1;
        line.isoTpServers += 2;
    }
    if (isOn(u"udsclient_supported"_s, line)) {
        line.udsClients = setting(u"uds_client_cnt"_s, line);
        line.isoTpClients += line.udsClients;
        line.isoTpServers += line.udsClients;
    }
}

void DefineCollector::countGroups(LineCounts &line)
{
    const bool safety = model_.j1939_.isOn(u"safetysupport"_s, line.number);
    for (const LineMessage &message : LineMessages::parameterGroups(store_, line.number)) {
        const StoreRecords::PGN &group = message.head;
        const bool received = !message.isTransmitted();
        if (group.number == J1939::addressClaim)
            continue;
        quint32 &groups = received ? line.receivedPgns : line.transmittedPgns;
        quint32 &safetyGroups = received ? line.receivedSafetyGroups : line.transmittedSafetyGroups;
        ++(safety && group.issafe ? safetyGroups : groups);
        model_.multiSourceGroups |= received && group.multisourceaddress;
        model_.inhibitedGroups |= !received && group.inhibittime_ms > 0;
    }
    line.destinationBuffers = model_.j1939_.number(u"j1939fd_multipgbuffer"_s, line.number);
}

void DefineCollector::countCanIds(LineCounts &line)
{
    for (const LineMessage &canId : LineMessages::canIds(store_, line.number)) {
        ++(canId.isTransmitted() ? line.transmittedCanIds : line.receivedCanIds);
        model_.inhibitedCanIds |= canId.isTransmitted() && canId.head.inhibittime_ms > 0;
    }
}

quint32 DefineCollector::cobs(const LineCounts &line, const LineDictionary &dictionary) const
{
    const bool canOpen = line.protocols.canOpen || !line.protocols.any();
    return (canOpen ? CobCount::ofCanOpen(store_, dictionary) : CobCount::additional(store_, line.number)) +
           line.receivedCanIds + line.transmittedCanIds + CobCount::ofDiagnostics(store_, line.number);
}

/// The device type (CiA 301) is an array in a CAN FD device (CiA 1301).
void DefineCollector::readProfile(const std::vector<LineDictionary> &dictionaries)
{
    constexpr quint32 firstDeviceProfile = 401;
    constexpr quint16 vehicleAddOn = 447;
    constexpr quint16 vehicleGroups = 0x6000;
    const quint8 typeSub = model_.canFd ? 1 : 0;
    const auto deviceType = [&](const LineDictionary &each) { return each.value(Index::deviceType, typeSub); };
    if (std::ranges::none_of(dictionaries, [&](const auto &each) { return deviceType(each) >= firstDeviceProfile; }))
        return;
    const auto first = std::ranges::find_if(dictionaries, [](const auto &each) { return each.has(Index::deviceType); });
    model_.dictionary.profile = static_cast<quint16>(deviceType(*first));
    if (model_.dictionary.profile != vehicleAddOn)
        return;
    for (const quint8 group : {quint8{1}, quint8{2}}) {
        if (const StoreRecords::SubEntry *sub = first->sub(vehicleGroups, group))
            model_.dictionary.vehicleGroups.append(defaultNumber(sub));
    }
}

void DefineCollector::readPdos(const LineDictionary &dictionary)
{
    const auto has = [&](IndexRange pdos, quint8 subindex) {
        return std::ranges::any_of(dictionary.range(pdos), [&](const LineObject &pdo) { return pdo.sub(subindex); });
    };
    constexpr quint8 inhibitTime = 3;
    constexpr quint8 eventTimer = 5;
    DefineModel::Dictionary &result = model_.dictionary;
    result.receiveTimer |= has(Index::rpdos, eventTimer);
    result.inhibit |= has(Index::tpdos, inhibitTime) || dictionary.has(Index::emcyInhibitTime);
    readMappings(dictionary, Index::rpdoMappings, result.multiplexReceive);
    readMappings(dictionary, Index::tpdoMappings, result.multiplexTransmit);
    result.dynamicRxMappings += dynamicMappings(dictionary, Index::rpdos);
    result.dynamicTxMappings += dynamicMappings(dictionary, Index::tpdos);
}

void DefineCollector::readMappings(const LineDictionary &dictionary, IndexRange mappings, bool &multiplexed)
{
    DefineModel::Dictionary &result = model_.dictionary;
    for (const LineObject &mapping : dictionary.range(mappings)) {
        const auto subs = static_cast<quint32>(mapping.subs.size());
        result.maxMapEntries = std::max(result.maxMapEntries, subs > 0 ? subs - 1 : 0);
        const quint32 entries = defaultNumber(mapping.sub(0));
        result.multiplexSource |= entries == sourceAddressMode;
        result.multiplexDestination |= entries == destinationAddressMode;
        multiplexed |= entries == sourceAddressMode || entries == destinationAddressMode;
    }
}

quint32 DefineCollector::dynamicMappings(const LineDictionary &dictionary, IndexRange pdos) const
{
    return static_cast<quint32>(std::ranges::count_if(dictionary.range(pdos), [&](const LineObject &pdo) {
        const StoreRecords::SubEntry *count = dictionary.sub(pdo.index + Index::pdoMappingOffset, 0);
        return count && count->data.accesstype == CANopen::Access::ReadWrite;
    }));
}

/// 0x1F80 tells how the device starts up (CiA 302-2): of a master, whether it negotiates, of a slave, that it starts by
/// itself.
void DefineCollector::readNetworkStart(const LineDictionary &dictionary)
{
    const bool isMaster = model_.general_.isOn(u"nmtmaster"_s, dictionary.number);
    if (dictionary.has(Index::networkStartup))
        (isMaster ? model_.dictionary.flyingMaster : model_.dictionary.selfStarting) = true;

    const quint8 currentLine = store_.currentLine();
    store_.setCurrentLine(dictionary.number);
    if (NumberText::byPrefix(store_.getDescriptionSetting(u"SelfStarting"_s)).value_or(0) > 0)
        model_.dictionary.selfStarting = true;
    store_.setCurrentLine(currentLine);
}

/// Each object counts once, although an SRDO maps its normal and its inverted data, and several SRDOs may share it.
void DefineCollector::readStaticSrdo(const LineDictionary &dictionary)
{
    if (!model_.isSet(u"static_srdo_data"_s))
        return;
    QSet<quint32> seen;
    for (const LineObject &mapping : dictionary.range(Index::staticSrdoMappings)) {
        for (const StoreRecords::SubEntry &entry : mapping.subs) {
            const quint32 mapped = entry.subindex == 0 ? 0 : defaultNumber(&entry) >> 8;
            const auto index = static_cast<quint16>(mapped >> 8);
            const StoreRecords::SubEntry *sub = dictionary.sub(index, static_cast<quint8>(mapped));
            if (!sub || index < Index::all.first || seen.contains(mapped))
                continue;
            seen.insert(mapped);
            ++model_.dictionary.staticSrdo[storedAs(sub->data.datatype)];
        }
    }
}

void DefineCollector::readTypes(const LineDictionary &dictionary)
{
    DefineModel::Dictionary &result = model_.dictionary;
    for (const LineObject &object : dictionary.objects) {
        for (const StoreRecords::SubEntry &sub : object.subs) {
            result.wideTypes |= std::ranges::find(wideTypes, sub.data.datatype) != wideTypes.end();
            result.utf8 |= sub.data.datatype == CAN::Utf8String;
        }
    }
    for (const LineObject &object : dictionary.range(Index::all)) {
        if (!object.isVirtual())
            continue;
        ++result.virtualObjects;
        for (const StoreRecords::SubEntry &sub : object.subs) {
            if (sub.data.implementation != CANopen::Implementation::VirtualObject)
                continue;
            ++result.virtualSubs;
            ++result.virtualTypes[storedAs(sub.data.datatype)];
        }
    }
}

void DefineCollector::readAuthentication()
{
    for (const LineCounts &line : model_.lines) {
        for (const ObjectDataBase::UDSService &service : store_.getUDSServices(line.number)) {
            const QStringList roles = store_.getUDSServiceAuthentication(line.number, service.sid).split(u',');
            model_.authentication |= service.active && std::ranges::any_of(roles, [](const QString &role) {
                                         return NumberText::byPrefix(role).value_or(0) != 0;
                                     });
        }
    }
}

/// A virtual device is the value of `device_%1`, and `sec_%1_kind` with that value tells its kind.
void DefineCollector::readEnergyBus()
{
    static const QRegularExpression device(u"^device_[0-9]+$"_s);
    for (const QString &key : store_.getEnergyBusSettingKeys())
        model_.energyBus_.insert(key, store_.getEnergyBusSetting(key));
    for (const auto &[key, value] : std::as_const(model_.energyBus_).asKeyValueRange()) {
        if (!device.match(key).hasMatch())
            continue;
        const QString name = value.trimmed();
        const QString kind = model_.energyBus(u"sec_%1_kind"_s.arg(name)).trimmed();
        ++model_.energyBusDevices[kind.isEmpty() ? name : kind];
    }
}
