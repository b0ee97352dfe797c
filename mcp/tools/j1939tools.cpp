// The PGNs and SPNs of J1939 lines.

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

constexpr Property pgn = Properties::integer("pgn"_L1, 0, maxNumber, "PGN number, decimal"_L1);
constexpr Property spn = Properties::integer("spn"_L1, 0, maxNumber, "SPN number, decimal"_L1);
constexpr Property excludeSafety =
    Properties::boolean("excludeSafety"_L1, "Exclude safety-relevant PGNs (default: false)"_L1);
constexpr Property pgnName = Properties::string("name"_L1, "PGN name"_L1);
constexpr Property priority = Properties::integer("priority"_L1, 0, 7, "J1939 priority, 0-7 (optional)"_L1);
constexpr Property spnName = Properties::string("name"_L1, "SPN name"_L1);
constexpr Property spnPos = Properties::integer("pos"_L1, 0, 255, "Display order within the PGN (optional)"_L1);
constexpr Property slotDf =
    Properties::integer("slotDf"_L1, 0, 65535, "NMEA2000/J1939 slot or dataformat code, opaque (optional)"_L1);

void describeSpn(QJsonObject &object, const StoreRecords::SPN &data)
{
    object.insert(u"spn"_s, qint64{data.spnnumber});
    object.insert(u"slotDf"_s, data.slot_df);
}

constexpr MessageTools::Kind pgns{
    .message = "PGN"_L1,
    .signal = "SPN"_L1,
    .signalWithin = "SPN"_L1,
    .number = pgn.name,
    .signalNumber = spn.name,
    .numberText = [](quint32 number) { return QString::number(number); },
    .exists = &ObjectDataBase::pgnExists,
    .remove = &ObjectDataBase::removePGN,
    .signalExists = &ObjectDataBase::spnExists,
    .addSignal = &ObjectDataBase::addSPN,
    .removeSignal = &ObjectDataBase::removeSPN,
    .signalsOf = &ObjectDataBase::getSPNs,
    .describeSignal = describeSpn,
};

Reply listPGNs(const ToolCall &call)
{
    ObjectDataBase &store = call.store();
    const quint8 line = call.line();
    return Reply::json(MessageTools::summaries(store.getPGNList(line, direction(call), call.flag(excludeSafety.name)),
                                               store.getPGNNames(line, ObjectDataBase::transmit),
                                               store.getPGNNames(line, ObjectDataBase::receive), [](quint32 number) {
                                                   return QJsonObject{{u"pgn"_s, qint64{number}}};
                                               }));
}

Reply getPGN(const ToolCall &call)
{
    const quint32 number = pgns.numberOf(call);
    const auto data = call.store().getPGN(call.line(), number, direction(call));
    if (!data)
        return pgns.missing(call);
    QJsonObject object = MessageTools::messageObject(call, *data);
    object.insert(u"pgn"_s, qint64{number});
    object.insert(u"priority"_s, data->priority);
    object.insert(u"spns"_s, pgns.signalList(call));
    return Reply::json(object);
}

Reply addPGN(const ToolCall &call)
{
    ObjectDataBase::PGN data;
    MessageTools::readMessage(call, data);
    data.priority = call.number<quint8>(priority.name);
    return pgns.added(call, call.store().addPGN(call.line(), pgns.numberOf(call), data));
}

Reply listSPNs(const ToolCall &call)
{
    return Reply::json(pgns.signalList(call));
}

Reply getSPN(const ToolCall &call)
{
    const auto data = call.store().getSPN(call.line(), pgns.numberOf(call), direction(call), pgns.signalOf(call));
    return data ? Reply::json(pgns.describe(*data)) : pgns.missingSignal(call);
}

constexpr Tool j1939Tools[] = {
    {"list_pgns"_L1,
     "List the J1939 PGNs defined on a line. Only valid for J1939 lines."_L1,
     {Arguments::line},
     {Arguments::directionFilter, excludeSafety},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939},
     listPGNs},
    {"get_pgn"_L1,
     "Get a J1939 PGN, including its SPNs, for a line. Only valid for J1939 lines."_L1,
     {Arguments::line, pgn, Arguments::direction},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939},
     getPGN},
    {"add_pgn"_L1,
     "Add a new J1939 PGN to a line. Fails if the (pgn, direction) already exists, or the line isn't J1939. The line "
     "must already exist."_L1,
     {Arguments::line, pgn, Arguments::direction, pgnName},
     {Arguments::cycleTimeMs, Arguments::description, Arguments::inhibitTimeMs, priority},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineExists, lineIsJ1939,
      MessageTools::isNew<pgns>},
     addPGN},
    {"delete_pgn"_L1,
     "Delete a J1939 PGN and all its SPNs from a line."_L1,
     {Arguments::line, pgn, Arguments::direction},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939, MessageTools::exists<pgns>},
     MessageTools::remove<pgns>},
    {"list_spns"_L1,
     "List the SPNs defined on a PGN. Only valid for J1939 lines."_L1,
     {Arguments::line, pgn, Arguments::direction},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939},
     listSPNs},
    {"get_spn"_L1,
     "Get a single SPN of a PGN. Only valid for J1939 lines."_L1,
     {Arguments::line, pgn, Arguments::direction, spn},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939},
     getSPN},
    {"add_spn"_L1,
     "Add a new SPN to an existing PGN. Fails if the PGN doesn't exist yet, or the SPN already exists."_L1,
     {Arguments::line, pgn, Arguments::direction, spn, spnName, Arguments::dataType},
     {Arguments::bitPosition, Arguments::bitSize, Arguments::defaultValue, Arguments::description, spnPos, slotDf,
      Arguments::varname},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939, MessageTools::exists<pgns>,
      MessageTools::signalIsNew<pgns>},
     MessageTools::addSignal<pgns>},
    {"delete_spn"_L1,
     "Delete a single SPN from a PGN."_L1,
     {Arguments::line, pgn, Arguments::direction, spn},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939, MessageTools::signalExists<pgns>},
     MessageTools::removeSignal<pgns>},
};

} // namespace

std::span<const Tool> ToolFamilies::j1939()
{
    return j1939Tools;
}
