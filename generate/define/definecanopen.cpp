// The CANopen section of gen_define.h: counts of the lines, and the services that the dictionary asks for.

#include "generate/define/definerules.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"

#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;
namespace Index = CANopen::Index;

namespace {

using Counts = LineCounts;
using Dictionary = DefineModel::Dictionary;
using Family = std::vector<std::pair<quint32, QString>>;

constexpr char blockTransfer[] = "sdo_blocktransfer_supported";
constexpr char clientQueue[] = "sdo_client_queue_supported";
constexpr char usdoServer[] = "usdo_server_enabled";
constexpr char usdoClient[] = "usdo_client_enabled";
constexpr quint16 storeProfile = 454;

Family objectsPerLine(const DefineModel &model)
{
    Family counts;
    for (const LineCounts &line : model.lines) {
        if (line.objects > 0)
            counts.emplace_back(line.number, decimal(line.objects));
    }
    return counts;
}

Family profile(const DefineModel &model)
{
    const std::optional<quint16> number = model.dictionary.profile;
    return number ? Family{{*number, flag(true)}} : Family();
}

Family vehicleGroups(const DefineModel &model)
{
    Family groups;
    for (const quint32 group : model.dictionary.vehicleGroups)
        groups.emplace_back(group, flag(true));
    return groups;
}

QString profileStores(const DefineModel &model, Key /*key*/)
{
    return flag(model.dictionary.profile == storeProfile);
}

QString isCanOpen(const DefineModel &model, Key /*key*/)
{
    return flag(model.hasLine(&LineProtocols::canOpen));
}

/// In a project of several protocols the messages are counted for all of them, at the end of the file.
QString cobsPerLine(const DefineModel &model, Key key)
{
    return model.options.multiProtocol ? QString() : perLine<&Counts::cobs>(model, key);
}

QString cobsOfDevices(const DefineModel &model, Key /*key*/)
{
    if (model.options.multiProtocol)
        return {};
    quint32 sum = 0;
    for (const LineCounts &line : model.lines)
        sum += line.hasDeviceType ? line.cobs : 0;
    return decimal(sum);
}

QString highestStoreCount(const DefineModel &model, Key /*key*/)
{
    return countOf(std::ranges::max(model.lines, {}, &Counts::storeEntries).storeEntries);
}

QString guardingCounts(const DefineModel & /*model*/, Key /*key*/)
{
    return u"CO_MAX_ASSIGN_COUNTS"_s;
}

/// The setting is the list already; only where nothing stands between its commas it gets numbers.
QString nodeIds(const DefineModel &model, Key key)
{
    const QString list = model.general(key);
    const bool isEmpty = list.count(u',') == list.size();
    return isEmpty ? QStringList(list.size() + 1, u"0"_s).join(u',') : list;
}

QString nodeIdFunctions(const DefineModel &model, Key /*key*/)
{
    return listOf(
        model,
        [](const LineCounts &line) {
            return line.nodeIdFunction.trimmed().isEmpty() ? u"NULL"_s : line.nodeIdFunction;
        },
        ","_L1);
}

QString layerSettingMaster(const DefineModel &model, Key key)
{
    return flag(model.isSet(key) && model.isSet(u"nmtmaster"_s));
}

/// A classic stack takes the routes of its lines from a setting. Where that has none the objects count, which the
/// mapping tables go by.
QString routes(const DefineModel &model, Key key)
{
    quint32 sum = 0;
    for (const LineCounts &line : model.lines)
        sum += model.number(key, line);
    return countOf(sum > 0 ? sum : model.total(&Counts::networkRoutes));
}

QString routesPerLine(const DefineModel &model, Key key)
{
    if (!model.isSet(key))
        return perLineIfAny<&Counts::networkRoutes>(model, key);
    return listOf(
        model, [&](const LineCounts &line) { return decimal(model.number(key, line)); }, ", "_L1);
}

/// Without the USDO service (CiA 1301) on any line its functions are not declared.
template <const char *enabled>
QString usdoFunction(const DefineModel &model, Key key)
{
    return model.isSet(QLatin1StringView(enabled)) ? isFunction(model, key) : QString();
}

template <quint16 dataType>
QString srdoEntries(const DefineModel &model, Key key)
{
    return ofType<&Dictionary::staticSrdo, dataType>(model, key);
}

constexpr std::array lineMacros{
    Macro{"CAN_MULTI_LINE"_L1, severalLines},
    Macro{"CAN_MULTI_LINE_CNT"_L1, lineCount},
    Macro{"CANOPEN_SUPPORTED"_L1, isCanOpen},
};

constexpr std::array countMacros{
    Macro{.name = "CO_OBJECTS_LINE_%1_CNT"_L1, .family = objectsPerLine},
    Macro{"CO_OBJECT_COUNTS"_L1, perLine<&Counts::objects>},
    Macro{"CORE_COB_COUNTS"_L1, cobsPerLine},
    Macro{"CO_TXPDO_COUNTS"_L1, perLine<&Counts::txPdos>},
    Macro{"CO_RXPDO_COUNTS"_L1, perLine<&Counts::rxPdos>},
    Macro{"CO_SSDO_COUNTS"_L1, perLine<&Counts::sdoServers>},
    Macro{"CO_CSDO_COUNTS"_L1, perLine<&Counts::sdoClients>},
    Macro{"CO_ASSIGN_COUNTS"_L1, perLine<&Counts::assignedSlaves>},
    Macro{"CO_MAX_ASSIGN_COUNTS"_L1, perLine<&Counts::maxAssignedSlaves>},
    Macro{"CO_GUARDING_COUNTS"_L1, guardingCounts},
    Macro{"CO_ERR_CTRL_COUNTS"_L1, perLine<&Counts::errorControls>},
    Macro{"CO_STORE_CNT_MAX"_L1, highestStoreCount},
    Macro{"CO_ERR_HIST_COUNTS"_L1, perLine<&Counts::errorHistory>},
    Macro{"CO_ACT_ERR_HIST_COUNTS"_L1, perLine<&Counts::activeErrors>},
    Macro{"CO_EMCY_CONS_COUNTS"_L1, perLine<&Counts::emergencyConsumers>},
    Macro{"CO_NODE_IDS"_L1, nodeIds, "co_node_id"_L1},
    Macro{"CO_NODE_ID_FUNCTIONS"_L1, nodeIdFunctions},
    Macro{"CO_NETWORK_ID"_L1, optionalValue, "co_network_id"_L1},
};

constexpr std::array serviceMacros{
    Macro{.name = "CO_PROFILE_%1"_L1, .family = profile},
    Macro{"CO_EVENT_PROFILE_STORE"_L1, profileStores},
    Macro{.name = "CO_P447_VDFG_%1"_L1, .family = vehicleGroups},
    Macro{"CO_NMT_MASTER"_L1, isSet, "nmtmaster"_L1},
    Macro{"CO_FLYING_MASTER_SUPPORTED"_L1, dictionaryHas<&Dictionary::flyingMaster>, {}, Forms::V4Only},
    Macro{"CO_FLYING_MASTER_SUPPORTED"_L1, isSet, "flyma_supported"_L1, Forms::ClassicOnly},
    Macro{"CO_LSS_MASTER_SUPPORTED"_L1, layerSettingMaster, "lss_supported"_L1},
    Macro{"CO_LSS_SUPPORTED"_L1, isSet, "lss_supported"_L1},
    Macro{"CO_LSS_INQUIRY_SERVICES"_L1, isSet, "lss_inquiry_supported"_L1},
    Macro{"CO_IDNEGO_SUPPORTED"_L1, isSet, "idnego_supported"_L1},
    Macro{"CO_GFC_SUPPORTED"_L1, hasObject<Index::globalFailSafe>},
    Macro{"CO_DYNAMIC_OBJDIC"_L1, isSet, "dynod"_L1},
    Macro{"CO_EVENT_CSDO_DOMAIN_WRITE"_L1, isSet, "csdo_write_special"_L1},
    Macro{"CO_EMCY_NETWORKING"_L1, isSet, "emcy_routing"_L1},
    Macro{"CO_SDO_NETWORKING"_L1, isSet, "sdo_routing"_L1},
    Macro{"CO_NETWORK_ROUTING_COUNTS"_L1, perLineIfAny<&Counts::networkRoutes>, {}, Forms::V4Only},
    Macro{"CO_NETWORK_ROUTING_CNT"_L1, totalIfAny<&Counts::networkRoutes>, {}, Forms::V4Only},
    Macro{"CO_NETWORK_ROUTING_COUNTS"_L1, routesPerLine, "routing_counts"_L1, Forms::ClassicOnly},
    Macro{"CO_NETWORK_ROUTING_CNT"_L1, routes, "routing_counts"_L1, Forms::ClassicOnly},
    Macro{"CO_SDO_SERVER_CNT"_L1, totalIfAny<&Counts::sdoServers>},
    Macro{"CO_SDO_CLIENT_CNT"_L1, totalIfAny<&Counts::sdoClients>},
    Macro{"CO_USDO_SUPPORTED"_L1, isSet, "canfd_supported"_L1},
    Macro{"CO_USDO_SERVER_MAX_CONN_CNT"_L1, totalIfAny<&Counts::usdoServers>, {}, Forms::V4Only},
    Macro{"CO_USDO_SERVER_MAX_CON"_L1, totalIfAny<&Counts::usdoServers>, {}, Forms::ClassicOnly},
    Macro{"CO_USDO_SERVER_MAX_CONN_COUNTS"_L1, perLineIfAny<&Counts::usdoServers>, {}, Forms::V4Only},
    Macro{"CO_SUSDO_DOMAIN_CNT"_L1, count, "usdo_server_domain_write_ind_size"_L1},
    Macro{"CO_USDO_SPLIT_INDICATION"_L1, isSet, "usdo_split_indication_supported"_L1, Forms::V4Only},
    Macro{"CO_EVENT_STATIC_USDO_SERVER_READ"_L1, usdoFunction<usdoServer>, "usdo_server_read_ind_function"_L1},
    Macro{"CO_EVENT_STATIC_SUSDO_READ_FINISHED"_L1, usdoFunction<usdoServer>,
          "usdo_server_read_finished_ind_function"_L1},
    Macro{"CO_EVENT_STATIC_USDO_SERVER_WRITE"_L1, usdoFunction<usdoServer>, "usdo_server_write_ind_function"_L1},
    Macro{"CO_EVENT_STATIC_USDO_CHECK_WRITE"_L1, usdoFunction<usdoServer>, "usdo_server_ind_check_write_function"_L1},
    Macro{"CO_EVENT_STATIC_SUSDO_DOMAIN_WRITE"_L1, usdoFunction<usdoServer>,
          "usdo_server_domain_write_ind_function"_L1},
    Macro{"CO_EVENT_STATIC_SUSDO_DOMAIN_READ"_L1, usdoFunction<usdoServer>, "usdo_server_domain_read_ind_function"_L1},
    Macro{"CO_USDO_CLIENT_SUPPORTED"_L1, isSet, "usdo_client_enabled"_L1},
    Macro{"CO_USDO_CLIENT_MAX_CONN_CNT"_L1, totalIfAny<&Counts::usdoClients>, {}, Forms::V4Only},
    Macro{"CO_USDO_CLIENT_MAX_CON"_L1, totalIfAny<&Counts::usdoClients>, {}, Forms::ClassicOnly},
    Macro{"CO_USDO_CLIENT_MAX_CONN_COUNTS"_L1, perLineIfAny<&Counts::usdoClients>, {}, Forms::V4Only},
    Macro{"CO_EVENT_STATIC_CUSDO_CLIENT_READ"_L1, usdoFunction<usdoClient>, "usdo_client_read_ind_function"_L1},
    Macro{"CO_EVENT_STATIC_CUSDO_CLIENT_WRITE"_L1, usdoFunction<usdoClient>, "usdo_client_write_ind_function"_L1},
    Macro{"CO_EVENT_STATIC_CUSDO_DOMAIN_WRITE"_L1, usdoFunction<usdoClient>,
          "usdo_client_domain_write_ind_function"_L1},
    Macro{"CO_EVENT_STATIC_CUSDO_DOMAIN_READ"_L1, usdoFunction<usdoClient>, "usdo_client_domain_read_ind_function"_L1},
    Macro{"CO_PDO_TRANSMIT_CNT"_L1, totalIfAny<&Counts::txMappings>},
    Macro{"CO_PDO_RECEIVE_CNT"_L1, totalIfAny<&Counts::rxMappings>},
    Macro{"CO_PDO_REC_TIMER_SUPPORTED"_L1, dictionaryHas<&Dictionary::receiveTimer>},
    Macro{"CO_SRDO_SUPPORTED"_L1, isCounted<&Counts::srdos>},
    Macro{"CO_SRDO_COUNTS"_L1, perLineIfAny<&Counts::srdos>},
    Macro{"CO_SRDO_CNT"_L1, totalIfAny<&Counts::srdos>},
    Macro{"CO_SRDO_IGNORE_DATA_STATE"_L1, isSet, "ignore_srdo_data_validation"_L1},
    Macro{"SRDO_OD_ENTRY_U8_CNT"_L1, srdoEntries<CAN::Unsigned8>},
    Macro{"SRDO_OD_ENTRY_U16_CNT"_L1, srdoEntries<CAN::Unsigned16>},
    Macro{"SRDO_OD_ENTRY_U32_CNT"_L1, srdoEntries<CAN::Unsigned32>},
    Macro{"SRDO_OD_ENTRY_U64_CNT"_L1, srdoEntries<CAN::Unsigned64>},
    Macro{"SRDO_OD_ENTRY_I8_CNT"_L1, srdoEntries<CAN::Integer8>},
    Macro{"SRDO_OD_ENTRY_I16_CNT"_L1, srdoEntries<CAN::Integer16>},
    Macro{"SRDO_OD_ENTRY_I32_CNT"_L1, srdoEntries<CAN::Integer32>},
    Macro{"SRDO_OD_ENTRY_R32_CNT"_L1, srdoEntries<CAN::Real32>},
    Macro{"CO_MPDO_PRODUCER"_L1, dictionaryHas<&Dictionary::multiplexTransmit>},
    Macro{"CO_MPDO_CONSUMER"_L1, dictionaryHas<&Dictionary::multiplexReceive>},
    Macro{"CO_MPDO_SAM"_L1, dictionaryHas<&Dictionary::multiplexSource>},
    Macro{"CO_MPDO_DAM"_L1, dictionaryHas<&Dictionary::multiplexDestination>},
    Macro{"CO_MAX_MAP_ENTRIES"_L1, dictionaryCount<&Dictionary::maxMapEntries>},
    Macro{"CO_TR_PDO_DYN_MAP_ENTRIES"_L1, dictionaryCount<&Dictionary::dynamicTxMappings>},
    Macro{"CO_REC_PDO_DYN_MAP_ENTRIES"_L1, dictionaryCount<&Dictionary::dynamicRxMappings>},
    Macro{"CO_PDO_BIT_MAPPING"_L1, isSet, "bitwise_mapping"_L1},
    Macro{"CO_HB_CONSUMER_CNT"_L1, totalIfAny<&Counts::errorControls>},
    Macro{"CO_SYNC_SUPPORTED"_L1, hasObject<Index::syncCobId>},
    Macro{"CO_BOOTUP_MANAGER"_L1, isSet, "bootup_manager"_L1},
    Macro{"CO_SLAVE_ASSIGNMENT_CNT"_L1, totalIfAny<&Counts::assignedSlaves>},
    Macro{"CO_MAX_SLAVE_ASSIGNMENT_CNT"_L1, totalIfAny<&Counts::maxAssignedSlaves>},
    Macro{"CO_GUARDING_CNT"_L1, totalIfAny<&Counts::maxAssignedSlaves>},
    Macro{"CO_CFG_MANAGER"_L1, isSet, "config_manager"_L1},
    Macro{"CO_EMCY_PRODUCER"_L1, hasObject<Index::emcyCobId>},
    Macro{"CO_SRD_SUPPORTED"_L1, hasObject<Index::slaveReset>},
    Macro{"CO_GUARDING_SLAVE"_L1, hasObject<Index::guardTime>},
    Macro{"CO_AUTO_STORE_HANDLED_BY_APPLICATION"_L1, isSet, "1010autostore_by_application"_L1},
    Macro{"CO_STORE_SUPPORTED"_L1, hasObject<Index::storeParameters, Index::restoreParameters>},
    Macro{"CO_EMCY_CONSUMER_CNT"_L1, totalIfAny<&Counts::emergencyConsumers>},
    Macro{"CO_EMCY_ERROR_HISTORY"_L1, totalIfAny<&Counts::errorHistory>},
    Macro{"CO_EMCY_ACTIVE_ERROR_LIST"_L1, totalIfAny<&Counts::activeErrors>},
    Macro{"CO_TIME_SUPPORTED"_L1, hasObject<Index::timeCobId>},
    Macro{"CO_SDO_BLOCK"_L1, isSet, "sdo_blocktransfer_supported"_L1},
    Macro{"CO_SDO_BLOCK_SIZE"_L1, given<blockTransfer, value>, "sdo_blocktransfer_block_size"_L1},
    Macro{"CO_SDO_BLOCK_MIN_SIZE"_L1, given<blockTransfer, value>, "sdo_blocktransfer_min_data"_L1},
    Macro{"CO_SDO_BLOCK_CRC"_L1, given<blockTransfer, isSet>, "sdo_blocktransfer_crc_supported"_L1},
    Macro{"CO_SDO_QUEUE"_L1, isSet, "sdo_client_queue_supported"_L1},
    Macro{"CO_SDO_QUEUE_LEN"_L1, given<clientQueue, value>, "sdo_client_queue_size"_L1},
    Macro{"CO_SDOQUEUE_INTERNAL_ACCESS"_L1, isSet, "sdo_client_queue_internal_access_supported"_L1},
    Macro{"CO_CONFIG_LIMIT_CHECK"_L1, isSet, "limit_check"_L1},
    Macro{"CO_SSDO_DOMAIN_CNT"_L1, count, "event_ssdo_domain_counter"_L1},
    Macro{"CO_SDO_SPLIT_INDICATION"_L1, isSet, "sdo_split"_L1},
    Macro{"CO_SELF_STARTING_DEVICE"_L1, dictionaryHas<&Dictionary::selfStarting>},
    Macro{"CO_EXTENDED_DATA_TYPES"_L1, dictionaryHas<&Dictionary::wideTypes>},
    Macro{"CO_UTF8_DATA_TYPE"_L1, dictionaryHas<&Dictionary::utf8>},
    Macro{"CORE_INHIBIT_SUPPORTED"_L1, dictionaryHas<&Dictionary::inhibit>},
};

constexpr std::array deviceCobMacros{Macro{"CORE_COB_CNT"_L1, cobsOfDevices}};

constexpr std::array blocks{
    Block{"/* Line Settings */"_L1, lineMacros},
    Block{"/* Number of receive/transmit buffer entries per line */"_L1, bufferMacros},
    Block{"/* Number of objects per line */"_L1, countMacros},
    Block{"/* Definition of numbers of CANopen services */"_L1, serviceMacros},
    Block{"/* number of used COB objects */"_L1, deviceCobMacros,
          [](const DefineModel &model) { return !model.options.multiProtocol; }},
};

} // namespace

std::span<const Block> DefineMacros::canOpen()
{
    return blocks;
}
