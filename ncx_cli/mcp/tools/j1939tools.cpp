// The PGNs and SPNs of J1939 lines.

#include "ncx_cli/mcp/session/projectsession.h"
#include "ncx_cli/mcp/tools/guards.h"
#include "ncx_cli/mcp/tools/messagetools.h"
#include "ncx_cli/mcp/tools/toolfamilies.h"
#include "store/objectdatabase.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;
using namespace Guards;
using MessageTools::direction;
using MessageTools::directionIsKnown;
using MessageTools::directionWord;

namespace {

constexpr qint64 maxNumber = std::numeric_limits<qint32>::max();

constexpr Property pgn = Properties::integer("pgn"_L1, 0, maxNumber, "PGN number, decimal"_L1);
constexpr Property spn = Properties::integer("spn"_L1, 0, maxNumber, "SPN number, decimal"_L1);
constexpr Property excludeSafety =
    Properties::boolean("excludeSafety"_L1, "Exclude safety-relevant PGNs (default: false)"_L1);
constexpr Property pgnName = Properties::string("name"_L1, "PGN name"_L1);
constexpr Property priority = Properties::integer("priority"_L1, 0, 7, "J1939 priority, 0-7 (optional)"_L1);
constexpr Property spnName = Properties::string("name"_L1, "SPN name"_L1);
constexpr Property pos = Properties::integer("pos"_L1, 0, 255, "Display order within the PGN (optional)"_L1);
constexpr Property slotDf =
    Properties::integer("slotDf"_L1, 0, 65535, "NMEA2000/J1939 slot or dataformat code, opaque (optional)"_L1);

quint32 pgnOf(const ToolCall &call)
{
    return call.number<quint32>(pgn.name);
}

quint32 spnOf(const ToolCall &call)
{
    return call.number<quint32>(spn.name);
}

/// Fills a sentence about the call's PGN: number, direction, line.
QString aboutPGN(const ToolCall &call, const QString &sentence)
{
    return sentence.arg(QString::number(pgnOf(call)), directionWord(call), QString::number(call.line()));
}

/// Fills a sentence about the call's SPN: number, PGN, direction, line.
QString aboutSPN(const ToolCall &call, const QString &sentence)
{
    return sentence.arg(QString::number(spnOf(call)), QString::number(pgnOf(call)), directionWord(call),
                        QString::number(call.line()));
}

bool hasPGN(const ToolCall &call)
{
    return call.store().pgnExists(call.line(), pgnOf(call), direction(call));
}

bool hasSPN(const ToolCall &call)
{
    return call.store().spnExists(call.line(), pgnOf(call), direction(call), spnOf(call));
}

std::optional<Reply> pgnExists(const ToolCall &call)
{
    if (hasPGN(call))
        return {};
    return Reply::refusal(aboutPGN(call, u"PGN %1 (%2) does not exist on line %3."_s));
}

std::optional<Reply> pgnIsNew(const ToolCall &call)
{
    if (!hasPGN(call))
        return {};
    return Reply::refusal(aboutPGN(call, u"PGN %1 (%2) already exists on line %3."_s));
}

std::optional<Reply> spnExists(const ToolCall &call)
{
    if (hasSPN(call))
        return {};
    return Reply::refusal(aboutSPN(call, u"SPN %1 does not exist on PGN %2 (%3), line %4."_s));
}

std::optional<Reply> spnIsNew(const ToolCall &call)
{
    if (!hasSPN(call))
        return {};
    return Reply::refusal(aboutSPN(call, u"SPN %1 already exists on PGN %2 (%3), line %4."_s));
}

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

QJsonObject spnObject(quint32 number, const ObjectDataBase::SPN &data)
{
    QJsonObject object = MessageTools::signalObject(data);
    object.insert(u"spn"_s, qint64{number});
    object.insert(u"slotDf"_s, data.slot_df);
    return object;
}

QJsonArray spnsOf(const ToolCall &call)
{
    ObjectDataBase &store = call.store();
    QJsonArray list;
    std::ignore = store.cacheSPNs(call.line()); // without them, each is asked for by itself
    for (const quint32 number : store.getSPNList(call.line(), pgnOf(call), direction(call))) {
        if (const auto data = store.getSPN(call.line(), pgnOf(call), direction(call), number))
            list.append(spnObject(number, *data));
    }
    store.clearSPNCache();
    return list;
}

Reply getPGN(const ToolCall &call)
{
    const auto data = call.store().getPGN(call.line(), pgnOf(call), direction(call));
    if (!data)
        return Reply::refusal(aboutPGN(call, u"PGN %1 (%2) does not exist on line %3."_s));
    return Reply::json({
        {u"pgn"_s, qint64{pgnOf(call)}},
        {u"line"_s, call.line()},
        {u"direction"_s, directionWord(call)},
        {u"name"_s, data->name},
        {u"description"_s, data->desc},
        {u"priority"_s, data->priority},
        {u"cycleTimeMs"_s, data->cycletime_ms},
        {u"inhibitTimeMs"_s, data->inhibittime_ms},
        {u"spns"_s, spnsOf(call)},
    });
}

Reply addPGN(const ToolCall &call)
{
    ObjectDataBase::PGN data;
    MessageTools::readMessage(call, data);
    data.priority = call.number<quint8>(priority.name);
    if (!call.store().addPGN(call.line(), pgnOf(call), data) || !hasPGN(call))
        return Reply::refusal(aboutPGN(call, u"Failed to add PGN %1 (%2) on line %3."_s));
    return call.edited(aboutPGN(call, u"PGN %1 (%2) added on line %3."_s));
}

Reply deletePGN(const ToolCall &call)
{
    const bool done = call.store().removePGN(call.line(), pgnOf(call), direction(call));
    return call.edited(
        aboutPGN(call, done ? u"PGN %1 (%2) deleted from line %3."_s : u"Failed to delete PGN %1 (%2) from line %3."_s),
        !done);
}

Reply listSPNs(const ToolCall &call)
{
    return Reply::json(spnsOf(call));
}

Reply getSPN(const ToolCall &call)
{
    const auto data = call.store().getSPN(call.line(), pgnOf(call), direction(call), spnOf(call));
    if (!data)
        return Reply::refusal(aboutSPN(call, u"SPN %1 does not exist on PGN %2 (%3), line %4."_s));
    return Reply::json(spnObject(spnOf(call), *data));
}

Reply addSPN(const ToolCall &call)
{
    const auto data = MessageTools::newSignal(call);
    if (!call.store().addSPN(call.line(), pgnOf(call), direction(call), spnOf(call), data) || !hasSPN(call))
        return Reply::refusal(aboutSPN(call, u"Failed to add SPN %1 on PGN %2 (%3), line %4."_s));
    return call.edited(aboutSPN(call, u"SPN %1 added on PGN %2 (%3), line %4."_s));
}

Reply deleteSPN(const ToolCall &call)
{
    const bool done = call.store().removeSPN(call.line(), pgnOf(call), spnOf(call), direction(call));
    return call.edited(aboutSPN(call, done ? u"SPN %1 deleted from PGN %2 (%3), line %4."_s
                                           : u"Failed to delete SPN %1 from PGN %2 (%3), line %4."_s),
                       !done);
}

constexpr Tool tools[] = {
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
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineExists, lineIsJ1939, pgnIsNew},
     addPGN},
    {"delete_pgn"_L1,
     "Delete a J1939 PGN and all its SPNs from a line."_L1,
     {Arguments::line, pgn, Arguments::direction},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939, pgnExists},
     deletePGN},
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
     {Arguments::bitPosition, Arguments::bitSize, Arguments::defaultValue, Arguments::description, pos, slotDf,
      Arguments::varname},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939, pgnExists, spnIsNew},
     addSPN},
    {"delete_spn"_L1,
     "Delete a single SPN from a PGN."_L1,
     {Arguments::line, pgn, Arguments::direction, spn},
     {},
     {projectIsOpen, keysAreGiven, directionIsKnown, storeIsReachable, lineIsJ1939, spnExists},
     deleteSPN},
};

} // namespace

std::span<const Tool> ToolFamilies::j1939()
{
    return tools;
}
