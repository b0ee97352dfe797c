#include "store/file/repairs.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/statements/boundstatement.h"
#include "store/statements/transaction.h"
#include "store/tables/projecttables.h"
#include "store/tables/temporaryindex.h"

#include <QSet>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using StoreRecords::DataElement;
using StoreRecords::SPN;

constexpr quint8 bothDirections[] = {StoreRecords::receive, StoreRecords::transmit};

/// A message of a line.
struct MessageKey
{
    quint32 number = 0;
    quint8 direction = 0;

    friend bool operator==(const MessageKey &, const MessageKey &) = default;
    friend size_t qHash(const MessageKey &key, size_t seed = 0) { return qHashMulti(seed, key.number, key.direction); }
};

MessageKey keyOfRow(const ResultRow &row)
{
    return {row.number<quint32>(0), row.number<quint8>(1)};
}

/// Bits that a signal takes in its message.
quint32 widthOf(const SPN &spn)
{
    switch (spn.datatype) {
    case CAN::OctetString:
    case CAN::StringNull:
    case CAN::StringAsterisk:
        return spn.bitsize;
    default:
        return COHelper::getDataLengthBits(spn.datatype);
    }
}

/// Sets the positions of a message's signals one behind the other.
void placeBehindEachOther(QList<SPN> &message)
{
    quint32 offset = 0;
    for (SPN &spn : message) {
        spn.bitposition = static_cast<quint16>(offset);
        offset += widthOf(spn);
    }
}

/// Executes a statement for each of its lists of numbers.
template <std::size_t Places>
bool runAll(Statements &statements, const char *operation, const QString &text,
            const QList<std::array<qint64, Places>> &rows)
{
    BoundStatement statement(statements, {operation, text, Statement::Effect::Rows});
    bool done = true;
    for (const std::array<qint64, Places> &numbers : rows) {
        for (const qint64 number : numbers)
            statement.bind(number);
        done = statement.execute() && done;
    }
    return done;
}

bool repairMappingCounts(Statements &statements, quint8 line)
{
    constexpr auto operation = "repairMappingCounts";
    QHash<MessageKey, quint32> counts;
    bool done = statements.visit({operation, u"select pgnnumber, direction from SPNs%1"_s.arg(line)}, {},
                                 [&](const ResultRow &row) { ++counts[keyOfRow(row)]; });
    QList<std::array<qint64, 2>> wrong;
    const QString select =
        u"select number, direction, mappingcount, rowid from PGNs%1 where direction in (?, ?)"_s.arg(line);
    done = statements.visit({operation, select}, {StoreRecords::receive, StoreRecords::transmit},
                            [&](const ResultRow &row) {
                                const quint32 count = counts.value(keyOfRow(row));
                                if (row.value(2).toUInt() != count)
                                    wrong.append({count, row.number<qint64>(3)});
                            }) &&
           done;
    return runAll(statements, operation, u"update PGNs%1 SET mappingcount = ? where rowid = ?"_s.arg(line), wrong) &&
           done;
}

bool placeDataElements(RawCanTables &tables, quint8 line, quint8 direction)
{
    bool done = true;
    for (const quint32 canid : tables.getCANIDList(line, direction)) {
        QList<DataElement> elements;
        for (const quint32 number : tables.getDataElementList(line, canid, direction)) {
            if (const std::optional<DataElement> element = tables.getDataElement(line, canid, direction, number))
                elements.append(*element);
        }
        // A message whose positions have been set by somebody keeps them.
        if (elements.size() < 2 || elements.at(0).bitposition != 0 || elements.at(1).bitposition != 0)
            continue;
        placeBehindEachOther(elements);
        for (const DataElement &element : std::as_const(elements))
            done = tables.addDataElement(line, canid, direction, element.spnnumber, element, Quotes::Kept) && done;
    }
    return done;
}

bool placeSPNs(J1939Tables &tables, quint8 line, quint8 direction)
{
    bool done = tables.cacheSPNs(line);
    for (const quint32 pgn : tables.getPGNList(line, direction, false)) {
        QList<SPN> spns;
        for (const quint32 number : tables.getSPNList(line, pgn, direction)) {
            if (const std::optional<SPN> spn = tables.getSPN(line, pgn, direction, number))
                spns.append(*spn);
        }
        placeBehindEachOther(spns);
        for (const SPN &spn : std::as_const(spns))
            done = tables.addSPN(line, pgn, direction, spn.spnnumber, spn, Quotes::Kept) && done;
    }
    tables.clearSPNCache();
    return done;
}

} // namespace

bool Repairs::mappingCounts(ProjectTables &tables)
{
    TransactionScope transaction(tables.context.statements, TransactionScope::Kind::Batch);
    bool done = true;
    for (const quint8 line : tables.getNodeList())
        done = repairMappingCounts(tables.context.statements, line) && done;
    tables.clearSPNCache();
    return transaction.commit() && done;
}

bool Repairs::spnDirections(ProjectTables &tables, quint8 line)
{
    Statements &statements = tables.context.statements;
    TransactionScope transaction(statements, TransactionScope::Kind::Batch);
    constexpr auto operation = "repairSPNDirections";
    QHash<quint32, quint8> directions;
    if (!statements.visit({operation, u"select number, direction from PGNs%1"_s.arg(line)}, {},
                          [&](const ResultRow &row) {
                              const MessageKey key = keyOfRow(row);
                              directions.insert(key.number, key.direction);
                          }))
        return false;
    QSet<quint32> wrong;
    if (!statements.visit({operation, u"select pgnnumber, direction from SPNs%1"_s.arg(line)}, {},
                          [&](const ResultRow &row) {
                              const MessageKey key = keyOfRow(row);
                              if (directions.value(key.number, key.direction) != key.direction)
                                  wrong.insert(key.number);
                          }))
        return false;
    if (wrong.isEmpty())
        return true;
    QList<std::array<qint64, 2>> rows;
    for (const quint32 number : std::as_const(wrong))
        rows.append({directions.value(number), number});
    const TemporaryIndex index(statements, line, "SPNs%1 (pgnnumber)"_L1);
    return runAll(statements, operation, u"update SPNs%1 SET direction = ? where pgnnumber = ?"_s.arg(line), rows);
}

bool Repairs::bitPositions(ProjectTables &tables, quint8 line)
{
    TransactionScope transaction(tables.context.statements, TransactionScope::Kind::Batch);
    bool done = true;
    {
        const TemporaryIndex index(tables.context.statements, line, TemporaryIndex::elementKeys);
        for (const quint8 direction : bothDirections)
            done = placeDataElements(tables, line, direction) && done;
    }
    {
        const TemporaryIndex index(tables.context.statements, line, TemporaryIndex::spnKeys);
        for (const quint8 direction : bothDirections)
            done = placeSPNs(tables, line, direction) && done;
    }
    return transaction.commit() && done;
}
