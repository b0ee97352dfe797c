// The identifiers and data elements of a raw CAN line: `CANIDs%1` and `DataElements%1`.

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

using CANID = ObjectDataBase::CANID;
using DataElement = ObjectDataBase::DataElement;

/// What a row holds beside its key, which is the identifier and the direction.
constexpr std::array<Column<CANID>, 5> canidColumnTable = {
    number<&CANID::cycletime_ms>("cycletime_ms"_L1),
    number<&CANID::inhibittime_ms>("inhibittime_ms"_L1),
    number<&CANID::mappingcount>("mappingcount"_L1),
    pooled<&CANID::name>("name"_L1),
    pooled<&CANID::desc>("desc"_L1),
};
constexpr std::span<const Column<CANID>> canidColumns = canidColumnTable;

/// What a row holds beside its key, which is the identifier, the direction and the element's number.
constexpr std::array<Column<DataElement>, 9> elementColumnTable = {
    number<&DataElement::datatype>("datatype"_L1),
    number<&DataElement::implementation>("implementation"_L1),
    text<&DataElement::varname>("varname"_L1),
    text<&DataElement::defaultvalue>("defaultvalue"_L1),
    pooled<&DataElement::name>("name"_L1),
    pooled<&DataElement::desc>("desc"_L1),
    number<&DataElement::pos>("pos"_L1),
    number<&DataElement::bitsize>("bitsize"_L1),
    number<&DataElement::bitposition>("bitpos"_L1),
};
constexpr std::span<const Column<DataElement>> elementColumns = elementColumnTable;

Row canidRow(quint8 line, quint32 id, quint8 direction)
{
    return {ProjectSchema::tableName(LineTable::CANIDs, line), {{"id"_L1, id}, {"direction"_L1, direction}}};
}

Row elementRow(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return {ProjectSchema::tableName(LineTable::DataElements, line),
            {{"canid"_L1, canid}, {"number"_L1, number}, {"direction"_L1, direction}}};
}

} // namespace

bool ObjectDataBase::addCANID(quint8 line, quint32 id, const CANID &data)
{
    if (blocked_)
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(canidColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = canidRow(line, id, data.direction);
    if (!writeRow("addCANID", row, row.insert(canidColumns, data, ids), row.update(canidColumns, data, ids)))
        return false;
    notify(Change::CANIDWritten, {.line = line, .canid = id, .direction = data.direction});
    return true;
}

bool ObjectDataBase::addDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number,
                                    const DataElement &data)
{
    if (blocked_)
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(elementColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = elementRow(line, canid, direction, number);
    if (!writeRow("addDataElement", row, row.insert(elementColumns, data, ids),
                  row.update(elementColumns, data, ids, {"pos"_L1, "bitsize"_L1})))
        return false;
    notify(Change::DataElementWritten, {.line = line, .canid = canid, .number = number});
    return true;
}

bool ObjectDataBase::removeCANID(quint8 line, quint32 id, quint8 direction)
{
    if (blocked_)
        return false;
    const Transaction transaction(*this);
    run("removeCANID", u"delete from DataElements%1 where canid = %2 and direction = %3"_s.arg(
                           QString::number(line), QString::number(id), QString::number(direction)));
    if (!run("removeCANID", canidRow(line, id, direction).remove()))
        return false;
    notify(Change::CANIDRemoved, {.line = line, .canid = id, .direction = direction});
    return true;
}

bool ObjectDataBase::removeDataElement(quint8 line, quint32 canid, quint32 number, quint8 direction)
{
    if (blocked_ || !run("removeDataElement", elementRow(line, canid, direction, number).remove()))
        return false;
    notify(Change::SignalRemoved, {.line = line, .canid = canid, .number = number, .direction = direction});
    return true;
}

bool ObjectDataBase::canidExists(quint8 line, quint32 id, quint8 direction)
{
    return selectsRow(canidRow(line, id, direction).select(u"1"_s));
}

bool ObjectDataBase::dataElementExists(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return selectsRow(elementRow(line, canid, direction, number).select(u"1"_s));
}

bool ObjectDataBase::getCANID(quint8 line, quint32 id, quint8 direction, CANID &data)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getCANID", query, canidRow(line, id, direction).select(RecordColumns::names(canidColumns))) ||
        !query.next())
        return false;
    data.id = id;
    data.direction = direction;
    RecordColumns::readRow(canidColumns, query, data, strings_);
    return true;
}

QString ObjectDataBase::getCANIDName(quint8 line, quint32 id, quint8 direction)
{
    return selectText(canidRow(line, id, direction));
}

QList<quint32> ObjectDataBase::getCANIDList(quint8 line, quint8 direction)
{
    const QString where = direction == 0 ? QString() : u"where direction = %1"_s.arg(direction);
    return selectNumbers(u"select id from CANIDs%1 %2 order by id asc"_s.arg(QString::number(line), where));
}

QList<ObjectDataBase::CANID> ObjectDataBase::getAllCANIDs(quint8 line)
{
    strings_.loadTexts();
    QList<CANID> canids;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getAllCANIDs", query,
             u"select id, direction, %1 from CANIDs%2 order by direction desc, id"_s.arg(
                 RecordColumns::names(canidColumns), QString::number(line))))
        return canids;
    while (query.next()) {
        CANID &canid = canids.emplace_back();
        canid.id = static_cast<quint32>(query.value(0).toLongLong());
        canid.direction = static_cast<quint8>(query.value(1).toLongLong());
        RecordColumns::readRow(canidColumns, query, canid, strings_, 2);
    }
    return canids;
}

QList<ObjectDataBase::DataElement> ObjectDataBase::getAllDataElements(quint8 line)
{
    strings_.loadTexts();
    QList<DataElement> elements;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getAllDataElements", query,
             u"select canid, direction, number, %1 from DataElements%2 order by number, rowid"_s.arg(
                 RecordColumns::names(elementColumns), QString::number(line))))
        return elements;
    while (query.next()) {
        DataElement &element = elements.emplace_back();
        element.pgnnumber = static_cast<quint32>(query.value(0).toLongLong());
        element.direction = static_cast<quint8>(query.value(1).toLongLong());
        element.spnnumber = static_cast<quint32>(query.value(2).toLongLong());
        RecordColumns::readRow(elementColumns, query, element, strings_, 3);
    }
    return elements;
}

QHash<quint32, QString> ObjectDataBase::getCANIDNames(quint8 line, quint8 direction)
{
    return selectNames(u"select id, name from CANIDs%1 where direction = %2"_s.arg(line).arg(direction));
}

bool ObjectDataBase::getDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number, DataElement &data)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getDataElement", query,
             elementRow(line, canid, direction, number).select(RecordColumns::names(elementColumns))) ||
        !query.next())
        return false;
    data.spnnumber = number;
    data.direction = direction;
    RecordColumns::readRow(elementColumns, query, data, strings_);
    return true;
}

QString ObjectDataBase::getDataElementName(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return selectText(elementRow(line, canid, direction, number));
}

QList<quint32> ObjectDataBase::getDataElementList(quint8 line, quint32 canid, quint8 direction)
{
    return selectNumbers(
        u"select number from DataElements%1 where canid = %2 and direction= %3 order by number asc"_s.arg(
            QString::number(line), QString::number(canid), QString::number(direction)));
}
