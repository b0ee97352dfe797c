// The CAN lines of the project.

#include "mcp/tools/arguments.h"
#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"
#include "ncx/making/newproject.h"
#include "store/objectdatabase.h"
#include "store/records/schema.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace Guards;
using Arguments::lineTypeNames;

namespace {

constexpr Property lineType = Properties::choice("lineType"_L1, lineTypeNames, "Protocols of the line"_L1);
constexpr Property lineName = Properties::string("name"_L1, "Line name"_L1);
constexpr Property isMaster = Properties::boolean("isMaster"_L1, "Line acts as NMT master (CANopen)"_L1);
constexpr Property lineNodeId = Properties::integer("nodeId"_L1, 1, 127, "Node-id of a CANopen line"_L1);
constexpr Property prefix = Properties::string("prefix"_L1, "Prefix of generated symbols"_L1);
constexpr Property excludeGeneration = Properties::boolean("excludeGeneration"_L1, "Generate nothing for this line"_L1);

/// What was set, for the answer.
struct Written
{
    QStringList names;
    bool done = true;

    void note(QLatin1StringView what, bool isDone)
    {
        names.append(what);
        done = done && isDone;
    }
};

/// Writes what the call has of the line's record.
void writeRecord(const ToolCall &call, Written &written)
{
    auto data = call.store().getNode(call.line()).value_or(ObjectDataBase::NODE_DATA_T());
    QList<QLatin1StringView> given;
    for (const Property *property : {&lineName, &isMaster, &prefix, &excludeGeneration}) {
        if (call.has(property->name))
            given.append(property->name);
    }
    if (given.isEmpty())
        return;
    data.name = call.text(lineName.name, data.name);
    data.prefix = call.text(prefix.name, data.prefix);
    data.ismaster = call.has(isMaster.name) ? call.flag(isMaster.name) : data.ismaster;
    data.excludegeneration =
        call.has(excludeGeneration.name) ? call.flag(excludeGeneration.name) : data.excludegeneration;
    const bool done = call.store().addNode(call.line(), data, Quotes::Kept);
    for (const QLatin1StringView what : given)
        written.note(what, done);
}

Reply setLine(const ToolCall &call)
{
    const quint8 line = call.line();
    Written written;
    writeRecord(call, written);
    if (call.has(lineType.name)) {
        const int code = NewProject::lineType(call.text(lineType.name));
        written.note(lineType.name, call.store().setGeneralSetting(u"line%1type"_s.arg(line), QString::number(code)));
    }
    if (call.has(lineNodeId.name))
        written.note(lineNodeId.name,
                     call.store().setGeneralSetting(
                         u"co_node_id"_s,
                         call.text(lineNodeId.name, QString::number(call.number<int>(lineNodeId.name))), line,
                         Quotes::Kept));
    if (written.names.isEmpty())
        return Reply::invalidParams(u"Nothing to set: give name, lineType, nodeId, isMaster, prefix or "
                                    "excludeGeneration."_s);
    if (!written.done)
        return Reply::refusal(u"Failed to set %1 of line %2."_s.arg(written.names.join(", "_L1)).arg(line));
    return call.edited(u"Line %1: %2 set."_s.arg(line).arg(written.names.join(", "_L1)));
}

/// Row by row first, so that the journal has what goes.
bool emptyTables(ObjectDataBase &store, quint8 line)
{
    bool done = true;
    for (int family = 0; family < ProjectSchema::lineTableCount; ++family) {
        const QString table = ProjectSchema::tableName(static_cast<ProjectSchema::LineTable>(family), line);
        done = store.statements().execute({"deleteLine", u"delete from "_s + table, Statement::Effect::Rows}) && done;
    }
    return done;
}

/// A project without lines cannot be opened again. And a deletion moves the settings of later lines by one place, their
/// types among them, while the lines keep their numbers.
std::optional<Reply> lineCanGo(const ToolCall &call)
{
    const QList<quint8> lines = call.store().getNodeList();
    const quint8 highest = *std::ranges::max_element(lines);
    if (lines.size() > 1 && call.line() == highest)
        return {};
    if (lines.size() > 1) {
        return Reply::refusal(
            u"Argument: line. Only the line of the highest number, %1, can be deleted, since its "
            "settings would go to another one. set_line changes the protocols of a line."_s.arg(highest));
    }
    return Reply::refusal(
        u"Argument: line. A project has at least one line, and this is the last one. set_line changes "
        "its protocols; delete_index, delete_pgn and delete_can_id empty it."_s);
}

Reply deleteLine(const ToolCall &call)
{
    if (!emptyTables(call.store(), call.line()) || !call.store().removeNode(call.line()))
        return Reply::refusal(u"Failed to delete line %1."_s.arg(call.line()));
    return call.edited(u"Line %1 deleted with all that it had."_s.arg(call.line()));
}

constexpr Tool lineTools[] = {
    {"set_line"_L1,
     "Change what is given of a line: its name, protocols, node-id, NMT role. Objects and messages stay. Example: "
     "{\"line\": 0, \"name\": \"machine bus\", \"nodeId\": 32}"_L1,
     {Arguments::line},
     {lineName, lineType, lineNodeId, isMaster, prefix, excludeGeneration},
     {projectIsOpen, storeIsReachable, lineExists},
     setLine},
    {"delete_line"_L1,
     "Delete the line of the highest number with its objects, messages and settings. Example: {\"line\": 1}"_L1,
     {Arguments::line},
     {},
     {projectIsOpen, storeIsReachable, lineExists, lineCanGo},
     deleteLine},
};

} // namespace

std::span<const Tool> AssistantFamilies::lines()
{
    return lineTools;
}
