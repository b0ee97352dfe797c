// The services of a line's UDS server (ISO 14229-1): `UDSSettings%1`.

#include "store/objectdatabase.h"

#include "store/schema.h"

#include <QSqlQuery>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;

namespace {

QString columnSelect(const QString &columns, quint8 line, quint8 sid)
{
    return u"select %1 from UDSSettings%2 where sid = %3"_s.arg(columns, QString::number(line), QString::number(sid));
}

} // namespace

bool ObjectDataBase::createUDSSettingsTable(quint8 line)
{
    return run("createUDSSettingsTable", ProjectSchema::createStatement(LineTable::UDSSettings, line));
}

/// Writes one column of a service. The row is replaced as a whole, so that a service without one gets it here.
void ObjectDataBase::setUDSColumn(quint8 line, quint8 sid, const QString &column, const QString &value)
{
    if (blocked_)
        return;
    static const QStringList columns = {u"active"_s, u"sessions"_s, u"userlevels"_s, u"authentication"_s};
    const QString names = columns.join(", "_L1);
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    const bool exists = run("setUDSColumn", query, columnSelect(names, line, sid)) && query.next();
    QStringList values;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const QString stored = exists ? query.value(static_cast<int>(i)).toString() : QString();
        values.append(columns.at(i) == column ? value : stored);
    }
    query.finish();
    if (values.first().isEmpty())
        values.first() = u"0"_s;
    run("setUDSColumn", query,
        u"insert or replace into UDSSettings%1 (sid, %2) values(%3, %4, '%5', '%6', '%7')"_s.arg(
            QString::number(line), names, QString::number(sid), values.at(0), values.at(1), values.at(2),
            values.at(3)));
}

void ObjectDataBase::setUDSServiceActive(quint8 line, quint8 sid, bool active)
{
    setUDSColumn(line, sid, u"active"_s, active ? u"1"_s : u"0"_s);
}

void ObjectDataBase::setUDSServiceSessions(quint8 line, quint8 sid, const QString &sessions)
{
    setUDSColumn(line, sid, u"sessions"_s, sessions);
}

void ObjectDataBase::setUDSServiceUserLevels(quint8 line, quint8 sid, const QString &levels)
{
    setUDSColumn(line, sid, u"userlevels"_s, levels);
}

void ObjectDataBase::setUDSServiceAuthentication(quint8 line, quint8 sid, const QString &text)
{
    setUDSColumn(line, sid, u"authentication"_s, text);
}

bool ObjectDataBase::getUDSServiceActive(quint8 line, quint8 sid)
{
    return selectValue(columnSelect(u"active"_s, line, sid)).toInt() != 0;
}

QString ObjectDataBase::getUDSServiceSessions(quint8 line, quint8 sid)
{
    return selectValue(columnSelect(u"sessions"_s, line, sid)).toString();
}

QString ObjectDataBase::getUDSServiceUserLevels(quint8 line, quint8 sid)
{
    return selectValue(columnSelect(u"userlevels"_s, line, sid)).toString();
}

QString ObjectDataBase::getUDSServiceAuthentication(quint8 line, quint8 sid)
{
    return selectValue(columnSelect(u"authentication"_s, line, sid)).toString();
}

QList<ObjectDataBase::UDSService> ObjectDataBase::getUDSServices(quint8 line)
{
    QList<UDSService> services;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (execQuery(query, u"select active, sid from UDSSettings%1"_s.arg(line))) {
        while (query.next())
            services.append(
                {.sid = static_cast<quint8>(query.value(1).toUInt()), .active = query.value(0).toInt() != 0});
    }
    return services;
}
