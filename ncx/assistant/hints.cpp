#include "ncx/assistant/hints.h"

#include "mcp/call/tool.h"
#include "mcp/session/projectsession.h"
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

/// The first row that fits counts.
constexpr Hint hints[] = {
    {"No project open"_L1, {}, "Or make one with new_project."_L1},
    // These tell all by themselves.
    {"Call "_L1, {}, {}},
    {"Argument"_L1, {}, {}},
    {"Line "_L1, "line"_L1, {}},
    {"Source index "_L1, "srcIndex"_L1, "list_indices tells which there are."_L1},
    {"Destination line "_L1, "destLine"_L1, {}},
    {"Subindex "_L1, "sub"_L1, "get_index tells which there are; set_subindex changes one, add_subindex adds one."_L1},
    {"Index "_L1, "index"_L1,
     "list_indices tells which there are; set_index and set_subindex change one, add_index adds one."_L1},
    {"PGN "_L1, "pgn and direction"_L1,
     "list_pgns tells which there are; add_pgn adds one, and to change one delete it first."_L1},
    {"SPN "_L1, "spn"_L1, "list_spns tells which there are; to change one delete it first."_L1},
    {"CAN-ID "_L1, "canId, extended and direction"_L1,
     "list_can_ids tells which there are; to change one delete it first."_L1},
    {"Data element "_L1, "number"_L1, "get_can_id tells which there are; to change one delete it first."_L1},
    {"Unknown profile"_L1, "profile"_L1, {}},
    {"Unknown setting"_L1, "key"_L1,
     "get_settings tells the keys of a group; set_j1939_setting and set_description_setting have others."_L1},
    {"Setting "_L1, "value or line"_L1, "get_setting tells what the key takes."_L1},
    {"Failed to add"_L1, {}, "Texts must not hold a single quote; codes of data types are those of CiA 301."_L1},
};

QString linesOf(const ToolCall &call)
{
    QStringList lines;
    for (const quint8 line : call.store().getNodeList())
        lines.append(QString::number(line));
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
    if (!hint->argument.isEmpty())
        sentences.append(u"Argument: %1."_s.arg(hint->argument));
    if (hint->argument.contains("ine"_L1) && call.session().isProjectOpen())
        sentences.append(linesOf(call));
    if (!hint->next.isEmpty())
        sentences.append(hint->next);
    return sentences.join(u' ');
}
