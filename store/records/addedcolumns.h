#pragma once

#include "store/records/schema.h"

#include <QList>

class Statements;

namespace ProjectSchema {

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
