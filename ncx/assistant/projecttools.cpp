// The project as a whole: make, open, save.

#include "mcp/tools/arguments.h"
#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"
#include "ncx/assistant/filearguments.h"
#include "ncx/making/newproject.h"
#include "ncx/project/identity.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace FileArguments;
using namespace Guards;
using Arguments::lineTypeNames;

namespace {

constexpr Property lineTypeName{.name = {}, .types = Properties::Types::string, .choices = lineTypeNames};
constexpr Property profileId{.name = {}, .types = Properties::Types::string};

constexpr Property projectPath = Properties::string(
    "path"_L1, "New file. A name that ends in .ncxt is the text form for version control, which holds no raw CAN; any "
               "other is a database, .ncxp"_L1);
constexpr Property lineTypes =
    Properties::array("lineTypes"_L1, lineTypeName, R"(Protocols of each line, from line 0 (default: ["CANopen"]))"_L1);
constexpr Property nodeId = Properties::integer("nodeId"_L1, 1, 127, "Node-id of CANopen lines (default: 1)"_L1);
constexpr Property profiles = Properties::array(
    "profiles"_L1, profileId,
    R"(Profiles whose mandatory objects and device type CANopen lines get, e.g. ["401"]; see list_profiles)"_L1);
constexpr Property emptyLine = Properties::integer(
    "emptyLine"_L1, 0, 31, "This CANopen line gets no objects, for import_file with adopt (optional)"_L1);
constexpr Property overwrite = Properties::boolean("overwrite"_L1, "Replace the file if it exists (default: false)"_L1);
constexpr Property discard =
    Properties::boolean("discard"_L1, "Give up the unsaved edits of the open project (default: false)"_L1);
constexpr Property savePath =
    Properties::string("path"_L1, "Save a copy there; the open project stays the one that it is (optional)"_L1);
constexpr Property lossy = Properties::boolean(
    "lossy"_L1, "Save as text even what the text form cannot hold, which is lost (default: false)"_L1);

std::optional<Reply> nothingIsUnsaved(const ToolCall &call)
{
    const AssistantSession &session = sessionOf(call);
    if (!session.isProjectOpen() || !session.isChanged() || call.flag(discard.name))
        return {};
    return Reply::refusal(u"The open project %1 has unsaved edits. Call save_project first, or give \"discard\": true "
                          "to lose them."_s.arg(session.project().path()));
}

QJsonObject lineOf(ObjectDataBase &store, quint8 line)
{
    return {{u"line"_s, line}, {u"lineTypeCode"_s, store.getGeneralSetting(u"line%1type"_s.arg(line)).toInt()}};
}

/// What there is to say of a project that has been opened.
Reply openedReply(const AssistantSession &session, const QString &what, QJsonObject data = {})
{
    QJsonArray lines;
    for (const quint8 line : session.store().getNodeList())
        lines.append(lineOf(session.store(), line));
    const QJsonObject counts = FindingsReport::counts(session.findings());
    qsizetype untold = 0;
    constexpr qsizetype mostBytes = 800;
    const QJsonArray groups = FindingsReport::grouped(session.findings(), mostBytes, untold);
    data.insert(u"path"_s, session.project().path());
    data.insert(u"lines"_s, lines);
    data.insert(u"findings"_s, counts);
    data.insert(u"items"_s, groups);
    QString text = u"%1: %2\nCheck: %3."_s.arg(what, session.project().path(), FindingsReport::countText(counts));
    for (const QJsonValue group : groups)
        text += u'\n' + FindingsReport::line(group.toObject());
    if (untold > 0)
        text += u"\ncheck_model tells %1 more."_s.arg(untold);
    return Reply::both(text, data);
}

Reply openProject(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    const QString file = call.text(path.name);
    if (const QString reason = session.open(file); !reason.isEmpty())
        return Reply::refusal(u"Failed to open project %1: %2. No project is open now; call open_project with another "
                              "path, or new_project."_s.arg(file, reason));
    return openedReply(session, u"Project opened"_s);
}

NewProject wishOf(const ToolCall &call, const QString &file)
{
    NewProject wish;
    if (call.has(lineTypes.name)) {
        wish.lineTypes.clear();
        for (const QJsonValue name : call.value(lineTypes.name).toArray())
            wish.lineTypes.append(NewProject::lineType(name.toString()));
    }
    if (call.has(nodeId.name))
        wish.nodeId = call.number<int>(nodeId.name);
    for (const QJsonValue id : call.value(profiles.name).toArray())
        wish.profiles.append(id.toString());
    if (call.has(emptyLine.name))
        wish.describedLine = call.number<int>(emptyLine.name);
    const bool hasCANopen =
        std::ranges::any_of(wish.lineTypes, [](int type) { return LineProtocols::ofType(type).canOpen; });
    wish.namesLines = hasCANopen || !OpenedProject::isTextPath(file);
    return wish;
}

std::optional<Reply> lineTypesAreGiven(const ToolCall &call)
{
    const qsizetype count = call.value(lineTypes.name).toArray().size();
    if (!call.has(lineTypes.name) || (count > 0 && count <= firstLineBeyondStack))
        return {};
    return Reply::invalidParams(u"Argument \"lineTypes\" must have 1 to %1 elements."_s.arg(firstLineBeyondStack));
}

/// What is for CANopen lines has one to go to.
std::optional<Reply> canOpenIsMeant(const ToolCall &call)
{
    const NewProject wish = wishOf(call, call.text(path.name));
    const auto isCANopen = [&wish](qsizetype line) {
        return LineProtocols::ofType(wish.lineTypes.value(line)).canOpen;
    };
    if (call.has(emptyLine.name) && !isCANopen(wish.describedLine))
        return Reply::refusal(u"Argument: emptyLine. Line %1 of lineTypes is no CANopen line; lineTypes names the "
                              "protocols of each line, from line 0."_s.arg(wish.describedLine));
    for (qsizetype line = 0; line < wish.lineTypes.size(); ++line) {
        if (isCANopen(line))
            return {};
    }
    for (const Property *property : {&nodeId, &profiles}) {
        if (call.has(property->name))
            return Reply::refusal(
                u"Argument: %1. It is for CANopen lines, and lineTypes has none. Leave it out, or add "
                "\"CANopen\" to lineTypes."_s.arg(property->name));
    }
    return {};
}

/// The text form has no place for raw CAN messages.
std::optional<Reply> formFitsLines(const ToolCall &call)
{
    const QJsonArray types = call.value(lineTypes.name).toArray();
    const bool hasRaw =
        std::ranges::any_of(types, [](const QJsonValue &name) { return name.toString().contains("RawCAN"_L1); });
    if (!hasRaw || !OpenedProject::isTextPath(call.text(path.name)))
        return {};
    return Reply::refusal(u"Argument: path. The text form (.ncxt) holds no raw CAN messages. Give the file a name that "
                          "ends in .ncxp."_s);
}

Reply newProject(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    const QString file = call.text(path.name);
    if (QFileInfo::exists(file) && !call.flag(overwrite.name))
        return Reply::refusal(
            u"Argument: path. %1 exists. Choose another name, or give \"overwrite\": true."_s.arg(file));
    ObjectDataBase store;
    QString reason = wishOf(call, file).makeIn(store);
    if (reason.isEmpty()) {
        Identity::take(Identity::leastFor(store, file));
        reason = OpenedProject::save(store, file);
    }
    if (reason.isEmpty())
        reason = session.open(file);
    if (!reason.isEmpty())
        return Reply::refusal(u"Failed to make %1: %2."_s.arg(file, reason));
    return openedReply(session, u"Project made and opened"_s);
}

Reply saveProject(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    const bool isCopy = call.has(savePath.name);
    const QString file = isCopy ? call.text(savePath.name) : session.project().path();
    if (isCopy && QFileInfo::exists(file) && !call.flag(overwrite.name))
        return Reply::refusal(
            u"Argument: path. %1 exists. Choose another name, or give \"overwrite\": true."_s.arg(file));
    QStringList losses;
    if (OpenedProject::isTextPath(file)) {
        for (const TextScope::Loss &loss : session.store().textLosses())
            losses.append((loss.column.isEmpty() ? loss.table : loss.table + u'.' + loss.column) +
                          u" (%1 rows)"_s.arg(loss.rows));
    }
    if (!losses.isEmpty() && !call.flag(lossy.name))
        return Reply::refusal(u"Not saved: the text form cannot hold %1. Save to a path that ends in .ncxp, or give "
                              "\"lossy\": true to leave this out of the file."_s.arg(losses.join(", "_L1)));
    if (!isCopy && !call.flag(overwrite.name) && session.project().hasChangedOnDisk())
        return Reply::refusal(
            u"Not saved: somebody else has changed %1 since it was opened or saved here. Compare with "
            "diff_project, then give \"overwrite\": true to replace it, or save a copy to another "
            "path."_s.arg(file));
    if (const QString reason = session.save(file); !reason.isEmpty())
        return Reply::refusal(u"Not saved: %1: %2."_s.arg(file, reason));
    QJsonObject data{{u"path"_s, file}};
    QString text = u"Project saved: %1"_s.arg(file);
    if (!losses.isEmpty()) {
        data.insert(u"lost"_s, QJsonArray::fromStringList(losses));
        text += u"\nLeft out: "_s + losses.join(", "_L1);
    }
    return Reply::both(text, data);
}

constexpr Tool projectTools[] = {
    {"new_project"_L1,
     "Make a project file that passes its check and open it; use this to build a device from nothing. CANopen lines "
     "have the mandatory objects of CiA 301 and of the profiles, J1939 lines a NAME and an address. Example: "
     "{\"path\": "
     "\"module.ncxt\", \"nodeId\": 32, \"profiles\": [\"401\"]}"_L1,
     {projectPath},
     {lineTypes, nodeId, profiles, emptyLine, overwrite, discard},
     {pathIsInside, lineTypesAreGiven, formFitsLines, canOpenIsMeant, nothingIsUnsaved},
     newProject},
    {"open_project"_L1,
     "Open a project file (.ncxp, .ncxt) in the place of the one that is open. Example: {\"path\": \"device.ncxt\"}"_L1,
     {path},
     {discard},
     {pathIsInside, nothingIsUnsaved},
     openProject},
    {"save_project"_L1,
     "Save the open project to its file, or a copy to another path. Refuses, and tells what, if the form of the file "
     "would lose something. Example: {\"path\": \"device.ncxp\"}"_L1,
     {},
     {savePath, lossy, overwrite},
     {projectIsOpen, pathIsInside, storeIsWhole},
     saveProject},
};

} // namespace

std::span<const Tool> AssistantFamilies::project()
{
    return projectTools;
}
