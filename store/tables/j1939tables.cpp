#include "store/tables/j1939tables.h"

#include "store/tables/schema.h"

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::pooled;
using RecordColumns::Row;
using RecordColumns::text;

namespace {

using PGN = StoreRecords::PGN;
using SPN = StoreRecords::SPN;

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
const auto inOrder = u"order by pgnnumber asc, pos asc, rowid"_s;

QString spnSelect(quint8 line, const QString &rest)
{
    return u"select pgnnumber, direction, spnnumber, %1 from SPNs%2 %3"_s.arg(RecordColumns::names(spnColumns),
                                                                              QString::number(line), rest);
}

QString pgnSelect(quint8 line, const QString &rest)
{
    return u"select number, direction, %1 from PGNs%2 %3"_s.arg(RecordColumns::names(pgnColumns), QString::number(line),
                                                                rest);
}

PGN pgnOfRow(const ResultRow &row, StringPool &pool)
{
    PGN data;
    data.number = row.number<quint32>(0);
    data.direction = row.number<quint8>(1);
    RecordColumns::readRow(pgnColumns, row, data, pool, 2);
    return data;
}

SPN spnOfRow(const ResultRow &row, StringPool &pool)
{
    SPN data;
    data.pgnnumber = row.number<quint32>(0);
    data.direction = row.number<quint8>(1);
    data.spnnumber = row.number<quint32>(2);
    RecordColumns::readRow(spnColumns, row, data, pool, spnKeyColumns);
    return data;
}

} // namespace

/// Completes the table of a line that came from an old file without having been opened as a project.
void J1939Tables::completeColumns(quint8 line)
{
    for (const ProjectSchema::AddedColumn &column : ProjectSchema::addedColumns(LineTable::PGNs))
        ProjectSchema::migrationExec(statements_, ProjectSchema::addStatement(column, line));
}

bool J1939Tables::addPGN(quint8 line, quint32 number, const PGN &data)
{
    if (isBlocked())
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(pgnColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = pgnRow(line, number, data.direction);
    const QString insert = row.insert(pgnColumns);
    const QString update = row.update(pgnColumns);
    const QVariantList values = *RecordColumns::values(pgnColumns, data, ids, Quotes::Kept);
    // Only a table that lacks columns fails here, so a complete one is never asked for them.
    if (!writeRow("addPGN", row, insert, update, values)) {
        completeColumns(line);
        if (!writeRow("addPGN", row, insert, update, values))
            return false;
    }
    notify(Change::PGNWritten, {.line = line, .pgn = number, .direction = data.direction});
    return true;
}

bool J1939Tables::addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data, Quotes quotes)
{
    if (isBlocked())
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(spnColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = spnRow(line, pgn, direction, spn);
    const std::optional<QVariantList> values = textsOf("addSPN", RecordColumns::values(spnColumns, data, ids, quotes));
    if (!values || !writeRow("addSPN", row, row.insert(spnColumns), row.update(spnColumns), *values))
        return false;
    notify(Change::SPNWritten, {.line = line, .pgn = pgn, .spn = spn});
    return true;
}

bool J1939Tables::removePGN(quint8 line, quint32 number, quint8 direction)
{
    if (isBlocked())
        return false;
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    const Row row = pgnRow(line, number, direction);
    const bool done =
        run("removePGN", u"delete from SPNs%1 where pgnnumber = ? and direction = ?"_s.arg(line), row.key()) &&
        run("removePGN", row.remove(), row.key());
    if (!done || !step.commit())
        return false;
    notify(Change::PGNRemoved, {.line = line, .pgn = number, .direction = direction});
    return true;
}

bool J1939Tables::removeSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    const Row row = spnRow(line, pgn, direction, spn);
    if (isBlocked() || !run("removeSPN", row.remove(), row.key()))
        return false;
    notify(Change::SignalRemoved, {.line = line, .pgn = pgn, .spn = spn, .direction = direction});
    return true;
}

bool J1939Tables::pgnExists(quint8 line, quint32 number, quint8 direction)
{
    return exists(pgnRow(line, number, direction));
}

bool J1939Tables::spnExists(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return exists(spnRow(line, pgn, direction, spn));
}

std::optional<PGN> J1939Tables::getPGN(quint8 line, quint32 number, quint8 direction)
{
    const Row place = pgnRow(line, number, direction);
    return statements_.first({"getPGN", pgnSelect(line, "where "_L1 + place.condition())}, place.key(),
                             [this](const ResultRow &row) { return pgnOfRow(row, strings_); });
}

QString J1939Tables::getPGNName(quint8 line, quint32 number, quint8 direction)
{
    return nameOf(pgnRow(line, number, direction));
}

quint16 J1939Tables::getPGNMappingCount(quint8 line, quint32 number, quint8 direction)
{
    return static_cast<quint16>(valueOf(pgnRow(line, number, direction), u"mappingcount"_s).toUInt());
}

QList<quint32> J1939Tables::getPGNList(quint8 line, quint8 direction, bool leaveOutSafe)
{
    QStringList conditions;
    QVariantList values;
    if (direction != 0) {
        conditions.append(u"direction = ?"_s);
        values.append(direction);
    }
    if (leaveOutSafe)
        conditions.append(u"(issafe = 0 or issafe is NULL)"_s);
    const QString where = conditions.isEmpty() ? QString() : "where "_L1 + conditions.join(" AND "_L1);
    return selectNumbers(u"select number from PGNs%1 %2 order by number asc"_s.arg(QString::number(line), where),
                         values);
}

QList<PGN> J1939Tables::getAllPGNs(quint8 line)
{
    strings_.loadTexts();
    return statements_.list({"getAllPGNs", pgnSelect(line, u"order by direction desc, number"_s)}, {},
                            [this](const ResultRow &row) { return pgnOfRow(row, strings_); });
}

QList<SPN> J1939Tables::getAllSPNs(quint8 line)
{
    strings_.loadTexts();
    return statements_.list({"getAllSPNs", spnSelect(line, inOrder)}, {},
                            [this](const ResultRow &row) { return spnOfRow(row, strings_); });
}

QHash<quint32, QString> J1939Tables::getPGNNames(quint8 line, quint8 direction)
{
    return selectNames(u"select number, name from PGNs%1 where direction = ?"_s.arg(line), {direction});
}

std::optional<SPN> J1939Tables::getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    if (const SPN *cached = cache_.find({line, pgn, direction, spn}))
        return *cached;
    const Row place = spnRow(line, pgn, direction, spn);
    return statements_.first({"getSPN", spnSelect(line, "where "_L1 + place.condition())}, place.key(),
                             [this](const ResultRow &row) { return spnOfRow(row, strings_); });
}

QList<quint32> J1939Tables::getSPNList(quint8 line, quint32 pgn, quint8 direction)
{
    if (const QList<quint32> *cached = cache_.list({line, pgn, direction}))
        return *cached;
    return selectNumbers(
        u"select spnnumber from SPNs%1 where pgnnumber = ? and direction = ? order by pos asc, rowid"_s.arg(line),
        {pgn, direction});
}

QString J1939Tables::getSPNName(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return nameOf(spnRow(line, pgn, direction, spn));
}

quint32 J1939Tables::getSPNDataType(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return valueOf(spnRow(line, pgn, direction, spn), u"datatype"_s).toUInt();
}

bool J1939Tables::cacheSPNs(quint8 line)
{
    cache_.clear();
    return statements_.visit({"cacheSPNs", spnSelect(line, inOrder)}, {},
                             [&](const ResultRow &row) { cache_.add(line, spnOfRow(row, strings_)); });
}

bool J1939Tables::anySafePGN(quint8 line)
{
    return statements_.hasRow(
        {nullptr, u"select number from PGNs%1 where direction in (?, ?) and issafe <> 0 limit 1"_s.arg(line)},
        {StoreRecords::receive, StoreRecords::transmit});
}
