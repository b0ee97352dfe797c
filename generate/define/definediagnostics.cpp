// The diagnostic section of gen_define.h: ISO-TP (ISO 15765-2) and UDS (ISO 14229-1).

#include "generate/define/definerules.h"

#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;

namespace {

using Counts = LineCounts;

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

} // namespace

std::span<const Block> DefineMacros::diagnostics()
{
    return diagnosticBlocks;
}
