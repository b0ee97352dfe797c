#include "generate/common/udsblocks.h"

#include "diagcore/udssiddefinitions.h"
#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/base/runcontext.h"
#include "generate/model/linesettings.h"
#include "store/objectdatabase.h"
#include "store/settings.h"
#include "texttools/numbertext.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

/// What the stack takes as "no identifier of its own".
constexpr quint32 noPeriodicData = 0x3fffffff;
constexpr quint32 firstManufacturerSession = 64;

/// Sub-functions that the tables name.
struct SubFunction
{
    UDS::SID sid;
    QLatin1StringView name;
    bool inSecurityTable;
};

constexpr std::array subFunctions{
    SubFunction{UDS::SID::RoutineControl, "UDS_ROUTINE_CTRL_START"_L1, true},
    SubFunction{UDS::SID::RoutineControl, "UDS_ROUTINE_CTRL_STOP"_L1, true},
    SubFunction{UDS::SID::RoutineControl, "UDS_ROUTINE_CTRL_REQ_RESULT"_L1, true},
    SubFunction{UDS::SID::ECUReset, "UDS_SUB_RESET_HR"_L1, true},
    SubFunction{UDS::SID::ECUReset, "UDS_SUB_RESET_KOFFONR"_L1, true},
    SubFunction{UDS::SID::ECUReset, "UDS_SUB_RESET_SR"_L1, true},
    SubFunction{UDS::SID::ECUReset, "UDS_SUB_RESET_ERPSD"_L1, false},
    SubFunction{UDS::SID::ECUReset, "UDS_SUB_RESET_DRPSD"_L1, false},
};

constexpr std::array addressFormats{"ISOTP_FORMAT_NORMAL"_L1, "ISOTP_FORMAT_NORMAL_FIXED"_L1,
                                    "ISOTP_FORMAT_EXTENDED"_L1};

quint32 number(const QString &text)
{
    return NumberText::byPrefix(text).value_or(0);
}

QString sessionName(quint32 session)
{
    switch (session) {
    case 1:
        return u"UDS_SUB_SESSION_DS"_s;
    case 2:
        return u"UDS_SUB_SESSION_PRGS"_s;
    case 3:
        return u"UDS_SUB_SESSION_EXTDS"_s;
    case 4:
        return u"UDS_SUB_SESSION_SSDS"_s;
    case firstManufacturerSession:
        return u"UDS_SUB_SESSION_MANU_40"_s;
    default:
        break;
    }
    if (session < firstManufacturerSession)
        return u"0x"_s + Code::hex(session, 2);
    return u"UDS_SUB_SESSION_MANU_40 + %1u"_s.arg(session - firstManufacturerSession);
}

/// One text for each of `count` lines by their position; a list that is too short is repeated as a whole.
QStringList repeatedList(const QString &list, qsizetype count)
{
    const QStringList parts = list.split(u',');
    QStringList texts;
    for (qsizetype i = 0; i < count; ++i)
        texts.append(parts.at(i % parts.size()).trimmed());
    return texts;
}

QList<quint32> numbersOf(const QString &list)
{
    QList<quint32> numbers;
    for (const QString &part : list.split(u',', Qt::SkipEmptyParts))
        numbers.append(number(part));
    return numbers;
}

QString serviceName(quint8 sid)
{
    const QString name = UDSSIDDefinitions::getSIDNames().value(static_cast<UDS::SID>(sid));
    return name.isEmpty() ? u"0x"_s + Code::hex(sid, 2) : name;
}

QList<UdsBlocks::Service> activeServices(ObjectDataBase &store, quint8 line)
{
    QList<UdsBlocks::Service> services;
    for (const ObjectDataBase::UDSService &stored : store.getUDSServices(line)) {
        if (!stored.active)
            continue;
        UdsBlocks::Service service;
        service.sid = stored.sid;
        service.name = serviceName(stored.sid);
        for (const quint32 session : numbersOf(store.getUDSServiceSessions(line, stored.sid)))
            service.sessions.append(sessionName(session));
        service.userLevels = numbersOf(store.getUDSServiceUserLevels(line, stored.sid));
        const QList<quint32> authentication = numbersOf(store.getUDSServiceAuthentication(line, stored.sid));
        service.authenticated = std::ranges::any_of(authentication, [](quint32 value) { return value != 0; });
        services.append(service);
    }
    std::ranges::sort(services, {}, &UdsBlocks::Service::sid);
    return services;
}

/// "2u, { A, B }", the form in which the tables hold a list.
QString countedList(const QStringList &items)
{
    return u"%1u, { %2 }"_s.arg(QString::number(items.size()), items.isEmpty() ? u"0u"_s : items.join(", "_L1));
}

QString subFunctionList(quint8 sid, bool securityTable)
{
    QStringList names;
    for (const SubFunction &sub : subFunctions) {
        if (static_cast<quint8>(sub.sid) == sid && (sub.inSecurityTable || !securityTable))
            names.append(sub.name);
    }
    return countedList(names);
}

QString levelList(const UdsBlocks::Service &service)
{
    QStringList texts;
    for (const quint32 level : service.userLevels)
        texts.append(Code::dec(level) + u'u');
    return countedList(texts);
}

/// The authenticated services, which the third table of a line lists.
QList<quint8> authenticatedServices(const UdsBlocks::Line &line)
{
    QList<quint8> sids;
    for (const UdsBlocks::Service &service : line.services) {
        if (service.authenticated)
            sids.append(service.sid);
    }
    return sids;
}

void writeServiceTables(CodeWriter &out, const UdsBlocks::Line &line)
{
    const QString lineText = Code::dec(line.line);
    const auto comma = [&line](const UdsBlocks::Service &service) {
        return &service == &line.services.last() ? QString() : u","_s;
    };
    out(uR"(
        /* UDS Service in Sessions table (line ${LINE}) */
        static UDS_REQ_SESSION_TYPE_TABLE_T	sessionTbl_${LINE}[] = {
        )",
        {{"LINE", lineText}});
    for (const UdsBlocks::Service &service : line.services)
        out(u"\t{ 0x${SID}u, ${SUBS}, ${SESSIONS} }${COMMA} /* ${NAME} */",
            {{"SID", Code::hex(service.sid, 2)},
             {"SUBS", subFunctionList(service.sid, false)},
             {"SESSIONS", countedList(service.sessions)},
             {"COMMA", comma(service)},
             {"NAME", service.name}});
    out(uR"(
        };

        /* UDS Service in security level table (line ${LINE}) */
        static UDS_SECURITY_LEVEL_TABLE_T	securityLvlTbl_${LINE}[] = {
        )",
        {{"LINE", lineText}});
    for (const UdsBlocks::Service &service : line.services)
        out(u"\t{ 0x${SID}u, ${SUBS}, ${LEVELS} }${COMMA} /* ${NAME} */", {{"SID", Code::hex(service.sid, 2)},
                                                                           {"SUBS", subFunctionList(service.sid, true)},
                                                                           {"LEVELS", levelList(service)},
                                                                           {"COMMA", comma(service)},
                                                                           {"NAME", service.name}});
    out(u"};\n");
}

void writeAuthenticationTable(CodeWriter &out, const UdsBlocks::Line &line)
{
    const QList<quint8> sids = authenticatedServices(line);
    if (sids.isEmpty())
        return;
    out(uR"(
        /* UDS Authentication table (line ${LINE}) */
        static UDS_AUTHENT_TABLE_T	authenticationTable_${LINE}[] = {
        )",
        {{"LINE", Code::dec(line.line)}});
    for (const quint8 sid : sids)
        out(u"\t{ 0x${SID} },", {{"SID", Code::hex(sid, 2)}});
    out(uR"(

        };

        )");
}

/// A pointer to a table and the number of its rows.
void writeTablePointer(CodeWriter &out, const QString &table, quint8 line, qsizetype rows)
{
    if (rows == 0)
        out(uR"(
            	NULL,
            	0,
            )");
    else
        out(uR"(
            	&${TABLE}_${LINE}[0],
            	${ROWS}u,
            )",
            {{"TABLE", table}, {"LINE", Code::dec(line)}, {"ROWS", QString::number(rows)}});
}

void writeLineConfiguration(CodeWriter &out, const UdsBlocks &uds, const UdsBlocks::Line &line, const Dialect &dialect)
{
    out(uR"(
        /* UDS CAN-IDs for line ${LINE} */
        ${CONST}UDS_CONFIG_INIT_VAL_T	udsLine${LINE} = {
        	0x${REQUEST}u,
        	0x${RESPONSE}u,
        	0x${RESPONSE}u,
        	0x${REQUEST}u,
        	0x${FUNCTIONAL}u,
        	0x${RESPONSE}u${COMMA}
        )",
        {{"LINE", Code::dec(line.line)},
         {"CONST", uds.bootloader ? QString() : dialect.core + u"CONST "_s},
         {"REQUEST", Code::hex(line.physicalRequest)},
         {"RESPONSE", Code::hex(line.physicalResponse)},
         {"FUNCTIONAL", Code::hex(line.functionalRequest)},
         {"COMMA", uds.version >= 2 ? u","_s : QString()}});
    if (uds.version >= 4)
        out(u"\t0x${ID}u,", {{"ID", Code::hex(line.periodicData)}});
    if (uds.version >= 2) {
        out(uR"(
            	${REQUEST}u,
            	${RESPONSE}u,
            	${FUNCTIONAL}u,
            	${RESPONSE}u,
            	${FORMAT},
            )",
            {{"REQUEST", Code::dec(line.physicalRequestAddress)},
             {"RESPONSE", Code::dec(line.physicalResponseAddress)},
             {"FUNCTIONAL", Code::dec(line.functionalRequestAddress)},
             {"FORMAT", addressFormats.at(line.addressing < addressFormats.size() ? line.addressing : 0)}});
        writeTablePointer(out, u"sessionTbl"_s, line.line, line.services.size());
        writeTablePointer(out, u"securityLvlTbl"_s, line.line, line.services.size());
        out(u"\t${ACTIVE},", {{"ACTIVE", line.serverActive ? u"CO_TRUE"_s : u"CO_FALSE"_s}});
        writeTablePointer(out, u"authenticationTable"_s, line.line, authenticatedServices(line).size());
    }
    out(u"};\n");
}

} // namespace

std::optional<UdsBlocks> UdsBlocks::collect(ObjectDataBase &store)
{
    const Settings settings(store);
    if (!settings.isOn(u"udsserver_supported"_s) && !settings.isOn(u"udsclient_supported"_s))
        return {};
    const QList<quint8> lines = LineSettings::stackLines(store);
    const auto perLine = [&settings, count = lines.size()](const QString &key) {
        return repeatedList(settings.text(key), count);
    };
    const QStringList requests = perLine(u"uds_physical_request_id"_s);
    const QStringList responses = perLine(u"uds_physical_response_id"_s);
    const QStringList functionals = perLine(u"uds_functional_request_id"_s);
    const QStringList periodicals = perLine(u"uds_rdbip_canid"_s);
    const QStringList requestAddresses = perLine(u"uds_physical_request_ext_addr"_s);
    const QStringList responseAddresses = perLine(u"uds_physical_response_ext_addr"_s);
    const QStringList functionalAddresses = perLine(u"uds_functional_request_ext_addr"_s);
    const QStringList formats = perLine(u"uds_ext_addressing"_s);

    UdsBlocks uds;
    uds.version = std::max<quint8>(1, static_cast<quint8>(settings.number(u"udsserver_version"_s)));
    uds.bootloader = settings.isOn(u"uds_bl_setting"_s);
    uds.multiLine = LineSettings::severalLines(store);
    const QList<quint8> partaking = LineSettings::partakingLines(store);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const quint8 line = lines.at(i);
        if (!partaking.contains(line))
            continue;
        uds.lines.append({
            .line = line,
            .clients = settings.number(u"uds_client_cnt"_s, line),
            .physicalRequest = number(requests.at(i)),
            .physicalResponse = number(responses.at(i)),
            .functionalRequest = number(functionals.at(i)),
            .periodicData = periodicals.at(i).isEmpty() ? noPeriodicData : number(periodicals.at(i)),
            .physicalRequestAddress = number(requestAddresses.at(i)),
            .physicalResponseAddress = number(responseAddresses.at(i)),
            .functionalRequestAddress = number(functionalAddresses.at(i)),
            .addressing = number(formats.at(i)),
            .serverActive = settings.isOn(u"uds_server_active"_s, line),
            .services = activeServices(store, line),
        });
    }
    return uds;
}

void writeUdsBlocks(CodeWriter &out, const UdsBlocks &uds, const Dialect &dialect)
{
    QStringList clients;
    for (const UdsBlocks::Line &line : uds.lines)
        clients.append(Code::dec(line.clients) + u'u');
    out(uR"(

        /* UDS common initialization structure */ 
        static ${CORE}CONST UDS_SERVICE_INIT_VAL_T udsServiceInitVars = {
        	${VERSION}u,
        	{ ${CLIENTS} }
        };
        )",
        {{"CORE", dialect.core}, {"VERSION", Code::dec(uds.version)}, {"CLIENTS", clients.join(", "_L1)}});
    for (const UdsBlocks::Line &line : uds.lines) {
        if (line.services.isEmpty())
            continue;
        writeServiceTables(out, line);
        writeAuthenticationTable(out, line);
    }
    for (const UdsBlocks::Line &line : uds.lines)
        writeLineConfiguration(out, uds, line, dialect);
}

void writeUdsInitCalls(CodeWriter &out, const UdsBlocks &uds)
{
    const auto check = [&out] {
        out(uR"(
            if (retVal != RET_OK) {
            	return(retVal);
            }
            )");
    };
    out(uR"(
        /* UDS common initialization */ 
        retVal = udsStackInit_common(&udsServiceInitVars);
        )");
    check();
    const bool hasLine0 = !uds.lines.isEmpty() && uds.lines.first().line == 0;
    if (uds.bootloader && hasLine0) {
        out(uR"(
            /* setup CAN-IDs */
            if (udsLine0.serverPhysAddrReqCanID == 0) {
            	udsLine0.serverPhysAddrReqCanID = CFG_UDS_REQ_ID();
            }
            if (udsLine0.serverPhysAddrRespCanID == 0) {
            	udsLine0.serverPhysAddrRespCanID = CFG_UDS_RES_ID();
            }
            if (udsLine0.serverFuncAddrReqCanID == 0) {
            	udsLine0.serverFuncAddrReqCanID = CFG_UDS_FUNC_ID();
            }
            )");
    }
    out(u"/* UDS line initialization */ ");
    for (const UdsBlocks::Line &line : uds.lines) {
        const QString number = Code::dec(line.line);
        if (uds.multiLine)
            out(u"retVal = udsStackInit_line(${LINE}, &udsLine${LINE});", {{"LINE", number}});
        else
            out(u"retVal = udsStackInit_line(&udsLine${LINE});", {{"LINE", number}});
        check();
    }
}
