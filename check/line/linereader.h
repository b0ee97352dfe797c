#pragma once

#include "check/line/checkedsubjects.h"

#include <optional>
#include <vector>

class ObjectDataBase;

/// Reads what is checked out of the store.
namespace LineReader {

/// All objects or messages of a line in their order, from one scan of each table.
template <class Subject>
std::vector<Subject> all(ObjectDataBase &store, quint8 line);
template <>
std::vector<CheckedObject> all(ObjectDataBase &store, quint8 line);
template <>
std::vector<CheckedPGN> all(ObjectDataBase &store, quint8 line);
template <>
std::vector<CheckedCanId> all(ObjectDataBase &store, quint8 line);

/// The one with a key, if the line has it.
template <class Subject>
std::optional<Subject> one(ObjectDataBase &store, quint8 line, quint64 key);
template <>
std::optional<CheckedObject> one(ObjectDataBase &store, quint8 line, quint64 key);
template <>
std::optional<CheckedPGN> one(ObjectDataBase &store, quint8 line, quint64 key);
template <>
std::optional<CheckedCanId> one(ObjectDataBase &store, quint8 line, quint64 key);

LineSettings settings(ObjectDataBase &store, quint8 line);

} // namespace LineReader
