#include "texttools/clock.h"

QDateTime TextTools::currentDateTime()
{
    bool ok = false;
    const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&ok);
    if (!ok)
        return QDateTime::currentDateTime();
    // Printed like any time of day: without the zone that Qt puts behind a UTC time.
    const QDateTime moment = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    return {moment.date(), moment.time()};
}
