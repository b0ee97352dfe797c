#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class Statements;

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
/// Those of them that hold integers.
QStringList numberColumns(LineTable family);
/// The columns as a select from a table of another layout takes them: 0 or an empty text for a NULL where none may be.
QStringList columnsWithoutNull(LineTable family);

/// A column that a file of an older version may lack.
struct AddedColumn
{
    QLatin1StringView table; ///< of a line's tables the family's name
    QLatin1StringView column;
    QLatin1StringView type;
    int belowVersion = 0; ///< of the files that get it; 0 for all
};

/// Columns that every open adds before it looks at single lines.
QList<AddedColumn> columnsOfEveryOpen();
/// Columns of a line's tables.
QList<AddedColumn> addedColumns(LineTable family);
/// "alter table ... add ..."
QString addStatement(const AddedColumn &column);
QString addStatement(const AddedColumn &column, quint8 line);

/// A statement that brings an older file up to date: a failure is logged unless it says that the column exists.
void migrationExec(Statements &statements, const QString &statement);

} // namespace ProjectSchema
