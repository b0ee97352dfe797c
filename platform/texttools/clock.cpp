#include "texttools/clock.h"

using namespace Qt::StringLiterals;

QDateTime TextTools::currentDateTime()
{
    bool ok = false;
    const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&ok);
    // Kept in UTC: as a local time the hour that the zone skips in spring would not exist.
    return ok ? QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC) : QDateTime::currentDateTime();
}

QString TextTools::currentDateText()
{
    return currentDateTime().toString(u"ddd MMM d HH:mm:ss yyyy"_s);
}
