#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The layout of a project file, as data: tables, their columns, and the columns that older files lack.
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
/// Name of a line's table: its family's name and the line number, "Objects0".
QString tableName(LineTable family, quint8 line);

/// "create table ..." or, with `ifNotExists`, "create table if not exists ...".
QString createStatement(Table table, bool ifNotExists = false);
QString createStatement(LineTable family, quint8 line, bool ifNotExists = true);
QStringList columnNames(LineTable family);
/// The columns as a select from a table of another layout takes them: 0 or an empty text for a NULL where none may be.
QStringList columnsWithoutNull(LineTable family);

/// A column that a file of an older version may lack.
struct AddedColumn
{
    QLatin1StringView table; ///< with "%1" in place of the line number in a line's table
    QLatin1StringView column;
    QLatin1StringView type;
};

/// "alter table ... add ..."
QString addStatement(const AddedColumn &column, quint8 line = 0);

/// Columns that every open adds before it looks at single lines, whatever the file's version.
QList<AddedColumn> columnsOfEveryOpen();
/// The columns of each line, in the order of an open, for files below the version where that is not 0.
struct LineColumn
{
    AddedColumn column;
    int belowVersion;
};
QList<LineColumn> objectColumns();
QList<LineColumn> signalColumns();
QList<LineColumn> pgnColumns();

} // namespace ProjectSchema
