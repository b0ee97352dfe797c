// Turns a project from one form into the other.

#include "ncx/commands/commands.h"
#include "ncx/commands/outputfile.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr Operand convertOperands[] = {
    {.name = "IN"_L1, .text = "the project"_L1, .offer = Offer::Projects},
    {.name = "OUT"_L1,
     .text = "the new file; in text form if its name ends in .ncxt, else a database"_L1,
     .offer = Offer::Files},
};

constexpr Option convertOptions[] = {
    {.name = "force"_L1, .text = "replace OUT if it exists; a database that is replaced stays as OUT.bak"_L1},
    {.name = "lossy"_L1, .text = "leave out what the text form cannot hold"_L1},
};

constexpr QLatin1StringView convertDetails[] = {
    "The text form is made for version control. It has no place for raw CAN messages, descriptions of PGNs and SPNs "
    "and "
    "some tables; if IN has such things, they are listed, and nothing is written without --lossy."_L1,
    "Nothing is corrected on the way, but files of older versions come out in the present layout."_L1,
};

constexpr Example convertExamples[] = {
    {"ncx convert device.ncxp device.ncxt"_L1, "a text that can be compared and merged"_L1},
    {"ncx convert device.ncxt device.ncxp"_L1, "and back"_L1},
};

/// "CANIDs0: 3 rows" or "SubObjects0: 'denotation' of 2 rows".
QString textOf(const TextScope::Loss &loss)
{
    const QString rows = u"%1 %2"_s.arg(loss.rows).arg(loss.rows == 1 ? u"row"_s : u"rows"_s);
    return loss.column.isEmpty() ? u"%1: %2"_s.arg(loss.table, rows)
                                 : u"%1: '%2' of %3"_s.arg(loss.table, loss.column, rows);
}

/// Tells what the text form loses. False if that is not wanted.
bool acceptsLosses(const Invocation &call, ObjectDataBase &store)
{
    const QList<TextScope::Loss> losses = store.textLosses();
    if (losses.isEmpty())
        return true;
    Terminal &terminal = call.terminal();
    const bool isLossy = call.isSet("lossy"_L1);
    if (!isLossy)
        terminal.fail(u"%1: the text form cannot hold all of it"_s.arg(call.operand(0)));
    for (const TextScope::Loss &loss : losses)
        terminal.tell((isLossy ? u"left out: "_s : u"  "_s) + textOf(loss));
    if (!isLossy)
        terminal.tell(u"--lossy leaves this out"_s);
    return isLossy;
}

int runConvert(const Invocation &call)
{
    Terminal &terminal = call.terminal();
    const QString in = call.operand(0);
    const QString out = call.operand(1);
    if (QFileInfo::exists(out) && QFileInfo(in).canonicalFilePath() == QFileInfo(out).canonicalFilePath())
        return call.refuse(u"IN and OUT are the same file"_s);
    if (OutputFile::isTaken(call, out))
        return CouldNot;
    OpenedProject project;
    terminal.step(u"reading %1"_s.arg(in));
    if (!project.open(in, OpenedProject::Purpose::Copying)) {
        terminal.fail(u"%1: %2"_s.arg(in, project.reason()));
        return CouldNot;
    }
    if (OpenedProject::isTextPath(out) && !acceptsLosses(call, project.store()))
        return CouldNot;
    // Reading took a while, in which another process may have written the file.
    if (OutputFile::isTaken(call, out))
        return CouldNot;
    terminal.step(u"writing %1"_s.arg(out));
    if (const QString reason = project.saveAs(out); !reason.isEmpty()) {
        terminal.fail(u"%1: %2"_s.arg(out, reason));
        return CouldNot;
    }
    return Done;
}

} // namespace

constexpr Command Commands::convert{
    .name = "convert"_L1,
    .summary = "turn a project into its text form or into a database"_L1,
    .operands = convertOperands,
    .options = convertOptions,
    .details = convertDetails,
    .examples = convertExamples,
    .run = runConvert,
};
