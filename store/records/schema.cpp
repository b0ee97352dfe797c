#include "store/records/schema.h"

#include "store/records/columntypes.h"

#include <array>
#include <span>

using namespace Qt::StringLiterals;

namespace ProjectSchema {
namespace {

using namespace ColumnTypes;

struct Column
{
    QLatin1StringView name;
    QLatin1StringView type;
};

constexpr auto integerKey = "integer primary key"_L1;
constexpr auto integerNotNull = "integer not null"_L1;
constexpr auto textNotNull = "text not null"_L1;

constexpr Column stringColumns[] = {{"id"_L1, integerKey}, {"string"_L1, text}};

constexpr Column nodeColumns[] = {
    {"nodeId"_L1, integerKey},
    {"name"_L1, text},
    {"edspath"_L1, text},
    {"xddpath"_L1, text},
    {"dcfpath"_L1, text},
    {"tpdocnt"_L1, integer},
    {"rpdocnt"_L1, integer},
    {"ismaster"_L1, integer},
    {"issyncproducer"_L1, integer},
    {"issyncconsumer"_L1, integer},
    {"ishbconsumer"_L1, integer},
    {"isemergencyproducer"_L1, integer},
    {"isemergencyconsumer"_L1, integer},
    {"ismpdosupported"_L1, integer},
    {"iscanopengateway"_L1, integer},
    {"allpdosstatic"_L1, integer},
    {"excludegeneration"_L1, integer},
    {"generatedcf"_L1, integer},
    {"prefix"_L1, text},
    {"outputpath"_L1, text},
    {"iconpath"_L1, text},
    {"isbootupmanager"_L1, integer},
    {"isconfigmanager"_L1, integer},
    {"excludepdolinking"_L1, integer},
    {"multilinedata"_L1, integer},
    {"lssslave"_L1, ""_L1}, // without a type in every new file so far
};

constexpr Column settingColumns[] = {{"item"_L1, "text unique"_L1}, {"value"_L1, text}};

constexpr Column connectionColumns[] = {
    {"prodnode"_L1, integer}, {"prodindex"_L1, integer}, {"prodsub"_L1, integer},  {"connode"_L1, integer},
    {"conindex"_L1, integer}, {"consub"_L1, integer},    {"priority"_L1, integer},
};

constexpr Column lockColumns[] = {{"node"_L1, integer}, {"pdoindex"_L1, integer}};

constexpr Column virtualNodeColumns[] = {
    {"virtualnodeid"_L1, integerKey}, {"line"_L1, integer}, {"dbnodeid"_L1, integer}, {"name"_L1, text}};

constexpr Column signalGroupColumns[] = {{"sigid"_L1, integerKey}, {"name"_L1, text}};

constexpr Column networkSignalColumns[] = {
    {"sigid"_L1, integerKey},       {"nodeid"_L1, integer},
    {"name"_L1, integer},           {"datatype"_L1, integerNotNull},
    {"accesstype"_L1, textNotNull}, {"defaultvalue"_L1, text},
    {"signalgroup"_L1, integer},    {"ref"_L1, integer},
    {"transmittype"_L1, integer},   {"transmittrigger"_L1, integer},
    {"eventtimer"_L1, integer},     {"syncvalue"_L1, integer},
    {"syncstartvalue"_L1, integer}, {"routing"_L1, integer},
};

constexpr Column groupColumns[] = {{"name"_L1, text}, {"nodeidlist"_L1, text}};
constexpr Column lateGroupColumns[] = {{"groupid"_L1, integerKey}, {"name"_L1, text}, {"nodeidlist"_L1, text}};

constexpr Column objectTableColumns[] = {
    {"objectindex"_L1, integerKey},    {"name"_L1, integer},        {"datatype"_L1, integerNotNull},
    {"objecttype"_L1, integerNotNull}, {"description"_L1, integer}, {"category"_L1, integer},
    {"device_class"_L1, integer},      {"fwsupported"_L1, integer}, {"metadata"_L1, blob},
};

constexpr Column subObjectColumns[] = {
    {"objectindex"_L1, integerNotNull},
    {"subindex"_L1, integerNotNull},
    {"name"_L1, integer},
    {"datatype"_L1, integerNotNull},
    {"accesstype"_L1, textNotNull},
    {"defaultvalue"_L1, text},
    {"currentvalue"_L1, text},
    {"pdomapping"_L1, integer},
    {"lowlimit"_L1, text},
    {"uplimit"_L1, text},
    {"size"_L1, integer},
    {"defaultineds"_L1, integer},
    {"limitineds"_L1, integer},
    {"refuseread"_L1, integer},
    {"refusewrite"_L1, integer},
    {"allowedaccesstypes"_L1, text},
    {"implementation"_L1, integerNotNull},
    {"varname"_L1, text},
    {"description"_L1, integer},
    {"category"_L1, integer},
    {"writedefaulttoeds"_L1, integer},
    {"cyclicread"_L1, integer},
    {"dcfcomponent"_L1, integer},
    {"changedbyuser"_L1, integer},
    {"wizardsource"_L1, integer},
    {"denotation"_L1, integer},
    {"sharedlines"_L1, integer},
    {"managedbyqlk"_L1, integer},
    {"signalid"_L1, integer},
    {"nvstorage"_L1, integer},
    {"metadata"_L1, blob},
};

constexpr Column pgnTableColumns[] = {
    {"number"_L1, integerNotNull},
    {"edp_dp_key"_L1, integer},
    {"priority"_L1, integer},
    {"cycletime_ms"_L1, integer},
    {"inhibittime_ms"_L1, integer},
    {"mappingcount"_L1, integer},
    {"direction"_L1, integer},
    {"name"_L1, integer},
    {"desc"_L1, integer},
    {"issafe"_L1, integer},
    {"srvt_ms"_L1, integer},
    {"FD_TrailerFormat"_L1, integer},
    {"FD_AssuranceType"_L1, integer},
    {"FD_AssuranceDataSize"_L1, integer},
    {"multisourceaddress"_L1, integer},
    {"safetytype"_L1, integer},
    {"FD_DataId"_L1, integer},
};

constexpr Column spnColumns[] = {
    {"pgnnumber"_L1, integerNotNull},
    {"spnnumber"_L1, integerNotNull},
    {"datatype"_L1, integer},
    {"implementation"_L1, integer},
    {"varname"_L1, text},
    {"defaultvalue"_L1, text},
    {"name"_L1, integer},
    {"desc"_L1, integer},
    {"pos"_L1, integer},
    {"bitsize"_L1, integer},
    {"direction"_L1, integer},
    {"slot_df"_L1, integer},
    {"bitposition"_L1, integer},
};

constexpr Column canidColumns[] = {
    {"id"_L1, integerNotNull},    {"cycletime_ms"_L1, integer}, {"inhibittime_ms"_L1, integer},
    {"mappingcount"_L1, integer}, {"direction"_L1, integer},    {"name"_L1, integer},
    {"desc"_L1, integer},
};

constexpr Column dataElementColumns[] = {
    {"canid"_L1, integerNotNull},   {"number"_L1, integerNotNull}, {"datatype"_L1, integer},
    {"implementation"_L1, integer}, {"varname"_L1, text},          {"defaultvalue"_L1, text},
    {"name"_L1, integer},           {"desc"_L1, integer},          {"pos"_L1, integer},
    {"bitsize"_L1, integer},        {"direction"_L1, integer},     {"bitpos"_L1, integer},
};

constexpr Column udsColumns[] = {
    {"sid"_L1, integerNotNull}, {"active"_L1, integer},      {"sessions"_L1, text},
    {"userlevels"_L1, text},    {"authentication"_L1, text},
};

struct TableLayout
{
    QLatin1StringView name;
    std::span<const Column> columns;
    QLatin1StringView constraint = {};
};

constexpr std::array<TableLayout, globalTableCount> globalTables = {{
    {"Strings"_L1, stringColumns},
    {"Nodes"_L1, nodeColumns},
    {"GeneralSettings"_L1, settingColumns},
    {"DescriptionSettings"_L1, settingColumns},
    {"EnergyBusSettings"_L1, settingColumns},
    {"J1939Settings"_L1, settingColumns},
    {"MiscSettings"_L1, settingColumns},
    {"Connections"_L1, connectionColumns},
    {"LockedMappings"_L1, lockColumns},
    {"LockedPDOs"_L1, lockColumns},
    {"VirtualNodes"_L1, virtualNodeColumns},
    {"SignalGroups"_L1, signalGroupColumns},
    {"Signals"_L1, networkSignalColumns},
    {"Groups"_L1, groupColumns},
}};

constexpr std::array<TableLayout, lineTableCount> lineTables = {{
    {"Objects"_L1, objectTableColumns},
    {"SubObjects"_L1, subObjectColumns, "UNIQUE(objectindex,subindex)"_L1},
    {"PGNs"_L1, pgnTableColumns},
    {"SPNs"_L1, spnColumns},
    {"CANIDs"_L1, canidColumns},
    {"DataElements"_L1, dataElementColumns},
    {"UDSSettings"_L1, udsColumns, "UNIQUE(sid)"_L1},
}};

const TableLayout &layoutOf(Table table)
{
    return globalTables.at(static_cast<std::size_t>(table));
}

const TableLayout &layoutOf(LineTable family)
{
    return lineTables.at(static_cast<std::size_t>(family));
}

QString createStatement(const QString &name, std::span<const Column> columns, QLatin1StringView constraint,
                        bool ifNotExists)
{
    QStringList parts;
    for (const Column &column : columns)
        parts.append(column.type.isEmpty() ? QString(column.name) : column.name + ' '_L1 + column.type);
    if (!constraint.isEmpty())
        parts.append(constraint);
    return u"create table %1%2 (%3)"_s.arg(ifNotExists ? u"if not exists "_s : QString(), name, parts.join(", "_L1));
}

} // namespace

QLatin1StringView tableName(Table table)
{
    return layoutOf(table).name;
}

QLatin1StringView familyName(LineTable family)
{
    return layoutOf(family).name;
}

QString tableName(LineTable family, quint8 line)
{
    return familyName(family) + QString::number(line);
}

QString createStatement(Table table, bool ifNotExists)
{
    // A file that never had the groups of the network view gets them with a key of their own.
    const std::span<const Column> columns =
        table == Table::Groups && ifNotExists ? std::span<const Column>(lateGroupColumns) : layoutOf(table).columns;
    return createStatement(tableName(table), columns, {}, ifNotExists);
}

QString createStatement(LineTable family, quint8 line, bool ifNotExists)
{
    return createStatement(tableName(family, line), layoutOf(family).columns, layoutOf(family).constraint, ifNotExists);
}

QStringList columnNames(LineTable family)
{
    QStringList names;
    for (const Column &column : layoutOf(family).columns)
        names.append(column.name);
    return names;
}

QStringList numberColumns(LineTable family)
{
    QStringList names;
    for (const Column &column : layoutOf(family).columns) {
        if (column.type == integer || column.type == integerNotNull)
            names.append(column.name);
    }
    return names;
}

QStringList columnsWithoutNull(LineTable family)
{
    QStringList names;
    for (const Column &column : layoutOf(family).columns) {
        if (column.type == integerNotNull)
            names.append(u"ifnull(%1, 0)"_s.arg(column.name));
        else if (column.type == textNotNull)
            names.append(u"ifnull(%1, '')"_s.arg(column.name));
        else
            names.append(column.name);
    }
    return names;
}

} // namespace ProjectSchema
