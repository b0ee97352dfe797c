#pragma once

#include <QtGlobal>

class ProjectTables;
class QString;

/// The steps by which an open brings a file of any age to the current layout.
namespace Migrations {

inline constexpr int schemaVersion = 107;

/// The schema version of the file, as the last save has told it.
int versionOf(ProjectTables &tables);
/// Makes the tables and columns that older files lack.
void addMissingTablesAndColumns(ProjectTables &tables);
/// Completes what a line has in the settings: its type and its UDS services.
[[nodiscard]] bool completeLine(ProjectTables &tables, quint8 line);
/// Puts the contents right, once the layout is. `path` is that of the user's file.
[[nodiscard]] bool repair(ProjectTables &tables, int fileVersion, const QString &path);
/// Takes out of the file what deleted rows have left.
[[nodiscard]] bool compact(ProjectTables &tables);

} // namespace Migrations
