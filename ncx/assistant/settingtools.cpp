// The settings of device descriptions and of J1939 lines.

#include "mcp/tools/arguments.h"
#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"
#include "ncx/assistant/j1939keys.h"
#include "ncx/assistant/paging.h"
#include "store/objectdatabase.h"
#include "store/tables/descriptiondefaults.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr Property descriptionKey =
    Properties::string("key"_L1, R"(Key, e.g. "VendorName"; list_description_settings tells all)"_L1);
constexpr Property j1939Key =
    Properties::string("key"_L1, R"(Key, e.g. "startaddress"; list_j1939_settings tells all with their meaning)"_L1);
constexpr Property newText = Properties::string("value"_L1, "New value; 1 or 0 for a switch, \"\" for the default"_L1);
constexpr Property number =
    Properties::integer("value"_L1, 0, std::numeric_limits<quint32>::max(), "New value; 1 or 0 for a switch"_L1);

QStringList descriptionKeys()
{
    QStringList keys;
    for (const DescriptionDefaults::Row &row : DescriptionDefaults::all)
        keys.append(row.key);
    return keys;
}

/// Settings that are numbers, by the beginning of their keys.
struct NumberRange
{
    QLatin1StringView keys;
    int highest;
};
constexpr NumberRange numberRanges[] = {
    {"BaudRate_"_L1, 1}, {"Dummy"_L1, 1}, {"LSS_Supported"_L1, 1}, {"SelfStarting"_L1, 1}, {"Granularity"_L1, 64}};

/// What is wrong with a value; empty if it fits.
QString problemOf(const QString &key, const QString &value)
{
    const auto *const range =
        std::ranges::find_if(numberRanges, [&key](const NumberRange &row) { return key.startsWith(row.keys); });
    bool isNumber = false;
    const uint asked = value.toUInt(&isNumber);
    if (range == std::end(numberRanges) || value.isEmpty() || (isNumber && asked <= static_cast<uint>(range->highest)))
        return {};
    return u"Argument: value. %1 takes 0 to %2, or \"\" for the default."_s.arg(key).arg(range->highest);
}

/// The line of the description settings is a state of the store.
class CurrentLine
{
public:
    CurrentLine(ObjectDataBase &store, quint8 line)
        : store_(store)
        , before_(store.currentLine())
    {
        store.setCurrentLine(line);
    }
    ~CurrentLine() { store_.setCurrentLine(before_); }
    Q_DISABLE_COPY_MOVE(CurrentLine)

private:
    ObjectDataBase &store_;
    const quint8 before_;
};

Reply listDescriptionSettings(const ToolCall &call)
{
    const CurrentLine current(call.store(), call.line());
    const QStringList keys = descriptionKeys();
    return Reply::json(Paging::page(call, keys.size(), [&](qsizetype place) {
        return QJsonObject{{u"key"_s, keys.at(place)},
                           {u"value"_s, call.store().getDescriptionSetting(keys.at(place))}};
    }));
}

Reply setDescriptionSetting(const ToolCall &call)
{
    const QString key = call.text(descriptionKey.name);
    if (!descriptionKeys().contains(key))
        return Reply::refusal(
            u"Unknown key \"%1\". Argument: key, one of %2."_s.arg(key, descriptionKeys().join(", "_L1)));
    if (const QString problem = problemOf(key, call.text(newText.name)); !problem.isEmpty())
        return Reply::refusal(problem);
    const CurrentLine current(call.store(), call.line());
    if (!call.store().setDescriptionSetting(key, call.text(newText.name)) ||
        call.store().getDescriptionSetting(key) != call.text(newText.name))
        return Reply::refusal(u"Failed to set %1: argument value is not taken as it is."_s.arg(key));
    return call.edited(u"Description setting %1 of line %2 set to \"%3\"."_s.arg(key, QString::number(call.line()),
                                                                                 call.text(newText.name).left(80)));
}

Reply listJ1939Settings(const ToolCall &call)
{
    const std::span<const J1939Keys::Row> rows = J1939Keys::all();
    return Reply::json(Paging::page(call, static_cast<qsizetype>(rows.size()), [&](qsizetype place) {
        const J1939Keys::Row &row = rows[static_cast<std::size_t>(place)];
        return QJsonObject{{u"key"_s, row.key},
                           {u"value"_s, call.store().getJ1939Setting(row.key, call.line())},
                           {u"highest"_s, row.highest},
                           {u"meaning"_s, row.meaning}};
    }));
}

/// A comma list with the part of a line replaced; lines before it keep what they had.
QString withPart(const QString &list, quint8 line, const QString &value)
{
    QStringList parts = list.split(u',');
    while (parts.size() <= line)
        parts.append(parts.last());
    parts[line] = value;
    return parts.join(u',');
}

Reply setJ1939Setting(const ToolCall &call)
{
    const QString key = call.text(j1939Key.name);
    const J1939Keys::Row *row = J1939Keys::find(key);
    if (!row)
        return Reply::refusal(
            u"Unknown key \"%1\". Argument: key; list_j1939_settings tells all with their meaning."_s.arg(key));
    const auto value = call.number<qint64>(number.name);
    if (value > row->highest)
        return Reply::refusal(
            u"Argument: value. %1 takes 0 to %2 (%3)."_s.arg(key).arg(row->highest).arg(row->meaning));
    const QString list = withPart(call.store().getJ1939Setting(key), call.line(), QString::number(value));
    if (!call.store().setJ1939Setting(key, list))
        return Reply::refusal(u"Failed to set %1."_s.arg(key));
    return call.edited(u"J1939 setting %1 of line %2 set to %3."_s.arg(key).arg(call.line()).arg(value));
}

constexpr Tool settingTools[] = {
    {"list_description_settings"_L1,
     "List what device descriptions (EDS, XDD) say of the device beside its objects, for a CANopen line: names, "
     "versions, "
     "bit rates in kbit/s, dummy types. Example: {\"line\": 0}"_L1,
     {Arguments::line},
     {Paging::offset, Paging::limit},
     {projectIsOpen, storeIsReachable, lineIsCANopen},
     listDescriptionSettings},
    {"set_description_setting"_L1,
     "Set one of the values that list_description_settings lists. Example: {\"line\": 0, \"key\": \"BaudRate_500\", "
     "\"value\": \"1\"}"_L1,
     {Arguments::line, descriptionKey, newText},
     {},
     {projectIsOpen, storeIsReachable, lineIsCANopen},
     setDescriptionSetting},
    {"list_j1939_settings"_L1,
     "List the settings of a J1939 line with their values and meaning: its NAME and address, transport of long "
     "messages, "
     "diagnostics, safety. Example: {\"line\": 0, \"limit\": 20}"_L1,
     {Arguments::line},
     {Paging::offset, Paging::limit},
     {projectIsOpen, storeIsReachable, lineIsJ1939},
     listJ1939Settings},
    {"set_j1939_setting"_L1,
     "Set one of the values that list_j1939_settings lists. Example: {\"line\": 0, \"key\": \"diagsupport_dm1\", "
     "\"value\": "
     "1}"_L1,
     {Arguments::line, j1939Key, number},
     {},
     {projectIsOpen, storeIsReachable, lineIsJ1939},
     setJ1939Setting},
};

} // namespace

std::span<const Tool> AssistantFamilies::settings()
{
    return settingTools;
}
