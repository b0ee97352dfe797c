#include "store/tables/rawcantables.h"

#include "store/tables/schema.h"

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::pooled;
using RecordColumns::Row;
using RecordColumns::text;

namespace {

using CANID = StoreRecords::CANID;
using DataElement = StoreRecords::DataElement;

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
constexpr RecordColumns::Names setOnce = {"pos"_L1, "bitsize"_L1};

Row canidRow(quint8 line, quint32 id, quint8 direction)
{
    return {ProjectSchema::tableName(LineTable::CANIDs, line), {{"id"_L1, id}, {"direction"_L1, direction}}};
}

Row elementRow(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return {ProjectSchema::tableName(LineTable::DataElements, line),
            {{"canid"_L1, canid}, {"number"_L1, number}, {"direction"_L1, direction}}};
}

QString canidSelect(quint8 line, const QString &rest)
{
    return u"select id, direction, %1 from CANIDs%2 %3"_s.arg(RecordColumns::names(canidColumns), QString::number(line),
                                                              rest);
}

QString elementSelect(quint8 line, const QString &rest)
{
    return u"select canid, direction, number, %1 from DataElements%2 %3"_s.arg(RecordColumns::names(elementColumns),
                                                                               QString::number(line), rest);
}

CANID canidOfRow(const ResultRow &row, StringPool &pool)
{
    CANID data;
    data.id = row.number<quint32>(0);
    data.direction = row.number<quint8>(1);
    RecordColumns::readRow(canidColumns, row, data, pool, 2);
    return data;
}

DataElement elementOfRow(const ResultRow &row, StringPool &pool)
{
    DataElement data;
    data.direction = row.number<quint8>(1);
    data.spnnumber = row.number<quint32>(2);
    RecordColumns::readRow(elementColumns, row, data, pool, 3);
    return data;
}

} // namespace

bool RawCanTables::addCANID(quint8 line, quint32 id, const CANID &data)
{
    if (isBlocked())
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(canidColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = canidRow(line, id, data.direction);
    if (!writeRow("addCANID", row, row.insert(canidColumns), row.update(canidColumns),
                  *RecordColumns::values(canidColumns, data, ids, Quotes::Kept)))
        return false;
    notify(Change::CANIDWritten, {.line = line, .canid = id, .direction = data.direction});
    return true;
}

bool RawCanTables::addDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number, const DataElement &data,
                                  Quotes quotes)
{
    if (isBlocked())
        return false;
    const RecordColumns::TextIds ids = RecordColumns::intern(elementColumns, data, strings_, {"name"_L1, "desc"_L1});
    const Row row = elementRow(line, canid, direction, number);
    const bool isUpdate = exists(row);
    const RecordColumns::Names except = isUpdate ? setOnce : RecordColumns::Names();
    std::optional<QVariantList> values =
        textsOf("addDataElement", RecordColumns::values(elementColumns, data, ids, quotes, except));
    if (!values)
        return false;
    values->append(row.key());
    if (!run("addDataElement", isUpdate ? row.update(elementColumns, setOnce) : row.insert(elementColumns), *values))
        return false;
    notify(Change::DataElementWritten, {.line = line, .canid = canid, .number = number});
    return true;
}

bool RawCanTables::removeCANID(quint8 line, quint32 id, quint8 direction)
{
    if (isBlocked())
        return false;
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    const Row row = canidRow(line, id, direction);
    const bool done =
        run("removeCANID", u"delete from DataElements%1 where canid = ? and direction = ?"_s.arg(line), row.key()) &&
        run("removeCANID", row.remove(), row.key());
    if (!done || !step.commit())
        return false;
    notify(Change::CANIDRemoved, {.line = line, .canid = id, .direction = direction});
    return true;
}

bool RawCanTables::removeDataElement(quint8 line, quint32 canid, quint32 number, quint8 direction)
{
    const Row row = elementRow(line, canid, direction, number);
    if (isBlocked() || !run("removeDataElement", row.remove(), row.key()))
        return false;
    notify(Change::SignalRemoved, {.line = line, .canid = canid, .number = number, .direction = direction});
    return true;
}

bool RawCanTables::canidExists(quint8 line, quint32 id, quint8 direction)
{
    return exists(canidRow(line, id, direction));
}

bool RawCanTables::dataElementExists(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return exists(elementRow(line, canid, direction, number));
}

std::optional<CANID> RawCanTables::getCANID(quint8 line, quint32 id, quint8 direction)
{
    const Row place = canidRow(line, id, direction);
    return statements_.first({"getCANID", canidSelect(line, "where "_L1 + place.condition())}, place.key(),
                             [this](const ResultRow &row) { return canidOfRow(row, strings_); });
}

QString RawCanTables::getCANIDName(quint8 line, quint32 id, quint8 direction)
{
    return nameOf(canidRow(line, id, direction));
}

QList<quint32> RawCanTables::getCANIDList(quint8 line, quint8 direction)
{
    const QString where = direction == 0 ? QString() : u"where direction = ?"_s;
    const QVariantList values = direction == 0 ? QVariantList() : QVariantList{direction};
    return selectNumbers(u"select id from CANIDs%1 %2 order by id asc"_s.arg(QString::number(line), where), values);
}

QList<CANID> RawCanTables::getAllCANIDs(quint8 line)
{
    strings_.loadTexts();
    return statements_.list({"getAllCANIDs", canidSelect(line, u"order by direction desc, id"_s)}, {},
                            [this](const ResultRow &row) { return canidOfRow(row, strings_); });
}

QList<DataElement> RawCanTables::getAllDataElements(quint8 line)
{
    strings_.loadTexts();
    return statements_.list({"getAllDataElements", elementSelect(line, u"order by number, rowid"_s)}, {},
                            [this](const ResultRow &row) {
                                DataElement element = elementOfRow(row, strings_);
                                element.pgnnumber = row.number<quint32>(0);
                                return element;
                            });
}

QHash<quint32, QString> RawCanTables::getCANIDNames(quint8 line, quint8 direction)
{
    return selectNames(u"select id, name from CANIDs%1 where direction = ?"_s.arg(line), {direction});
}

std::optional<DataElement> RawCanTables::getDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    const Row place = elementRow(line, canid, direction, number);
    return statements_.first({"getDataElement", elementSelect(line, "where "_L1 + place.condition())}, place.key(),
                             [this](const ResultRow &row) { return elementOfRow(row, strings_); });
}

QString RawCanTables::getDataElementName(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return nameOf(elementRow(line, canid, direction, number));
}

QList<quint32> RawCanTables::getDataElementList(quint8 line, quint32 canid, quint8 direction)
{
    return selectNumbers(
        u"select number from DataElements%1 where canid = ? and direction = ? order by number asc"_s.arg(line),
        {canid, direction});
}
