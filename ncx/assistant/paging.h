#pragma once

#include "mcp/call/tool.h"

#include <QJsonArray>

#include <algorithm>
#include <functional>

/// Lists in pages.
namespace Paging {

using Qt::StringLiterals::operator""_L1;
using Qt::StringLiterals::operator""_s;

inline constexpr qint64 usualLimit = 50;
inline constexpr Property offset = Properties::integer(
    "offset"_L1, 0, 1000000, "Number of entries to skip; nextOffset of the page before (default: 0)"_L1);
inline constexpr Property limit = Properties::integer("limit"_L1, 1, 1000, "Entries at most (default: 50)"_L1);

/// The page of a list of `total` entries that the call asks for; `make` makes each of it by its place.
inline QJsonObject page(const ToolCall &call, qsizetype total, const std::function<QJsonValue(qsizetype)> &make)
{
    const auto first = std::min<qsizetype>(call.number<qsizetype>(offset.name), total);
    const qsizetype size = call.has(limit.name) ? call.number<qsizetype>(limit.name) : usualLimit;
    const qsizetype end = std::min(first + size, total);
    QJsonArray items;
    for (qsizetype place = first; place < end; ++place)
        items.append(make(place));
    QJsonObject json{{u"items"_s, items}, {u"total"_s, total}, {u"offset"_s, first}};
    if (end < total)
        json.insert(u"nextOffset"_s, end);
    return json;
}

} // namespace Paging
