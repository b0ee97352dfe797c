// The CAN-IDs and data elements of raw CAN lines.

#include "mcp/tools/guards.h"
#include "mcp/tools/messagetools.h"
#include "mcp/tools/toolfamilies.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;
using namespace Guards;
using MessageTools::direction;
using MessageTools::directionIsKnown;
using MessageTools::maxNumber;

namespace {

constexpr Property canId = Properties::integer("canId"_L1, 0, maxNumber, "Raw CAN-ID, decimal"_L1);
constexpr Property number =
    Properties::integer("number"_L1, 0, maxNumber, "Data element number within this CAN-ID, decimal"_L1);
constexpr Property canIdName = Properties::string("name"_L1, "CAN-ID name"_L1);
constexpr Property elementName = Properties::string("name"_L1, "Data element name"_L1);
constexpr Property dataElementPos =
    Properties::integer("pos"_L1, 0, 255, "Display order within the CAN-ID (optional)"_L1);

QString hexadecimal(quint32 id)
{
    return u"0x%1"_s.arg(id, 0, 16);
}

void describeElement(QJsonObject &object, const StoreRecords::DataElement &data)
{
    object.insert(u"number"_s, qint64{data.spnnumber});
}

constexpr MessageTools::Kind canIds{
    .message = "CAN-ID"_L1,
    .signal = "Data element"_L1,
    .signalWithin = "data element"_L1,
    .number = canId.name,
    .signalNumber = number.name,
    .numberText = hexadecimal,
    .exists = &ObjectDataBase::canidExists,
    .remove = &ObjectDataBase::removeCANID,
    .signalExists = &ObjectDataBase::dataElementExists,
    .addSignal = &ObjectDataBase::addDataElement,
    .removeSignal = &ObjectDataBase::removeDataElement,
    .signalsOf = &ObjectDataBase::getDataElements,
    .describeSignal = describeElement,
};

QJsonObject idMembers(quint32 id)
{
    return {{u"canId"_s, hexadecimal(id)}, {u"canIdDec"_s, qint64{id}}};
}

Reply listCANIDs(const ToolCall &call)
{
    ObjectDataBase &store = call.store();
    const quint8 line = call.line();
    return Reply::json(MessageTools::summaries(store.getCANIDList(line, direction(call)),
                                               store.getCANIDNames(line, ObjectDataBase::transmit),
                                               store.getCANIDNames(line, ObjectDataBase::receive), idMembers));
}

Reply getCANID(const ToolCall &call)
{
    const quint32 id = canIds.numberOf(call);
    const auto data = call.store().getCANID(call.line(), id, direction(call));
    if (!data)
        return canIds.missing(call);
    QJsonObject object = MessageTools::messageObject(call, *data);
    object.insert(u"canId"_s, hexadecimal(id));
    object.insert(u"canIdDec"_s, qint64{id});
    object.insert(u"dataElements"_s, canIds.signalList(call));
    return Reply::json(object);
}

Reply addCANID(const ToolCall &call)
{
    ObjectDataBase::CANID data;
    MessageTools::readMessage(call, data);
    return canIds.added(call, call.store().addCANID(call.line(), canIds.numberOf(call), data));
}

constexpr Tool rawCanTools[] = {
    {"list_can_ids"_L1,
     "List the raw CAN-IDs defined on a line. Only valid for RAW-CAN-compatible lines."_L1,
     {Arguments::line},
     {Arguments::directionFilter},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN},
     listCANIDs},
    {"get_can_id"_L1,
     "Get a raw CAN-ID, including its data elements, for a line. Only valid for RAW-CAN-compatible lines."_L1,
     {Arguments::line, canId, Arguments::direction},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN},
     getCANID},
    {"add_can_id"_L1,
     "Add a new raw CAN-ID to a line. Fails if the (canId, direction) already exists, or the line isn't "
     "RAW-CAN-compatible. The line must already exist."_L1,
     {Arguments::line, canId, Arguments::direction, canIdName},
     {Arguments::cycleTimeMs, Arguments::description, Arguments::inhibitTimeMs},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineExists, lineIsRawCAN,
      MessageTools::isNew<canIds>},
     addCANID},
    {"delete_can_id"_L1,
     "Delete a raw CAN-ID and all its data elements from a line."_L1,
     {Arguments::line, canId, Arguments::direction},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN, MessageTools::exists<canIds>},
     MessageTools::remove<canIds>},
    {"add_data_element"_L1,
     "Add a new data element to an existing raw CAN-ID. Fails if the CAN-ID doesn't exist yet, or the data element "
     "number already exists."_L1,
     {Arguments::line, canId, Arguments::direction, number, elementName, Arguments::dataType},
     {Arguments::bitPosition, Arguments::bitSize, Arguments::defaultValue, Arguments::description, dataElementPos,
      Arguments::varname},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN, MessageTools::exists<canIds>,
      MessageTools::signalIsNew<canIds>},
     MessageTools::addSignal<canIds>},
    {"delete_data_element"_L1,
     "Delete a single data element from a raw CAN-ID."_L1,
     {Arguments::line, canId, Arguments::direction, number},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN,
      MessageTools::signalExists<canIds>},
     MessageTools::removeSignal<canIds>},
};

} // namespace

std::span<const Tool> ToolFamilies::rawCan()
{
    return rawCanTools;
}
