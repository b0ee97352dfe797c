#include "check/line/numericsettings.h"

#include "store/objectdatabase.h"
#include "store/settings.h"

using namespace Qt::StringLiterals;

namespace {

enum class Kind
{
    General,
    J1939,
    UdsAddress ///< a general setting that a boot loader does not need
};

struct Row
{
    Kind kind;
    QLatin1StringView key;
    QLatin1StringView label;
};

constexpr Row rows[] = {
    {Kind::J1939, "startaddress"_L1, "Address (start address)"_L1},
    {Kind::J1939, "identitynumber"_L1, "Identity Number"_L1},
    {Kind::J1939, "manufacturercode"_L1, "Manufacturer Code"_L1},
    {Kind::J1939, "ecuinstance"_L1, "ECU Instance"_L1},
    {Kind::J1939, "functioninstance"_L1, "Function Instance"_L1},
    {Kind::J1939, "function"_L1, "Function"_L1},
    {Kind::J1939, "vehiclesystem"_L1, "Vehicle System"_L1},
    {Kind::J1939, "vehicleinstance"_L1, "Vehicle Instance"_L1},
    {Kind::J1939, "industrygroup"_L1, "Industry Group"_L1},
    {Kind::General, "additional_cob_count"_L1, "Additional COB objects"_L1},
    {Kind::General, "user_tx_cob"_L1, "Additional user transmit messages"_L1},
    {Kind::General, "user_rx_cob"_L1, "Additional user receive messages"_L1},
    {Kind::General, "sdo_blocktransfer_block_size"_L1, "SDO Block Transfer Block Size"_L1},
    {Kind::General, "sdo_blocktransfer_min_data"_L1, "SDO Block Transfer use for data of [n] bytes or larger"_L1},
    {Kind::General, "sdo_client_queue_size"_L1, "SDO Client Queue Length"_L1},
    {Kind::General, "sleep_wait_time"_L1, "Sleep Mode Waiting Time (ms)"_L1},
    {Kind::General, "usdo_server_cnt"_L1, "USDO Server Connection count"_L1},
    {Kind::General, "usdo_client_cnt"_L1, "USDO Client Connection Count"_L1},
    {Kind::General, "usdo_server_domain_write_ind_size"_L1, "USDO Domain Indication size in multiple of 60 bytes"_L1},
    {Kind::General, "usdo_server_ind_read_cnt"_L1, "USDO Server Read"_L1},
    {Kind::General, "usdo_server_ind_read_finished_cnt"_L1, "USDO Server Read Finished"_L1},
    {Kind::General, "usdo_server_ind_write_cnt"_L1, "USDO Server Write"_L1},
    {Kind::General, "usdo_server_ind_check_write_cnt"_L1, "USDO Server Check Write"_L1},
    {Kind::General, "usdo_server_ind_domain_write_cnt"_L1, "USDO Server Domain Write"_L1},
    {Kind::General, "event_ssdo_domain_counter"_L1, "SDO Domain Indication Size"_L1},
    {Kind::General, "event_can"_L1, "CAN Event"_L1},
    {Kind::General, "event_sdo_server_read"_L1, "SDO Server Read"_L1},
    {Kind::General, "event_sdo_server_write"_L1, "SDO Server Write"_L1},
    {Kind::General, "event_sdo_server_check_write"_L1, "SDO Server Check Write"_L1},
    {Kind::General, "event_ssdo_domain_write"_L1, "SDO Server Domain Write"_L1},
    {Kind::General, "event_ssdo_domain_read"_L1, "SDO Server Domain Read"_L1},
    {Kind::General, "event_sdo_client_read"_L1, "SDO Client Read"_L1},
    {Kind::General, "event_sdo_client_write"_L1, "SDO Client Write"_L1},
    {Kind::General, "event_sdorouter"_L1, "SDO Network Client Event"_L1},
    {Kind::General, "event_srd"_L1, "SDO Requesting Device (SRD) event"_L1},
    {Kind::General, "event_pdo"_L1, "PDO Event"_L1},
    {Kind::General, "event_pdo_update"_L1, "PDO Update Event"_L1},
    {Kind::General, "event_mpdo"_L1, "MPDO Event"_L1},
    {Kind::General, "event_nmt"_L1, "NMT Event"_L1},
    {Kind::General, "event_errctrl"_L1, "NMT Error Control Event"_L1},
    {Kind::General, "event_store"_L1, "Store/Restore/LOAD Event"_L1},
    {Kind::General, "event_gfc"_L1, "GFC Event"_L1},
    {Kind::General, "event_sync"_L1, "SYNC Event"_L1},
    {Kind::General, "event_sync_finished"_L1, "SYNC Event finished"_L1},
    {Kind::General, "event_finished"_L1, "SDO Finished Event"_L1},
    {Kind::General, "event_led"_L1, "LED Event"_L1},
    {Kind::General, "event_cfg"_L1, "Configuration Manager Event"_L1},
    {Kind::General, "event_flyma"_L1, "Flying Master Event"_L1},
    {Kind::General, "uds_seedkey_length"_L1, "Security Seed/Key Length"_L1},
    {Kind::General, "uds_session_timeout"_L1, "Session Timeout (ms)"_L1},
    {Kind::UdsAddress, "uds_physical_request_id"_L1, "Physical address request CAN-ID"_L1},
    {Kind::UdsAddress, "uds_physical_response_id"_L1, "Physical address response CAN-ID"_L1},
    {Kind::UdsAddress, "uds_functional_request_id"_L1, "Functional address request CAN-ID"_L1},
    {Kind::UdsAddress, "uds_physical_request_ext_addr"_L1, "Physical address request: device address"_L1},
    {Kind::UdsAddress, "uds_physical_response_ext_addr"_L1, "Physical address response: tool address"_L1},
    {Kind::UdsAddress, "uds_functional_request_ext_addr"_L1, "Functional address request: device address"_L1},
    {Kind::General, "uds_rdbip_canid"_L1, "Read Data by Periodic Identifier CAN-ID"_L1},
};

} // namespace

void visitNumericSettings(ObjectDataBase &store, const std::function<void(const CheckedSetting &)> &visit)
{
    const bool isBootLoader = Settings(store).isOn(u"uds_bl_setting"_s);
    for (const Row &row : rows) {
        if (isBootLoader && row.kind == Kind::UdsAddress)
            continue;
        const QString values =
            row.kind == Kind::J1939 ? store.getJ1939Setting(row.key) : store.getGeneralSetting(row.key);
        for (const QString &value : values.split(u',')) {
            if (!value.trimmed().isEmpty())
                visit({row.key, row.label, value.trimmed()});
        }
    }
}
