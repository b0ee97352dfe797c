// Makes a project that passes its check.

#include "ncx/commands/commands.h"
#include "ncx/commands/findingtext.h"
#include "ncx/findings/projectfindings.h"
#include "ncx/making/newproject.h"
#include "ncx/project/identity.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr Operand operands[] = {{.name = "PROJECT"_L1,
                                 .text = "the new file; in text form if its name ends in .ncxt, else a database"_L1,
                                 .offer = Offer::Projects}};

constexpr QLatin1StringView types[] = {"CANopen"_L1,       "J1939"_L1,          "RawCAN"_L1,
                                       "CANopen+J1939"_L1, "CANopen+RawCAN"_L1, "J1939+RawCAN"_L1};

constexpr Option options[] = {
    {.name = "force"_L1, .text = "replace PROJECT if it exists; a database that is replaced stays as PROJECT.bak"_L1},
    {.name = "line"_L1,
     .letter = 'l',
     .value = "TYPE"_L1,
     .text = "a line of this type; CANopen without it"_L1,
     .words = types,
     .isRepeatable = true},
    {.name = "node-id"_L1,
     .letter = 'n',
     .value = "N"_L1,
     .text = "the node-id of CANopen lines, 1 to 127; 1 without it"_L1},
    {.name = "profile"_L1,
     .letter = 'p',
     .value = "ID"_L1,
     .text = "take the mandatory objects and the device type of this profile, as 401"_L1,
     .isRepeatable = true},
};

constexpr QLatin1StringView details[] = {
    "Makes a project that passes the check and generates: CANopen lines have the objects that CiA 301 and the profiles "
    "demand, J1939 lines a name and an address. What only its maker knows is 0 and wants to be set: vendor-ID, product "
    "code and revision in 0x1018, and the name of a J1939 line in the J1939 settings."_L1,
};

constexpr Example examples[] = {
    {"ncx new device.ncxt --node-id=32 --profile=401"_L1, "an I/O module on one CANopen line"_L1},
    {"ncx new gateway.ncxp --line=CANopen --line=J1939"_L1, "a device of two lines"_L1},
};

constexpr int lowestNodeId = 1;
constexpr int highestNodeId = 127;

/// What the call asks for; nothing, with that told, where its options do not fit.
std::optional<NewProject> wishOf(const Invocation &call)
{
    NewProject wish;
    if (call.isSet("line"_L1)) {
        wish.lineTypes.clear();
        for (const QString &name : call.values("line"_L1))
            wish.lineTypes.append(NewProject::lineType(name));
    }
    if (wish.lineTypes.size() > firstLineBeyondStack) {
        call.refuse(u"a device has at most %1 lines"_s.arg(firstLineBeyondStack));
        return {};
    }
    const bool hasCANopen =
        std::ranges::any_of(wish.lineTypes, [](int type) { return LineProtocols::ofType(type).canOpen; });
    if (!hasCANopen && (call.isSet("node-id"_L1) || call.isSet("profile"_L1))) {
        call.refuse(u"a node-id and profiles are for CANopen lines, and there is none"_s);
        return {};
    }
    if (call.isSet("node-id"_L1)) {
        bool ok = false;
        wish.nodeId = call.value("node-id"_L1).toInt(&ok, 0);
        if (!ok || wish.nodeId < lowestNodeId || wish.nodeId > highestNodeId) {
            call.refuse(u"'%1' is no node-id; these go from 1 to 127"_s.arg(call.value("node-id"_L1)));
            return {};
        }
    }
    wish.profiles = call.values("profile"_L1);
    // The text of a project without CANopen says nothing of its lines.
    wish.namesLines = hasCANopen || !OpenedProject::isTextPath(call.operand());
    return wish;
}

/// Writes the project. The reason for which that could not be; empty if it is done.
QString make(const NewProject &wish, const QString &path)
{
    ObjectDataBase store;
    if (const QString reason = wish.makeIn(store); !reason.isEmpty())
        return reason;
    Identity::take(Identity::leastFor(store, path));
    return OpenedProject::save(store, path);
}

int run(const Invocation &call)
{
    const QString path = call.operand();
    const std::optional<NewProject> wish = wishOf(call);
    if (!wish)
        return CouldNot;
    if (QFileInfo(path).isDir() || (QFileInfo::exists(path) && !call.isSet("force"_L1))) {
        call.terminal().fail(QFileInfo(path).isDir() ? u"%1: it is a folder"_s.arg(path)
                                                     : u"%1 exists; --force replaces it"_s.arg(path));
        return CouldNot;
    }
    if (const QString reason = make(*wish, path); !reason.isEmpty()) {
        call.terminal().fail(u"%1: %2"_s.arg(path, reason));
        return CouldNot;
    }
    OpenedProject project;
    if (!project.open(path)) {
        call.terminal().fail(u"%1: %2"_s.arg(path, project.reason()));
        return CouldNot;
    }
    // A profile may ask for what only the maker of the device knows.
    ProjectFindings findings = ProjectFindings::of(project);
    findings.findings.removeIf([](const ProjectFinding &finding) { return finding.severity() == "note"_L1; });
    FindingText::tellAll(call.terminal(), path, findings);
    return findings.count(u"error"_s) > 0 ? Findings : Done;
}

} // namespace

constexpr Command Commands::newProject{
    .name = "new"_L1,
    .summary = "make a project that passes its check"_L1,
    .operands = operands,
    .options = options,
    .details = details,
    .examples = examples,
    .run = run,
};
