#pragma once

class ProjectFile;
class QString;
class ProjectTables;

/// The life of a project that is kept as text (`DatabaseTextConverter`).
namespace TextProject {

/// Reads a text into a new project; the result is the conversion's.
[[nodiscard]] bool open(ProjectFile &file, ProjectTables &tables, const QString &path);
/// True in any case where a project is open; whether it could be written is told by the file's last error.
[[nodiscard]] bool save(ProjectFile &file, ProjectTables &tables, const QString &path);

} // namespace TextProject
