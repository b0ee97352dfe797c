#include "store/tables/udstables.h"

#include "store/records/schema.h"

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

bool UdsTables::createUDSSettingsTable(quint8 line)
{
    return runSchema("createUDSSettingsTable", ProjectSchema::createStatement(LineTable::UDSSettings, line));
}

/// The row is replaced as a whole.
bool UdsTables::setColumn(quint8 line, quint8 sid, Column column, const QString &value)
{
    const std::optional<QString> text = LiteralText::stored(value, Quotes::Literal);
    if (isBlocked() || !text)
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

QVariant UdsTables::columnOf(quint8 line, quint8 sid, Column column)
{
    return statements_.value({nullptr, columnSelect(udsColumns().at(static_cast<int>(column)), line)}, {sid});
}

bool UdsTables::setUDSServiceActive(quint8 line, quint8 sid, bool active)
{
    return setColumn(line, sid, Column::Active, active ? u"1"_s : u"0"_s);
}

bool UdsTables::setUDSServiceSessions(quint8 line, quint8 sid, const QString &sessions)
{
    return setColumn(line, sid, Column::Sessions, sessions);
}

bool UdsTables::setUDSServiceUserLevels(quint8 line, quint8 sid, const QString &levels)
{
    return setColumn(line, sid, Column::UserLevels, levels);
}

bool UdsTables::setUDSServiceAuthentication(quint8 line, quint8 sid, const QString &authentication)
{
    return setColumn(line, sid, Column::Authentication, authentication);
}

bool UdsTables::getUDSServiceActive(quint8 line, quint8 sid)
{
    return columnOf(line, sid, Column::Active).toInt() != 0;
}

QString UdsTables::getUDSServiceSessions(quint8 line, quint8 sid)
{
    return columnOf(line, sid, Column::Sessions).toString();
}

QString UdsTables::getUDSServiceUserLevels(quint8 line, quint8 sid)
{
    return columnOf(line, sid, Column::UserLevels).toString();
}

QString UdsTables::getUDSServiceAuthentication(quint8 line, quint8 sid)
{
    return columnOf(line, sid, Column::Authentication).toString();
}

bool UdsTables::anyUDSServiceActive(quint8 line)
{
    return statements_.hasRow({nullptr, u"select sid from UDSSettings%1 where active = 1"_s.arg(line)});
}

QList<UdsTables::Service> UdsTables::getUDSServices(quint8 line)
{
    return statements_.list(
        {nullptr, u"select active, sid from UDSSettings%1"_s.arg(line)}, {},
        [](const ResultRow &row) { return Service{.sid = row.number<quint8>(1), .active = row.number<int>(0) != 0}; });
}
