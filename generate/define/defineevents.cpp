// The event section of gen_define.h: functions that are named at compile time, and how many can be registered later.

#include "generate/define/definerules.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;

namespace {

/// One of several settings, with blanks between their keys, names a function.
QString isAnyFunction(const DefineModel &model, Key keys)
{
    return flag(std::ranges::any_of(QString(keys).split(u' '),
                                    [&](const QString &key) { return !model.general(key).trimmed().isEmpty(); }));
}

/// Sleep modes as the project numbers them.
constexpr quint32 vehicleSleep = 1;   ///< CiA 447
constexpr quint32 energyBusSleep = 2; ///< CiA 454

template <quint32... modes>
QString sleeps(const DefineModel &model, Key key)
{
    return flag(((model.number(key) == modes) || ...));
}

QString sleepWaitTime(const DefineModel &model, Key key)
{
    return sleeps<vehicleSleep, energyBusSleep>(model, "sleep_mode_selection"_L1).isEmpty() ? QString()
                                                                                            : value(model, key);
}

/// Registration at run time is on unless the project says 0.
bool registersDynamically(const DefineModel &model)
{
    return model.isSet(u"enable_dynamic"_s);
}

constexpr std::array staticMacros{
    Macro{"CO_EVENT_STATIC_SDO_SERVER_READ"_L1, isFunction, "fct_sdo_server_read"_L1},
    Macro{"CO_EVENT_STATIC_SDO_SERVER_WRITE"_L1, isFunction, "fct_sdo_server_write"_L1},
    Macro{"CO_EVENT_STATIC_SDO_SERVER_CHECK_WRITE"_L1, isFunction, "fct_sdo_server_check_write"_L1},
    Macro{"CO_EVENT_STATIC_SSDO_DOMAIN_WRITE"_L1, isFunction, "fct_ssdo_domain_write"_L1, Forms::V4Only},
    Macro{"CO_EVENT_STATIC_SSDO_DOMAIN_READ"_L1, isFunction, "fct_ssdo_domain_read"_L1, Forms::V4Only},
    Macro{"CO_EVENT_STATIC_PDO"_L1, isAnyFunction, "fct_pdo fct_pdo_received fct_pdo_sync"_L1, Forms::V4Only},
    Macro{"CO_EVENT_STATIC_PDO"_L1, isAnyFunction, "fct_pdo fct_pdo_received fct_pdo_receive fct_pdo_sync"_L1,
          Forms::ClassicOnly},
    Macro{"CO_EVENT_STATIC_PDO_UPDATE"_L1, isFunction, "fct_pdo_update"_L1, Forms::V4Only},
    Macro{"CO_EVENT_STATIC_NMT"_L1, isFunction, "fct_nmt"_L1},
    Macro{"CO_EVENT_STATIC_ERRCTRL"_L1, isFunction, "fct_errctrl"_L1},
    Macro{"CO_EVENT_STATIC_SYNC"_L1, isFunction, "fct_sync"_L1},
    Macro{"CO_EVENT_STATIC_FINISHED"_L1, isFunction, "fct_finished"_L1},
    Macro{"CO_EVENT_STATIC_LED"_L1, isAnyFunction, "fct_led_green fct_led_red"_L1},
    Macro{"CORE_EVENT_STATIC_CAN"_L1, isFunction, "fct_can"_L1},
    Macro{"CO_EVENT_STATIC_CFG_MAN"_L1, isFunction, "fct_cfgman"_L1},
    Macro{"CO_EVENT_STATIC_SDO_CLIENT_READ"_L1, isFunction, "fct_sdo_client_read"_L1},
    Macro{"CO_EVENT_STATIC_SDO_CLIENT_WRITE"_L1, isFunction, "fct_sdo_client_write"_L1},
    Macro{"CO_EVENT_STATIC_EMCY"_L1, isFunction, "fct_emcy"_L1},
    Macro{"CO_EVENT_STATIC_EMCY_CONSUMER"_L1, isFunction, "fct_emcy_consumer"_L1},
    Macro{"CO_EVENT_STATIC_TIME"_L1, isFunction, "fct_time"_L1},
    Macro{"CO_EVENT_STATIC_STORE_LOAD"_L1, isFunction, "fct_store"_L1},
    Macro{"CO_EVENT_STATIC_STORE_CLEAR"_L1, isFunction, "fct_store_clear"_L1},
    Macro{"CO_EVENT_STATIC_STORE_SAVE"_L1, isFunction, "fct_store_save"_L1},
    Macro{"CO_EVENT_STATIC_SRD"_L1, isFunction, "fct_srd"_L1},
    Macro{"CO_EVENT_STATIC_SYNC_FINISHED"_L1, isFunction, "fct_sync_finished"_L1},
    Macro{"CO_EVENT_STATIC_LSS"_L1, isAnyFunction, "fct_lss fct_lss_master"_L1},
    Macro{"CO_EVENT_STATIC_FLYMA"_L1, isFunction, "fct_flyma"_L1},
    Macro{"CO_EVENT_STATIC_MANAGER"_L1, isFunction, "fct_manager"_L1},
    Macro{"CO_EVENT_STATIC_MPDO"_L1, isFunction, "fct_mpdo"_L1},
    Macro{"CO_EVENT_DYNAMIC_SLEEP"_L1, sleeps<vehicleSleep, energyBusSleep>, "sleep_mode_selection"_L1},
    Macro{"CO_SLEEP_447"_L1, sleeps<vehicleSleep>, "sleep_mode_selection"_L1},
    Macro{"CO_SLEEP_454"_L1, sleeps<energyBusSleep>, "sleep_mode_selection"_L1},
    Macro{"CORE_SLEEP_SUPPORTED"_L1, sleeps<vehicleSleep, energyBusSleep>, "sleep_mode_selection"_L1, Forms::V4Only},
    Macro{"CO_SLEEP_WAITTIME"_L1, sleepWaitTime, "sleep_wait_time"_L1},
};

constexpr std::array dynamicMacros{
    Macro{"CO_EVENT_DYNAMIC_USDO_SERVER_READ"_L1, count, "usdo_server_ind_read_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_SUSDO_READ_FINISHED"_L1, count, "usdo_server_ind_read_finished_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_USDO_SERVER_WRITE"_L1, count, "usdo_server_ind_write_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_USDO_SERVER_CHECK_WRITE"_L1, count, "usdo_server_ind_check_write_cnt"_L1,
          Forms::ClassicOnly},
    Macro{"CO_EVENT_DYNAMIC_SUSDO_DOMAIN_WRITE"_L1, count, "usdo_server_ind_domain_write_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_SUSDO_DOMAIN_READ"_L1, count, "usdo_server_ind_domain_read_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_USDO_CLIENT_READ"_L1, count, "usdo_client_ind_read_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_USDO_CLIENT_WRITE"_L1, count, "usdo_client_ind_write_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_CUSDO_DOMAIN_READ"_L1, count, "usdo_client_ind_domain_read_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_CUSDO_DOMAIN_WRITE"_L1, count, "usdo_client_ind_domain_write_cnt"_L1},
    Macro{"CO_EVENT_DYNAMIC_SDO_SERVER_READ"_L1, count, "event_sdo_server_read"_L1},
    Macro{"CO_EVENT_DYNAMIC_SDO_SERVER_WRITE"_L1, count, "event_sdo_server_write"_L1},
    Macro{"CO_EVENT_DYNAMIC_SDO_SERVER_CHECK_WRITE"_L1, count, "event_sdo_server_check_write"_L1, Forms::ClassicOnly},
    Macro{"CO_EVENT_DYNAMIC_PDO"_L1, count, "event_pdo"_L1},
    Macro{"CO_EVENT_DYNAMIC_PDO_UPDATE"_L1, count, "event_pdo_update"_L1},
    Macro{"CO_EVENT_DYNAMIC_NMT"_L1, count, "event_nmt"_L1},
    Macro{"CO_EVENT_DYNAMIC_ERRCTRL"_L1, count, "event_errctrl"_L1},
    Macro{"CO_EVENT_DYNAMIC_SYNC"_L1, count, "event_sync"_L1},
    Macro{"CO_EVENT_DYNAMIC_SYNC_FINISHED"_L1, count, "event_sync_finished"_L1},
    Macro{"CO_EVENT_DYNAMIC_FINISHED"_L1, count, "event_finished"_L1},
    Macro{"CO_EVENT_DYNAMIC_LED"_L1, count, "event_led"_L1},
    Macro{"CO_EVENT_DYNAMIC_CFG_MAN"_L1, count, "event_cfg"_L1},
    Macro{"CO_EVENT_DYNAMIC_FLYMA"_L1, count, "event_flyma"_L1},
    Macro{"CO_EVENT_DYNAMIC_NETWORK_SDOCLIENT_USER"_L1, count, "event_sdorouter"_L1},
    Macro{"CORE_EVENT_DYNAMIC_CAN"_L1, count, "event_can"_L1},
    Macro{"CO_EVENT_DYNAMIC_SDO_CLIENT_READ"_L1, count, "event_sdo_client_read"_L1},
    Macro{"CO_EVENT_DYNAMIC_SDO_CLIENT_WRITE"_L1, count, "event_sdo_client_write"_L1},
    Macro{"CO_EVENT_DYNAMIC_EMCY"_L1, count, "event_emcy"_L1},
    Macro{"CO_EVENT_DYNAMIC_EMCY_CONSUMER"_L1, count, "event_emcy_consumer"_L1},
    Macro{"CO_EVENT_DYNAMIC_TIME"_L1, count, "event_time"_L1},
    Macro{"CO_EVENT_DYNAMIC_STORE"_L1, count, "event_store"_L1},
    Macro{"CO_EVENT_DYNAMIC_SRD"_L1, count, "event_srd"_L1},
    Macro{"CO_EVENT_DYNAMIC_LSS"_L1, count, "event_lss"_L1},
    Macro{"CO_EVENT_DYNAMIC_IDNEGO"_L1, count, "event_idnego"_L1},
    Macro{"CO_EVENT_DYNAMIC_MANAGER"_L1, count, "event_manager"_L1},
    Macro{"CO_EVENT_DYNAMIC_MPDO"_L1, count, "event_mpdo"_L1},
    Macro{"CO_EVENT_DYNAMIC_GFC"_L1, count, "event_gfc"_L1},
    Macro{"CO_EVENT_DYNAMIC_OBJECT_CHANGED"_L1, count, "object_changed_event"_L1},
    Macro{"CORE_OBJECT_CHANGED"_L1, isSet, "object_changed_event"_L1, Forms::V4Only},
    Macro{"CO_EVENT_DYNAMIC_SSDO_DOMAIN_WRITE"_L1, count, "event_ssdo_domain_write"_L1},
    Macro{"CO_EVENT_DYNAMIC_SSDO_DOMAIN_READ"_L1, count, "event_ssdo_domain_read"_L1},
    Macro{"ISOTP_EVENT_DYNAMIC_SERVER"_L1, count, "isotp_server_event"_L1},
    Macro{"ISOTP_EVENT_DYNAMIC_CLIENT"_L1, count, "isotp_client_event"_L1},
};

constexpr std::array eventBlocks{
    Block{""_L1, staticMacros},
    Block{"/* Definition of number of call-back functions for each service*/"_L1, dynamicMacros, registersDynamically},
};

} // namespace

std::span<const Block> DefineMacros::events()
{
    return eventBlocks;
}
