// The CAN-IDs and data elements of raw CAN lines.

#include "ncx_cli/mcp/session/projectsession.h"
#include "ncx_cli/mcp/tools/guards.h"
#include "ncx_cli/mcp/tools/messagetools.h"
#include "ncx_cli/mcp/tools/toolfamilies.h"
#include "store/objectdatabase.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace Guards;
using MessageTools::direction;
using MessageTools::directionIsKnown;
using MessageTools::directionWord;

namespace {

constexpr qint64 maxNumber = std::numeric_limits<qint32>::max();

constexpr Property canId = Properties::integer("canId"_L1, 0, maxNumber, "Raw CAN-ID, decimal"_L1);
constexpr Property number =
    Properties::integer("number"_L1, 0, maxNumber, "Data element number within this CAN-ID, decimal"_L1);
constexpr Property canIdName = Properties::string("name"_L1, "CAN-ID name"_L1);
constexpr Property elementName = Properties::string("name"_L1, "Data element name"_L1);
constexpr Property pos = Properties::integer("pos"_L1, 0, 255, "Display order within the CAN-ID (optional)"_L1);

quint32 canIdOf(const ToolCall &call)
{
    return call.number<quint32>(canId.name);
}

quint32 numberOf(const ToolCall &call)
{
    return call.number<quint32>(number.name);
}

QString hexadecimal(quint32 id)
{
    return u"0x%1"_s.arg(id, 0, 16);
}

/// Fills a sentence about the call's CAN-ID: id, direction, line.
QString aboutCANID(const ToolCall &call, const QString &sentence)
{
    return sentence.arg(hexadecimal(canIdOf(call)), directionWord(call), QString::number(call.line()));
}

/// Fills a sentence about the call's data element: number, CAN-ID, direction, line.
QString aboutElement(const ToolCall &call, const QString &sentence)
{
    return sentence.arg(QString::number(numberOf(call)), hexadecimal(canIdOf(call)), directionWord(call),
                        QString::number(call.line()));
}

bool hasCANID(const ToolCall &call)
{
    return call.store().canidExists(call.line(), canIdOf(call), direction(call));
}

bool hasElement(const ToolCall &call)
{
    return call.store().dataElementExists(call.line(), canIdOf(call), direction(call), numberOf(call));
}

std::optional<Reply> canIdExists(const ToolCall &call)
{
    if (hasCANID(call))
        return {};
    return Reply::refusal(aboutCANID(call, u"CAN-ID %1 (%2) does not exist on line %3."_s));
}

std::optional<Reply> canIdIsNew(const ToolCall &call)
{
    if (!hasCANID(call))
        return {};
    return Reply::refusal(aboutCANID(call, u"CAN-ID %1 (%2) already exists on line %3."_s));
}

std::optional<Reply> elementExists(const ToolCall &call)
{
    if (hasElement(call))
        return {};
    return Reply::refusal(aboutElement(call, u"Data element %1 does not exist on CAN-ID %2 (%3), line %4."_s));
}

std::optional<Reply> elementIsNew(const ToolCall &call)
{
    if (!hasElement(call))
        return {};
    return Reply::refusal(aboutElement(call, u"Data element %1 already exists on CAN-ID %2 (%3), line %4."_s));
}

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

QJsonArray elementsOf(const ToolCall &call)
{
    QJsonArray list;
    for (const ObjectDataBase::DataElement &data : call.store().getAllDataElements(call.line())) {
        if (data.pgnnumber != canIdOf(call) || data.direction != direction(call))
            continue;
        QJsonObject object = MessageTools::signalObject(data);
        object.insert(u"number"_s, qint64{data.spnnumber});
        list.append(object);
    }
    return list;
}

Reply getCANID(const ToolCall &call)
{
    const auto data = call.store().getCANID(call.line(), canIdOf(call), direction(call));
    if (!data)
        return Reply::refusal(aboutCANID(call, u"CAN-ID %1 (%2) does not exist on line %3."_s));
    QJsonObject object = idMembers(canIdOf(call));
    object.insert(u"line"_s, call.line());
    object.insert(u"direction"_s, directionWord(call));
    object.insert(u"name"_s, data->name);
    object.insert(u"description"_s, data->desc);
    object.insert(u"cycleTimeMs"_s, data->cycletime_ms);
    object.insert(u"inhibitTimeMs"_s, data->inhibittime_ms);
    object.insert(u"dataElements"_s, elementsOf(call));
    return Reply::json(object);
}

Reply addCANID(const ToolCall &call)
{
    ObjectDataBase::CANID data;
    MessageTools::readMessage(call, data);
    if (!call.store().addCANID(call.line(), canIdOf(call), data) || !hasCANID(call))
        return Reply::refusal(aboutCANID(call, u"Failed to add CAN-ID %1 (%2) on line %3."_s));
    return call.edited(aboutCANID(call, u"CAN-ID %1 (%2) added on line %3."_s));
}

Reply deleteCANID(const ToolCall &call)
{
    const bool done = call.store().removeCANID(call.line(), canIdOf(call), direction(call));
    return call.edited(aboutCANID(call, done ? u"CAN-ID %1 (%2) deleted from line %3."_s
                                             : u"Failed to delete CAN-ID %1 (%2) from line %3."_s),
                       !done);
}

Reply addDataElement(const ToolCall &call)
{
    const auto data = MessageTools::newSignal(call);
    if (!call.store().addDataElement(call.line(), canIdOf(call), direction(call), numberOf(call), data) ||
        !hasElement(call))
        return Reply::refusal(aboutElement(call, u"Failed to add data element %1 on CAN-ID %2 (%3), line %4."_s));
    return call.edited(aboutElement(call, u"Data element %1 added on CAN-ID %2 (%3), line %4."_s));
}

Reply deleteDataElement(const ToolCall &call)
{
    const bool done = call.store().removeDataElement(call.line(), canIdOf(call), numberOf(call), direction(call));
    return call.edited(aboutElement(call, done ? u"Data element %1 deleted from CAN-ID %2 (%3), line %4."_s
                                               : u"Failed to delete data element %1 from CAN-ID %2 (%3), line %4."_s),
                       !done);
}

constexpr Tool tools[] = {
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
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineExists, lineIsRawCAN, canIdIsNew},
     addCANID},
    {"delete_can_id"_L1,
     "Delete a raw CAN-ID and all its data elements from a line."_L1,
     {Arguments::line, canId, Arguments::direction},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN, canIdExists},
     deleteCANID},
    {"add_data_element"_L1,
     "Add a new data element to an existing raw CAN-ID. Fails if the CAN-ID doesn't exist yet, or the data element "
     "number already exists."_L1,
     {Arguments::line, canId, Arguments::direction, number, elementName, Arguments::dataType},
     {Arguments::bitPosition, Arguments::bitSize, Arguments::defaultValue, Arguments::description, pos,
      Arguments::varname},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN, canIdExists, elementIsNew},
     addDataElement},
    {"delete_data_element"_L1,
     "Delete a single data element from a raw CAN-ID."_L1,
     {Arguments::line, canId, Arguments::direction, number},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsRawCAN, elementExists},
     deleteDataElement},
};

} // namespace

std::span<const Tool> ToolFamilies::rawCan()
{
    return tools;
}
