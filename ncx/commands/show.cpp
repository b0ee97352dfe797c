// Shows a device, or a part of it.

#include "ncx/commands/commands.h"
#include "ncx/commands/devicetext.h"
#include "ncx/commands/showpage.h"
#include "ncx/compare/devicelisting.h"
#include "ncx/device/devicejson.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/objectdatabase.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr Operand showOperands[] = {
    {.name = "PROJECT"_L1, .text = "the project"_L1, .offer = Offer::Projects},
    {.name = "WHAT"_L1,
     .text =
         "an object (0x1018, 1018:1), a PGN (65262, 0xfeee) or a CAN-ID (0x18f); the device as a whole without it"_L1,
     .least = 0},
};

constexpr Option showOptions[] = {
    {.name = "force"_L1, .text = "replace FILE if it exists"_L1},
    {.name = "html"_L1,
     .value = "FILE"_L1,
     .text = "write one page on which the device can be looked up, with what the check finds"_L1},
    {.name = "all"_L1,
     .letter = 'a',
     .text = "all that the project says, in lines that can be compared; as textconv of git"_L1},
    {.name = "json"_L1, .letter = 'j', .text = "answer in JSON, form ncx-device version 1"_L1},
    {.name = "line"_L1, .letter = 'l', .value = "N"_L1, .text = "this line of the device only"_L1},
    {.name = "objects"_L1, .letter = 'd', .text = "the object dictionaries as tables"_L1},
    {.name = "svg"_L1, .value = "FILE"_L1, .text = "write the frame of a PDO, a PGN or a CAN-ID as a picture"_L1},
};

constexpr QLatin1StringView showDetails[] = {
    "A PDO, a PGN and a raw message are drawn as frames, byte for byte and bit for bit, bit 7 on the left. A number "
    "without 0x is a PGN or CAN-ID in decimal and an index in hexadecimal; all that fits is shown."_L1,
    "--all writes all that a project says in lines, the same for the same device; git takes that for comparisons."_L1,
    "Texts are cut where a terminal is too narrow for them, and nowhere else: 'COLUMNS=200 ncx show ...' cuts less."_L1,
};

constexpr Example showExamples[] = {
    {"ncx show device.ncxt"_L1, "lines, counts, PDOs and messages"_L1},
    {"ncx show device.ncxt 0x1a00"_L1, "a mapping object, with the frame that it describes"_L1},
    {"ncx show sensor.ncxt 65262"_L1, "a PGN with its SPNs"_L1},
    {"ncx show device.ncxt --html device.html"_L1, "a page for a browser, in one file"_L1},
    {"ncx show sensor.ncxt 65262 --svg temperature.svg"_L1, "a frame as a picture"_L1},
    {"git config diff.ncx.textconv 'ncx show --all'"_L1, "lets git compare projects, databases too"_L1},
    {"ncx show --json device.ncxt 1018"_L1, "an object for a program"_L1},
};

/// What a part of a device may be called by.
struct Address
{
    std::optional<quint16> index;
    std::optional<quint8> subindex;
    std::optional<quint32> message; ///< a PGN or CAN-ID

    static std::optional<Address> parse(const QString &text);
};

std::optional<Address> Address::parse(const QString &text)
{
    static const QRegularExpression form(uR"(^(0x)?([0-9a-f]{1,8})(?::(0x[0-9a-f]{1,2}|\d{1,3}))?$)"_s,
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    Address address;
    bool ok = false;
    const quint32 hexadecimal = match.captured(2).toUInt(nullptr, 16);
    if (hexadecimal <= 0xffff)
        address.index = static_cast<quint16>(hexadecimal);
    if (match.hasCaptured(3)) {
        const uint subindex = match.captured(3).toUInt(&ok, 0);
        if (!ok || subindex > 0xff)
            return {};
        address.subindex = static_cast<quint8>(subindex);
        return address;
    }
    const quint32 number = match.hasCaptured(1) ? hexadecimal : match.captured(2).toUInt(&ok, 10);
    if (match.hasCaptured(1) || ok)
        address.message = number;
    return address;
}

/// The parts of a line that an address names, as text and as JSON.
class Search
{
public:
    Search(const Address &address, int width)
        : address_(address)
        , width_(width)
    {
    }

    void look(DeviceLine &line)
    {
        constexpr quint32 canIdBits = 0x1fffffff;
        QJsonObject json{{u"line"_s, line.number()}, {u"name"_s, line.name()}, {u"type"_s, line.typeName()}};
        const qsizetype before = texts_.size();
        lookForObject(line, json);
        for (const CheckedPGN &pgn : line.pgns()) {
            if (address_.message == pgn.data.number) {
                take(json, u"pgns"_s, DeviceText::pgn(pgn, width_), DeviceJson::ofPgn(pgn));
                takeFrame(FrameSvg::of(pgn));
            }
        }
        for (const CheckedCanId &canId : line.canIds()) {
            if (address_.message && *address_.message == (canId.data.id & canIdBits)) {
                take(json, u"canIds"_s, DeviceText::canId(canId, width_), DeviceJson::ofCanId(canId));
                takeFrame(FrameSvg::of(canId));
            }
        }
        if (texts_.size() > before)
            lines_.append(json);
    }

    bool hasFound() const { return !texts_.isEmpty(); }
    QString text() const { return texts_.join(u"\n\n"_s); }
    const QJsonArray &lines() const { return lines_; }
    const QList<FrameSvg::Titled> &frames() const { return frames_; }

private:
    void take(QJsonObject &json, const QString &key, const QStringList &text, const QJsonObject &value)
    {
        texts_.append(text.join(u'\n'));
        QJsonArray list = json.value(key).toArray();
        list.append(value);
        json.insert(key, list);
    }

    void takeFrame(const FrameSvg::Titled &frame)
    {
        if (!frame.frame.fields.isEmpty())
            frames_.append(frame);
    }

    void lookForObject(DeviceLine &line, QJsonObject &json)
    {
        const CheckedObject *object = address_.index ? line.object(*address_.index) : nullptr;
        if (!object || (address_.subindex && !object->sub(*address_.subindex)))
            return;
        const Pdo *pdo = address_.subindex ? nullptr : line.pdoOf(object->index);
        take(json, u"objects"_s, DeviceText::object(line, *object, address_.subindex, width_), objectJson(*object));
        if (pdo) {
            json.insert(u"pdos"_s, QJsonArray{DeviceJson::ofPdo(*pdo)});
            takeFrame(FrameSvg::of(*pdo));
        }
    }

    QJsonObject objectJson(const CheckedObject &object) const
    {
        QJsonObject json = DeviceJson::ofObject(object);
        if (address_.subindex)
            json.insert(u"subindices"_s, QJsonArray{DeviceJson::ofSubindex(*object.sub(*address_.subindex))});
        return json;
    }

    Address address_;
    int width_;
    QStringList texts_;
    QJsonArray lines_;
    QList<FrameSvg::Titled> frames_;
};

void answerJson(Terminal &terminal, const QJsonObject &json)
{
    terminal.write(QString::fromUtf8(QJsonDocument(json).toJson()));
}

/// Shows what an address names.
int showPart(const Invocation &call, const OpenedProject &project, const QList<quint8> &lines)
{
    const QString text = call.operand(1);
    const std::optional<Address> address = Address::parse(text);
    if (!address)
        return call.refuse(u"'%1' is no object, PGN or CAN-ID"_s.arg(text));
    Search search(*address, call.terminal().width());
    for (const quint8 number : lines) {
        DeviceLine line(project.store(), number);
        search.look(line);
    }
    if (!search.hasFound()) {
        call.terminal().fail(
            u"%1 has no object, PGN or CAN-ID %2; 'ncx show --objects' lists the objects, 'ncx show' the rest"_s.arg(
                call.operand(), text));
        return CouldNot;
    }
    if (call.isSet("svg"_L1))
        return ShowPage::writeFrames(call, search.frames());
    if (call.isSet("json"_L1))
        answerJson(call.terminal(), DeviceJson::wrap(call.operand(), search.lines()));
    else
        call.terminal().answer(search.text());
    return Done;
}

int showDevice(const Invocation &call, OpenedProject &project, const QList<quint8> &lines)
{
    if (call.isSet("html"_L1))
        return ShowPage::writePage(call, project, lines);
    Terminal &terminal = call.terminal();
    if (call.isSet("json"_L1)) {
        terminal.write(QString::fromUtf8(DeviceJson::ofDevice(project.store(), call.operand(), lines)));
        return Done;
    }
    for (const quint8 number : lines) {
        DeviceLine line(project.store(), number);
        terminal.answer(DeviceText::glance(line, terminal.width()).join(u'\n'));
        const QStringList dictionary =
            call.isSet("objects"_L1) ? DeviceText::dictionary(line, terminal.width()) : QStringList();
        if (!dictionary.isEmpty())
            terminal.answer(u'\n' + dictionary.join(u'\n'));
    }
    return Done;
}

/// What of a call goes with nothing else of it; empty if all goes together.
QString contradiction(const Invocation &call)
{
    const bool isPart = call.operands().size() > 1;
    const bool hasForm =
        call.isSet("json"_L1) || call.isSet("objects"_L1) || call.isSet("html"_L1) || call.isSet("svg"_L1);
    if (call.isSet("all"_L1) && (isPart || hasForm))
        return u"--all goes with no part and no other form"_s;
    if (call.isSet("html"_L1) && (isPart || call.isSet("svg"_L1) || call.isSet("json"_L1) || call.isSet("objects"_L1)))
        return u"--html writes the device as a whole, and nothing else"_s;
    if (call.isSet("svg"_L1) && !isPart)
        return u"--svg needs a PDO, a PGN or a CAN-ID as WHAT"_s;
    return {};
}

/// The lines of the device that the call asks for; nothing, with that told, if it has them not.
std::optional<QList<quint8>> wantedLines(const Invocation &call, ObjectDataBase &store)
{
    QList<quint8> lines = store.getNodeList();
    if (!call.isSet("line"_L1))
        return lines;
    bool ok = false;
    const uint line = call.value("line"_L1).toUInt(&ok);
    if (ok && line <= 0xff && lines.contains(static_cast<quint8>(line)))
        return QList<quint8>{static_cast<quint8>(line)};
    call.terminal().fail(OpenedProject::reasonWithoutLine(store, call.operand(), call.value("line"_L1)));
    return std::nullopt;
}

int showAll(const Invocation &call)
{
    ComparedDevice device;
    call.terminal().step(u"reading %1"_s.arg(call.operand()));
    if (!device.open(call.operand())) {
        call.terminal().fail(u"%1: %2"_s.arg(call.operand(), device.reason()));
        return CouldNot;
    }
    const std::optional<QList<quint8>> lines = wantedLines(call, device.store());
    if (!lines)
        return CouldNot;
    listDevice(device, *lines, [&call](const QString &line) { call.terminal().answer(line); });
    if (!device.isDamaged())
        return Done;
    call.terminal().fail(u"%1: %2"_s.arg(call.operand(), ComparedDevice::damage()));
    return CouldNot;
}

int runShow(const Invocation &call)
{
    if (const QString reason = contradiction(call); !reason.isEmpty())
        return call.refuse(reason);
    if (call.isSet("all"_L1))
        return showAll(call);
    OpenedProject project;
    // A page has what the check finds, which asks for the project as a run sees it.
    const auto purpose = call.isSet("html"_L1) ? OpenedProject::Purpose::Running : OpenedProject::Purpose::Reading;
    call.terminal().step(u"reading %1"_s.arg(call.operand()));
    if (!project.open(call.operand(), purpose)) {
        call.terminal().fail(u"%1: %2"_s.arg(call.operand(), project.reason()));
        return CouldNot;
    }
    const std::optional<QList<quint8>> lines = wantedLines(call, project.store());
    if (!lines)
        return CouldNot;
    const int result = call.operands().size() > 1 ? showPart(call, project, *lines) : showDevice(call, project, *lines);
    if (!project.store().isDamaged())
        return result;
    call.terminal().fail(u"%1: %2"_s.arg(call.operand(), ComparedDevice::damage()));
    return CouldNot;
}

} // namespace

constexpr Command Commands::show{
    .name = "show"_L1,
    .summary = "show a device, an object, a PDO or a message"_L1,
    .operands = showOperands,
    .options = showOptions,
    .details = showDetails,
    .examples = showExamples,
    .run = runShow,
};
