// What there is to know of the open project: findings, the device, what has changed.

#include "mcp/tools/arguments.h"
#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"
#include "ncx/assistant/paging.h"
#include "ncx/compare/changes.h"
#include "ncx/device/devicejson.h"
#include "ncx/findings/projectfindings.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr QLatin1StringView severities[]{"error"_L1, "warning"_L1, "correction"_L1, "note"_L1};
constexpr Property severity = Properties::choice("severity"_L1, severities, "Only findings of this severity"_L1);
constexpr Property group = Properties::choice("group"_L1, warningGroupKeys, "Only warnings of this group"_L1);
constexpr Property onlyNew = Properties::boolean(
    "onlyNew"_L1, "Only findings that the call of check_model before this one did not have (default: false)"_L1);
constexpr Property anyLine = Properties::integer("line"_L1, 0, 239, "Line id (default: all lines)"_L1);
constexpr Property index = Properties::integer("index"_L1, 0, 65535, "Only this object, decimal; with its PDO"_L1);
constexpr Property pgn = Properties::integer("pgn"_L1, 0, 2147483647, "Only this PGN, decimal"_L1);
constexpr Property canId = Properties::integer("canId"_L1, 0, 536870911, "Only this CAN-ID, decimal"_L1);
constexpr Property objects = Properties::boolean(
    "objects"_L1,
    "With the objects of CANopen lines, in pages; without them PDOs and messages only (default: false)"_L1);
constexpr Property other = Properties::string(
    "path"_L1, "Another project, EDS or DCF to compare with (default: the file of the open project)"_L1);
constexpr Property breaking =
    Properties::boolean("breaking"_L1, "Only changes that break the other side of the bus (default: false)"_L1);

/// The line that is asked for, if one is.
std::optional<Reply> lineIsThere(const ToolCall &call)
{
    return call.has(anyLine.name) ? lineExists(call) : std::nullopt;
}

Reply checkModel(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    const FindingsReport::Findings all = session.check();
    const FindingsReport::Findings asked = call.flag(onlyNew.name) ? FindingsReport::added(session.told, all) : all;
    session.told = all;
    QList<ProjectFinding> wanted;
    for (const CheckFinding &finding : asked) {
        const bool isOnLine = !call.has(anyLine.name) || finding.place.line == call.number<quint8>(anyLine.name);
        const ProjectFinding told = ProjectFinding::told(finding);
        if (isOnLine && (!call.has(severity.name) || told.severity() == call.text(severity.name)) &&
            (!call.has(group.name) || told.groupKey() == call.text(group.name)))
            wanted.append(told);
    }
    std::ranges::stable_sort(wanted, {}, [](const ProjectFinding &finding) {
        return std::ranges::find(severities, finding.severity()) - std::begin(severities);
    });
    QJsonObject page = Paging::page(call, wanted.size(), [&](qsizetype place) {
        QJsonObject json = wanted.at(place).toJson();
        // Of neighbours of one rule, the first tells what to do.
        if (place > 0 && wanted.at(place - 1).finding.rule == wanted.at(place).finding.rule)
            json.remove("advice"_L1);
        return json;
    });
    page.insert(u"findings"_s, FindingsReport::counts(all));
    return Reply::json(page);
}

QJsonObject lineJson(const ToolCall &call, DeviceLine &line)
{
    QJsonObject json = DeviceJson::ofLine(line);
    const QJsonArray all = json.take("objects"_L1).toArray();
    json.insert(u"objectCount"_s, all.size());
    if (call.flag(objects.name))
        json.insert(u"objects"_s, Paging::page(call, all.size(), [&all](qsizetype place) { return all.at(place); }));
    return json;
}

/// The parts of a line that the call asks for; empty if it has none of them.
QJsonObject partsJson(const ToolCall &call, DeviceLine &line)
{
    constexpr quint32 extendedBit = 0x80000000U;
    QJsonObject json;
    if (const CheckedObject *object = call.has(index.name) ? line.object(call.index()) : nullptr) {
        json.insert(u"objects"_s, QJsonArray{DeviceJson::ofObject(*object)});
        if (const Pdo *pdo = line.pdoOf(object->index))
            json.insert(u"pdos"_s, QJsonArray{DeviceJson::ofPdo(*pdo)});
    }
    QJsonArray pgns;
    for (const CheckedPGN &one : line.pgns()) {
        if (call.has(pgn.name) && one.data.number == call.number<quint32>(pgn.name))
            pgns.append(DeviceJson::ofPgn(one));
    }
    QJsonArray canIds;
    for (const CheckedCanId &one : line.canIds()) {
        if (call.has(canId.name) && (one.data.id & ~extendedBit) == call.number<quint32>(canId.name))
            canIds.append(DeviceJson::ofCanId(one));
    }
    if (!pgns.isEmpty())
        json.insert(u"pgns"_s, pgns);
    if (!canIds.isEmpty())
        json.insert(u"canIds"_s, canIds);
    if (!json.isEmpty())
        json.insert(u"line"_s, line.number());
    return json;
}

Reply show(const ToolCall &call)
{
    const AssistantSession &session = sessionOf(call);
    QList<quint8> numbers = session.store().getNodeList();
    if (call.has(anyLine.name))
        numbers.removeIf([&](quint8 number) { return number != call.line(); });
    const bool isPart = call.has(index.name) || call.has(pgn.name) || call.has(canId.name);
    QJsonArray lines;
    for (const quint8 number : numbers) {
        DeviceLine line(session.store(), number);
        const QJsonObject json = isPart ? partsJson(call, line) : lineJson(call, line);
        if (!json.isEmpty())
            lines.append(json);
    }
    if (lines.isEmpty())
        return Reply::refusal(u"No line has this object, PGN or CAN-ID. Arguments: index, pgn, canId. list_indices, "
                              "list_pgns and list_can_ids tell which there are."_s);
    return Reply::json(DeviceJson::wrap(session.project().path(), lines));
}

Reply diffProject(const ToolCall &call)
{
    const AssistantSession &session = sessionOf(call);
    const QString file = call.text(other.name, session.project().path());
    if (const QString refusal = session.roots().refusal(file); !refusal.isEmpty())
        return Reply::refusal(u"Argument: path. "_s + refusal);
    ComparedDevice before;
    if (!before.open(file))
        return Reply::refusal(u"Argument: path. %1: %2."_s.arg(file, before.reason()));
    ComparedDevice after;
    after.take(session.project());
    std::optional<quint8> line;
    if (before.isDescription())
        line = call.has(anyLine.name) ? std::optional(call.line()) : after.canOpenLine();
    else if (call.has(anyLine.name))
        line = call.line();
    if (before.isDescription() && !line)
        return Reply::refusal(u"Argument: path. A description is compared with a CANopen line, and there is none."_s);
    const DeviceChanges changes(before, after, line);
    QList<DeviceChange> told = call.flag(breaking.name) ? changes.breaking() : changes.all();
    // The check notes with which version it was made, which is no edit.
    told.removeIf([](const DeviceChange &change) { return change.property == "PreviousToolVersion"_L1; });
    return Reply::json(Paging::page(call, told.size(), [&told](qsizetype place) { return told.at(place).toJson(); }));
}

constexpr Tool readingTools[] = {
    {"check_model"_L1,
     "Tell what the check finds in the open project, unsaved edits included: severity, rule, place, message and what "
     "to "
     "do, errors first, in pages. Nothing can be generated while there are errors. Example: {\"severity\": \"error\"}"_L1,
     {},
     {severity, group, onlyNew, anyLine, Paging::offset, Paging::limit},
     {projectIsOpen, storeIsWhole, lineIsThere},
     checkModel},
    {"show"_L1,
     "Show the device, or a part of it, with the frames on the bus: PDOs with what they map, PGNs, CAN-IDs (bits count "
     "from 0, times in ms, inhibit times of PDOs in 0.1 ms). Use it to see whether a mapping is what you meant. "
     "Example: {\"line\": 0, \"index\": 6144}"_L1,
     {},
     {anyLine, index, pgn, canId, objects, Paging::offset, Paging::limit},
     {projectIsOpen, storeIsWhole, lineIsThere},
     show},
    {"diff_project"_L1,
     "Tell what differs between the file of the open project, or another project, EDS or DCF, and the open project as "
     "it "
     "is now, in pages. Use it before save_project. Example: {\"breaking\": true}"_L1,
     {},
     {other, anyLine, breaking, Paging::offset, Paging::limit},
     {projectIsOpen, storeIsWhole},
     diffProject},
};

} // namespace

std::span<const Tool> AssistantFamilies::reading()
{
    return readingTools;
}
