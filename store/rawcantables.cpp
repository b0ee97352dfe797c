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

QString canidCondition(quint32 id, quint8 direction)
{
    return u"id = %1 and direction = %2"_s.arg(QString::number(id), QString::number(direction));
}

QString elementCondition(quint32 canid, quint8 direction, quint32 number)
{
    return u"canid = %1 and number = %2 and direction = %3"_s.arg(QString::number(canid), QString::number(number),
                                                                  QString::number(direction));
}

QString selectFrom(LineTable family, quint8 line, const QString &columns, const QString &condition)
{
    return u"select %1 from %2 where %3"_s.arg(columns, ProjectSchema::tableName(family, line), condition);
}

} // namespace

bool ObjectDataBase::addCANID(quint8 line, quint32 id, const CANID &data)
{
    if (blocked_)
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(canidColumns, data, strings_, {"name"_L1, "desc"_L1});
    const QString table = ProjectSchema::tableName(LineTable::CANIDs, line);
    const QString condition = canidCondition(id, data.direction);
    QSqlQuery query = newQuery();
    if (!run("addCANID", query, selectFrom(LineTable::CANIDs, line, u"id"_s, condition)))
        return false;
    const QString statement =
        query.next()
            ? u"update %1 set %2 where %3"_s.arg(table, RecordColumns::assignments(canidColumns, data, ids), condition)
            : u"insert into %1 (id, direction, %2) values(%3, %4, %5)"_s.arg(
                  table, RecordColumns::names(canidColumns), QString::number(id), QString::number(data.direction),
                  RecordColumns::values(canidColumns, data, ids));
    query.finish();
    if (!run("addCANID", query, statement))
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
    const QString table = ProjectSchema::tableName(LineTable::DataElements, line);
    const QString condition = elementCondition(canid, direction, number);
    QSqlQuery query = newQuery();
    if (!run("addDataElement", query, selectFrom(LineTable::DataElements, line, u"number"_s, condition)))
        return false;
    const QString statement =
        query.next()
            ? u"update %1 set %2 where %3"_s.arg(
                  table, RecordColumns::assignments(elementColumns, data, ids, {"pos"_L1, "bitsize"_L1}), condition)
            : u"insert into %1 (canid, number, direction, %2) values(%3, %4, %5, %6)"_s.arg(
                  table, RecordColumns::names(elementColumns), QString::number(canid), QString::number(number),
                  QString::number(direction), RecordColumns::values(elementColumns, data, ids));
    query.finish();
    if (!run("addDataElement", query, statement))
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
    if (!run("removeCANID",
             u"delete from CANIDs%1 where %2"_s.arg(QString::number(line), canidCondition(id, direction))))
        return false;
    notify(Change::CANIDRemoved, {.line = line, .canid = id, .direction = direction});
    return true;
}

bool ObjectDataBase::removeDataElement(quint8 line, quint32 canid, quint32 number, quint8 direction)
{
    if (blocked_ || !run("removeDataElement", u"delete from DataElements%1 where %2"_s.arg(
                                                  QString::number(line), elementCondition(canid, direction, number))))
        return false;
    notify(Change::SignalRemoved, {.line = line, .canid = canid, .number = number, .direction = direction});
    return true;
}

bool ObjectDataBase::canidExists(quint8 line, quint32 id, quint8 direction)
{
    return selectsRow(selectFrom(LineTable::CANIDs, line, u"id"_s, canidCondition(id, direction)));
}

bool ObjectDataBase::dataElementExists(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return selectsRow(
        selectFrom(LineTable::DataElements, line, u"number"_s, elementCondition(canid, direction, number)));
}

bool ObjectDataBase::getCANID(quint8 line, quint32 id, quint8 direction, CANID &data)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getCANID", query,
             selectFrom(LineTable::CANIDs, line, RecordColumns::names(canidColumns), canidCondition(id, direction))) ||
        !query.next())
        return false;
    data.id = id;
    data.direction = direction;
    RecordColumns::readRow(canidColumns, query, data, strings_);
    return true;
}

QString ObjectDataBase::getCANIDName(quint8 line, quint32 id, quint8 direction)
{
    const QVariant text = selectValue(selectFrom(LineTable::CANIDs, line, u"name"_s, canidCondition(id, direction)));
    return text.isNull() ? QString() : getString(text.toInt());
}

QList<quint32> ObjectDataBase::getCANIDList(quint8 line, quint8 direction)
{
    const QString where = direction == 0 ? QString() : u"where direction = %1"_s.arg(direction);
    return selectNumbers(u"select id from CANIDs%1 %2 order by id asc"_s.arg(QString::number(line), where));
}

bool ObjectDataBase::getDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number, DataElement &data)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getDataElement", query,
             selectFrom(LineTable::DataElements, line, RecordColumns::names(elementColumns),
                        elementCondition(canid, direction, number))) ||
        !query.next())
        return false;
    data.spnnumber = number;
    data.direction = direction;
    RecordColumns::readRow(elementColumns, query, data, strings_);
    return true;
}

QString ObjectDataBase::getDataElementName(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    const QVariant text =
        selectValue(selectFrom(LineTable::DataElements, line, u"name"_s, elementCondition(canid, direction, number)));
    return text.isNull() ? QString() : getString(text.toInt());
}

QList<quint32> ObjectDataBase::getDataElementList(quint8 line, quint32 canid, quint8 direction)
{
    return selectNumbers(
        u"select number from DataElements%1 where canid = %2 and direction= %3 order by number asc"_s.arg(
            QString::number(line), QString::number(canid), QString::number(direction)));
}
