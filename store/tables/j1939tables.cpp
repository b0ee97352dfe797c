#include "store/tables/j1939tables.h"

#include "store/records/addedcolumns.h"

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::pooled;
using RecordColumns::text;

namespace {

using PGN = StoreRecords::PGN;
using SPN = StoreRecords::SPN;

constexpr std::array<Column<PGN>, 2> pgnKey = {number<&PGN::number>("number"_L1),
                                               number<&PGN::direction>("direction"_L1)};
constexpr std::array<Column<PGN>, 15> pgnColumns = {
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

constexpr std::array<Column<SPN>, 3> spnKey = {number<&SPN::pgnnumber>("pgnnumber"_L1),
                                               number<&SPN::direction>("direction"_L1),
                                               number<&SPN::spnnumber>("spnnumber"_L1)};
constexpr std::array<Column<SPN>, 10> spnColumns = {
    number<&SPN::datatype>("datatype"_L1), number<&SPN::implementation>("implementation"_L1),
    text<&SPN::varname>("varname"_L1),     text<&SPN::defaultvalue>("defaultvalue"_L1),
    pooled<&SPN::name>("name"_L1),         pooled<&SPN::desc>("desc"_L1),
    number<&SPN::pos>("pos"_L1),           number<&SPN::bitsize>("bitsize"_L1),
    number<&SPN::slot_df>("slot_df"_L1),   number<&SPN::bitposition>("bitposition"_L1),
};

const auto inOrder = u" order by pgnnumber asc, pos asc, rowid"_s;

} // namespace

J1939Tables::J1939Tables(TableContext &context)
    : TableFamily(context)
    , pgns_(context, {"PGNs%1"_L1, pgnKey, pgnColumns})
    , spns_(context, {"SPNs%1"_L1, spnKey, spnColumns})
{
}

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
    const auto told = aboutPgn(line, number, data.direction);
    const auto ids = pgns_.intern(data);
    const auto write = [&] { return pgns_.write("addPGN", line, {number, data.direction}, data, ids, Quotes::Kept); };
    // Only a table that lacks columns fails here, so a complete one is never asked for them.
    if (!write()) {
        completeColumns(line);
        if (!write())
            return false;
    }
    notify(Change::PGNWritten, {.line = line, .pgn = number, .direction = data.direction});
    return true;
}

bool J1939Tables::addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data, Quotes quotes)
{
    const auto told = aboutPgn(line, pgn, direction);
    if (isBlocked() || !spns_.write("addSPN", line, {pgn, direction, spn}, data, spns_.intern(data), quotes))
        return false;
    notify(Change::SPNWritten, {.line = line, .pgn = pgn, .spn = spn});
    return true;
}

bool J1939Tables::removePGN(quint8 line, quint32 number, quint8 direction)
{
    if (isBlocked())
        return false;
    const auto told = aboutPgn(line, number, direction);
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    const bool done = run("removePGN", u"delete from SPNs%1 where pgnnumber = ? and direction = ?"_s.arg(line),
                          {number, direction}) &&
                      pgns_.remove("removePGN", line, {number, direction});
    if (!done || !step.commit())
        return false;
    notify(Change::PGNRemoved, {.line = line, .pgn = number, .direction = direction});
    return true;
}

bool J1939Tables::removeSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    const auto told = aboutPgn(line, pgn, direction);
    if (isBlocked() || !spns_.remove("removeSPN", line, {pgn, direction, spn}))
        return false;
    notify(Change::SignalRemoved, {.line = line, .pgn = pgn, .spn = spn, .direction = direction});
    return true;
}

bool J1939Tables::pgnExists(quint8 line, quint32 number, quint8 direction)
{
    return pgns_.exists(line, {number, direction});
}

bool J1939Tables::spnExists(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return spns_.exists(line, {pgn, direction, spn});
}

std::optional<PGN> J1939Tables::getPGN(quint8 line, quint32 number, quint8 direction)
{
    return pgns_.get("getPGN", line, {number, direction});
}

QString J1939Tables::getPGNName(quint8 line, quint32 number, quint8 direction)
{
    return pgns_.name(line, {number, direction});
}

quint16 J1939Tables::getPGNMappingCount(quint8 line, quint32 number, quint8 direction)
{
    return static_cast<quint16>(pgns_.value(line, {number, direction}, u"mappingcount"_s).toUInt());
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
    return keptPgns_.get(context_, line,
                         [&] { return pgns_.all("getAllPGNs", line, u" order by direction desc, number"_s); });
}

QList<SPN> J1939Tables::getAllSPNs(quint8 line)
{
    return keptSpns_.get(context_, line, [&] { return spns_.all("getAllSPNs", line, inOrder); });
}

void J1939Tables::dropKeptGroups()
{
    keptPgns_.drop();
    keptSpns_.drop();
}

QList<SPN> J1939Tables::getSPNs(quint8 line, quint32 pgn, quint8 direction)
{
    return spns_.some("getSPNs", line, u" where pgnnumber = ? and direction = ? order by pos asc, rowid"_s,
                      {pgn, direction});
}

QHash<quint32, QString> J1939Tables::getPGNNames(quint8 line, quint8 direction)
{
    return pgns_.names(line, u"number"_s, direction);
}

std::optional<SPN> J1939Tables::getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    if (const SPN *cached = cache_.find({line, pgn, direction, spn}))
        return *cached;
    return spns_.get("getSPN", line, {pgn, direction, spn});
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
    return spns_.name(line, {pgn, direction, spn});
}

quint32 J1939Tables::getSPNDataType(quint8 line, quint32 pgn, quint8 direction, quint32 spn)
{
    return spns_.value(line, {pgn, direction, spn}, u"datatype"_s).toUInt();
}

bool J1939Tables::cacheSPNs(quint8 line)
{
    cache_.clear();
    return spns_.visit("cacheSPNs", line, inOrder, [&](const SPN &spn) { cache_.add(line, spn); });
}

bool J1939Tables::anySafePGN(quint8 line)
{
    return statements_.hasRow(
        {nullptr, u"select number from PGNs%1 where direction in (?, ?) and issafe <> 0 limit 1"_s.arg(line)},
        {StoreRecords::receive, StoreRecords::transmit});
}
