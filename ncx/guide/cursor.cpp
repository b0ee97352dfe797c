#include "ncx/guide/cursor.h"

#include <algorithm>

using namespace Qt::StringLiterals;

Reply Cursor::page(const QJsonArray &entries, const QString &member, const QJsonObject &params)
{
    constexpr qsizetype pageSize = 20;
    qsizetype first = 0;
    if (const QJsonValue cursor = params.value("cursor"_L1); !cursor.isUndefined()) {
        bool isNumber = false;
        first = cursor.toString().toLongLong(&isNumber);
        if (!isNumber || first <= 0 || first >= entries.size())
            return Reply::invalidParams(
                u"Invalid params: \"cursor\" must be the nextCursor of a page before; leave it out for the first page."_s);
    }
    const qsizetype end = std::min(first + pageSize, entries.size());
    QJsonArray some;
    for (qsizetype place = first; place < end; ++place)
        some.append(entries.at(place));
    QJsonObject result{{member, some}};
    if (end < entries.size())
        result.insert(u"nextCursor"_s, QString::number(end));
    return Reply::ofMethod(result);
}
