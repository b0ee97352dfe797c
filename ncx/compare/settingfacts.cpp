#include "diagcore/udssiddefinitions.h"
#include "ncx/compare/facts.h"
#include "ncx/device/devicemodel.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <QRegularExpression>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What a file says of itself: who has made and saved it, and how often it was worked with.
bool isOfFile(const QString &key)
{
    static const QStringList keys{u"CreateToolName"_s, u"CreateToolVersion"_s,  u"DatabaseVersion"_s,
                                  u"FileHash"_s,       u"SaveToolType"_s,       u"SaveToolVersion"_s,
                                  u"TamperLog"_s,      u"AdditionalSections"_s, u"qlk_generation_count"_s};
    return keys.contains(key);
}

bool isLineType(const QString &key)
{
    static const QRegularExpression form(u"^line[0-9]+type$"_s);
    return form.match(key).hasMatch();
}

/// Lists per line that mean something for a CANopen line only.
bool isOfCanOpen(const QString &key)
{
    static const QStringList keys{u"co_node_id"_s, u"co_node_id_fct"_s, u"max_slave_assignment"_s, u"nmtmaster"_s,
                                  u"overwrite_predef"_s};
    return keys.contains(key) || key.startsWith("usdo_"_L1);
}

bool isPerLine(const QString &key)
{
    const Settings::Form form = Settings::form(key);
    return form == Settings::Form::PerLine || form == Settings::Form::TextPerLine;
}

/// The part of a list for a line; one beyond the end takes the last part.
QString partFor(const QString &value, quint8 line)
{
    const QStringList parts = value.split(u',');
    return parts.value(std::min<qsizetype>(line, parts.size() - 1)).trimmed();
}

/// All of a table, in the order of its keys.
QList<std::pair<QString, QString>> rowsOf(ObjectDataBase &store, QLatin1StringView table)
{
    QList<std::pair<QString, QString>> rows;
    std::ignore = store.statements().visit({"settings", u"select item, value from %1 order by item"_s.arg(table)}, {},
                                           [&rows](const ResultRow &row) {
                                               rows.append({row.text(0), row.text(1)});
                                           });
    return rows;
}

void add(Facts &facts, const QString &key, const QString &value)
{
    facts.append({.name = key, .value = value, .isUsual = value.isEmpty(), .isNumber = true});
}

/// "BaudRate_10" of line 0 and "BaudRate_10_1" of line 1: each key of a description that the line has.
QString descriptionKey(const QString &item, quint8 line)
{
    static const QRegularExpression withLine(u"^(.*?)_([0-9]+)$"_s);
    const QRegularExpressionMatch match = withLine.match(item);
    const bool isRate = item.startsWith("BaudRate_"_L1) && item.count(u'_') == 1;
    if (!match.hasMatch() || isRate)
        return line == 0 ? item : QString();
    return match.captured(2).toUInt() == line ? match.captured(1) : QString();
}

bool isInDescription(const QString &key)
{
    static const QStringList keys{u"VendorName"_s,    u"ProductName"_s, u"OrderCode"_s,
                                  u"LSS_Supported"_s, u"FileVersion"_s, u"FileRevision"_s};
    return keys.contains(key) || key.startsWith("BaudRate_"_L1);
}

} // namespace

Facts FactsOf::line(ObjectDataBase &store, DeviceLine &line, Scope scope)
{
    Facts facts;
    const auto text = [&facts](const QString &name, const QString &value, const QString &usual = {}) {
        facts.append({.name = name, .value = value, .isUsual = value == usual});
    };
    if (scope == Scope::Description)
        return facts;
    const StoreRecords::NodeData node = store.getNode(line.number()).value_or(StoreRecords::NodeData());
    text(u"type"_s, line.typeName());
    text(u"name"_s, node.name);
    text(u"prefix"_s, node.prefix, StoreRecords::NodeData().prefix);
    struct Flag
    {
        QLatin1StringView name;
        bool StoreRecords::NodeData::*member;
    };
    static constexpr Flag flags[] = {
        {"not generated"_L1, &StoreRecords::NodeData::excludegeneration},
        {"master"_L1, &StoreRecords::NodeData::ismaster},
        {"SYNC producer"_L1, &StoreRecords::NodeData::issyncproducer},
        {"SYNC consumer"_L1, &StoreRecords::NodeData::issyncconsumer},
        {"heartbeat consumer"_L1, &StoreRecords::NodeData::ishbconsumer},
        {"EMCY producer"_L1, &StoreRecords::NodeData::isemergencyproducer},
        {"EMCY consumer"_L1, &StoreRecords::NodeData::isemergencyconsumer},
        {"MPDOs"_L1, &StoreRecords::NodeData::ismpdosupported},
        {"gateway"_L1, &StoreRecords::NodeData::iscanopengateway},
        {"static PDOs"_L1, &StoreRecords::NodeData::allpdosstatic},
        {"boot-up manager"_L1, &StoreRecords::NodeData::isbootupmanager},
        {"configuration manager"_L1, &StoreRecords::NodeData::isconfigmanager},
        {"LSS slave"_L1, &StoreRecords::NodeData::lssslave},
    };
    for (const Flag &flag : flags)
        text(flag.name, node.*flag.member ? u"yes"_s : u"no"_s, u"no"_s);
    return facts;
}

Facts FactsOf::lineSettings(ObjectDataBase &store, DeviceLine &line, Scope scope)
{
    Facts facts;
    const LineProtocols &protocols = line.protocols();
    if (protocols.canOpen) {
        for (const auto &[item, value] : rowsOf(store, "DescriptionSettings"_L1)) {
            const QString key = descriptionKey(item, line.number());
            if (!key.isEmpty() && !isOfFile(key) && (scope == Scope::Project || isInDescription(key)))
                add(facts, key, value);
        }
    }
    if (scope == Scope::Description)
        return facts;
    for (const auto &[key, value] : rowsOf(store, "GeneralSettings"_L1)) {
        if (isPerLine(key) && (protocols.canOpen || !isOfCanOpen(key)))
            add(facts, key, partFor(value, line.number()));
    }
    if (protocols.j1939) {
        for (const auto &[key, value] : rowsOf(store, "J1939Settings"_L1))
            add(facts, key, partFor(value, line.number()));
    }
    return facts;
}

Facts FactsOf::projectSettings(ObjectDataBase &store)
{
    Facts facts;
    for (const auto &[key, value] : rowsOf(store, "GeneralSettings"_L1)) {
        if (!isPerLine(key) && !isLineType(key) && !isOfFile(key))
            add(facts, key, value);
    }
    for (const QLatin1StringView table : {"EnergyBusSettings"_L1, "MiscSettings"_L1}) {
        for (const auto &[key, value] : rowsOf(store, table)) {
            if (!isOfFile(key))
                add(facts, key, value);
        }
    }
    return facts;
}

QList<FactsOf::Service> FactsOf::services(ObjectDataBase &store, quint8 line)
{
    QList<Service> services;
    for (const StoreRecords::UDSService &service : store.getUDSServices(line)) {
        if (!service.active)
            continue;
        Service told{.sid = service.sid,
                     .name = UDSSIDDefinitions::getSIDNames().value(static_cast<UDS::SID>(service.sid))};
        add(told.facts, u"sessions"_s, store.getUDSServiceSessions(line, service.sid));
        add(told.facts, u"user levels"_s, store.getUDSServiceUserLevels(line, service.sid));
        add(told.facts, u"authentication"_s, store.getUDSServiceAuthentication(line, service.sid));
        services.append(told);
    }
    std::ranges::sort(services, {}, &Service::sid);
    return services;
}
