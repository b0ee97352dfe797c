#include "texttools/clock.h"

QDateTime TextTools::currentDateTime()
{
    bool ok = false;
    const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&ok);
    return ok ? QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC) : QDateTime::currentDateTime();
}
