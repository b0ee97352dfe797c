// The services of a line's UDS server (ISO 14229-1): `UDSSettings%1`.

#include "store/objectdatabase.h"

#include "store/schema.h"

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;

namespace {

/// The columns of a service beside its number.
const QStringList &udsColumns()
{
    static const QStringList columns = {u"active"_s, u"sessions"_s, u"userlevels"_s, u"authentication"_s};
    return columns;
}

QString columnSelect(const QString &columns, quint8 line)
{
    return u"select %1 from UDSSettings%2 where sid = ?"_s.arg(columns, QString::number(line));
}

} // namespace

bool ObjectDataBase::createUDSSettingsTable(quint8 line)
{
    return runSchema("createUDSSettingsTable", ProjectSchema::createStatement(LineTable::UDSSettings, line));
}

/// Writes one column of a service, which is a literal text. The row is replaced as a whole, so that a service without
/// one gets it here.
bool ObjectDataBase::setUDSColumn(quint8 line, quint8 sid, UDSColumn column, const QString &value)
{
    const std::optional<QString> text = LiteralText::stored(value, Quotes::Literal);
    if (blocked_ || !text)
        return false;
    const QString names = udsColumns().join(", "_L1);
    QVariantList values = {u"0"_s, QString(), QString(), QString()};
    statements_.visitFirst({"setUDSColumn", columnSelect(names, line)}, {sid}, [&](const ResultRow &row) {
        for (int i = 0; i < values.size(); ++i)
            values[i] = row.text(i);
    });
    values[static_cast<int>(column)] = *text;
    if (values.first().toString().isEmpty())
        values.first() = u"0"_s;
    values.prepend(sid);
    return run(
        "setUDSColumn",
        u"insert or replace into UDSSettings%1 (sid, %2) values(?, ?, ?, ?, ?)"_s.arg(QString::number(line), names),
        values);
}

QVariant ObjectDataBase::udsValue(quint8 line, quint8 sid, UDSColumn column)
{
    return statements_.value({nullptr, columnSelect(udsColumns().at(static_cast<int>(column)), line)}, {sid});
}

void ObjectDataBase::setUDSServiceActive(quint8 line, quint8 sid, bool active)
{
    setUDSColumn(line, sid, UDSColumn::Active, active ? u"1"_s : u"0"_s);
}

void ObjectDataBase::setUDSServiceSessions(quint8 line, quint8 sid, const QString &sessions)
{
    setUDSColumn(line, sid, UDSColumn::Sessions, sessions);
}

void ObjectDataBase::setUDSServiceUserLevels(quint8 line, quint8 sid, const QString &levels)
{
    setUDSColumn(line, sid, UDSColumn::UserLevels, levels);
}

void ObjectDataBase::setUDSServiceAuthentication(quint8 line, quint8 sid, const QString &text)
{
    setUDSColumn(line, sid, UDSColumn::Authentication, text);
}

bool ObjectDataBase::getUDSServiceActive(quint8 line, quint8 sid)
{
    return udsValue(line, sid, UDSColumn::Active).toInt() != 0;
}

QString ObjectDataBase::getUDSServiceSessions(quint8 line, quint8 sid)
{
    return udsValue(line, sid, UDSColumn::Sessions).toString();
}

QString ObjectDataBase::getUDSServiceUserLevels(quint8 line, quint8 sid)
{
    return udsValue(line, sid, UDSColumn::UserLevels).toString();
}

QString ObjectDataBase::getUDSServiceAuthentication(quint8 line, quint8 sid)
{
    return udsValue(line, sid, UDSColumn::Authentication).toString();
}

QList<ObjectDataBase::UDSService> ObjectDataBase::getUDSServices(quint8 line)
{
    QList<UDSService> services;
    statements_.visit({nullptr, u"select active, sid from UDSSettings%1"_s.arg(line)}, {}, [&](const ResultRow &row) {
        services.append({.sid = row.number<quint8>(1), .active = row.number<int>(0) != 0});
    });
    return services;
}
