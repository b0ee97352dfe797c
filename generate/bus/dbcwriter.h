#pragma once

#include "candb/candb.h"

#include <optional>

class Utf8Sink;

/// Prints a database in the form DBC.
void writeDbc(Utf8Sink &sink, const CANdb::Database &database);

/// A text as it stands between the quotes of a DBC file: quotes inside get a backslash. A backslash at its end would do
/// that to the closing quote, and gets a blank behind it.
QString dbcText(QString text);

/// The number that the value of an attribute is; nothing for a text.
std::optional<double> dbcNumber(const QString &value);
