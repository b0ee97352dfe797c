#pragma once

#include <QLatin1StringView>
#include <QString>

#include <span>

/// The settings of J1939 lines as a table. Each has a value per line, a number.
namespace J1939Keys {

struct Row
{
    QString key;
    qint64 highest; ///< 1 for a switch
    QString meaning;
};

std::span<const Row> all();
/// Null for another key.
const Row *find(const QString &key);

} // namespace J1939Keys
