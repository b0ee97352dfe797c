// The J1939 and raw CAN sections of gen_define.h.

#include "generate/define/definerules.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;

namespace {

using Counts = LineCounts;
using Family = std::vector<std::pair<quint32, QString>>;

constexpr char safety[] = "safetysupport";
constexpr char canFd[] = "canfd_supported";
constexpr char requests[] = "requestsupport";
constexpr char bam[] = "bamsupport";
constexpr char cmdt[] = "cmdtsupport";
constexpr char diagnostics[] = "diagsupport";
constexpr char diagnosticTool[] = "diagtoolsupport";
constexpr char diagnosticMessage[] = "diagsupport_dm%1";
constexpr char diagnosticToolMessage[] = "diagsupport_dmtool%1";
/// Diagnostic messages of SAE J1939-73 are DM1 to DM57.
constexpr quint32 lastDiagnosticMessage = 57;

QString usesSdo(const DefineModel &model, Key /*key*/)
{
    return flag(model.isJ1939Set(u"cia510serversupport"_s) || model.isJ1939Set(u"cia510clientsupport"_s));
}

/// At least one sender, since the tables of the safety data groups are sized by it.
QString senders(const DefineModel &model, Key key)
{
    return decimal(std::max<quint32>(model.j1939Number(key), 1));
}

QString multiPg11Bit(const DefineModel &model, Key key)
{
    return flag(model.canFd && model.isJ1939Set(key));
}

QString multiSource(const DefineModel &model, Key /*key*/)
{
    return flag(model.multiSourceGroups);
}

QString inhibitedGroups(const DefineModel &model, Key /*key*/)
{
    return flag(model.inhibitedGroups);
}

QString inhibitedCanIds(const DefineModel &model, Key /*key*/)
{
    return flag(model.inhibitedCanIds);
}

/// J1939 lines may have a count of their own, the other protocols share one.
QString canIndications(const DefineModel &model, Key key)
{
    const QString ofJ1939 = j1939Count(model, key);
    return ofJ1939.isEmpty() ? count(model, key) : ofJ1939;
}

QString timerAlias(const DefineModel & /*model*/, Key /*key*/)
{
    return u"CO_TIMER_INTERVAL"_s;
}

/// What the section of CANopen tells of the object dictionary, for the SDO server of a device that has no such section.
template <QString (*rule)(const DefineModel &, Key)>
QString ofServer(const DefineModel &model, Key key)
{
    const bool servesAlone = !model.options.multiProtocol && model.isJ1939Set(u"cia510serversupport"_s);
    return servesAlone ? rule(model, key) : QString();
}

template <const char *condition, const char *keyOfMessage>
Family diagnosticMessages(const DefineModel &model)
{
    Family messages;
    for (quint32 dm = 1; dm <= lastDiagnosticMessage && model.isJ1939Set(QLatin1StringView(condition)); ++dm) {
        if (model.isJ1939Set(QString::fromLatin1(keyOfMessage).arg(dm)))
            messages.emplace_back(dm, flag(true));
    }
    return messages;
}

bool hasJ1939(const DefineModel &model)
{
    return model.hasLine(&LineProtocols::j1939);
}

bool isWithoutCanOpen(const DefineModel &model)
{
    return hasJ1939(model) && !model.hasLine(&LineProtocols::canOpen);
}

bool hasRawCan(const DefineModel &model)
{
    return model.hasLine(&LineProtocols::rawCan);
}

constexpr std::array j1939Macros{
    Macro{"CAN_MULTI_LINE"_L1, severalLines},
    Macro{"CAN_MULTI_LINE_CNT"_L1, lineCount},
    Macro{"J1939_SUPPORTED"_L1, always},
    Macro{"J1939_TIMER_INTERVAL"_L1, timerAlias, {}, Forms::ClassicOnly},
    Macro{"J1939_CAM11_CAM21_SUPPORTED"_L1, usesSdo},
    Macro{"J1939_SDG_SUPPORTED"_L1, j1939IsSet, "safetysupport"_L1},
    Macro{"J1939_SDG_TYPE_1_SUPPORTED"_L1, j1939IsSet, "safetysupport"_L1, Forms::V4Only},
    Macro{"J1939_SDG_TYPE_2_SUPPORTED"_L1, j1939IsSet, "safetysupport"_L1, Forms::V4Only},
    Macro{"J1939_SDG_TIMER_INTERVAL"_L1, j1939Given<safety, j1939Value>, "sdm_timer_interval"_L1},
    Macro{"J1939_SDG_REC_ADDR_CNT"_L1, j1939Given<safety, senders>, "sdm_rec_addr_cnt"_L1, Forms::V4Only},
    Macro{"J1939_RECEIVE_PGN_CFG_CNT"_L1, total<&Counts::receivedPgns>, {}, Forms::V4Only},
    Macro{"J1939_RECEIVE_PGN_CNT"_L1, total<&Counts::receivedPgns>},
    Macro{"J1939_TRANSMIT_PGN_CNT"_L1, total<&Counts::transmittedPgns>},
    Macro{"J1939_RECEIVE_PGN_CFG_COUNTS"_L1, perLine<&Counts::receivedPgns>, {}, Forms::V4Only},
    Macro{"J1939_RECEIVE_PGN_COUNTS"_L1, perLine<&Counts::receivedPgns>},
    Macro{"J1939_TRANSMIT_PGN_COUNTS"_L1, perLine<&Counts::transmittedPgns>},
    Macro{"J1939_SSDO_COUNTS"_L1, perLine<&Counts::sdoServers>},
    Macro{"J1939_CSDO_COUNTS"_L1, perLine<&Counts::sdoClients>},
    Macro{"J1939_PGN_BUFFER_USAGE"_L1, multiSource, {}, Forms::V4Only},
    Macro{"CO_SDO_SERVER_CNT"_L1, totalIfAny<&Counts::sdoServers>},
    Macro{"CO_SDO_CLIENT_CNT"_L1, totalIfAny<&Counts::sdoClients>},
    Macro{"J1939_SDG_TRANS_CNT"_L1, j1939Given<safety, totalIfAny<&Counts::transmittedSafetyGroups>>},
    Macro{"J1939_SDG_TRANS_COUNTS"_L1, j1939Given<safety, perLine<&Counts::transmittedSafetyGroups>>},
    Macro{"J1939_SDG_REC_CNT"_L1, j1939Given<safety, totalIfAny<&Counts::receivedSafetyGroups>>},
    Macro{"J1939_SDG_REC_COUNTS"_L1, j1939Given<safety, perLine<&Counts::receivedSafetyGroups>>},
    Macro{"J1939_MULTI_SRC_ADDR"_L1, multiSource, {}, Forms::V4Only},
    Macro{"J1939_MULTI_PG_11BIT"_L1, multiPg11Bit, "j1939fd_11bitmultipg"_L1},
    Macro{"J1939_DEST_BUFFER_CNT"_L1, given<canFd, totalIfAny<&Counts::destinationBuffers>>},
    Macro{"J1939_DEST_BUFFER_COUNTS"_L1, given<canFd, perLine<&Counts::destinationBuffers>>},
    Macro{"CORE_INHIBIT_SUPPORTED"_L1, inhibitedGroups},
    Macro{"J1939_REC_PGN_INDICATION_CNT"_L1, j1939Count, "rxindication_cnt"_L1},
    Macro{"J1939_REC_PGN_CHECK_INDICATION_CNT"_L1, j1939Count, "rxcheckindication_cnt"_L1, Forms::ClassicOnly},
    Macro{"J1939_TR_PGN_INDICATION_CNT"_L1, j1939Count, "txindication_cnt"_L1},
    Macro{"J1939_REQ_PGN_INDICATION_CNT"_L1, j1939Given<requests, j1939Count>, "requestindication_cnt"_L1},
    Macro{"J1939_ACK_PGN_INDICATION_CNT"_L1, j1939Count, "acknowledgeindication_cnt"_L1},
    Macro{"CORE_EVENT_DYNAMIC_CAN"_L1, canIndications, "canindication_cnt"_L1},
    Macro{"J1939_NMEA_GROUP_INDICATION_CNT"_L1, j1939Count, "nmea2000groupindication_cnt"_L1},
    Macro{"J1939_REC_ALL_CLAIM_SUPPORT"_L1, j1939IsSet, "recalladdrclaims"_L1},
    Macro{"J1939_EVENT_SPN_CHANGED"_L1, j1939Count, "spnchanged"_L1},
    Macro{"CORE_OBJECT_CHANGED"_L1, j1939IsSet, "spnchanged"_L1, Forms::V4Only},
    Macro{"J1939_BAM_SUPPORTED"_L1, j1939IsSet, "bamsupport"_L1},
    Macro{"J1939_BAM_CYLE_TIME"_L1, j1939Given<bam, j1939Value>, "bamcycletime"_L1},
    Macro{"J1939_NMEA2000_SUPPORTED"_L1, j1939IsSet, "nmea2000support"_L1},
    Macro{"J1939_CMDT_SUPPORTED"_L1, j1939IsSet, "cmdtsupport"_L1},
    Macro{"J1939_CMDT_MAX_PACKETS"_L1, j1939Given<cmdt, j1939Value>, "cmdtpackets"_L1},
    Macro{"J1939_DIAGNOSTIC_SUPPORTED"_L1, j1939IsSet, "diagsupport"_L1},
    Macro{"J1939_DIAG_REC_BUF_SIZE"_L1, j1939Given<diagnostics, j1939Value>, "dm_receivesize"_L1},
    Macro{"J1939_DIAG_TR_BUF_SIZE"_L1, j1939Given<diagnostics, j1939Value>, "dm_transmitsize"_L1},
    Macro{.name = "J1939_DIAGNOSTIC_DM%1_SUPPORTED"_L1, .family = diagnosticMessages<diagnostics, diagnosticMessage>},
    Macro{"J1939_DIAGNOSTIC_TOOL_SUPPORTED"_L1, j1939IsSet, "diagtoolsupport"_L1},
    Macro{"J1939_DIAGTOOL_REC_BUF_SIZE"_L1, j1939Given<diagnosticTool, j1939Value>, "dmtool_receivesize"_L1},
    Macro{"J1939_DIAGTOOL_TR_BUF_SIZE"_L1, j1939Given<diagnosticTool, j1939Value>, "dmtool_transmitsize"_L1},
    Macro{.name = "J1939_DIAGNOSTIC_TOOL_DM%1_SUPPORTED"_L1,
          .family = diagnosticMessages<diagnosticTool, diagnosticToolMessage>},
    Macro{"J1939_REQUEST_SUPPORTED"_L1, j1939IsSet, "requestsupport"_L1},
    Macro{"J1939_PROPRIETARY_SUPPORTED"_L1, j1939IsSet, "propsupport"_L1},
    Macro{"J1939_DYNAMIC_PGN"_L1, j1939IsSet, "dynsupport"_L1},
    Macro{"BITWISE_MAPPING"_L1, j1939IsSet, "bitwisemapping"_L1},
    Macro{"ISOTP_SUPPORTED"_L1, isSet, "isotp_connection_cnt"_L1},
    Macro{"ISOTP_CONNECTION_CNT"_L1, count, "isotp_connection_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_SDO_SERVER_READ"_L1, usesSdo},
    Macro{"CO_EVENT_DYNAMIC_SDO_SERVER_WRITE"_L1, usesSdo},
    Macro{"CO_EVENT_DYNAMIC_SDO_CLIENT_READ"_L1, usesSdo},
    Macro{"CO_EVENT_DYNAMIC_SDO_CLIENT_WRITE"_L1, usesSdo},
    Macro{"CO_CONFIG_LIMIT_CHECK"_L1, ofServer<isSet>, "limit_check"_L1},
    Macro{"CO_EXTENDED_DATA_TYPES"_L1, ofServer<dictionaryHas<&DefineModel::Dictionary::wideTypes>>},
    Macro{"CO_UTF8_DATA_TYPE"_L1, ofServer<dictionaryHas<&DefineModel::Dictionary::utf8>>},
};

constexpr std::array closingCobMacros{
    Macro{.name = "CORE_COB_CNT"_L1, .value = total<&Counts::cobs>, .separator = u' '},
    Macro{"CORE_COB_COUNTS"_L1, perLine<&Counts::cobs>},
};

constexpr std::array closingBufferMacros{
    Macro{"CORE_REC_BUFFER_CNT"_L1, allBuffers<&Counts::receiveBuffer, defaultReceiveBuffer>},
    Macro{"CORE_TR_BUFFER_CNT"_L1, allBuffers<&Counts::transmitBuffer, defaultTransmitBuffer>},
    bufferMacros[0],
    bufferMacros[1],
};

constexpr std::array j1939Blocks{
    Block{"/* J1939 Defines */"_L1, j1939Macros, hasJ1939},
    Block{"/* COB definitions */"_L1, closingCobMacros, isWithoutCanOpen},
    Block{"/* Number of receive/transmit buffer entries per line */"_L1, closingBufferMacros, isWithoutCanOpen},
};

constexpr std::array rawCanLeadMacros{
    Macro{"CAN_MULTI_LINE"_L1, severalLines},
    Macro{"CAN_MULTI_LINE_CNT"_L1, lineCount},
    Macro{"CORE_EVENT_DYNAMIC_CAN"_L1, count, "canindication_cnt"_L1},
};

constexpr std::array rawCanMacros{
    Macro{"RAWCAN_SUPPORTED"_L1, always},
    Macro{"RAWCAN_RECEIVE_CNT"_L1, total<&Counts::receivedCanIds>},
    Macro{"RAWCAN_RECEIVE_COUNTS"_L1, perLine<&Counts::receivedCanIds>},
    Macro{"RAWCAN_TRANSMIT_CNT"_L1, total<&Counts::transmittedCanIds>},
    Macro{"RAWCAN_TRANSMIT_COUNTS"_L1, perLine<&Counts::transmittedCanIds>},
    bufferMacros[0],
    bufferMacros[1],
    Macro{"RAWCAN_REC_INDICATION_CNT"_L1, count, "rxindication_cnt"_L1},
    Macro{"RAWCAN_TR_INDICATION_CNT"_L1, count, "txindication_cnt"_L1},
    Macro{"RAWCAN_CHANGED_INDICATION_CNT"_L1, count, "changedindication_cnt"_L1},
    Macro{"CORE_OBJECT_CHANGED"_L1, isSet, "changedindication_cnt"_L1, Forms::V4Only},
    Macro{"CORE_INHIBIT_SUPPORTED"_L1, inhibitedCanIds},
};

constexpr std::array rawCanBlocks{
    Block{""_L1, rawCanLeadMacros, hasRawCan},
    Block{"\n/* CAN RAW Defines */"_L1, rawCanMacros, hasRawCan},
};

constexpr std::array cobMacros{
    Macro{.name = "CORE_COB_COUNTS"_L1, .value = perLine<&Counts::cobs>, .separator = u' '},
    Macro{.name = "CORE_COB_CNT"_L1, .value = total<&Counts::cobs>, .separator = u' '},
};

// In a device without CANopen the section of J1939 has them too.
constexpr std::array cobBlocks{Block{.comment = "/* COB Definitions */"_L1, .macros = cobMacros, .repeats = true}};

constexpr std::array bootloaderBlocks{Block{""_L1, bufferMacros}};

} // namespace

std::span<const Block> DefineMacros::j1939()
{
    return j1939Blocks;
}

std::span<const Block> DefineMacros::rawCan()
{
    return rawCanBlocks;
}

std::span<const Block> DefineMacros::cobDefinitions()
{
    return cobBlocks;
}

std::span<const Block> DefineMacros::bufferCounts()
{
    return bootloaderBlocks;
}
