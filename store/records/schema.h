#pragma once

#include <QString>
#include <QStringList>

/// The layout of a project file, as data: tables and their columns (what older files lack of it: addedcolumns.h).
namespace ProjectSchema {

/// The tables that exist once, in the order of their creation.
enum class Table
{
    Strings,
    Nodes,
    GeneralSettings,
    DescriptionSettings,
    EnergyBusSettings,
    J1939Settings,
    MiscSettings,
    Connections,
    LockedMappings,
    LockedPDOs,
    VirtualNodes,
    SignalGroups,
    Signals,
    Groups
};

/// The tables that each line has, in the order of their creation.
enum class LineTable
{
    Objects,
    SubObjects,
    PGNs,
    SPNs,
    CANIDs,
    DataElements,
    UDSSettings
};

inline constexpr int globalTableCount = 14;
inline constexpr int lineTableCount = 7;

QLatin1StringView tableName(Table table);
QLatin1StringView familyName(LineTable family);
/// Name of a line's table: its family's name and the line number, "Objects0".
QString tableName(LineTable family, quint8 line);

/// "create table ..." or, with `ifNotExists`, "create table if not exists ...".
QString createStatement(Table table, bool ifNotExists = false);
QString createStatement(LineTable family, quint8 line, bool ifNotExists = true);
QStringList columnNames(LineTable family);
/// Those of them that hold integers.
QStringList numberColumns(LineTable family);
/// The columns as a select from a table of another layout takes them: 0 or an empty text for a NULL where none may be.
QStringList columnsWithoutNull(LineTable family);

} // namespace ProjectSchema
