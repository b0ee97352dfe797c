// The parameter groups and signals of a J1939 line: `PGNs%1` and `SPNs%1`.

#include "store/objectdatabase.h"

#include "store/recordcolumns.h"
#include "store/schema.h"

#include <QSqlQuery>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::pooled;
using RecordColumns::Row;
using RecordColumns::text;

namespace {

using PGN = ObjectDataBase::PGN;
using SPN = ObjectDataBase::SPN;

/// What a row holds beside its key, which is the number and the direction.
constexpr std::array<Column<PGN>, 15> pgnColumnTable = {
    number<&PGN::edp_dp_key>("edp_dp_key"_L1),
    number<&PGN::priority>("priority"_L1),
    number<&PGN::cycletime_ms>("cycletime_ms"_L1),
    number<&PGN::inhibittime_ms>("inhibittime_ms"_L1),
    number<&PGN::mappingcount>("mappingcount"_L1),
    pooled<&PGN::name>("name"_L1),
    pooled<&PGN::desc>("desc"_L1),
    number<&PGN::issafe>("issafe"_L1),
    number<&PGN::srvt_ms>("srvt_ms"_L1),
    number<&PGN::FD_TrailerFormat>("FD_TrailerFormat"_L1),
    number<&PGN::FD_AssuranceType>("FD_AssuranceType"_L1),
    number<&PGN::FD_AssuranceDataSize>("FD_AssuranceDataSize"_L1),
    number<&PGN::multisourceaddress>("multisourceaddress"_L1),
    number<&PGN::safetytype>("safetytype"_L1),
    number<&PGN::FD_DataID>("FD_DataId"_L1),
};
constexpr std::span<const Column<PGN>> pgnColumns = pgnColumnTable;

/// What a row holds beside its key, which is the PGN, the direction and the SPN.
constexpr std::array<Column<SPN>, 10> spnColumnTable = {
    number<&SPN::datatype>("datatype"_L1), number<&SPN::implementation>("implementation"_L1),
    text<&SPN::varname>("varname"_L1),     text<&SPN::defaultvalue>("defaultvalue"_L1),
    pooled<&SPN::name>("name"_L1),         pooled<&SPN::desc>("desc"_L1),
    number<&SPN::pos>("pos"_L1),           number<&SPN::bitsize>("bitsize"_L1),
    number<&SPN::slot_df>("slot_df"_L1),   number<&SPN::bitposition>("bitposition"_L1),
};
constexpr std::span<const Column<SPN>> spnColumns = spnColumnTable;

Row pgnRow(quint8 line, quint32 number, quint8 direction)
{
    return {ProjectSchema::tableName(LineTable::PGNs, line), {{"number"_L1, number}, {"direction"_L1, direction}}};
}

Row spnRow(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return {ProjectSchema::tableName(LineTable::SPNs, line),
            {{"pgnnumber"_L1, pgn}, {"spnnumber"_L1, spn}, {"direction"_L1, direction}}};
}

constexpr int spnKeyColumns = 3;

QString spnSelect(quint8 line, const QString &rest)
{
    return u"select pgnnumber, direction, spnnumber, %1 from SPNs%2 %3"_s.arg(RecordColumns::names(spnColumns),
                                                                              QString::number(line), rest);
}

SPN spnOfRow(const QSqlQuery &query, StringPool &pool)
{
    SPN data;
    data.pgnnumber = static_cast<quint32>(query.value(0).toLongLong());
    data.direction = static_cast<quint8>(query.value(1).toLongLong());
    data.spnnumber = static_cast<quint32>(query.value(2).toLongLong());
    RecordColumns::readRow(spnColumns, query, data, pool, spnKeyColumns);
    return data;
}

} // namespace

/// Completes the table of a line that came from an old file without having been opened as a project.
void ObjectDataBase::ensurePGNColumns(quint8 line)
{
    QSqlQuery query = newQuery();
    for (const auto &[column, belowVersion] : ProjectSchema::pgnColumns())
        migrationExec(query, ProjectSchema::addStatement(column, line));
}

bool ObjectDataBase::addPGN(quint8 line, quint32 number, const PGN &data)
{
    if (blocked_)
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(pgnColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = pgnRow(line, number, data.direction);
    const QString insert = row.insert(pgnColumns, data, ids);
    const QString update = row.update(pgnColumns, data, ids);
    // Only a table that lacks columns fails here, so a complete one is never asked for them.
    if (!writeRow("addPGN", row, insert, update)) {
        ensurePGNColumns(line);
        if (!writeRow("addPGN", row, insert, update))
            return false;
    }
    notify(Change::PGNWritten, {.line = line, .pgn = number, .direction = data.direction});
    return true;
}

bool ObjectDataBase::addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data)
{
    if (blocked_)
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(spnColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = spnRow(line, pgn, direction, spn);
    if (!writeRow("addSPN", row, row.insert(spnColumns, data, ids), row.update(spnColumns, data, ids)))
        return false;
    notify(Change::SPNWritten, {.line = line, .pgn = pgn, .spn = spn});
    return true;
}

bool ObjectDataBase::removePGN(quint8 line, quint32 number, quint8 direction)
{
    if (blocked_)
        return false;
    const Transaction transaction(*this);
    run("removePGN", u"delete from SPNs%1 where pgnnumber = %2 and direction = %3"_s.arg(
                         QString::number(line), QString::number(number), QString::number(direction)));
    if (!run("removePGN", pgnRow(line, number, direction).remove()))
        return false;
    notify(Change::PGNRemoved, {.line = line, .pgn = number, .direction = direction});
    return true;
}

bool ObjectDataBase::removeSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    if (blocked_ || !run("removeSPN", spnRow(line, pgn, direction, spn).remove()))
        return false;
    notify(Change::SignalRemoved, {.line = line, .pgn = pgn, .spn = spn, .direction = direction});
    return true;
}

bool ObjectDataBase::pgnExists(quint8 line, quint32 number, quint8 direction)
{
    return selectsRow(pgnRow(line, number, direction).select(u"1"_s));
}

bool ObjectDataBase::spnExists(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return selectsRow(spnRow(line, pgn, direction, spn).select(u"1"_s));
}

bool ObjectDataBase::getPGN(quint8 line, quint32 number, quint8 direction, PGN &data)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getPGN", query, pgnRow(line, number, direction).select(RecordColumns::names(pgnColumns))) ||
        !query.next())
        return false;
    data.number = number;
    data.direction = direction;
    RecordColumns::readRow(pgnColumns, query, data, strings_);
    return true;
}

QString ObjectDataBase::getPGNName(quint8 line, quint32 number, quint8 direction)
{
    return selectText(pgnRow(line, number, direction));
}

quint16 ObjectDataBase::getPGNMappingCount(quint8 line, quint32 number, quint8 direction)
{
    return static_cast<quint16>(selectValue(pgnRow(line, number, direction).select(u"mappingcount"_s)).toUInt());
}

QList<quint32> ObjectDataBase::getPGNList(quint8 line, quint8 direction, bool leaveOutSafe)
{
    QStringList conditions;
    if (direction != 0)
        conditions.append(u"direction = %1"_s.arg(direction));
    if (leaveOutSafe)
        conditions.append(u"(issafe = 0 or issafe is NULL)"_s);
    const QString where = conditions.isEmpty() ? QString() : "where "_L1 + conditions.join(" AND "_L1);
    return selectNumbers(u"select number from PGNs%1 %2 order by number asc"_s.arg(QString::number(line), where));
}

QList<ObjectDataBase::PGN> ObjectDataBase::getAllPGNs(quint8 line)
{
    strings_.loadTexts();
    QList<PGN> pgns;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getAllPGNs", query,
             u"select number, direction, %1 from PGNs%2 order by direction desc, number"_s.arg(
                 RecordColumns::names(pgnColumns), QString::number(line))))
        return pgns;
    while (query.next()) {
        PGN &pgn = pgns.emplace_back();
        pgn.number = static_cast<quint32>(query.value(0).toLongLong());
        pgn.direction = static_cast<quint8>(query.value(1).toLongLong());
        RecordColumns::readRow(pgnColumns, query, pgn, strings_, 2);
    }
    return pgns;
}

QList<ObjectDataBase::SPN> ObjectDataBase::getAllSPNs(quint8 line)
{
    strings_.loadTexts();
    QList<SPN> spns;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getAllSPNs", query, spnSelect(line, u"order by pgnnumber asc, pos asc, rowid"_s)))
        return spns;
    while (query.next())
        spns.append(spnOfRow(query, strings_));
    return spns;
}

QHash<quint32, QString> ObjectDataBase::getPGNNames(quint8 line, quint8 direction)
{
    return selectNames(u"select number, name from PGNs%1 where direction = %2"_s.arg(line).arg(direction));
}

bool ObjectDataBase::getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, SPN &data)
{
    if (const SPN *cached = spnCache_.find({line, pgn, direction, spn})) {
        data = *cached;
        return true;
    }
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getSPN", query, spnSelect(line, "where "_L1 + spnRow(line, pgn, direction, spn).condition())) ||
        !query.next())
        return false;
    data = spnOfRow(query, strings_);
    return true;
}

QList<quint32> ObjectDataBase::getSPNList(quint8 line, quint32 pgn, quint8 direction)
{
    if (const QList<quint32> *cached = spnCache_.list({line, pgn, direction}))
        return *cached;
    return selectNumbers(
        u"select spnnumber from SPNs%1 where pgnnumber = %2 and direction= %3 order by pos asc, rowid"_s.arg(
            QString::number(line), QString::number(pgn), QString::number(direction)));
}

QString ObjectDataBase::getSPNName(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return selectText(spnRow(line, pgn, direction, spn));
}

quint32 ObjectDataBase::getSPNDataType(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return selectValue(spnRow(line, pgn, direction, spn).select(u"datatype"_s)).toUInt();
}

bool ObjectDataBase::cacheSPNs(quint8 line)
{
    spnCache_.clear();
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("cacheSPNs", query, spnSelect(line, u"order by pgnnumber asc, pos asc, rowid"_s)))
        return false;
    while (query.next())
        spnCache_.add(line, spnOfRow(query, strings_));
    return true;
}

bool ObjectDataBase::anySafePGN(quint8 line)
{
    return selectsRow(u"select number from PGNs%1 where direction in (%2, %3) and issafe <> 0 limit 1"_s.arg(
        QString::number(line), QString::number(receive), QString::number(transmit)));
}
