#pragma once

#include <QString>

class Statements;

/// The hash that tells whether a project was changed by anything but this program.
namespace FileHash {

/// SHA-256 over all tables but the rows that hold the hash itself, in lower-case hexadecimal.
QString compute(Statements &statements);

} // namespace FileHash
