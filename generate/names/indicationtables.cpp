#include "generate/names/indications.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Indications::Event;
using Indications::UdsEvent;

// key, result, parameters, type and name of the pointer, parameters of the classic form, classic form only.
// The classic form's USDO events have the parameters of V4, and so have the two that only it knows.

constexpr std::array canOpen{
    Event{"fct_sdo_server_read"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_SDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_SDO_SERVER_PARA_T *pPara"_L1,
          "CO_EVENT_SDO_SERVER_FUNCTION_T"_L1, "coEventSdoServerReadInd"_L1,
          "BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex"_L1},
    Event{"fct_sdo_server_write"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_SDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_SDO_SERVER_PARA_T *pPara"_L1,
          "CO_EVENT_SDO_SERVER_FUNCTION_T"_L1, "coEventSdoServerWriteInd"_L1,
          "BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex"_L1},
    Event{"fct_sdo_server_check_write"_L1, "RET_T"_L1, ""_L1, "CO_EVENT_SDO_SERVER_CHECK_WRITE_T"_L1,
          "coEventSdoServerCheckWriteInd"_L1,
          "BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, const UNSIGNED8 *pData"_L1, true},
    Event{"fct_ssdo_domain_write"_L1, "RET_T"_L1, "CORE_CONST CO_EVENT_SDO_SERVER_DOMAIN_PARA_T *pPara"_L1,
          "CO_EVENT_SDO_SERVER_DOMAIN_WRITE_T"_L1, "coEventSdoServerDomainWriteInd"_L1},
    Event{"fct_ssdo_domain_read"_L1, "RET_T"_L1, "CORE_CONST CO_EVENT_SDO_SERVER_DOMAIN_PARA_T *pPara"_L1,
          "CO_EVENT_SDO_SERVER_DOMAIN_READ_T"_L1, "coEventSdoServerDomainReadInd"_L1},
    Event{"fct_pdo"_L1, "void"_L1, "CO_EVENT_PDO_SERVICE_T service, CORE_CONST CO_EVENT_PDO_PARA_T *pData"_L1,
          "CO_EVENT_PDO_T"_L1, "coEventPdoInd"_L1, "UNSIGNED16 pdoNr"_L1},
    Event{"fct_pdo_receive"_L1, "void"_L1, ""_L1, "CO_EVENT_PDO_T"_L1, "coEventPdoReceiveInd"_L1, "UNSIGNED16 pdoNr"_L1,
          true},
    Event{"fct_pdo_sync"_L1, "void"_L1, ""_L1, "CO_EVENT_PDO_T"_L1, "coEventPdoSyncInd"_L1, "UNSIGNED16 pdoNr"_L1,
          true},
    Event{"fct_pdo_update"_L1, "void"_L1, "UNSIGNED16 index, UNSIGNED8 subIndex"_L1, "CO_EVENT_PDO_UPDATE_T"_L1,
          "coEventPdoUpdateInd"_L1},
    Event{"fct_nmt"_L1, "RET_T"_L1, "CO_EVENT_NMT_SERVICE_T service, CO_NMT_STATE_T newState"_L1, "CO_EVENT_NMT_T"_L1,
          "coEventNmtInd"_L1, "BOOL_T execute, CO_NMT_STATE_T nmtState"_L1},
    Event{"fct_errctrl"_L1, "void"_L1, "CORE_CONST CO_EVENT_ERRCTRL_PARA_T *pPara"_L1, "CO_EVENT_ERRCTRL_T"_L1,
          "coEventErrCtrlInd"_L1, "UNSIGNED8 nodeId, CO_ERRCTRL_T errCtrlState, CO_NMT_STATE_T nmtState"_L1},
    Event{"fct_sync"_L1, "void"_L1, "UNSIGNED8 syncCounter"_L1, "CO_EVENT_SYNC_T"_L1, "coEventSyncInd"_L1},
    Event{"fct_sync_finished"_L1, "void"_L1, "UNSIGNED8 syncCounter"_L1, "CO_EVENT_SYNC_FINISHED_T"_L1,
          "coEventSyncFinishedInd"_L1},
    Event{"fct_led_green"_L1, "void"_L1, "BOOL_T ledState"_L1, "CO_EVENT_LED_T"_L1, "coEventLedGreenInd"_L1},
    Event{"fct_led_red"_L1, "void"_L1, "BOOL_T ledState"_L1, "CO_EVENT_LED_T"_L1, "coEventLedRedInd"_L1},
    Event{"fct_can"_L1, "void"_L1, "CORE_CAN_STATE_T canState"_L1, "CORE_EVENT_CAN_STATE_T"_L1,
          "coreEventCanStateInd"_L1, "CO_CAN_STATE_T canState"_L1},
    Event{"fct_comm"_L1, "void"_L1, "CORE_COMM_STATE_EVENT_T commEvent"_L1, "CORE_EVENT_COMM_T"_L1,
          "coreEventCommInd"_L1},
    Event{"fct_cfgman"_L1, "void"_L1, "CO_CFG_TRANSFER_T type, CO_EVENT_CFG_PARA_T* pPara"_L1,
          "CO_EVENT_CFG_MANAGER_T"_L1, "coEventCfgManInd"_L1,
          "CO_CFG_TRANSFER_T type, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 sub, UNSIGNED32 reason"_L1},
    Event{"fct_flyma"_L1, "RET_T"_L1, "CORE_CONST CO_EVENT_FLYING_MASTER_PARA_T *pPara"_L1, "CO_EVENT_FLYMA_T"_L1,
          "coEventFlymaInd"_L1, "CO_FLYMA_STATE_T state, UNSIGNED8 node, UNSIGNED8 priority"_L1},
    Event{"fct_sdo_client_read"_L1, "void"_L1, "CORE_CONST CO_EVENT_SDO_CLIENT_PARA_T *pPara"_L1,
          "CO_EVENT_SDO_CLIENT_READ_T"_L1, "coEventSdoClientReadInd"_L1,
          "UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 size, UNSIGNED32 result"_L1},
    Event{"fct_sdo_client_write"_L1, "void"_L1, "CORE_CONST CO_EVENT_SDO_CLIENT_PARA_T *pPara"_L1,
          "CO_EVENT_SDO_CLIENT_WRITE_T"_L1, "coEventSdoClientWriteInd"_L1,
          "UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 result"_L1},
    Event{"fct_emcy"_L1, "RET_T"_L1, "CO_EVENT_EMCY_PRODUCER_PARA_T *pPara"_L1, "CO_EVENT_EMCY_T"_L1,
          "coEventEmcyInd"_L1, "UNSIGNED16 errCode, UNSIGNED8 *addErrorCode"_L1},
    Event{"fct_emcy_consumer"_L1, "void"_L1, "CORE_CONST CO_EVENT_EMCY_CONSUMER_PARA_T *pPara"_L1,
          "CO_EVENT_EMCY_CONSUMER_T"_L1, "coEventEmcyConsumerInd"_L1,
          "UNSIGNED8 node, UNSIGNED16 errCode, UNSIGNED8 errorRegister, UNSIGNED8 const *addErrorCode"_L1},
    Event{"fct_time"_L1, "void"_L1, "CO_TIME_T *pTime"_L1, "CO_EVENT_TIME_T"_L1, "coEventTimeInd"_L1},
    Event{"fct_store"_L1, "RET_T"_L1, "UNSIGNED8 subIndex"_L1, "CO_EVENT_STORE_T"_L1, "coEventStoreLoadInd"_L1},
    Event{"fct_store_clear"_L1, "RET_T"_L1, "UNSIGNED8 subIndex"_L1, "CO_EVENT_STORE_T"_L1, "coEventStoreClearInd"_L1},
    Event{"fct_store_save"_L1, "RET_T"_L1, "UNSIGNED8 subIndex"_L1, "CO_EVENT_STORE_T"_L1, "coEventStoreSaveInd"_L1},
    Event{
        "fct_lss"_L1, "void"_L1,
        "CO_LSS_SERVICE_T service, CORE_CONST CO_EVENT_LSS_SLAVE_PARA_T * pPara,  CO_EVENT_LSS_SLAVE_RET_PARA_T * pRetPara"_L1,
        "CO_EVENT_LSS_T"_L1, "coEventLssInd"_L1,
        "CO_LSS_SERVICE_T service, UNSIGNED16 bitrate, UNSIGNED8 *pErrCode, UNSIGNED8 *pErrSpec"_L1},
    Event{"fct_lss_master"_L1, "void"_L1, "CO_EVENT_LSS_MASTER_PARA_T *pPara"_L1, "CO_EVENT_LSS_MASTER_T"_L1,
          "coEventLssMasterInd"_L1,
          "CO_LSS_MASTER_SERVICE_T, UNSIGNED16 errorCode, UNSIGNED8 errorSpec, UNSIGNED32 *pIdentity"_L1},
    Event{"fct_manager"_L1, "void"_L1, ""_L1, "CO_EVENT_MANAGER_BOOTUP_T"_L1, "coEventManagerInd"_L1,
          "UNSIGNED8 node, CO_MANAGER_EVENT_T event"_L1},
    Event{"fct_mpdo"_L1, "void"_L1, "CORE_CONST CO_EVENT_MPDO_PARA_T *pPara"_L1, "CO_EVENT_MPDO_T"_L1,
          "coEventMPdoInd"_L1, "UNSIGNED16 pdoNr, UNSIGNED16 index, UNSIGNED8 subIndex"_L1},
};

constexpr std::array usdoServer{
    Event{"usdo_server_read_ind_function"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_USDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_USDO_SERVER_PARA_T *pPara"_L1,
          "CO_EVENT_USDO_SERVER_T"_L1, "coEventUsdoServerReadInd"_L1},
    Event{"usdo_server_read_finished_ind_function"_L1, "RET_T"_L1, ""_L1, "CO_EVENT_USDO_SERVER_T"_L1,
          "coEventUsdoServerReadFinishedInd"_L1,
          "CORE_CONST CO_EVENT_USDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_USDO_SERVER_PARA_T *pPara"_L1, true},
    Event{"usdo_server_write_ind_function"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_USDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_USDO_SERVER_PARA_T *pPara"_L1,
          "CO_EVENT_USDO_SERVER_T"_L1, "coEventUsdoServerWriteInd"_L1},
    Event{"usdo_server_ind_check_write_function"_L1, "RET_T"_L1, ""_L1, "CO_EVENT_USDO_SERVER_T"_L1,
          "coEventUsdoServerCheckWriteInd"_L1,
          "CORE_CONST CO_EVENT_USDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_USDO_SERVER_PARA_T *pPara"_L1, true},
    Event{"usdo_server_domain_write_ind_function"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_USDO_SERVER_DOMAIN_PARA_T *pPara"_L1, "CO_EVENT_USDO_SERVER_DOMAIN_WRITE_T"_L1,
          "coEventUsdoServerDomainWriteInd"_L1},
    Event{"usdo_server_domain_read_ind_function"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_USDO_SERVER_DOMAIN_PARA_T *pPara"_L1, "CO_EVENT_USDO_SERVER_DOMAIN_READ_T"_L1,
          "coEventUsdoServerDomainReadInd"_L1},
};

constexpr std::array usdoClient{
    Event{"usdo_client_read_ind_function"_L1, "void"_L1, "CO_EVENT_USDO_CLIENT_PARA_T *pPara"_L1,
          "CO_EVENT_USDO_CLIENT_T"_L1, "coEventUsdoClientReadInd"_L1},
    Event{"usdo_client_write_ind_function"_L1, "void"_L1, "CO_EVENT_USDO_CLIENT_PARA_T *pPara"_L1,
          "CO_EVENT_USDO_CLIENT_T"_L1, "coEventUsdoClientWriteInd"_L1},
    Event{"usdo_client_domain_write_ind_function"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_USDO_CLIENT_DOMAIN_PARA_T *pPara"_L1, "CO_EVENT_USDO_CLIENT_DOMAIN_TRANSFER_T"_L1,
          "coEventUsdoClientDomainWriteInd"_L1},
    Event{"usdo_client_domain_read_ind_function"_L1, "RET_T"_L1,
          "CORE_CONST CO_EVENT_USDO_CLIENT_DOMAIN_PARA_T *pPara"_L1, "CO_EVENT_USDO_CLIENT_DOMAIN_TRANSFER_T"_L1,
          "coEventUsdoClientDomainReadInd"_L1},
};

constexpr std::array uds{
    UdsEvent{"uds_fct_check_req_session"_L1, "UDS_EVENT_STATIC_CHECK_REQ_SESSION"_L1, "RET_T"_L1,
             "UDS_CHECK_REQUIRED_SESSION_PARA_T *pPara"_L1, "UDS_EVENT_CHECK_REQUIRED_SESSION_TYPE_T"_L1,
             "udsCheckRequiredSessionInd"_L1},
    UdsEvent{"uds_fct_clear_dtc_info"_L1, "UDS_EVENT_STATIC_CLEAR_DTC_INFO"_L1, "RET_T"_L1,
             "UDS_CLEAR_DTC_INFO_PARA_T *pPara"_L1, "UDS_EVENT_CLEAR_DTC_INFO_FCT_T"_L1, "udsClearDtcInfoInd"_L1},
    UdsEvent{"uds_fct_dtc_info"_L1, "UDS_EVENT_STATIC_DTC_INFO"_L1, "RET_T"_L1, "UDS_DTC_INFO_PARA_T *pPara"_L1,
             "UDS_EVENT_DTC_INFO_FCT_T"_L1, "udsReadDtcInfoInd"_L1},
    UdsEvent{"uds_fct_id_data_transmit"_L1, "UDS_EVENT_STATIC_ID_DATA_TRANSMIT"_L1, "RET_T"_L1,
             "UDS_DATA_TRANSMIT_PARA_T *pPara"_L1, "UDS_EVENT_DATA_TRANSMIT_T"_L1, "udsDataTransmitInd"_L1},
    UdsEvent{"uds_fct_mem_data_transmit"_L1, "UDS_EVENT_STATIC_MEM_DATA_TRANSMIT"_L1, "RET_T"_L1,
             "UDS_MEM_DATA_TRANSMIT_PARA_T *pPara"_L1, "UDS_EVENT_MEM_DATA_TRANSMIT_T"_L1, "udsMemDataTransmitInd"_L1},
    UdsEvent{"uds_fct_sec_access_req_key"_L1, "UDS_EVENT_STATIC_SEC_ACCESS_REQ_KEY"_L1, "RET_T"_L1,
             "UDS_SECURITY_ACCESS_REQ_KEY_PARA_T *pPara"_L1, "UDS_EVENT_SECURITY_ACCESS_REQ_KEY_T"_L1,
             "udsEventSecurityAccessReqKeyInd"_L1},
    UdsEvent{"uds_fct_req_commgt"_L1, "UDS_EVENT_STATIC_REQ_COMMGT"_L1, "RET_T"_L1,
             "UDS_REQ_COMMGT_STATE_T state, UDS_REQ_COMMGT_PARA_T *pPara"_L1, "UDS_EVENT_REQ_COMMGT_T"_L1,
             "udsReqCommgtInd"_L1},
    UdsEvent{"uds_fct_authent_req"_L1, "UDS_EVENT_STATIC_AUTHENT_REQ"_L1, "RET_T"_L1,
             "UDS_REQ_AUTHENT_CMD_T cmd, UDS_REQ_AUTHENT_PARA_T *pPara"_L1, "UDS_EVENT_AUTHENTICATION_REQ_T"_L1,
             "udsAuthReqInd"_L1},
    UdsEvent{"uds_fct_ioctrl"_L1, "UDS_EVENT_STATIC_IOCTRL"_L1, "RET_T"_L1, "UDS_ROUTINE_IOCTRL_PARA_T *pPara"_L1,
             "UDS_EVENT_ROUTINE_IOCTRL_T"_L1, "udsIoCtrlInd"_L1},
    UdsEvent{"uds_fct_routine_ctrl"_L1, "UDS_EVENT_STATIC_ROUTINE_CTRL"_L1, "RET_T"_L1,
             "UDS_EVENT_ROUTINE_CTRL_PARA_T *pPara"_L1, "UDS_EVENT_ROUTINE_CTRL_T"_L1, "udsRoutineCtrlInd"_L1},
    UdsEvent{"uds_fct_data_transfer"_L1, "UDS_EVENT_STATIC_DATA_TRANSFER"_L1, "RET_T"_L1,
             "UDS_DATA_TRANSFER_PARA_T *pPara"_L1, "UDS_EVENT_DATA_TRANSFER_T"_L1, "udsEventDataTransferInd"_L1},
    UdsEvent{"uds_fct_generic"_L1, "UDS_EVENT_STATIC_GENERIC_FCT"_L1, "UNSIGNED8"_L1, "UDS_GENERIC_PARA_T *pPara"_L1,
             "UDS_EVENT_GENERIC_FCT_T"_L1, "udsGenericInd"_L1},
};

} // namespace

std::span<const Event> Indications::canOpenEvents()
{
    return canOpen;
}

std::span<const Event> Indications::usdoServerEvents()
{
    return usdoServer;
}

std::span<const Event> Indications::usdoClientEvents()
{
    return usdoClient;
}

std::span<const UdsEvent> Indications::udsEvents()
{
    return uds;
}
