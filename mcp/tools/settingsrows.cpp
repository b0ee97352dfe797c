#include "mcp/tools/settingsrows.h"

namespace {

using namespace SettingsRows;
using enum Setting::Scope;
using enum Setting::Type;

// Makers of extras, so that a row reads as a list.
constexpr Extras decimal{.decimal = true};
constexpr Extras nodeIds{.min = 0, .max = 255};

constexpr Extras needs(QStringView key)
{
    return {.requiredKey = key};
}
constexpr Extras decimalNeeding(QStringView key)
{
    return {.decimal = true, .requiredKey = key};
}
constexpr Extras rangeNeeding(quint32 min, quint32 max, QStringView key)
{
    return {.decimal = true, .min = min, .max = max, .requiredKey = key};
}
constexpr Extras falseAsEmptyNeeding(QStringView key)
{
    return {.falseAsEmpty = true, .requiredKey = key};
}
constexpr Extras readOnlyNeeding(QStringView key)
{
    return {.readOnly = true, .requiredKey = key};
}
constexpr Extras itemsNeeding(std::span<const QStringView> items, QStringView key)
{
    return {.requiredKey = key, .enumValues = items};
}

constexpr Row queueRows[]{
    {u"additional_cob_count", Global, UInt, u"Additional COB objects",
     u"Number of additional COB objects. Only used for debugging purposes, for non-CANopen messages or to support e.g. "
     u"can_printf. If additional user transmit/receive messages are used, their numbers must be included here.",
     decimal},
    {u"user_tx_cob", Global, UInt, u"Additional user transmit messages",
     u"Number of messages that the application transmits by itself - USER_TRANSMIT_MSG_CNT.", decimal},
    {u"user_rx_cob", Global, UInt, u"Additional user receive messages",
     u"Number of messages that the application receives by itself - USER_RECEIVE_MSG_CNT.", decimal},
    {u"canfd_supported", Global, Bool, u"CAN FD supported",
     u"Enables CAN FD for all lines of the device - CORE_CANFD_SUPPORTED."},
    {u"receivebuffersize", PerLine, UInt, u"CAN receive buffer size",
     u"Number of messages that the receive queue of the line holds - CORE_REC_BUFFER_COUNTS.", decimal},
    {u"transmitbuffersize", PerLine, UInt, u"CAN transmit buffer size",
     u"Number of messages that the transmit queue of the line holds - CORE_TR_BUFFER_COUNTS.", decimal},
};

constexpr Row generationRows[]{
    {u"init_static_variables", Global, Bool, u"Initialization of managed variables",
     u"Managed variables are initialized with their default values in gen_objdict.c."},
    {u"compact_array_description", Global, Bool, u"Use compact array definitions if applicable",
     u"Only for CANopen NodeComposer: compact array definition for sub indices with the same structure. This may save "
     u"FLASH memory, but generation time is much longer."},
    {u"generate_generation_counter", Global, Bool, u"Generate generation counter in gen_define.h",
     u"Counts the generations of the header - GEN_GENERATION_COUNT."},
    {u"generate_string_defaults", Global, Bool, u"Generate default values for variable strings",
     u"Generates a table of the default values of string variables and a function that copies them at start-up."},
    {u"gen_csharp_props", Global, Bool, u"Generate MSBuild property files for the C# wrapper",
     u"Generates gen_define.props and Directory.Build.props with the symbols of gen_define.h."},
    {u"static_memory_specifier", Global, String, u"Memory specifier after static variables in gen_*.c",
     u"Text that is written behind the declaration of each array of managed variables."},
    {u"special_virtual_objects", Global, String, u"Special virtual object definition",
     u"Definition of virtual objects that are handled in a special way."},
    {u"applicationheader", Global, String, u"Application header file(s)",
     u"Header files, separated by blanks, that the generated sources include."},
};

constexpr QStringView byteOrders[]{u"Little Endian", u"Big Endian"};

constexpr Row targetRows[]{
    {u"co_timer_interval", Global, UInt, u"Interval of CPU timer in µs",
     u"Interval of the timer that drives the stack, in microseconds - CORE_TIMER_INTERVAL."},
    {u"endian", Global, Enum, u"Endianess (Byte-Order)", u"Byte order of the target CPU - CORE_BIG_ENDIAN.",
     itemsNeeding(byteOrders, {})},
    {u"drv_filter", Global, Bool, u"Enable CAN Filter (FullCAN)",
     u"The driver filters CAN-IDs by hardware - CORE_DRV_FILTER."},
    {u"all_targets", Global, Bool, u"Include all targets in gen_define.h",
     u"If enabled, all targets are written into gen_define.h and the activation must be handled by a define. If "
     u"disabled, only the active target is written into gen_define.h and it will be active. If disabled and there are "
     u"no active targets, the 1st target is written into gen_define.h and will be active due to backward "
     u"compatibility."},
    {u"target_id", Global, String, u"Target define (only if multiple targets are used)",
     u"Name of the define that activates the settings of the target in gen_define.h."},
    {u"user_defines", Global, String, u"Additional application-specific defines",
     u"Text that is written as it is into the application section of gen_define.h."},
    {u"hw_defines", Global, String, u"Target specific defines",
     u"Text that is written as it is into the hardware section of gen_define.h."},
};

constexpr Row isoTpRows[]{
    {u"isotp_supported", Global, Bool, u"ISO-TP Support",
     u"Enables the transport protocol of ISO 15765-2 - ISOTP_SUPPORTED."},
    {u"isotp_dyn_server_ind", Global, UInt, u"No of Dynamic Server Indications",
     u"Number of indication functions that may be registered for ISO-TP servers - ISOTP_EVENT_DYNAMIC_SERVER.",
     decimalNeeding(u"isotp_supported")},
    {u"isotp_dyn_client_ind", Global, UInt, u"No of Dynamic Client Indications",
     u"Number of indication functions that may be registered for ISO-TP clients - ISOTP_EVENT_DYNAMIC_CLIENT.",
     decimalNeeding(u"isotp_supported")},
    {u"isotp_dyn_client_txack_ind", Global, UInt, u"No of Dynamic Client TX Ack Indications",
     u"Number of indication functions that may be registered for acknowledged transmissions of ISO-TP clients - "
     u"ISOTP_EVENT_DYNAMIC_CLIENT_TXACK.",
     decimalNeeding(u"isotp_supported")},
    {u"isotp_dyn_split_ind", Global, UInt, u"No of Dynamic Split Indications",
     u"Number of split indication functions that may be registered for ISO-TP servers - ISOTP_EVENT_DYNAMIC_SSPLIT.",
     decimalNeeding(u"isotp_supported")},
    {u"isotp_client_con", PerLine, UInt, u"No of ISO-TP Client Connections",
     u"Number of ISO-TP client connections of the line - ISOTP_CLIENT_COUNTS.", decimalNeeding(u"isotp_supported")},
    {u"isotp_server_con", PerLine, UInt, u"No of ISO-TP Server Connections",
     u"Number of ISO-TP server connections of the line - ISOTP_SERVER_COUNTS.", decimalNeeding(u"isotp_supported")},
};

constexpr QStringView addressFormats[]{u"Normal Addressing", u"Normal Fixed Addressing", u"Extended Addressing"};

constexpr Row udsServerRows[]{
    {u"udsserver_supported", Global, Bool, u"UDS Server Support",
     u"Enables the server of ISO 14229 - UDS_SERVER_SUPPORTED."},
    {u"uds_seedkey_length", Global, UInt, u"Security Seed/Key Length",
     u"Length of the seed and the key of SecurityAccess in bytes - UDS_SECURITY_SEED_KEY_LEN.",
     decimalNeeding(u"udsserver_supported")},
    {u"uds_session_timeout", Global, UInt, u"Session Timeout (ms)",
     u"Time after which a session other than the default one ends without requests, in milliseconds - "
     u"UDS_SESSION_TIMEOUT.",
     decimalNeeding(u"udsserver_supported")},
    {u"uds_only_appl_session_check", Global, Bool, u"Application Session Check only",
     u"The application alone checks whether a service is allowed in a session - UDS_ONLY_APPL_REQUIRED_SESSION_CHECK.",
     needs(u"udsserver_supported")},
    {u"uds_only_appl_security_check", Global, Bool, u"Application Security Level Check only",
     u"The application alone checks whether a service is allowed at a security level - "
     u"UDS_ONLY_APPL_SECURITY_LEVEL_CHECK.",
     needs(u"udsserver_supported")},
    {u"udsserver_version", Global, UInt, u"UDS Server API Version", u"Fixed by the tool.",
     readOnlyNeeding(u"udsserver_supported")},
    {u"uds_server_active", PerLine, Bool, u"Server active", u"The UDS server of the line is active after start-up.",
     falseAsEmptyNeeding(u"udsserver_supported")},
    {u"uds_ext_addressing", PerLine, Enum, u"ISO-TP address format", u"Address format of ISO 15765-2 on the line.",
     itemsNeeding(addressFormats, u"udsserver_supported")},
    {u"uds_physical_request_id", PerLine, UInt, u"Physical address request CAN-ID",
     u"CAN-ID of requests to this server.", needs(u"udsserver_supported")},
    {u"uds_physical_response_id", PerLine, UInt, u"Physical address response CAN-ID",
     u"CAN-ID of the responses of this server.", needs(u"udsserver_supported")},
    {u"uds_functional_request_id", PerLine, UInt, u"Functional address request CAN-ID",
     u"CAN-ID of requests to all servers.", needs(u"udsserver_supported")},
    {u"uds_physical_request_ext_addr", PerLine, UInt, u"Physical address request: device address",
     u"Address of this device in requests to it, for the address formats that carry one.",
     needs(u"udsserver_supported")},
    {u"uds_physical_response_ext_addr", PerLine, UInt, u"Physical address response: tool address",
     u"Address of the tool in the responses of this server, for the address formats that carry one.",
     needs(u"udsserver_supported")},
    {u"uds_functional_request_ext_addr", PerLine, UInt, u"Functional address request: device address",
     u"Address in requests to all servers, for the address formats that carry one.", needs(u"udsserver_supported")},
    {u"uds_rdbip_canid", PerLine, UInt, u"Read Data by Periodic Identifier CAN-ID",
     u"CAN-ID of the periodic responses of ReadDataByPeriodicIdentifier.", needs(u"udsserver_supported")},
};

constexpr Row udsClientRows[]{
    {u"udsclient_supported", Global, Bool, u"UDS Client Support",
     u"Enables the client of ISO 14229 - UDS_CLIENT_SUPPORTED.", falseAsEmptyNeeding({})},
    {u"uds_client_partial_download", Global, Bool, u"partial Download Callback",
     u"The application provides the data of a download in parts - UDSCLIENT_EVENT_DYNAMIC_DATA_DOWNLOAD.",
     needs(u"udsclient_supported")},
    {u"uds_client_cnt", PerLine, UInt, u"No of UDS Clients", u"Number of UDS clients of the line - UDS_CLIENT_CNT.",
     rangeNeeding(1, 32, u"udsclient_supported")},
};

constexpr Row lineRows[]{
    {u"co_node_id", PerLine, UInt, u"CANopen Default Node-ID",
     u"Node-ID of the CANopen device on this line, 1-127 or 255 - CO_NODE_IDS. 0 means no fixed node-id, "
     u"co_node_id_fct is used instead.",
     nodeIds},
    {u"co_node_id_fct", PerLine, String, u"CANopen Node-ID function",
     u"Name of the function that delivers the node-id of the line - CO_NODE_ID_FUNCTIONS."},
    {u"overwrite_predef", PerLine, Bool, u"Overwrite pre-defined connection set",
     u"Generates a load function that sets the COB-IDs of the project in place of the pre-defined connection set - "
     u"GEN_OVERWRITE_PREDEF_CONN_SET."},
    {u"usdo_server_enabled", PerLine, Bool, u"USDO Server",
     u"The line has a USDO server with connections of its own - CO_USDO_SERVER_MAX_CONN_COUNTS. CO_USDO_SUPPORTED "
     u"comes with canfd_supported.",
     needs(u"canfd_supported")},
    {u"usdo_server_cnt", PerLine, UInt, u"USDO Server Connection count",
     u"Number of connections of the USDO server at a time - CO_USDO_SERVER_MAX_CONN_COUNTS.",
     decimalNeeding(u"usdo_server_enabled")},
    {u"usdo_client_enabled", PerLine, Bool, u"USDO Client", u"The line has a USDO client - CO_USDO_CLIENT_SUPPORTED.",
     needs(u"canfd_supported")},
    {u"usdo_client_cnt", PerLine, UInt, u"USDO Client Connection Count",
     u"Number of connections of the USDO client at a time - CO_USDO_CLIENT_MAX_CONN_COUNTS.",
     decimalNeeding(u"usdo_client_enabled")},
};

constexpr Row basicRows[]{
    {u"sorted_coblist", Global, Bool, u"Sorted COB List",
     u"The stack keeps its COBs in a sorted list, which is quicker to search - CORE_COB_SORTED_LIST."},
    {u"only_one_hb_buffer", Global, Bool, u"Only one COB for HB Consumer",
     u"All heartbeat consumers share one COB - CO_ONE_HB_CONSUMER_COB."},
};

constexpr Row serviceRows[]{
    {u"lss_supported", Global, Bool, u"LSS (Layer Setting Services) supported",
     u"Enables the layer setting services of CiA 305 - CO_LSS_SUPPORTED."},
    {u"lss_inquiry_supported", Global, Bool, u"LSS (Layer Setting Services) Inquiry services supported",
     u"Enables the inquiry services of LSS - CO_LSS_INQUIRY_SERVICES."},
    {u"sleep_wait_time", Global, UInt, u"Sleep Mode Waiting Time (ms)",
     u"Time before the device goes to sleep, in milliseconds - CO_SLEEP_WAITTIME.", decimal},
    {u"sdo_blocktransfer_supported", Global, Bool, u"SDO Block Transfer supported",
     u"Enables SDO block transfer - CO_SDO_BLOCK."},
    {u"sdo_blocktransfer_block_size", Global, UInt, u"SDO Block Transfer Block Size",
     u"Number of segments of a block - CO_SDO_BLOCK_SIZE.", rangeNeeding(1, 127, u"sdo_blocktransfer_supported")},
    {u"sdo_blocktransfer_min_data", Global, UInt, u"SDO Block Transfer use for data of [n] bytes or larger",
     u"Size of data in bytes from which block transfer is used - CO_SDO_BLOCK_MIN_SIZE.",
     decimalNeeding(u"sdo_blocktransfer_supported")},
    {u"sdo_blocktransfer_crc_supported", Global, Bool, u"SDO Block Transfer CRC Support",
     u"Block transfers are secured by a checksum - CO_SDO_BLOCK_CRC.", needs(u"sdo_blocktransfer_supported")},
    {u"sdo_client_queue_supported", Global, Bool, u"SDO Client Queue Support",
     u"Requests of SDO clients are queued - CO_SDO_QUEUE."},
    {u"sdo_client_queue_size", Global, UInt, u"SDO Client Queue Length",
     u"Number of requests that the queue holds - CO_SDO_QUEUE_LEN.", decimalNeeding(u"sdo_client_queue_supported")},
    {u"sdo_client_queue_internal_access_supported", Global, Bool, u"SDO Client Queue internal access supported",
     u"Requests to the own object dictionary go through the queue, too - CO_SDOQUEUE_INTERNAL_ACCESS."},
    {u"limit_check", Global, Bool, u"SDO Limit Check (at SDO Server write access)",
     u"The SDO server holds written values against the limits of the object - CO_CONFIG_LIMIT_CHECK."},
    {u"event_ssdo_domain_counter", Global, UInt, u"SDO Domain Indication Size (at SDO server read/write access)",
     u"Number of messages for the indication of a part of an SDO read/write transfer (server side). This is a number "
     u"of messages, the size in bytes is 7 times this number - CO_SSDO_DOMAIN_CNT.",
     decimal},
    {u"csdo_write_special", Global, Bool, u"SDO Client Domain Write with special callback for partial data provision",
     u"The application provides the data of a domain that the SDO client writes in parts - "
     u"CO_EVENT_CSDO_DOMAIN_WRITE."},
    {u"emcy_routing", Global, Bool, u"Routing for Emergency supported (CiA 302-7)",
     u"Emergency messages are routed between lines - CO_EMCY_NETWORKING."},
    {u"sdo_routing", Global, Bool, u"Routing for SDO supported (CiA 302-7)",
     u"SDO transfers are routed between lines - CO_SDO_NETWORKING."},
    {u"bootup_manager", Global, Bool, u"NMT Bootup Manager supported (CiA 302-2)",
     u"The NMT master boots its slaves as CiA 302-2 has it - CO_BOOTUP_MANAGER."},
    {u"config_manager", Global, Bool, u"Configuration Manager supported (CiA 302-2)",
     u"The device configures its slaves as CiA 302-2 has it - CO_CFG_MANAGER."},
    {u"sdo_split", Global, Bool, u"SDO Split Indication supported",
     u"The application may answer an SDO request later than in its indication - CO_SDO_SPLIT_INDICATION."},
    {u"srdo_loop_counter", Global, UInt, u"SRDO Loop Counter", u"Number of SRDO loops of the stack.", decimal},
    {u"co_srdo_interval", Global, String, u"SRDO Timer Interval in µs",
     u"Interval of the separate SRDO timer in µs, or a macro name. Written as is - CO_SRDO_TIMER_INTERVAL."},
    {u"static_srdo_data", Global, Bool, u"static declaration for objects mapped in SRDO",
     u"Variables of objects that SRDOs carry are declared in gen_srdo.c."},
    {u"ignore_srdo_data_validation", Global, Bool, u"ignore SRDO rx data validation",
     u"Received SRDOs are taken without their data being validated - CO_SRDO_IGNORE_DATA_STATE."},
    {u"ask_gen_srdo", Global, Bool, u"ask before each gen_srdo.c generation",
     u"A program with a window asks before it generates gen_srdo.c."},
    {u"dynod", Global, Bool, u"Dynamic Object Dictionary supported",
     u"The application may add objects at run time - CO_DYNAMIC_OBJDIC."},
    {u"bitwise_mapping", Global, Bool, u"Bitwise PDO Mapping",
     u"PDOs may carry objects of single bits - CO_PDO_BIT_MAPPING."},
    {u"idnego_supported", Global, Bool, u"ID Negotiation supported",
     u"Enables the negotiation of node-ids - CO_IDNEGO_SUPPORTED."},
    {u"1010autostore_by_application", Global, Bool, u"0x1010 auto-store handled by application",
     u"The application stores parameters by itself where 0x1010 has them stored without a command - "
     u"CO_AUTO_STORE_HANDLED_BY_APPLICATION."},
    {u"max_slave_assignment", Global, UInt, u"Max. Slave Assignment Count",
     u"Number of slaves that the NMT master can be assigned - CO_MAX_SLAVE_ASSIGNMENT_CNT.", decimal},
    {u"flyma_supported", Global, Bool, u"Flying Master supported",
     u"Enables the NMT flying master of CiA 302-2 - CO_FLYING_MASTER_SUPPORTED."},
};

constexpr Section fixedSections[]{
    {u"general", u"Queue & Buffers", queueRows},   {u"general", u"Generation", generationRows},
    {u"general", u"Hardware/Target", targetRows},  {u"general", u"ISO-TP", isoTpRows},
    {u"general", u"UDS Server", udsServerRows},    {u"general", u"UDS Client", udsClientRows},
    {u"stack", u"CANopen Line", lineRows},         {u"stack", u"Basic", basicRows},
    {u"stack", u"Optional Services", serviceRows},
};

constexpr Indication indicationRows[]{
    {u"CAN Event", u"event_can", u"fct_can", u"CO_EVENT_DYNAMIC_CAN"},
    {u"Communication Event", {}, u"fct_comm"},
    {u"SDO Server Read", u"event_sdo_server_read", u"fct_sdo_server_read", u"CO_EVENT_DYNAMIC_SDO_SERVER_READ"},
    {u"SDO Server Write", u"event_sdo_server_write", u"fct_sdo_server_write", u"CO_EVENT_DYNAMIC_SDO_SERVER_WRITE"},
    {u"SDO Server Check Write", u"event_sdo_server_check_write", u"fct_sdo_server_check_write",
     u"CO_EVENT_DYNAMIC_SDO_SERVER_CHECK_WRITE"},
    {u"SDO Server Domain Write", u"event_ssdo_domain_write", u"fct_ssdo_domain_write",
     u"CO_EVENT_DYNAMIC_SSDO_DOMAIN_WRITE"},
    {u"SDO Server Domain Read", u"event_ssdo_domain_read", u"fct_ssdo_domain_read",
     u"CO_EVENT_DYNAMIC_SSDO_DOMAIN_READ"},
    {u"SDO Client Read", u"event_sdo_client_read", u"fct_sdo_client_read", u"CO_EVENT_DYNAMIC_SDO_CLIENT_READ"},
    {u"SDO Client Write", u"event_sdo_client_write", u"fct_sdo_client_write", u"CO_EVENT_DYNAMIC_SDO_CLIENT_WRITE"},
    {u"SDO Network Client Event", u"event_sdorouter", {}, u"CO_EVENT_DYNAMIC_NETWORK_SDOCLIENT_USER"},
    {u"SDO Requesting Device (SRD) Event", u"event_srd", {}, u"CO_EVENT_DYNAMIC_SRD"},
    {u"PDO Event", u"event_pdo", u"fct_pdo", u"CO_EVENT_DYNAMIC_PDO"},
    {u"PDO Update Event", u"event_pdo_update", u"fct_pdo_update", u"CO_EVENT_DYNAMIC_PDO_UPDATE"},
    {u"MPDO Event", u"event_mpdo", u"fct_mpdo", u"CO_EVENT_DYNAMIC_MPDO"},
    {u"NMT Event", u"event_nmt", u"fct_nmt", u"CO_EVENT_DYNAMIC_NMT"},
    {u"NMT Error Control Event", u"event_errctrl", u"fct_errctrl", u"CO_EVENT_DYNAMIC_ERRCTRL"},
    {u"Store/Restore/Load Event", u"event_store", {}, u"CO_EVENT_DYNAMIC_STORE"},
    {u"Load Event", {}, u"fct_store"},
    {u"Clear Event", {}, u"fct_store_clear"},
    {u"Save Event", {}, u"fct_store_save"},
    {u"GFC Event", u"event_gfc", {}, u"CO_EVENT_DYNAMIC_GFC"},
    {u"SYNC Event", u"event_sync", u"fct_sync", u"CO_EVENT_DYNAMIC_SYNC"},
    {u"SYNC Event finished", u"event_sync_finished", u"fct_sync_finished", u"CO_EVENT_DYNAMIC_SYNC_FINISHED"},
    {u"LED Event", u"event_led", {}, u"CO_EVENT_DYNAMIC_LED"},
    {u"LED Red Event", {}, u"fct_led_red"},
    {u"LED Green Event", {}, u"fct_led_green"},
    {u"Emergency Producer Event", u"event_emcy", u"fct_emcy", u"CO_EVENT_DYNAMIC_EMCY"},
    {u"Emergency Consumer Event", u"event_emcy_consumer", u"fct_emcy_consumer", u"CO_EVENT_DYNAMIC_EMCY_CONSUMER"},
    {u"Time Stamp Consumer Event", u"event_time", u"fct_time", u"CO_EVENT_DYNAMIC_TIME"},
    {u"LSS Event", u"event_lss", u"fct_lss", u"CO_EVENT_DYNAMIC_LSS"},
    {u"NMT Bootup Manager Event", u"event_manager", u"fct_manager", u"CO_EVENT_DYNAMIC_MANAGER"},
    {u"Configuration Manager Event", u"event_cfg", u"fct_cfgman", u"CO_EVENT_DYNAMIC_CFG_MAN"},
    {u"Flying Master Event", u"event_flyma", u"fct_flyma", u"CO_EVENT_DYNAMIC_FLYMA"},
    {u"Object Changed Event", u"object_changed_event", {}, u"CO_EVENT_DYNAMIC_OBJECT_CHANGED"},
    {u"ID Negotiation Event", u"event_idnego", {}, u"CO_EVENT_DYNAMIC_IDNEGO"},
};

constexpr Indication usdoIndicationRows[]{
    {u"USDO Server Read", u"usdo_server_ind_read_cnt", u"usdo_server_read_ind_function"},
    {u"USDO Server Write", u"usdo_server_ind_write_cnt", u"usdo_server_write_ind_function"},
    {u"USDO Server Domain Read", u"usdo_server_ind_domain_read_cnt", u"usdo_server_domain_read_ind_function"},
    {u"USDO Server Domain Write", u"usdo_server_ind_domain_write_cnt", u"usdo_server_domain_write_ind_function"},
    {u"USDO Client Read", u"usdo_client_ind_read_cnt", u"usdo_client_read_ind_function"},
    {u"USDO Client Write", u"usdo_client_ind_write_cnt", u"usdo_client_write_ind_function"},
    {u"USDO Client Domain Read", u"usdo_client_ind_domain_read_cnt", u"usdo_client_domain_read_ind_function"},
    {u"USDO Client Domain Write", u"usdo_client_ind_domain_write_cnt", u"usdo_client_domain_write_ind_function"},
};

} // namespace

std::span<const Section> SettingsRows::sections()
{
    return fixedSections;
}

std::span<const Indication> SettingsRows::indications()
{
    return indicationRows;
}

std::span<const Indication> SettingsRows::usdoIndications()
{
    return usdoIndicationRows;
}
