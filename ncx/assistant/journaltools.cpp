// Steps back and forth in the edits of the open project.

#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr Property steps = Properties::integer("steps"_L1, 1, 200, "Number of edits (default: 1)"_L1);

Reply walk(const ToolCall &call, QString (RowJournal::*step)(), const QString &done, const QString &none)
{
    AssistantSession &session = sessionOf(call);
    const int wanted = call.has(steps.name) ? call.number<int>(steps.name) : 1;
    QStringList names;
    for (int i = 0; i < wanted; ++i) {
        const QString name = (session.journal().*step)();
        if (name.isEmpty())
            break;
        names.append(name);
    }
    if (names.isEmpty())
        return Reply::refusal(none);
    session.setChanged();
    constexpr qsizetype mostNames = 8;
    const QString more = names.size() > mostNames ? u" and %1 more"_s.arg(names.size() - mostNames) : QString();
    return call.edited(u"%1 %2%3. %4 can be undone, %5 redone."_s
                           .arg(done, names.first(std::min(names.size(), mostNames)).join(", "_L1), more)
                           .arg(session.journal().undoable())
                           .arg(session.journal().redoable()));
}

Reply undo(const ToolCall &call)
{
    return walk(
        call, &RowJournal::undo, u"Undone:"_s,
        u"There is no edit to undo. Edits can be undone since the project was opened, up to 200; the next step is "
        "an edit, or open_project with \"discard\": true to go back to the file."_s);
}

Reply redo(const ToolCall &call)
{
    return walk(call, &RowJournal::redo, u"Redone:"_s,
                u"There is no edit to redo: nothing was undone, or an edit came after it."_s);
}

constexpr Tool journalTools[] = {
    {"undo"_L1,
     "Take back the last edits of the open project, newest first, each as a whole. Use it when an edit did not do what "
     "you meant. Example: {\"steps\": 2}"_L1,
     {},
     {steps},
     {projectIsOpen, storeIsReachable},
     undo},
    {"redo"_L1,
     "Make edits again that undo took back, as long as no other edit came in between. Example: {\"steps\": 1}"_L1,
     {},
     {steps},
     {projectIsOpen, storeIsReachable},
     redo},
};

} // namespace

std::span<const Tool> AssistantFamilies::journal()
{
    return journalTools;
}
