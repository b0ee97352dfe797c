#include "ncx/guide/prompts.h"

#include "mcp/tools/arguments.h"
#include "nodedict/codes.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

// The linker would leave out of a static library what nothing refers to.
static void keepPrompts()
{
    Q_INIT_RESOURCE(guide);
}

namespace {

using Argument = Prompt::Argument;

constexpr QLatin1StringView messageProtocols[]{"J1939"_L1, "RawCAN"_L1, "J1939+RawCAN"_L1};
constexpr QLatin1StringView yesOrNo[]{"yes"_L1, "no"_L1};

constexpr Argument projectPath{
    "path"_L1,
    "New project file inside of the folders of the server, e.g. device.ncxp (.ncxt: text, without raw CAN)"_L1, true};
constexpr Argument nodeId{
    .name = "nodeId"_L1, .description = "CANopen node-id, 1 to 127"_L1, .highest = CANopen::lastNodeId};
constexpr Argument outputPath{"outputPath"_L1, "Folder for the sources; without it that of the project"_L1};

constexpr Argument nothingArguments[] = {
    {"device"_L1, "What the device is to do, in a sentence or two: its inputs, outputs, messages"_L1, true},
    projectPath,
    {"lineType"_L1, "Protocols of its CAN line; without it CANopen"_L1, false, Arguments::lineTypeNames, 0,
     "CANopen"_L1},
    nodeId,
    {"profile"_L1, "CiA profile whose mandatory objects it gets, e.g. 401"_L1},
    outputPath,
};
constexpr Argument descriptionArguments[] = {
    {"description"_L1, "EDS or DCF file of the device"_L1, true},
    projectPath,
    nodeId,
    {"repair"_L1, "Whether faults of the file are mended; without it no"_L1, false, yesOrNo, 0, "no"_L1},
    outputPath,
};
constexpr Argument databaseArguments[] = {
    {"database"_L1, "CAN database, a DBC file"_L1, true},
    {"node"_L1, "The node of the database that is the device"_L1, true},
    projectPath,
    {"lineType"_L1, "Protocols of its CAN line; without it J1939"_L1, false, messageProtocols, 0, "J1939"_L1},
    outputPath,
};

constexpr Prompt prompts[] = {
    {"device_from_nothing"_L1, "A device from nothing"_L1,
     "Build a CANopen, J1939 or raw CAN device step by step, from an empty project to its sources"_L1,
     nothingArguments},
    {"device_from_eds"_L1, "A device from an EDS"_L1,
     "Make a device that generates of a maker's EDS or DCF, with a report of each decision"_L1, descriptionArguments},
    {"device_from_dbc"_L1, "A device from a DBC"_L1, "Build one node of a CAN database as a J1939 or raw CAN device"_L1,
     databaseArguments},
};

QString listOf(std::span<const QLatin1StringView> words)
{
    QStringList list(words.begin(), words.end());
    return list.join(", "_L1);
}

/// What is wrong with a value that is given.
QString problemOf(const Argument &argument, const QJsonValue &value)
{
    const QString text = value.toString();
    if (!value.isString())
        return u"must be a string"_s;
    if (argument.isRequired && text.trimmed().isEmpty())
        return u"must not be empty: %1"_s.arg(argument.description);
    if (!argument.choices.empty() && std::ranges::none_of(argument.choices, [&](auto known) { return known == text; }))
        return u"must be one of: %1; got \"%2\""_s.arg(listOf(argument.choices), text.left(40));
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (argument.highest > 0 && (!isNumber || number < 1 || number > argument.highest))
        return u"must be a number from 1 to %1; got \"%2\""_s.arg(QString::number(argument.highest), text.left(40));
    return {};
}

/// A line of a prompt with its arguments; nothing if one of these has no value.
std::optional<QString> filled(const QString &line, const QMap<QString, QString> &values)
{
    static const QRegularExpression hole(u"\\{([a-zA-Z]+)\\}"_s);
    QString text;
    qsizetype end = 0;
    for (const QRegularExpressionMatch &match : hole.globalMatch(line)) {
        const QString value = values.value(match.captured(1));
        if (value.isEmpty())
            return {};
        text += line.mid(end, match.capturedStart() - end) + value;
        end = match.capturedEnd();
    }
    return text + line.mid(end);
}

} // namespace

std::span<const Prompt> Prompt::all()
{
    return prompts;
}

QJsonObject Prompt::descriptor() const
{
    QJsonArray list;
    for (const Argument &argument : arguments) {
        list.append(QJsonObject{
            {u"name"_s, argument.name},
            {u"description"_s, argument.choices.empty()
                                   ? QString(argument.description)
                                   : u"%1. One of: %2"_s.arg(argument.description, listOf(argument.choices))},
            {u"required"_s, argument.isRequired}});
    }
    return {{u"name"_s, name}, {u"title"_s, title}, {u"description"_s, description}, {u"arguments"_s, list}};
}

std::optional<QString> Prompt::problem(const QJsonObject &given) const
{
    QStringList known;
    for (const Argument &argument : arguments) {
        known.append(argument.name);
        if (argument.isRequired && !given.contains(argument.name))
            return u"Missing required argument: %1 - %2."_s.arg(argument.name, argument.description);
        const QString problem =
            given.contains(argument.name) ? problemOf(argument, given.value(argument.name)) : QString();
        if (!problem.isEmpty())
            return u"Argument \"%1\" %2."_s.arg(argument.name, problem);
    }
    for (const QString &one : given.keys()) {
        if (!known.contains(one))
            return u"Unknown argument \"%1\", expected one of: %2."_s.arg(one, known.join(", "_L1));
    }
    return {};
}

QString Prompt::text(const QJsonObject &given) const
{
    keepPrompts();
    QFile file(u":/guide/prompts/%1.md"_s.arg(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QMap<QString, QString> values;
    for (const Argument &argument : arguments)
        values.insert(argument.name, given.value(argument.name).toString(argument.usual));
    QStringList lines;
    for (const QString &line : QString::fromUtf8(file.readAll()).trimmed().split(u'\n')) {
        if (const auto text = filled(line, values))
            lines.append(*text);
    }
    return lines.join(u'\n');
}
