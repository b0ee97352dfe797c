#include "generate/define/definemacros.h"

#include "generate/base/dialect.h"
#include "generate/define/definerules.h"
#include "nodedict/canopendatatype.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;

namespace {

using Counts = LineCounts;
using Dictionary = DefineModel::Dictionary;

// ---- Head --------------------------------------------------------------------------------------------------------

constexpr char bootloader[] = "uds_bl_setting";

QString toolName(const DefineModel & /*model*/, Key /*key*/)
{
    return QCoreApplication::applicationName().toUpper().replace(u' ', u'_');
}

QString toolVersion(const DefineModel & /*model*/, Key /*key*/)
{
    static const QRegularExpression number(u"^[0-9]+"_s);
    const QStringList parts = QCoreApplication::applicationVersion().split(u'.');
    QString digits;
    for (qsizetype i = 0; i < 3; ++i)
        digits += u"%1"_s.arg(number.match(parts.value(i)).captured().toUInt(), 2, 10, '0'_L1);
    return u"0x%1ul"_s.arg(digits);
}

/// The version of the UDS structures is a byte, and never 0.
QString udsStructVersion(const DefineModel &model, Key key)
{
    if (!model.isSet(u"udsserver_supported"_s) && !model.isSet(u"udsclient_supported"_s))
        return {};
    return decimal(std::max<quint32>(model.number(key) & 0xFF, 1));
}

template <bool LineProtocols::*protocol, quint32 version>
QString structVersion(const DefineModel &model, Key /*key*/)
{
    return model.hasLine(protocol) ? decimal(version) : QString();
}

QString commonStructVersion(const DefineModel & /*model*/, Key /*key*/)
{
    return decimal(1);
}

QString rawCanStructVersion(const DefineModel &model, Key key)
{
    return model.isSet(QLatin1StringView(bootloader)) ? QString()
                                                      : structVersion<&LineProtocols::rawCan, 4>(model, key);
}

constexpr std::array toolMacros{
    Macro{"GEN_TOOL_NAME"_L1, toolName},
    Macro{"GEN_TOOL_VERSION"_L1, toolVersion},
};

constexpr std::array versionMacros{
    Macro{"GEN_COMMON_INIT_STRUCT_VERSION"_L1, commonStructVersion},
    Macro{"GEN_UDS_INIT_STRUCT_VERSION"_L1, udsStructVersion, "udsserver_version"_L1},
    Macro{"GEN_CANOPEN_INIT_STRUCT_VERSION"_L1, structVersion<&LineProtocols::canOpen, 5>},
    Macro{"GEN_J1939_INIT_STRUCT_VERSION"_L1, structVersion<&LineProtocols::j1939, 5>},
    Macro{"GEN_RAWCAN_INIT_STRUCT_VERSION"_L1, rawCanStructVersion},
};

constexpr std::array headBlocks{
    Block{"/* some information about the tool that has generated this file */"_L1, toolMacros},
    Block{"/* init struct versions */"_L1, versionMacros},
};

// ---- EnergyBus (CiA 454) -----------------------------------------------------------------------------------------

/// Number of virtual devices of a kind.
QString devices(const DefineModel &model, Key kind)
{
    const auto it = model.energyBusDevices.find(kind);
    return it == model.energyBusDevices.end() ? QString() : decimal(it->second);
}

QString energyBusValue(const DefineModel &model, Key key)
{
    return model.energyBus(key).trimmed().isEmpty() ? QString() : valueText(model.energyBus(key));
}

QString energyBusCount(const DefineModel &model, Key key)
{
    return valueText(model.energyBus(key));
}

QString energyBusIsSet(const DefineModel &model, Key key)
{
    return flag(LineSettings::number(model.energyBus(key)) > 0);
}

constexpr auto controller = "EnergyBus Controller"_L1;

bool isController(const DefineModel &model)
{
    return model.energyBusDevices.contains(controller);
}

constexpr std::array deviceMacros{
    Macro{"EB_VIRTUAL_DEV_CNT"_L1, energyBusCount, "device_cnt"_L1},
    Macro{"EB_EBC_CNT"_L1, devices, controller},
    Macro{"EB_LMD_CNT"_L1, devices, "Load Monitoring Device"_L1},
    Macro{"EB_LOCAL_LMD_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_lmd"_L1},
    Macro{"EB_SECURITY_CNT"_L1, devices, "Security Device/Extension"_L1},
    Macro{"EB_LOCAL_SECURITY_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_sec"_L1},
    Macro{"EB_BATTERY_CNT"_L1, devices, "Battery"_L1},
    Macro{"EB_LOCAL_BATTERY_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_bat"_L1},
    Macro{"EB_HMI_CNT"_L1, devices, "Display"_L1},
    Macro{"EB_LOCAL_HMI_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_hmi"_L1},
    Macro{"EB_MANU_P_CNT"_L1, devices, "Manufacturer specific device (passive)"_L1},
    Macro{"EB_LOCAL_MANU_P_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_manup"_L1},
    Macro{"EB_MANU_A_CNT"_L1, devices, "Manufacturer specific device (active)"_L1},
    Macro{"EB_LOCAL_MANU_A_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_manua"_L1},
    Macro{"EB_MCU_CNT"_L1, devices, "Motor Controller Unit"_L1},
    Macro{"EB_LOCAL_MCU_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_mcu"_L1},
    Macro{"EB_VOLT_CONV_CNT"_L1, devices, "Voltage Converter"_L1},
    Macro{"EB_LOCAL_VOLT_CONV_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_vc"_L1},
};

constexpr std::array networkMacros{
    Macro{"EB_NETWORK_VIRTUAL_DEV_CNT"_L1, energyBusCount, "ebc_max_dev_number"_L1},
    Macro{"EB_NETWORK_BATTERY_CNT"_L1, energyBusCount, "ebc_max_bat_number"_L1},
    Macro{"EB_NETWORK_MCU_CNT"_L1, energyBusCount, "ebc_max_mcu_number"_L1},
    Macro{"EB_NETWORK_HMI_CNT"_L1, energyBusCount, "ebc_max_hmi_number"_L1},
    Macro{"EB_NETWORK_MANU_P_CNT"_L1, energyBusCount, "ebc_max_manup_number"_L1},
    Macro{"EB_NETWORK_MANU_A_CNT"_L1, energyBusCount, "ebc_max_manua_number"_L1},
    Macro{"EB_NETWORK_SECURITY_CNT"_L1, energyBusCount, "ebc_max_sec_number"_L1},
    Macro{"EB_NETWORK_VOLT_CONV_CNT"_L1, energyBusCount, "ebc_max_vc_number"_L1},
    Macro{"EB_NETWORK_LOAD_MONITORING_CNT"_L1, energyBusCount, "ebc_max_lmd_number"_L1},
    Macro{"EB_NETWORK_PC_TOOL_CNT"_L1, energyBusIsSet, "ebc_tool_supported"_L1},
    Macro{"EB_NETWORK_BATTERY_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_bat"_L1},
    Macro{"EB_NETWORK_SECURITY_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_sec"_L1},
    Macro{"EB_NETWORK_VOLT_CONV_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_vc"_L1},
    Macro{"EB_NETWORK_HMI_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_hmi"_L1},
    Macro{"EB_NETWORK_MANU_P_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_manup"_L1},
    Macro{"EB_NETWORK_MANU_A_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_manua"_L1},
    Macro{"EB_NETWORK_LOAD_MONITORING_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_lmd"_L1},
    Macro{"EB_NETWORK_MCU_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_mcu"_L1},
};

constexpr std::array energyBusBlocks{
    Block{"/* EnergyBus Defines */"_L1, deviceMacros},
    Block{""_L1, networkMacros, isController},
};

// ---- User messages and queues ------------------------------------------------------------------------------------

QString userExtension(const DefineModel &model, Key /*key*/)
{
    return flag(model.isSet(u"user_tx_cob"_s) || model.isSet(u"user_rx_cob"_s));
}

constexpr std::array userMacros{
    Macro{"USER_TRANSMIT_MSG_CNT"_L1, count, "user_tx_cob"_L1},
    Macro{"USER_RECEIVE_MSG_CNT"_L1, count, "user_rx_cob"_L1},
    Macro{"CORE_USER_EXTENSION_SUPPORTED"_L1, userExtension},
};

constexpr std::array sortedMacros{Macro{"CORE_COB_SORTED_LIST"_L1, isSet, "sorted_coblist"_L1}};
constexpr std::array heartbeatMacros{Macro{"CO_ONE_HB_CONSUMER_COB"_L1, isSet, "only_one_hb_buffer"_L1}};

constexpr std::array queueMacros{
    Macro{"CORE_CONFIG_REC_BUFFER_CNT"_L1, allBuffers<&Counts::receiveBuffer, defaultReceiveBuffer>},
    Macro{"CORE_CONFIG_TRANS_BUFFER_CNT"_L1, allBuffers<&Counts::transmitBuffer, defaultTransmitBuffer>},
    Macro{"CORE_CANFD_SUPPORTED"_L1, isSet, "canfd_supported"_L1},
};

constexpr std::array queueBlocks{
    Block{""_L1, userMacros},
    Block{"/* Use of sorted COB list*/"_L1, sortedMacros,
          [](const DefineModel &model) { return model.isSet(u"sorted_coblist"_s); }},
    Block{""_L1, heartbeatMacros},
    Block{"/* Definition of CAN queue sizes */"_L1, queueMacros},
};

// ---- ISO-TP and UDS ----------------------------------------------------------------------------------------------

constexpr char server[] = "udsserver_supported";
constexpr char client[] = "udsclient_supported";

/// A UDS server runs over ISO-TP (ISO 14229-3), whether or not the application has connections of its own. The common
/// initialisation structure of the stack has its ISO-TP counts on the same condition.
bool usesIsoTp(const DefineModel &model)
{
    return model.isSet(u"isotp_supported"_s) || model.isSet(QLatin1StringView(server));
}

QString isoTp(const DefineModel &model, Key /*key*/)
{
    return flag(usesIsoTp(model));
}

template <QString (*rule)(const DefineModel &, Key)>
QString withIsoTp(const DefineModel &model, Key key)
{
    return usesIsoTp(model) ? rule(model, key) : QString();
}

QString authentication(const DefineModel &model, Key /*key*/)
{
    return flag(model.authentication);
}

constexpr std::array isoTpMacros{
    Macro{"ISOTP_SUPPORTED"_L1, isoTp},
    Macro{"ISOTP_CLIENT_CONNECTION_CNT"_L1, withIsoTp<totalIfAny<&Counts::isoTpClients>>},
    Macro{"ISOTP_SERVER_CONNECTION_CNT"_L1, withIsoTp<totalIfAny<&Counts::isoTpServers>>},
    Macro{"ISOTP_CLIENT_COUNTS"_L1, withIsoTp<perLine<&Counts::isoTpClients>>},
    Macro{"ISOTP_SERVER_COUNTS"_L1, withIsoTp<perLine<&Counts::isoTpServers>>},
    Macro{"ISOTP_EVENT_DYNAMIC_SERVER"_L1, withIsoTp<count>, "isotp_dyn_server_ind"_L1},
    Macro{"ISOTP_EVENT_DYNAMIC_CLIENT"_L1, withIsoTp<count>, "isotp_dyn_client_ind"_L1},
    Macro{"ISOTP_EVENT_DYNAMIC_SSPLIT"_L1, withIsoTp<count>, "isotp_dyn_split_ind"_L1},
    Macro{"ISOTP_EVENT_DYNAMIC_CLIENT_TXACK"_L1, withIsoTp<count>, "isotp_dyn_client_txack_ind"_L1},
    Macro{"UDS_SERVER_SUPPORTED"_L1, isSet, "udsserver_supported"_L1},
    Macro{"UDS_SECURITY_SEED_KEY_LEN"_L1, given<server, value>, "uds_seedkey_length"_L1},
    Macro{"UDS_SESSION_TIMEOUT"_L1, given<server, value>, "uds_session_timeout"_L1},
    Macro{"UDS_AUTHENTICATION_REQUIRED"_L1, given<server, authentication>, {}, Forms::V4Only},
    Macro{"UDS_ONLY_APPL_REQUIRED_SESSION_CHECK"_L1, given<server, isSet>, "uds_only_appl_session_check"_L1},
    Macro{"UDS_ONLY_APPL_SECURITY_LEVEL_CHECK"_L1, given<server, isSet>, "uds_only_appl_security_check"_L1},
    Macro{"UDS_CLIENT_SUPPORTED"_L1, isSet, "udsclient_supported"_L1},
    Macro{"UDS_CLIENT_CNT"_L1, given<client, total<&Counts::udsClients>>},
    Macro{"UDSCLIENT_EVENT_DYNAMIC_DATA_DOWNLOAD"_L1, given<client, isSet>, "uds_client_partial_download"_L1,
          Forms::V4Only},
};

constexpr std::array udsEventMacros{
    Macro{"UDS_EVENT_STATIC_CHECK_REQ_SESSION"_L1, isFunction, "uds_fct_check_req_session"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_CLEAR_DTC_INFO"_L1, isFunction, "uds_fct_clear_dtc_info"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_DTC_INFO"_L1, isFunction, "uds_fct_dtc_info"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_ID_DATA_TRANSMIT"_L1, isFunction, "uds_fct_id_data_transmit"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_MEM_DATA_TRANSMIT"_L1, isFunction, "uds_fct_mem_data_transmit"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_SEC_ACCESS_REQ_KEY"_L1, isFunction, "uds_fct_sec_access_req_key"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_REQ_COMMGT"_L1, isFunction, "uds_fct_req_commgt"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_AUTHENT_REQ"_L1, isFunction, "uds_fct_authent_req"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_IOCTRL"_L1, isFunction, "uds_fct_ioctrl"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_ROUTINE_CTRL"_L1, isFunction, "uds_fct_routine_ctrl"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_DATA_TRANSFER"_L1, isFunction, "uds_fct_data_transfer"_L1, Forms::V4Only},
    Macro{"UDS_EVENT_STATIC_GENERIC_FCT"_L1, isFunction, "uds_fct_generic"_L1, Forms::V4Only},
};

constexpr std::array diagnosticBlocks{
    Block{"\n/* ISO-TP Defines */"_L1, isoTpMacros},
    Block{"\n/* static UDS indication binding */"_L1, udsEventMacros,
          [](const DefineModel &model) {
              return model.options.form == SourceForm::V4 && model.isSet(u"uds_static_indication"_s);
          }},
};

// ---- Virtual objects ---------------------------------------------------------------------------------------------

template <quint16 dataType>
QString virtuals(const DefineModel &model, Key key)
{
    return ofType<&Dictionary::virtualTypes, dataType>(model, key);
}

constexpr std::array virtualMacros{
    Macro{"CO_VIRTUAL_INDEX_CNT"_L1, dictionaryCount<&Dictionary::virtualObjects>},
    Macro{"CO_VIRTUAL_OBJECT_CNT"_L1, dictionaryCount<&Dictionary::virtualSubs>, {}, Forms::ClassicOnly},
    Macro{"CO_VIRTUAL_U8_CNT"_L1, virtuals<CAN::Unsigned8>},
    Macro{"CO_VIRTUAL_U16_CNT"_L1, virtuals<CAN::Unsigned16>},
    Macro{"CO_VIRTUAL_U32_CNT"_L1, virtuals<CAN::Unsigned32>},
    Macro{"CO_VIRTUAL_I8_CNT"_L1, virtuals<CAN::Integer8>},
    Macro{"CO_VIRTUAL_I16_CNT"_L1, virtuals<CAN::Integer16>},
    Macro{"CO_VIRTUAL_I32_CNT"_L1, virtuals<CAN::Integer32>},
    Macro{"CO_VIRTUAL_R32_CNT"_L1, virtuals<CAN::Real32>},
    Macro{"CO_VIRTUAL_U24_CNT"_L1, virtuals<CAN::Unsigned24>},
    Macro{"CO_VIRTUAL_DOMAIN_CNT"_L1, virtuals<CAN::Domain>, {}, Forms::ClassicOnly},
    Macro{"CO_VIRTUAL_OS_CNT"_L1, virtuals<CAN::OctetString>, {}, Forms::ClassicOnly},
    Macro{"CO_VIRTUAL_VS_CNT"_L1, virtuals<CAN::VisibleString>, {}, Forms::ClassicOnly},
    Macro{"CO_VOD_ASSIGN_CNT"_L1, dictionaryCount<&Dictionary::virtualObjects>},
    Macro{"CO_VOBJ_DESC_CNT"_L1, dictionaryCount<&Dictionary::virtualSubs>},
};

constexpr std::array virtualBlocks{Block{"/* number of virtual objects */"_L1, virtualMacros}};

// ---- Hardware and application ------------------------------------------------------------------------------------

constexpr std::array targetMacros{
    TargetMacro{"CORE_TIMER_INTERVAL"_L1, "co_timer_interval"_L1, "timer"_L1, false},
    TargetMacro{"CORE_BIG_ENDIAN"_L1, "endian"_L1, "endianess"_L1, true},
    TargetMacro{"CORE_DRV_FILTER"_L1, "drv_filter"_L1, "fullcan"_L1, true},
    TargetMacro{"CORE_DRV_GROUP_FILTER"_L1, "drv_group_filter"_L1, "groupfilter"_L1, true},
};

/// The setting as it is: a number or the name of a macro.
QString asItStands(const DefineModel &model, Key key)
{
    return model.general(key).trimmed();
}

constexpr std::array hardwareMacros{Macro{"CO_SRDO_TIMER_INTERVAL"_L1, asItStands, "co_srdo_interval"_L1}};
constexpr std::array hardwareBlocks{Block{""_L1, hardwareMacros}};

QString generationCount(const DefineModel &model, Key key)
{
    return model.isSet(key) ? Code::dec(quint64{model.options.formerGenerations} + 1) + u"ul"_s : QString();
}

constexpr std::array applicationMacros{
    Macro{"GEN_GENERATION_COUNT"_L1, generationCount, "generate_generation_counter"_L1},
    Macro{"GEN_OVERWRITE_PREDEF_CONN_SET"_L1, isSet, "overwrite_predef"_L1, Forms::V4Only},
};

constexpr std::array applicationBlocks{Block{""_L1, applicationMacros}};

} // namespace

QString DefineRules::listOf(const DefineModel &model, const std::function<QString(const LineCounts &)> &entry,
                            QLatin1StringView comma)
{
    QStringList entries;
    for (const LineCounts &line : model.lines)
        entries.append(entry(line));
    return entries.join(comma);
}

bool Macro::existsIn(SourceForm form) const
{
    return forms == Forms::Both || (forms == Forms::V4Only) == (form == SourceForm::V4);
}

QString Macro::nameIn(const Dialect &dialect) const
{
    return DefineMacros::nameIn(name, dialect);
}

QString DefineMacros::nameIn(QLatin1StringView name, const Dialect &dialect)
{
    const QString core = Dialect::v4().core;
    const QString line = Dialect::v4().line;
    if (name.startsWith(core))
        return dialect.core + name.sliced(core.size());
    return name.startsWith(line) ? dialect.line + name.sliced(line.size()) : QString(name);
}

std::span<const Block> DefineMacros::head()
{
    return headBlocks;
}

std::span<const Block> DefineMacros::energyBus()
{
    return energyBusBlocks;
}

std::span<const Block> DefineMacros::queues()
{
    return queueBlocks;
}

std::span<const Block> DefineMacros::diagnostics()
{
    return diagnosticBlocks;
}

std::span<const Block> DefineMacros::virtualObjects()
{
    return virtualBlocks;
}

std::span<const TargetMacro> DefineMacros::targets()
{
    return targetMacros;
}

std::span<const Block> DefineMacros::hardware()
{
    return hardwareBlocks;
}

std::span<const Block> DefineMacros::application()
{
    return applicationBlocks;
}
