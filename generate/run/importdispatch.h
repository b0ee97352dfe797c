#pragma once

#include <QString>

#include <memory>

class ObjectDataBase;

/// The choice of an importer by a file's name.
namespace ImportDispatch {

/// Imports a file and returns when that is done. False if no importer takes a file of this name, or if the file cannot
/// be read; what an importer finds wrong inside the file does not count.
bool importFile(const std::shared_ptr<ObjectDataBase> &store, const QString &path);

} // namespace ImportDispatch
