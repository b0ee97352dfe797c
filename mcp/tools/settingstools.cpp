// The settings of the project, as far as the catalogue knows them.

#include "generate/base/runcontext.h"
#include "mcp/session/projectsession.h"
#include "mcp/tools/arguments.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/settingscatalogue.h"
#include "mcp/tools/settingvalue.h"
#include "mcp/tools/toolfamilies.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr QLatin1StringView groups[]{"general"_L1, "stack"_L1};

constexpr Property group =
    Properties::choice("group"_L1, groups,
                       "Settings group: \"general\" (General Settings tab) or \"stack\" (CANopen Stack Settings tab, "
                       "CANopen lines only)"_L1);
constexpr Property key = Properties::string("key"_L1, "Setting key as reported by get_settings"_L1);
constexpr Property value = Properties::scalar(
    "value"_L1,
    "New value. bool: true/false/0/1. uint: decimal or 0x hex, no leading zero; counts and sizes are stored as "
    "decimal, CAN-IDs, addresses, node-ids and the timer interval keep the given notation; an empty uint means 0, so "
    "use 0 to reset it. enum: item name or index. string: as is, no comma for per-line settings."_L1);
constexpr Property readLine =
    Properties::integer("line"_L1, 0, 239,
                        "Line id (0-239), optional. Without it, per-line settings are returned for every line as "
                        "[{line,value}]. Ignored for global settings."_L1);
constexpr Property writeLine = Properties::integer("line"_L1, 0, 239,
                                                   "Line id (0-239). Required for per-line settings and for "
                                                   "isotp_supported=false, not allowed otherwise."_L1);

using Line = std::optional<quint8>;

std::optional<Reply> lineRefusal(const ToolCall &call)
{
    if (!call.has(readLine.name))
        return {};
    const auto line = call.number<qint64>(readLine.name);
    if (line >= 0 && line < firstLineWithoutProtocol && call.store().nodeExists(static_cast<quint8>(line)))
        return {};
    return Reply::refusal(u"Line %1 does not exist."_s.arg(line));
}

Line givenLine(const ToolCall &call)
{
    return call.has(readLine.name) ? Line(call.line()) : Line();
}

std::optional<Reply> groupRefusal(const ToolCall &call, const QString &groupName, Line line)
{
    if (groupName != "stack"_L1)
        return {};
    if (!ProjectSession::lineTypeSupported(1)) {
        return Reply::refusal(
            u"This build (%1) does not support the CANopen stack settings."_s.arg(QCoreApplication::applicationName()));
    }
    if (!line)
        return {};
    const int typeCode = call.session().lineTypeCode(*line);
    if (LineProtocols::ofType(typeCode).canOpen)
        return {};
    return Reply::refusal(u"Line %1 is not a CANopen line (lineTypeCode=%2) - the stack settings only apply to CANopen "
                          "lines."_s.arg(*line)
                              .arg(typeCode));
}

Reply unknownSetting(const ToolCall &call)
{
    return Reply::refusal(
        u"Unknown setting \"%1\". Call get_settings for the available keys."_s.arg(call.text(key.name)));
}

QString storedText(const ToolCall &call, const Setting &setting, Line line)
{
    return line ? call.store().getGeneralSetting(setting.key, *line) : call.store().getGeneralSetting(setting.key);
}

/// The lines that a per-line setting has a value for.
QList<quint8> linesOf(const ToolCall &call, const Setting &setting)
{
    QList<quint8> lines;
    for (const quint8 line : call.store().getNodeList()) {
        const bool shown =
            setting.group != "stack"_L1 || LineProtocols::ofType(call.session().lineTypeCode(line)).canOpen;
        if (line < firstLineWithoutProtocol && shown)
            lines.append(line);
    }
    return lines;
}

QJsonValue shownValue(const ToolCall &call, const Setting &setting, Line line)
{
    if (!setting.isPerLine())
        return SettingValue::toJson(setting, storedText(call, setting, {}));
    if (line)
        return SettingValue::toJson(setting, storedText(call, setting, line));
    QJsonArray values;
    for (const quint8 each : linesOf(call, setting)) {
        const QJsonValue shown = SettingValue::toJson(setting, storedText(call, setting, each));
        values.append(QJsonObject{{u"line"_s, each}, {u"value"_s, shown}});
    }
    return values;
}

Reply getSettings(const ToolCall &call)
{
    const QString groupName = call.text(group.name);
    if (std::ranges::none_of(groups, [&](auto known) { return known == groupName; }))
        return Reply::refusal(u"Unknown settings group \"%1\". Valid groups: general, stack."_s.arg(groupName));
    if (auto refusal = storeIsReachable(call))
        return *refusal;
    if (auto refusal = lineRefusal(call))
        return *refusal;
    const Line line = givenLine(call);
    if (auto refusal = groupRefusal(call, groupName, line))
        return *refusal;

    QStringList names;
    QHash<QString, QJsonObject> values;
    for (const Setting &setting : SettingsCatalogue::settings()) {
        if (setting.group != groupName)
            continue;
        if (!values.contains(setting.section))
            names.append(setting.section);
        values[setting.section].insert(setting.key, shownValue(call, setting, line));
    }
    QJsonArray sections;
    for (const QString &name : std::as_const(names))
        sections.append(QJsonObject{{u"section"_s, name}, {u"settings"_s, values[name]}});
    QJsonObject reply{{u"group"_s, groupName}, {u"sections"_s, sections}};
    if (line)
        reply.insert(u"line"_s, *line);
    return Reply::json(reply);
}

QString typeName(Setting::Type type)
{
    constexpr std::array names{"bool"_L1, "uint"_L1, "enum"_L1, "string"_L1};
    return names.at(static_cast<std::size_t>(type));
}

QJsonObject describe(const Setting &setting)
{
    QJsonObject object{
        {u"key"_s, setting.key},
        {u"group"_s, setting.group},
        {u"section"_s, setting.section},
        {u"scope"_s, setting.isPerLine() ? u"perLine"_s : u"global"_s},
        {u"type"_s, typeName(setting.type)},
        {u"label"_s, setting.label},
        {u"readOnly"_s, setting.readOnly},
    };
    if (!setting.description.isEmpty())
        object.insert(u"description"_s, setting.description);
    if (!setting.requiredKey.isEmpty())
        object.insert(u"requires"_s, setting.requiredKey);
    if (setting.type == Setting::Type::Enum)
        object.insert(u"enumValues"_s, QJsonArray::fromStringList(setting.enumValues));
    if (setting.min)
        object.insert(u"min"_s, qint64{*setting.min});
    if (setting.max)
        object.insert(u"max"_s, qint64{*setting.max});
    return object;
}

Reply getSetting(const ToolCall &call)
{
    const Setting *const setting = SettingsCatalogue::find(call.text(key.name));
    if (!setting)
        return unknownSetting(call);
    if (auto refusal = storeIsReachable(call))
        return *refusal;
    if (auto refusal = lineRefusal(call))
        return *refusal;
    const Line line = setting->isPerLine() ? givenLine(call) : Line();
    if (auto refusal = groupRefusal(call, setting->group, line))
        return *refusal;

    QJsonObject reply = describe(*setting);
    if (line)
        reply.insert(u"line"_s, *line);
    reply.insert(u"value"_s, shownValue(call, *setting, line));
    return Reply::json(reply);
}

/// Switching ISO-TP off takes the connections of a line along, and so this one global setting needs a line then.
bool clearsConnections(const Setting &setting, const QString &text)
{
    return setting.key == "isotp_supported"_L1 && text == "0"_L1;
}

std::optional<Reply> scopeRefusal(const Setting &setting, const QString &text, Line line)
{
    if (clearsConnections(setting, text)) {
        if (line)
            return {};
        return Reply::refusal(
            u"Disabling isotp_supported requires line - the ISO-TP connections of that line are cleared."_s);
    }
    if (setting.isPerLine() && !line)
        return Reply::refusal(u"Setting %1 is per line - line is required."_s.arg(setting.key));
    if (!setting.isPerLine() && line)
        return Reply::refusal(u"Setting %1 is global - line is not allowed."_s.arg(setting.key));
    return {};
}

std::optional<Reply> dependencyRefusal(const ToolCall &call, const Setting &setting, Line line)
{
    if (setting.requiredKey.isEmpty())
        return {};
    const Setting *const needed = SettingsCatalogue::find(setting.requiredKey);
    Q_ASSERT(needed);
    const Line neededLine = needed->isPerLine() ? line : Line();
    if (storedText(call, *needed, neededLine).trimmed() == "1"_L1)
        return {};
    if (neededLine) {
        return Reply::refusal(
            u"Setting %1 requires %2 on line %3 - enable it first."_s.arg(setting.key, needed->key).arg(*neededLine));
    }
    return Reply::refusal(u"Setting %1 requires %2 - enable %2 first."_s.arg(setting.key, needed->key));
}

/// Writes the text and reads it back; true if it has arrived.
bool writeText(const ToolCall &call, const Setting &setting, Line line, const QString &text)
{
    // Whether it is written is seen from what is stored then.
    if (line)
        std::ignore = call.store().setGeneralSetting(setting.key, text, *line, Quotes::Kept);
    else
        std::ignore = call.store().setGeneralSetting(setting.key, text, Quotes::Kept);
    const QString stored = storedText(call, setting, line);
    if (setting.type == Setting::Type::String && !setting.isPerLine())
        return stored == text;
    return stored.trimmed() == text.trimmed();
}

bool clearConnections(const ToolCall &call, quint8 line)
{
    bool done = true;
    for (const QLatin1StringView perLine : {"isotp_client_con"_L1, "isotp_server_con"_L1})
        done = call.store().setGeneralSetting(perLine, QString(), line) && done;
    for (const QLatin1StringView global : {"isotp_dyn_server_ind"_L1, "isotp_dyn_client_ind"_L1,
                                           "isotp_dyn_client_txack_ind"_L1, "isotp_dyn_split_ind"_L1})
        done = call.store().setGeneralSetting(global, QString()) && done;
    return done;
}

/// Writes the text, and what goes with it; all of it or nothing.
bool writeWhole(const ToolCall &call, const Setting &setting, Line line, const QString &text)
{
    if (!clearsConnections(setting, text))
        return writeText(call, setting, line, text);
    ObjectDataBase::Step step(call.store());
    return writeText(call, setting, line, text) && clearConnections(call, call.line()) && step.commit();
}

QString jsonNotation(const QJsonValue &shown)
{
    const QString list = QString::fromUtf8(QJsonDocument(QJsonArray{shown}).toJson(QJsonDocument::Compact));
    return list.sliced(1, list.size() - 2);
}

/// The sentence of a write that has passed all tests.
Reply write(const ToolCall &call, const Setting &setting, const QString &text)
{
    const Line line = setting.isPerLine() ? givenLine(call) : Line();
    if (!writeWhole(call, setting, line, text)) {
        return Reply::refusal(
            u"Write may have failed: setting %1 now reads \"%2\"."_s.arg(setting.key, storedText(call, setting, line)));
    }
    QString sentence = u"Setting %1"_s.arg(setting.key);
    if (line)
        sentence += u" on line %1"_s.arg(*line);
    sentence += u" set to %1."_s.arg(jsonNotation(shownValue(call, setting, line)));
    if (clearsConnections(setting, text)) {
        sentence += u"\nCleared isotp_client_con and isotp_server_con on line %1, and isotp_dyn_server_ind, "
                    "isotp_dyn_client_ind, isotp_dyn_client_txack_ind and isotp_dyn_split_ind."_s.arg(call.line());
    }
    return call.edited(sentence);
}

Reply setSetting(const ToolCall &call)
{
    const Setting *const setting = SettingsCatalogue::find(call.text(key.name));
    if (!setting)
        return unknownSetting(call);
    if (setting->readOnly)
        return Reply::refusal(u"Setting %1 is read-only."_s.arg(setting->key));
    if (auto refusal = storeIsReachable(call))
        return *refusal;
    if (auto refusal = lineRefusal(call))
        return *refusal;
    const SettingValue::Text text = SettingValue::fromJson(*setting, call.value(value.name));
    if (!text.refusal.isEmpty())
        return Reply::refusal(text.refusal);
    const Line line = givenLine(call);
    if (auto refusal = scopeRefusal(*setting, text.text, line))
        return *refusal;
    if (auto refusal = groupRefusal(call, setting->group, setting->isPerLine() ? line : Line()))
        return *refusal;
    if (auto refusal = dependencyRefusal(call, *setting, line))
        return *refusal;
    return write(call, *setting, text.text);
}

constexpr Tool settingsTools[] = {
    {"get_settings"_L1,
     "Get the values of the curated project settings of a group, grouped by section as on the GUI tab. Values only - "
     "call get_setting for label, description, type, allowed values and dependencies of a key. bool settings are JSON "
     "booleans, enum settings their item name, uint and string settings strings (uint keeps its notation, e.g. "
     "\"0x7e0\"). Per-line values of the group \"stack\" are listed for CANopen lines only."_L1,
     {group},
     {readLine},
     {projectIsOpen, keysAreGiven},
     getSettings},
    {"get_setting"_L1,
     "Get a single project setting: its value plus group, section, scope (global/perLine), type, label, description, "
     "the bool setting it requires (if any), enum values and whether it is read-only."_L1,
     {key},
     {readLine},
     {projectIsOpen, keysAreGiven},
     getSetting},
    {"set_setting"_L1,
     "Set a single project setting from the curated list (see get_settings / get_setting). Fails for read-only "
     "settings and if the bool setting it requires is disabled (on the same line if that one is per line). \"stack\" "
     "settings only apply to CANopen lines. isotp_supported=false also clears isotp_client_con and isotp_server_con on "
     "the given line and the isotp_dyn_* settings, like the GUI. Not saved to disk - call save_project."_L1,
     {key, value},
     {writeLine},
     {projectIsOpen, keysAreGiven},
     setSetting},
};

} // namespace

std::span<const Tool> ToolFamilies::settings()
{
    return settingsTools;
}
