#pragma once

#include <QDateTime>

namespace TextTools {

/// The moment that goes into everything the program writes: the time of day, or, where the environment variable
/// SOURCE_DATE_EPOCH holds a number of seconds, that moment in UTC, so that a build can be repeated byte for byte.
QDateTime currentDateTime();

/// That moment as generated files tell it, "Sun Nov 15 09:12:00 2026": without a zone, in English everywhere.
QString currentDateText();

} // namespace TextTools
