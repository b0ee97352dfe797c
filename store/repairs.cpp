// What an open puts right in files that older programs wrote: counts, directions and bit positions of signals.

#include "store/objectdatabase.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/temporaryindex.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace {

constexpr quint8 bothDirections[] = {ObjectDataBase::receive, ObjectDataBase::transmit};

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
quint32 widthOf(const ObjectDataBase::SPN &spn)
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
void placeBehindEachOther(QList<ObjectDataBase::SPN> &message)
{
    quint32 offset = 0;
    for (ObjectDataBase::SPN &spn : message) {
        spn.bitposition = static_cast<quint16>(offset);
        offset += widthOf(spn);
    }
}

} // namespace

void ObjectDataBase::repairMappingCounts()
{
    const Transaction transaction(*this);
    constexpr auto operation = "repairMappingCounts";
    for (const quint8 line : getNodeList()) {
        QHash<MessageKey, quint32> counts;
        statements_.visit({operation, u"select pgnnumber, direction from SPNs%1"_s.arg(line)}, {},
                          [&](const ResultRow &row) { ++counts[keyOfRow(row)]; });
        QHash<MessageKey, quint32> wrong;
        statements_.visit(
            {operation, u"select number, direction, mappingcount from PGNs%1 where direction in (?, ?)"_s.arg(line)},
            {receive, transmit}, [&](const ResultRow &row) {
                const MessageKey key = keyOfRow(row);
                if (row.value(2).toUInt() != counts.value(key))
                    wrong.insert(key, counts.value(key));
            });
        if (wrong.isEmpty())
            continue;
        const TemporaryIndex index(*this, line, TemporaryIndex::pgnKeys);
        for (const auto &[key, count] : wrong.asKeyValueRange())
            run(operation, u"update PGNs%1 SET mappingcount = ? where number = ? AND direction = ?"_s.arg(line),
                {count, key.number, key.direction});
    }
    clearSPNCache();
}

void ObjectDataBase::repairSPNDirections(quint8 line)
{
    const Transaction transaction(*this);
    constexpr auto operation = "repairSPNDirections";
    QHash<quint32, quint8> directions;
    if (!statements_.visit({operation, u"select number, direction from PGNs%1"_s.arg(line)}, {},
                           [&](const ResultRow &row) {
                               const MessageKey key = keyOfRow(row);
                               directions.insert(key.number, key.direction);
                           }))
        return;
    QSet<quint32> wrong;
    if (!statements_.visit({operation, u"select pgnnumber, direction from SPNs%1"_s.arg(line)}, {},
                           [&](const ResultRow &row) {
                               const MessageKey key = keyOfRow(row);
                               if (directions.value(key.number, key.direction) != key.direction)
                                   wrong.insert(key.number);
                           }))
        return;
    if (wrong.isEmpty())
        return;
    const TemporaryIndex index(*this, line, "SPNs%1 (pgnnumber)"_L1);
    for (const quint32 number : std::as_const(wrong))
        run(operation, u"update SPNs%1 SET direction = ? where pgnnumber = ?"_s.arg(line),
            {directions.value(number), number});
}

void ObjectDataBase::repairBitPositions(quint8 line)
{
    const Transaction transaction(*this);
    {
        const TemporaryIndex index(*this, line, TemporaryIndex::elementKeys);
        for (const quint8 direction : bothDirections)
            repairDataElementPositions(line, direction);
    }
    const TemporaryIndex index(*this, line, TemporaryIndex::spnKeys);
    for (const quint8 direction : bothDirections)
        repairSPNPositions(line, direction);
}

void ObjectDataBase::repairDataElementPositions(quint8 line, quint8 direction)
{
    for (const quint32 canid : getCANIDList(line, direction)) {
        QList<DataElement> elements;
        for (const quint32 number : getDataElementList(line, canid, direction)) {
            DataElement element;
            if (getDataElement(line, canid, direction, number, element))
                elements.append(element);
        }
        // A message whose positions have been set by somebody keeps them.
        if (elements.size() < 2 || elements.at(0).bitposition != 0 || elements.at(1).bitposition != 0)
            continue;
        placeBehindEachOther(elements);
        for (const DataElement &element : std::as_const(elements))
            addDataElement(line, canid, direction, element.spnnumber, element, Quotes::Kept);
    }
}

void ObjectDataBase::repairSPNPositions(quint8 line, quint8 direction)
{
    cacheSPNs(line);
    for (const quint32 pgn : getPGNList(line, direction)) {
        QList<SPN> spns;
        for (const quint32 number : getSPNList(line, pgn, direction)) {
            SPN spn;
            if (getSPN(line, pgn, direction, number, spn))
                spns.append(spn);
        }
        placeBehindEachOther(spns);
        for (const SPN &spn : std::as_const(spns))
            addSPN(line, pgn, direction, spn.spnnumber, spn, Quotes::Kept);
    }
    clearSPNCache();
}
