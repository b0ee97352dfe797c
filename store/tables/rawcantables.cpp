#include "store/tables/rawcantables.h"

using namespace Qt::StringLiterals;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::pooled;
using RecordColumns::text;

namespace {

using CANID = StoreRecords::CANID;
using DataElement = StoreRecords::DataElement;

constexpr std::array<Column<CANID>, 2> canidKey = {number<&CANID::id>("id"_L1),
                                                   number<&CANID::direction>("direction"_L1)};
constexpr std::array<Column<CANID>, 5> canidColumns = {
    number<&CANID::cycletime_ms>("cycletime_ms"_L1),
    number<&CANID::inhibittime_ms>("inhibittime_ms"_L1),
    number<&CANID::mappingcount>("mappingcount"_L1),
    pooled<&CANID::name>("name"_L1),
    pooled<&CANID::desc>("desc"_L1),
};

constexpr std::array<Column<DataElement>, 3> elementKey = {number<&DataElement::pgnnumber>("canid"_L1),
                                                           number<&DataElement::direction>("direction"_L1),
                                                           number<&DataElement::spnnumber>("number"_L1)};
constexpr std::array<Column<DataElement>, 9> elementColumns = {
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
constexpr std::array setOnce = {"pos"_L1, "bitsize"_L1};

} // namespace

RawCanTables::RawCanTables(TableContext &context)
    : TableFamily(context)
    , canids_(context, {"CANIDs%1"_L1, canidKey, canidColumns})
    , elements_(context, {"DataElements%1"_L1, elementKey, elementColumns, setOnce})
{
}

bool RawCanTables::addCANID(quint8 line, quint32 id, const CANID &data)
{
    const auto told = aboutCanId(line, id, data.direction);
    if (isBlocked() || !canids_.write("addCANID", line, {id, data.direction}, data, canids_.intern(data), Quotes::Kept))
        return false;
    notify(Change::CANIDWritten, {.line = line, .canid = id, .direction = data.direction});
    return true;
}

bool RawCanTables::addDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number, const DataElement &data,
                                  Quotes quotes)
{
    const auto told = aboutCanId(line, canid, direction);
    if (isBlocked() ||
        !elements_.write("addDataElement", line, {canid, direction, number}, data, elements_.intern(data), quotes))
        return false;
    notify(Change::DataElementWritten, {.line = line, .canid = canid, .number = number});
    return true;
}

bool RawCanTables::removeCANID(quint8 line, quint32 id, quint8 direction)
{
    if (isBlocked())
        return false;
    const auto told = aboutCanId(line, id, direction);
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    const bool done = run("removeCANID", u"delete from DataElements%1 where canid = ? and direction = ?"_s.arg(line),
                          {id, direction}) &&
                      canids_.remove("removeCANID", line, {id, direction});
    if (!done || !step.commit())
        return false;
    notify(Change::CANIDRemoved, {.line = line, .canid = id, .direction = direction});
    return true;
}

bool RawCanTables::removeDataElement(quint8 line, quint32 canid, quint32 number, quint8 direction)
{
    const auto told = aboutCanId(line, canid, direction);
    if (isBlocked() || !elements_.remove("removeDataElement", line, {canid, direction, number}))
        return false;
    notify(Change::SignalRemoved, {.line = line, .canid = canid, .number = number, .direction = direction});
    return true;
}

bool RawCanTables::canidExists(quint8 line, quint32 id, quint8 direction)
{
    return canids_.exists(line, {id, direction});
}

bool RawCanTables::dataElementExists(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return elements_.exists(line, {canid, direction, number});
}

std::optional<CANID> RawCanTables::getCANID(quint8 line, quint32 id, quint8 direction)
{
    return canids_.get("getCANID", line, {id, direction});
}

QString RawCanTables::getCANIDName(quint8 line, quint32 id, quint8 direction)
{
    return canids_.name(line, {id, direction});
}

QList<quint32> RawCanTables::getCANIDList(quint8 line, quint8 direction)
{
    const QString where = direction == 0 ? QString() : u"where direction = ?"_s;
    const QVariantList values = direction == 0 ? QVariantList() : QVariantList{direction};
    return selectNumbers(u"select id from CANIDs%1 %2 order by id asc"_s.arg(QString::number(line), where), values);
}

QList<CANID> RawCanTables::getAllCANIDs(quint8 line)
{
    return keptIds_.get(context_, line,
                        [&] { return canids_.all("getAllCANIDs", line, u" order by direction desc, id"_s); });
}

QList<DataElement> RawCanTables::getAllDataElements(quint8 line)
{
    return keptElements_.get(context_, line,
                             [&] { return elements_.all("getAllDataElements", line, u" order by number, rowid"_s); });
}

void RawCanTables::dropKeptIds()
{
    keptIds_.drop();
    keptElements_.drop();
}

QList<DataElement> RawCanTables::getDataElements(quint8 line, quint32 canid, quint8 direction)
{
    return elements_.some("getDataElements", line, u" where canid = ? and direction = ? order by number, rowid"_s,
                          {canid, direction});
}

QHash<quint32, QString> RawCanTables::getCANIDNames(quint8 line, quint8 direction)
{
    return canids_.names(line, u"id"_s, direction);
}

std::optional<DataElement> RawCanTables::getDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    std::optional<DataElement> element = elements_.get("getDataElement", line, {canid, direction, number});
    // Who asks for one knows its CAN-ID; only the list of all tells it.
    if (element)
        element->pgnnumber = 0;
    return element;
}

QString RawCanTables::getDataElementName(quint8 line, quint32 canid, quint8 direction, quint32 number)
{
    return elements_.name(line, {canid, direction, number});
}

QList<quint32> RawCanTables::getDataElementList(quint8 line, quint32 canid, quint8 direction)
{
    return selectNumbers(
        u"select number from DataElements%1 where canid = ? and direction = ? order by number asc"_s.arg(line),
        {canid, direction});
}
