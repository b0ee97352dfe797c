#include "ncx/guide/toolarguments.h"

#include "mcp/tools/arguments.h"
#include "mcp/tools/dictionarywords.h"
#include "ncx/guide/toolnotes.h"
#include "nodedict/cohelper.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr Property verbose = Properties::boolean("verbose"_L1, "Tell all new findings, whatever their number"_L1);
constexpr Property extended = Properties::boolean("extended"_L1, "canId has 29 bits (default: false, 11 bits)"_L1);
constexpr quint32 extendedBit = 0x80000000U;
constexpr qint64 lastStandardId = 0x7ff;
constexpr qint64 lastExtendedId = 0x1fffffff;
constexpr qint64 lastLine = 239; ///< lines beyond are an editor's own and reach no file

constexpr auto dataTypes = "Code: 1 BOOLEAN, 2-4 INTEGER8/16/32, 5-7 UNSIGNED8/16/32, 8 REAL32, 9 text; all in "
                           "ncx://docs/data-types.md"_L1;
constexpr QLatin1StringView directions[]{"Transmit"_L1, "Receive"_L1};

/// What this server has in the place of an argument.
struct Row
{
    QLatin1StringView tool; ///< empty for each whose argument is described as that of `shared`
    QLatin1StringView shared;
    Property property;
    bool isRequired = false;
};

constexpr Row rows[] = {
    {{}, Arguments::line.description, Properties::integer("line"_L1, 0, lastLine, "Line, see list_lines"_L1)},
    {{},
     Arguments::index.description,
     Properties::integer("index"_L1, 0, 65535, "Object index, decimal: 24641 for 0x6041"_L1)},
    {{}, Arguments::dataType.description, Properties::integer("dataType"_L1, 0, 65535, dataTypes)},
    {{},
     Arguments::direction.description,
     Properties::choice("direction"_L1, directions, "As the device sees it; a number may be there in both"_L1)},
    {{},
     Arguments::directionFilter.description,
     Properties::choice("direction"_L1, directions, "Only those of this direction"_L1)},
    {{},
     "Raw CAN-ID, decimal"_L1,
     Properties::integer("canId"_L1, 0, lastExtendedId, "CAN-ID, decimal: 0 to 2047, or, extended, to 536870911"_L1)},
    {"add_line"_L1, {}, Properties::choice("lineType"_L1, Arguments::lineTypeNames, "Protocols of the line"_L1), true},
    {"copy_index"_L1, {}, Properties::integer("srcLine"_L1, 0, lastLine, "Line of the object"_L1)},
    {"copy_index"_L1, {}, Properties::integer("destLine"_L1, 0, lastLine, "Line that gets the copy"_L1)},
    {"add_subindex"_L1,
     {},
     Properties::choice("accessType"_L1, DictionaryWords::accessTypes, "Access over the bus (default: ro)"_L1)},
    {"add_pgn"_L1, {}, Properties::integer("pgn"_L1, 0, 0x1ffff, "PGN, decimal"_L1)},
    {"add_spn"_L1, {}, Properties::integer("spn"_L1, 0, 0x7ffff, "SPN, decimal; own ones from 520192"_L1)},
    {"add_spn"_L1, {}, Properties::integer("pos"_L1, 0, 255, "Place among the SPNs, in the order of bits"_L1)},
    {"add_data_element"_L1,
     {},
     Properties::integer("pos"_L1, 0, 255, "Place among the elements, in the order of bits"_L1)},
    {"get_settings"_L1, {}, Properties::integer("line"_L1, 0, lastLine, "Line (default: all, as [{line, value}])"_L1)},
    {"get_setting"_L1, {}, Properties::integer("line"_L1, 0, lastLine, "Line (default: all, as [{line, value}])"_L1)},
    {"set_setting"_L1, {}, Properties::integer("line"_L1, 0, lastLine, "Line, of a setting with scope perLine"_L1)},
    {"set_setting"_L1,
     {},
     Properties::scalar("value"_L1, "true or false; a number, or as text \"0x7e0\"; a text; the name of a choice"_L1)},
};

const Row *rowOf(const Tool &tool, const Property &property)
{
    const auto *const found = std::ranges::find_if(rows, [&](const Row &row) {
        return row.property.name == property.name &&
               (row.tool == tool.name || (row.tool.isEmpty() && row.shared == property.description));
    });
    return found == std::end(rows) ? nullptr : found;
}

bool hasName(const std::vector<Property> &properties, QLatin1StringView name)
{
    return std::ranges::find(properties, name, &Property::name) != properties.end();
}

/// "an integer from 0 to 239".
QString valuesOf(const Property &property)
{
    if (property.types.size() > 1)
        return u"a text, a number, true or false"_s;
    const QLatin1StringView type = property.types.front();
    if (!property.choices.empty())
        return u"one of "_s + QStringList(property.choices.begin(), property.choices.end()).join(", "_L1);
    if (type == "integer"_L1)
        return u"an integer from %1 to %2"_s.arg(property.minimum.value_or(0)).arg(property.maximum.value_or(0));
    if (type == "boolean"_L1)
        return u"true or false"_s;
    if (type == "array"_L1)
        return u"a list, of each %1"_s.arg(property.items ? valuesOf(*property.items) : u"a value"_s);
    return type == "object"_L1 ? u"an object"_s : u"a text"_s;
}

} // namespace

ToolArguments::ToolArguments(const Tool &tool)
    : tool_(tool)
{
    for (const Property &property : tool.required) {
        const Row *row = rowOf(tool, property);
        required_.push_back(row ? row->property : property);
    }
    for (const Property &property : tool.optional) {
        const Row *row = rowOf(tool, property);
        (row && row->isRequired ? required_ : optional_).push_back(row ? row->property : property);
    }
    takesCanId_ = hasName(required_, "canId"_L1);
    if (ToolNote::of(tool.name).tellsEdit())
        optional_.push_back(verbose);
    if (takesCanId_)
        optional_.push_back(extended);
}

QJsonObject ToolArguments::inputSchema() const
{
    QJsonObject properties;
    QJsonArray names;
    for (const Property &property : required_) {
        properties.insert(property.name, property.schema());
        names.append(property.name);
    }
    for (const Property &property : optional_)
        properties.insert(property.name, property.schema());
    QJsonObject schema{{u"type"_s, u"object"_s}, {u"properties"_s, properties}, {u"additionalProperties"_s, false}};
    if (!names.isEmpty())
        schema.insert(u"required"_s, names);
    return schema;
}

std::optional<QString> ToolArguments::problem(const QJsonObject &given) const
{
    if (const auto problem = argumentProblem(given, required_, optional_))
        return *problem + taken(*problem);
    for (const auto *const group : {&required_, &optional_}) {
        if (auto problem = choiceProblem(given, *group))
            return problem;
    }
    if (auto problem = canIdProblem(given))
        return problem;
    return dataTypeProblem(given);
}

QString ToolArguments::taken(const QString &problem) const
{
    static const QRegularExpression path(u"^(?:Missing required argument: |Argument \")([A-Za-z.\\[\\]0-9]+)"_s);
    QString end = problem.endsWith(u'.') ? QString() : u"."_s;
    const QStringList names = path.match(problem).captured(1).split(u'.');
    std::span<const Property> among = required_;
    if (!hasName(required_, QLatin1StringView(names.first().section(u'[', 0, 0).toLatin1())))
        among = optional_;
    const Property *property = nullptr;
    for (const QString &name : names) {
        const auto found = std::ranges::find(among, name.section(u'[', 0, 0), &Property::name);
        if (found == among.end())
            return end;
        property = &*found;
        if (name.contains(u'[') && property->items)
            property = property->items;
        among = property->members;
    }
    const QString about = property->description.isEmpty() ? QString() : u" (%1)"_s.arg(property->description);
    return end + u" It takes %1%2."_s.arg(valuesOf(*property), about);
}

std::optional<QString> ToolArguments::canIdProblem(const QJsonObject &given) const
{
    if (!takesCanId_ || isExtended(given) || given.value("canId"_L1).toInteger() <= lastStandardId)
        return {};
    return u"Argument \"canId\" is out of range: 0 to 2047 (11 bits), or with \"extended\": true 0 to 536870911 (29 "
           "bits)."_s;
}

/// Of an object the check tells it, which knows more types there.
std::optional<QString> ToolArguments::dataTypeProblem(const QJsonObject &given) const
{
    if (!hasName(required_, "spn"_L1) && !hasName(required_, "number"_L1))
        return {};
    const QJsonValue code = given.value(Arguments::dataType.name);
    if (code.isUndefined() || !COHelper::index2DataTypeShortString(static_cast<quint32>(code.toInteger())).isEmpty())
        return {};
    return u"Argument \"dataType\" is no code of a data type: %1. %2."_s.arg(QString::number(code.toInteger()),
                                                                             dataTypes);
}

bool ToolArguments::isVerbose(const QJsonObject &given)
{
    return given.value(verbose.name).toBool();
}

bool ToolArguments::isExtended(const QJsonObject &given)
{
    return given.value(extended.name).toBool();
}

QJsonObject ToolArguments::toTool(QJsonObject given) const
{
    if (takesCanId_ && given.take(extended.name).toBool())
        given.insert(u"canId"_s, given.value("canId"_L1).toInteger() | qint64{extendedBit});
    if (ToolNote::of(tool_.name).tellsEdit())
        given.remove(verbose.name);
    return given;
}
