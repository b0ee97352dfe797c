// How the model of gen_define.h is read from the store.

#include "generate/define/cobcount.h"
#include "generate/define/definemodel.h"
#include "generate/model/linedictionary.h"
#include "generate/model/linesettings.h"
#include "nodedict/canopendatatype.h"
#include "store/objectdatabase.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace ObjectRange;

namespace {

constexpr quint32 addressClaim = 60928;
constexpr quint8 virtualObject = 3;
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
    void readMappings(const LineDictionary &dictionary, Range range, bool &multiplexed);
    quint32 dynamicMappings(const LineDictionary &dictionary, Range pdos) const;
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
    for (const quint8 number : LineSettings::stackLines(store_)) {
        LineDictionary dictionary(store_, number);
        if (dictionary.takesPart(RunContext::protocolsOf(store_, number)))
            dictionaries.push_back(std::move(dictionary));
    }
    if (dictionaries.empty())
        dictionaries.emplace_back(store_, quint8{0});
    model_.severalLines = dictionaries.size() > 1 || model_.options.generateMultiLine;

    for (const LineDictionary &dictionary : dictionaries) {
        countLine(dictionary);
        for (const quint16 index : dictionary.indices())
            model_.objects_.insert(index);
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
    LineCounts line{.number = dictionary.line(), .protocols = RunContext::protocolsOf(store_, dictionary.line())};
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
    const auto count = [&](Range range) { return dictionary.count(range.first, range.last); };
    line.hasDeviceType = dictionary.has(0x1000);
    line.objects = static_cast<quint32>(dictionary.indices().size());
    line.txPdos = count(txPdos);
    line.rxPdos = count(rxPdos);
    line.txMappings = count(txMappings);
    line.rxMappings = count(rxMappings);
    line.srdos = count(srdos);
    line.assignedSlaves = dictionary.subCount(0x1F81);
    const quint32 maxAssigned = setting(u"max_slave_assignment"_s, line);
    line.maxAssignedSlaves = maxAssigned != 0 ? maxAssigned : line.assignedSlaves;
    line.errorControls = dictionary.subCount(0x1016);
    line.storeEntries = dictionary.subCount(0x1010);
    line.errorHistory = dictionary.subCount(0x1003);
    line.activeErrors = dictionary.subCount(0x1032);
    line.emergencyConsumers = dictionary.subCount(0x1028);
    line.networkRoutes = dictionary.subCount(0x1F2C);
}

/// The servers and clients that have objects. Where there are none, a classical CANopen device still has its default
/// server (CiA 301), and a J1939 device has those of its CAM11 and CAM21 support (CiA 510).
void DefineCollector::countSdo(LineCounts &line, const LineDictionary &dictionary) const
{
    const bool canOpenOnly = line.protocols.canOpen && !line.protocols.combined();
    const bool j1939 = line.protocols.j1939 && !line.protocols.canOpen;
    const auto supports = [&](const QString &key) { return j1939 && model_.j1939_.isOn(key, line.number); };
    line.sdoServers = dictionary.count(sdoServers.first, sdoServers.last);
    if (line.sdoServers == 0 && ((canOpenOnly && !model_.canFd) || supports(u"cia510serversupport"_s)))
        line.sdoServers = 1;
    line.sdoClients = dictionary.count(sdoClients.first, sdoClients.last);
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
    for (const ObjectDataBase::PGN &group : store_.getAllPGNs(line.number)) {
        const bool received = group.direction == ObjectDataBase::receive;
        if (group.number == addressClaim || (!received && group.direction != ObjectDataBase::transmit))
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
    const auto count = [&](quint8 direction) {
        return static_cast<quint32>(store_.getCANIDList(line.number, direction).size());
    };
    line.receivedCanIds = count(ObjectDataBase::receive);
    line.transmittedCanIds = count(ObjectDataBase::transmit);
    for (const ObjectDataBase::CANID &canId : store_.getAllCANIDs(line.number))
        model_.inhibitedCanIds |= canId.direction == ObjectDataBase::transmit && canId.inhibittime_ms > 0;
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
    const quint8 sub = model_.canFd ? 1 : 0;
    const auto deviceType = [&](const LineDictionary &each) { return each.value(0x1000, sub); };
    if (std::ranges::none_of(dictionaries, [&](const auto &each) { return deviceType(each) >= firstDeviceProfile; }))
        return;
    const auto first = std::ranges::find_if(dictionaries, [](const auto &each) { return each.has(0x1000); });
    model_.dictionary.profile = static_cast<quint16>(deviceType(*first));
    if (model_.dictionary.profile != vehicleAddOn)
        return;
    for (const quint8 group : {quint8{1}, quint8{2}}) {
        if (first->subs(0x6000).contains(group))
            model_.dictionary.vehicleGroups.append(first->value(0x6000, group));
    }
}

void DefineCollector::readPdos(const LineDictionary &dictionary)
{
    DefineModel::Dictionary &result = model_.dictionary;
    for (const ObjectDataBase::SubKey &key : store_.findSubIndices(dictionary.line(), u"subindex"_s, u"5"_s))
        result.receiveTimer |= key.index >= rxPdos.first && key.index <= rxPdos.last;
    for (const ObjectDataBase::SubKey &key : store_.findSubIndices(dictionary.line(), u"subindex"_s, u"3"_s))
        result.inhibit |= key.index >= txPdos.first && key.index <= txPdos.last;
    result.inhibit |= dictionary.has(0x1015);
    readMappings(dictionary, rxMappings, result.multiplexReceive);
    readMappings(dictionary, txMappings, result.multiplexTransmit);
    result.dynamicRxMappings += dynamicMappings(dictionary, rxPdos);
    result.dynamicTxMappings += dynamicMappings(dictionary, txPdos);
}

void DefineCollector::readMappings(const LineDictionary &dictionary, Range range, bool &multiplexed)
{
    DefineModel::Dictionary &result = model_.dictionary;
    for (const quint16 index : dictionary.range(range.first, range.last)) {
        const quint32 subs = dictionary.subCount(index);
        result.maxMapEntries = std::max(result.maxMapEntries, subs > 0 ? subs - 1 : 0);
        const quint32 entries = dictionary.value(index, 0);
        result.multiplexSource |= entries == sourceAddressMode;
        result.multiplexDestination |= entries == destinationAddressMode;
        multiplexed |= entries == sourceAddressMode || entries == destinationAddressMode;
    }
}

quint32 DefineCollector::dynamicMappings(const LineDictionary &dictionary, Range pdos) const
{
    const QList<quint16> indices = dictionary.range(pdos.first, pdos.last);
    return static_cast<quint32>(std::ranges::count_if(indices, [&](quint16 index) {
        return dictionary.access(static_cast<quint16>(index + mappingOffset), 0) == "rw"_L1;
    }));
}

/// 0x1F80 tells how the device starts up (CiA 302-2): of a master, whether it negotiates, of a slave, that it starts by
/// itself.
void DefineCollector::readNetworkStart(const LineDictionary &dictionary)
{
    const bool isMaster = model_.general_.isOn(u"nmtmaster"_s, dictionary.line());
    if (dictionary.has(0x1F80))
        (isMaster ? model_.dictionary.flyingMaster : model_.dictionary.selfStarting) = true;

    const quint8 currentLine = store_.currentLine();
    store_.setCurrentLine(dictionary.line());
    if (LineSettings::number(store_.getDescriptionSetting(u"SelfStarting"_s)) > 0)
        model_.dictionary.selfStarting = true;
    store_.setCurrentLine(currentLine);
}

/// Each object counts once, although an SRDO maps its normal and its inverted data, and several SRDOs may share it.
void DefineCollector::readStaticSrdo(const LineDictionary &dictionary)
{
    if (!model_.isSet(u"static_srdo_data"_s))
        return;
    QSet<quint32> seen;
    for (const quint16 index : dictionary.range(srdoMappings.first, srdoMappings.last)) {
        for (const quint8 entry : dictionary.subs(index)) {
            const quint32 mapped = entry == 0 ? 0 : dictionary.value(index, entry) >> 8;
            const auto object = static_cast<quint16>(mapped >> 8);
            if (mapped == 0 || seen.contains(mapped) || !dictionary.has(object))
                continue;
            seen.insert(mapped);
            const auto sub = static_cast<quint8>(mapped);
            ++model_.dictionary.staticSrdo[storedAs(store_.getSubIndexDataType(dictionary.line(), object, sub))];
        }
    }
}

void DefineCollector::readTypes(const LineDictionary &dictionary)
{
    DefineModel::Dictionary &result = model_.dictionary;
    const quint8 line = dictionary.line();
    const auto has = [&](quint16 dataType) {
        return !store_.findSubIndices(line, u"datatype"_s, QString::number(dataType)).isEmpty();
    };
    result.wideTypes = result.wideTypes || std::ranges::any_of(wideTypes, has);
    result.utf8 = result.utf8 || has(CAN::Utf8String);

    QSet<quint16> virtualIndices;
    const auto virtualSubs = store_.findSubIndices(line, u"implementation"_s, QString::number(virtualObject));
    for (const ObjectDataBase::SubKey &key : virtualSubs) {
        if (key.subindex == 0 && key.index >= all.first)
            virtualIndices.insert(key.index);
    }
    result.virtualObjects += static_cast<quint32>(virtualIndices.size());
    for (const ObjectDataBase::SubKey &key : virtualSubs) {
        if (!virtualIndices.contains(key.index))
            continue;
        ++result.virtualSubs;
        ++result.virtualTypes[storedAs(store_.getSubIndexDataType(line, key.index, key.subindex))];
    }
}

void DefineCollector::readAuthentication()
{
    for (const LineCounts &line : model_.lines) {
        for (const ObjectDataBase::UDSService &service : store_.getUDSServices(line.number)) {
            const QStringList roles = store_.getUDSServiceAuthentication(line.number, service.sid).split(u',');
            model_.authentication |= service.active && std::ranges::any_of(roles, [](const QString &role) {
                                         return LineSettings::number(role) != 0;
                                     });
        }
    }
}

/// A virtual device is the value of `device_%1`, and `sec_%1_kind` with that value tells its kind.
void DefineCollector::readEnergyBus()
{
    static const QRegularExpression device(u"^device_[0-9]+$"_s);
    for (const QString &key : store_.getEnergyBusSettingKeys()) {
        if (!device.match(key).hasMatch())
            continue;
        const QString name = store_.getEnergyBusSetting(key).trimmed();
        const QString kind = store_.getEnergyBusSetting(u"sec_%1_kind"_s.arg(name)).trimmed();
        ++model_.energyBusDevices[kind.isEmpty() ? name : kind];
    }
}
