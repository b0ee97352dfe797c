// Tells what differs between two devices.

#include "ncx/commands/commands.h"
#include "ncx/commands/outputfile.h"
#include "ncx/compare/changes.h"
#include "ncx/page/changespage.h"
#include "ncx/usage/invocation.h"
#include "store/objectdatabase.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

constexpr Operand diffOperands[] = {
    {.name = "OLD"_L1, .text = "a project, or a device description (.eds, .dcf)"_L1, .offer = Offer::Projects},
    {.name = "NEW"_L1, .text = "what it has become"_L1, .offer = Offer::Projects},
};

constexpr Option diffOptions[] = {
    {.name = "breaking"_L1, .letter = 'b', .text = "only what breaks the other side of the bus"_L1},
    {.name = "force"_L1, .text = "replace FILE if it exists"_L1},
    {.name = "html"_L1, .value = "FILE"_L1, .text = "write a page that shows the changes, with the frames of both"_L1},
    {.name = "json"_L1, .letter = 'j', .text = "answer in JSON, form ncx-diff version 1"_L1},
    {.name = "line"_L1,
     .letter = 'l',
     .value = "N"_L1,
     .text = "this line only; with a description, the line that it describes, else the first with CANopen"_L1},
};

constexpr QLatin1StringView diffDetails[] = {
    "The devices are compared, not the files: texts and databases, another order, 16 and 0x10 make no difference. With "
    "a "
    "description on one side, only what descriptions say is compared."_L1,
    "Breaking is what a device on the other side of the bus could rely on and cannot any more: removed or retyped "
    "objects, narrowed access or limits, other mappings, COB-IDs, lengths or positions. Names, times, and what "
    "concerns "
    "the software of the device alone break nothing."_L1,
    "The exit code is 1 if something differs, with --breaking if something breaks."_L1,
};

constexpr Example diffExamples[] = {
    {"ncx diff before.ncxt after.ncxp"_L1, "tells what has become another"_L1},
    {"ncx diff --breaking released.eds device.ncxt"_L1, "fails where a device is no longer what its EDS says"_L1},
    {"ncx diff before.ncxt after.ncxt --html changes.html"_L1, "a page for a browser, in one file"_L1},
    {"git config difftool.ncx.cmd 'ncx diff \"$LOCAL\" \"$REMOTE\"'"_L1, "for 'git difftool -t ncx'"_L1},
};

QString textOf(const Terminal &terminal, const DeviceChange &change, bool withLine)
{
    const auto value = [](const QString &text) { return text.isEmpty() ? u"(nothing)"_s : text; };
    QString text = change.rule ? terminal.styled(Terminal::Style::Bad, u"breaking: "_s) : QString();
    text += change.place.text(withLine);
    if (!change.title.isEmpty())
        text += u" \"%1\""_s.arg(change.title);
    switch (change.kind) {
    case DeviceChange::Kind::Added:
        return text + ": added"_L1;
    case DeviceChange::Kind::Removed:
        return text + ": removed"_L1;
    case DeviceChange::Kind::Changed:
        break;
    }
    return u"%1: %2: %3 -> %4"_s.arg(text, change.property, value(change.before), value(change.after));
}

bool openBoth(const Invocation &call, ComparedDevice &before, ComparedDevice &after)
{
    const QString &oldPath = call.operand(0);
    const QString &newPath = call.operand(1);
    call.terminal().step(u"reading %1 and %2"_s.arg(oldPath, newPath));
    if (ComparedDevice::openBoth(before, oldPath, after, newPath))
        return true;
    if (!before.reason().isEmpty())
        call.terminal().fail(u"%1: %2"_s.arg(oldPath, before.reason()));
    if (!after.reason().isEmpty())
        call.terminal().fail(u"%1: %2"_s.arg(newPath, after.reason()));
    return false;
}

/// The line that the call asks for; false, with that told, if no side has it.
bool findLine(const Invocation &call, const ComparedDevice &before, const ComparedDevice &after,
              std::optional<quint8> &line)
{
    if (!call.isSet("line"_L1))
        return true;
    bool ok = false;
    const uint number = call.value("line"_L1).toUInt(&ok);
    const auto lacks = [number](const ComparedDevice &device) {
        return !device.isDescription() && !device.lines().contains(static_cast<quint8>(number));
    };
    if (!ok || number > 0xff || (lacks(before) && lacks(after))) {
        const auto listOf = [](const ComparedDevice &device) {
            QStringList numbers;
            for (const quint8 known : device.isDescription() ? QList<quint8>() : device.lines())
                numbers.append(QString::number(known));
            return numbers.isEmpty() ? u"none"_s : numbers.join(", "_L1);
        };
        call.terminal().fail(
            u"there is no line %1; OLD has %2, NEW has %3"_s.arg(call.value("line"_L1), listOf(before), listOf(after)));
        return false;
    }
    line = static_cast<quint8>(number);
    return true;
}

/// Tells the changes; the number of those that break something is told beside that of all.
void tell(const Invocation &call, const QList<DeviceChange> &changes, bool withLine)
{
    Terminal &terminal = call.terminal();
    const auto isBreaking = [](const DeviceChange &change) { return change.rule != nullptr; };
    const auto breaking = std::ranges::count_if(changes, isBreaking);
    if (call.isSet("json"_L1)) {
        terminal.write(QString::fromUtf8(
            QJsonDocument(DeviceChanges::toJson(call.operand(0), call.operand(1), changes)).toJson()));
        return;
    }
    for (const DeviceChange &change : changes)
        terminal.answer(textOf(terminal, change, withLine));
    const QString count = changes.isEmpty()     ? u"no difference"_s
                          : changes.size() == 1 ? u"1 difference"_s
                                                : u"%1 differences"_s.arg(changes.size());
    terminal.answer(call.isSet("breaking"_L1)
                        ? (breaking > 0 ? u"%1, breaking"_s.arg(count) : u"nothing breaks"_s)
                        : (breaking > 0 ? u"%1, %2 of them breaking"_s.arg(count).arg(breaking) : count));
}

int writePage(const Invocation &call, const DeviceChanges &changes, const QList<DeviceChange> &told)
{
    const QJsonObject diff = DeviceChanges::toJson(call.operand(0), call.operand(1), told);
    return OutputFile::write(
        call, call.value("html"_L1), ChangesPage::html(ChangesPage::data(changes, told, diff)),
        {{.path = call.operand(0), .text = u"OLD"_s}, {.path = call.operand(1), .text = u"NEW"_s}});
}

int runDiff(const Invocation &call)
{
    if (call.isSet("html"_L1) && call.isSet("json"_L1))
        return call.refuse(u"--html goes with no other form"_s);
    ComparedDevice before;
    ComparedDevice after;
    std::optional<quint8> line;
    if (!openBoth(call, before, after) || !findLine(call, before, after, line))
        return CouldNot;
    call.terminal().step(u"comparing"_s);
    const DeviceChanges changes(before, after, line);
    if (before.isDamaged() || after.isDamaged()) {
        call.terminal().fail(u"%1: %2"_s.arg(call.operand(after.isDamaged() ? 1 : 0), ComparedDevice::damage()));
        return CouldNot;
    }
    const QList<DeviceChange> told = call.isSet("breaking"_L1) ? changes.breaking() : changes.all();
    if (call.isSet("html"_L1)) {
        if (const int result = writePage(call, changes, told); result != Done)
            return result;
        return told.isEmpty() ? Done : Findings;
    }
    tell(call, told, before.lines().size() > 1 || after.lines().size() > 1);
    return told.isEmpty() ? Done : Findings;
}

} // namespace

constexpr Command Commands::diff{
    .name = "diff"_L1,
    .summary = "tell what differs between two devices, and what of it breaks the bus"_L1,
    .operands = diffOperands,
    .options = diffOptions,
    .details = diffDetails,
    .examples = diffExamples,
    .run = runDiff,
};
