#include "ncx/guide/hints.h"

#include "mcp/call/tool.h"
#include "mcp/session/projectsession.h"
#include "mcp/tools/arguments.h"
#include "ncx/making/newproject.h"
#include "store/objectdatabase.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Hint
{
    QLatin1StringView said; ///< in the refusal
    QLatin1StringView argument;
    QLatin1StringView next;
};

/// Stands for the argument with the line of the refusal.
constexpr auto theLine = "line"_L1;

/// The first row that fits counts.
constexpr Hint hints[] = {
    {"No project open"_L1, {}, "Or make one with new_project."_L1},
    {"Unknown setting"_L1, "key"_L1, "set_j1939_setting and set_description_setting have others."_L1},
    {"Unknown profile"_L1, "profile"_L1, {}},
    {"Call "_L1, {}, {}}, // it tells the next step by itself

    // Files.
    {"there is no such file"_L1, "path"_L1, "A relative path begins in the folder in which the server was started."_L1},
    {"there is no such folder"_L1, "path"_L1, "Make the folder, or choose one that is there."_L1},
    {"it is no project"_L1, "path"_L1, "Choose a file that ends in .ncxp or .ncxt; import_file takes others."_L1},
    {"it has no node"_L1, "node"_L1, "Take one of those in the brackets."_L1},
    {"adopt needs a line"_L1, "adopt or line"_L1,
     "new_project with emptyLine makes such a line, add_line adds one; without adopt the file is imported as it is."_L1},
    {"there is no line"_L1, theLine, {}},
    {"does not speak"_L1, theLine, {}},
    {"Import failed"_L1, "path"_L1, "Correct the file or choose another one."_L1},
    {"there is no profile"_L1, "profiles"_L1, "Take some of those in the brackets."_L1},
    {"Imported 0 object"_L1, "indices"_L1,
     "list_profile_indices tells which the profile has, list_indices which the line has."_L1},
    {"is not defined in profile"_L1, "index"_L1, "list_profile_indices tells which there are."_L1},

    {"Argument"_L1, {}, {}}, // it tells what is taken by itself

    // Settings.
    {"line is not allowed"_L1, {}, "Argument: line. Leave it out."_L1},
    {"requires line"_L1, theLine, {}},
    {"is per line"_L1, theLine, {}},
    {"enable "_L1, "key"_L1, "set_setting enables the other one with the value true."_L1},
    {"is read-only"_L1, "key"_L1, "It is set by the program; choose another one."_L1},
    {"Setting "_L1, "value"_L1, "get_setting tells what the key takes."_L1},
    {"Write may have failed"_L1, "value"_L1, "get_setting tells what the key takes."_L1},

    // What there is, or is not.
    {"Failed to add SPN"_L1, "varname or defaultValue"_L1, "They must not hold a single quote."_L1},
    {"Failed to add data element"_L1, "varname or defaultValue"_L1, "They must not hold a single quote."_L1},
    {"Failed to add"_L1, "name and dataType"_L1, "get_index of a similar object shows what is taken."_L1},
    {"Source index "_L1, "srcIndex"_L1, "list_indices tells which there are."_L1},
    {"Subindex "_L1, "sub"_L1, "get_index tells which there are; set_subindex changes one, add_subindex adds one."_L1},
    {"Index "_L1, "index"_L1,
     "list_indices tells which there are; set_index and set_subindex change one, add_index adds one."_L1},
    {"SPN "_L1, "spn"_L1, "get_pgn tells which there are; to change one delete it first."_L1},
    {"Data element "_L1, "number"_L1, "get_can_id tells which there are; to change one delete it first."_L1},
    {"PGN "_L1, "pgn and direction"_L1,
     "list_pgns tells which there are; add_pgn adds one, and to change one delete it first."_L1},
    {"CAN-ID "_L1, "canId, extended and direction"_L1,
     "list_can_ids tells which there are; add_can_id adds one, and to change one delete it first."_L1},
    {"ine "_L1, theLine, {}},
};

/// Of several arguments with lines, the one whose line is refused.
QString lineArgument(const ToolCall &call, const QString &refusal)
{
    for (const QLatin1StringView name : {"srcLine"_L1, "destLine"_L1}) {
        if (call.has(name) && refusal.contains(u"ine %1 "_s.arg(call.number<int>(name))))
            return name;
    }
    return theLine;
}

/// "0 (CANopen), 1 (J1939)".
QString linesOf(const ToolCall &call)
{
    QStringList lines;
    for (const quint8 line : call.store().getNodeList()) {
        const int code = call.session().lineTypeCode(line);
        const auto *const type = std::ranges::find_if(
            Arguments::lineTypeNames, [code](QLatin1StringView name) { return NewProject::lineType(name) == code; });
        lines.append(
            u"%1 (%2)"_s.arg(QString::number(line), type == std::end(Arguments::lineTypeNames) ? "none"_L1 : *type));
    }
    return u"Lines of this project: %1. set_line changes the protocols of one, add_line adds one."_s.arg(
        lines.join(", "_L1));
}

} // namespace

QString hintFor(const ToolCall &call, const QString &refusal)
{
    const auto *const hint =
        std::ranges::find_if(hints, [&refusal](const Hint &row) { return refusal.contains(row.said); });
    if (hint == std::end(hints))
        return {};
    QStringList sentences;
    const bool isLine = hint->argument == theLine;
    if (!hint->argument.isEmpty() && !refusal.contains("Argument"_L1))
        sentences.append(u"Argument: %1."_s.arg(isLine ? lineArgument(call, refusal) : QString(hint->argument)));
    if (isLine && call.session().isProjectOpen())
        sentences.append(linesOf(call));
    if (!hint->next.isEmpty())
        sentences.append(hint->next);
    return sentences.join(u' ');
}
