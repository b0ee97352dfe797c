#pragma once

#include "import/importreport.h"
#include "store/lineprotocols.h"

#include <QString>

#include <memory>
#include <optional>

class ObjectDataBase;

/// The choice of an importer by a file's name.
namespace ImportDispatch {

/// Imports a file and returns when that is done. False if no importer takes a file of this name, or if the file cannot
/// be read; what an importer finds wrong inside the file does not count.
bool importFile(const std::shared_ptr<ObjectDataBase> &store, const QString &path);

/// The same into a line of the project, with what was taken and dropped. Of a project as the file, the line takes the
/// line of the same number, or the only one that there is; without a line, each line takes that of its number, and of
/// any other file line 0 all.
bool importFile(const std::shared_ptr<ObjectDataBase> &store, const QString &path, std::optional<quint8> line,
                ImportReport &report);

/// True for the name of a DBC file, which `importDbc` takes.
bool isDbc(const QString &path);
/// The messages of a DBC file into a J1939 line or raw CAN line; `node` is the device among the file's nodes, or empty.
/// The reason for which that could not be; empty if it is done.
QString importDbc(const std::shared_ptr<ObjectDataBase> &store, const QString &path, quint8 line, const QString &node,
                  ImportReport &report);

/// The protocol that a line has to speak for a file of this name, or none for a project; nothing if no importer takes
/// it.
std::optional<LineProtocols> protocolFor(const QString &path);

} // namespace ImportDispatch
