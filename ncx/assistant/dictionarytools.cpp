// Tools that change objects and subindices of a CANopen line, whatever of them is given.

#include "mcp/tools/arguments.h"
#include "mcp/tools/dictionaryguards.h"
#include "mcp/tools/dictionaryjson.h"
#include "mcp/tools/dictionarywords.h"
#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"
#include "nodedict/cohelper.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace Guards;
using namespace DictionaryGuards;
using namespace DictionaryWords;
using DictionaryJson::indexText;
using DictionaryJson::subindexText;

namespace {

constexpr Property name = Properties::string("name"_L1, "Name"_L1);
constexpr Property objectType = Properties::choice("objectType"_L1, objectTypes, "CANopen object code"_L1);
constexpr Property category = Properties::choice("category"_L1, categories, "Category in descriptions"_L1);
constexpr Property addMissing = Properties::boolean(
    "addMissing"_L1,
    "Add subindices that are not there yet; each of these needs a name and a dataType (default: false)"_L1);

using Sub = ObjectDataBase::SUBINDEX_DATA_T;

/// A member of a subindex: its schema, and how it is written. A written value that is none gets a word.
struct Member
{
    Property property;
    void (*write)(Sub &sub, const QJsonValue &value);
};

template <auto field>
void text(Sub &sub, const QJsonValue &value)
{
    sub.*field = value.toString().replace(QChar::Null, QChar::ReplacementCharacter);
}

template <auto field>
void flag(Sub &sub, const QJsonValue &value)
{
    sub.*field = value.toBool();
}

/// The code of a word, which the schema has seen to be one of them.
quint8 codeOf(std::span<const QLatin1StringView> words, const QJsonValue &value)
{
    return static_cast<quint8>(placeOf(words, value.toString()).value_or(0));
}

/// In the order in which they are written: limits that are given come after those of the type.
constexpr Member members[] = {
    {Arguments::sub, [](Sub &, const QJsonValue &) {}},
    {name, text<&Sub::name>},
    {Arguments::dataType,
     [](Sub &sub, const QJsonValue &value) {
         sub.datatype = static_cast<quint16>(value.toInteger());
         const COHelper::Limits limits = COHelper::getDefaultLimits(sub.datatype);
         sub.lowlimit = limits.low;
         sub.uplimit = limits.high;
     }},
    {Properties::choice("accessType"_L1, accessTypes, "Access over the bus"_L1), text<&Sub::accesstype>},
    {Properties::string(
         "defaultValue"_L1,
         "Default value: decimal, 0x hexadecimal, $NODEID+0x180, or the text of a string; \"\" for none"_L1),
     text<&Sub::defaultvalue>},
    {Properties::string("lowLimit"_L1, "Lowest value; \"\" for that of the type"_L1),
     [](Sub &sub, const QJsonValue &value) {
         sub.lowlimit = value.toString();
         sub.limitineds = true;
     }},
    {Properties::string("highLimit"_L1, "Highest value; \"\" for that of the type"_L1),
     [](Sub &sub, const QJsonValue &value) {
         sub.uplimit = value.toString();
         sub.limitineds = true;
     }},
    {Properties::choice("pdoMapping"_L1, pdoMappings, "Whether PDOs may map it"_L1),
     [](Sub &sub, const QJsonValue &value) { sub.pdomapping = PDOMapping(uint{codeOf(pdoMappings, value)}); }},
    {Properties::choice("implementation"_L1, implementations,
                        "managedVariable: kept by the stack; managedConst: constant; variable: a variable of the "
                        "application, see varname; virtual: served by functions of the application"_L1),
     [](Sub &sub, const QJsonValue &value) { sub.implementation = codeOf(implementations, value); }},
    {Properties::string("varname"_L1, "C variable of implementation variable"_L1), text<&Sub::varname>},
    {Properties::integer("size"_L1, 0, 2147483647, "Bytes of a string or domain"_L1),
     [](Sub &sub, const QJsonValue &value) { sub.size = static_cast<quint32>(value.toInteger()); }},
    {Properties::string("description"_L1, "Descriptive text"_L1), text<&Sub::description>},
    {Properties::string("denotation"_L1, "Display name; \"\" for the name"_L1), text<&Sub::denotation>},
    {Properties::boolean("hasDefault"_L1, "The default value is written to descriptions"_L1), flag<&Sub::defaultineds>},
    {Properties::boolean("hasLimits"_L1, "The limits are checked and written to descriptions"_L1),
     flag<&Sub::limitineds>},
    {Properties::boolean("nonVolatile"_L1, "The value is stored with the parameters of the device"_L1),
     flag<&Sub::nvstorage>},
    {Properties::boolean("refuseRead"_L1, "Uploads of it are refused"_L1), flag<&Sub::refuseread>},
    {Properties::boolean("refuseWrite"_L1, "Downloads of it are refused"_L1), flag<&Sub::refusewrite>},
};

constexpr auto memberProperties = [] {
    std::array<Property, std::size(members)> properties{};
    for (std::size_t place = 0; place < properties.size(); ++place)
        properties[place] = members[place].property;
    return properties;
}();

constexpr Property subObject = Properties::object(memberProperties);
constexpr Property subs = Properties::array("subs"_L1, subObject, "Each subindex with what is to be set of it"_L1);

/// Writes one entry of `subs`. Why that cannot be; empty if it is done.
QString writeSub(const ToolCall &call, const QJsonObject &entry)
{
    ObjectDataBase &store = call.store();
    const auto number = static_cast<quint8>(entry.value(Arguments::sub.name).toInteger());
    auto data = store.getSubIndex(call.line(), call.index(), number);
    if (!data && !call.flag(addMissing.name))
        return u"Subindex %1 does not exist on line %2; \"addMissing\": true adds it."_s.arg(
            subindexText(call.index(), number), QString::number(call.line()));
    if (!data && (!entry.contains(name.name) || !entry.contains(Arguments::dataType.name)))
        return u"New subindex %1 needs name and dataType."_s.arg(subindexText(call.index(), number));
    Sub sub = data.value_or(Sub());
    for (const Member &member : members) {
        if (entry.contains(member.property.name))
            member.write(sub, entry.value(member.property.name));
    }
    if (!store.addSubIndex(call.line(), call.index(), number, sub, Quotes::Kept))
        return u"Failed to write subindex %1."_s.arg(subindexText(call.index(), number));
    return {};
}

Reply setSubindex(const ToolCall &call)
{
    const QJsonArray entries = call.value(subs.name).toArray();
    if (entries.isEmpty())
        return Reply::invalidParams(u"Argument \"subs\" must have at least one element."_s);
    QStringList changed;
    for (const QJsonValue entry : entries) {
        if (const QString reason = writeSub(call, entry.toObject()); !reason.isEmpty())
            return Reply::refusal(reason + u" Nothing of this call is done."_s);
        QStringList keys = entry.toObject().keys();
        keys.removeAll(Arguments::sub.name);
        changed.append(u"%1 (%2)"_s.arg(QString::number(entry.toObject().value(Arguments::sub.name).toInteger()),
                                        keys.join(", "_L1)));
    }
    constexpr qsizetype mostTold = 6;
    const QString more = changed.size() > mostTold ? u" and %1 more"_s.arg(changed.size() - mostTold) : QString();
    return call.edited(u"Set on line %1, %2, subindices: %3."_s.arg(
        QString::number(call.line()), indexText(call.index()),
        changed.first(std::min(changed.size(), mostTold)).join(", "_L1) + more));
}

Reply setIndex(const ToolCall &call)
{
    auto data = call.store().getIndex(call.line(), call.index());
    if (!data)
        return noIndex(call);
    QStringList changed;
    for (const QLatin1StringView key :
         {name.name, objectType.name, Arguments::dataType.name, category.name, Arguments::description.name}) {
        if (call.has(key))
            changed.append(key);
    }
    if (changed.isEmpty())
        return Reply::invalidParams(u"Nothing to set: give name, objectType, dataType, category or description."_s);
    data->name = call.text(name.name, data->name);
    data->description = call.text(Arguments::description.name, data->description);
    if (call.has(objectType.name))
        data->objecttype = objectCodes[codeOf(objectTypes, call.value(objectType.name))];
    if (call.has(Arguments::dataType.name))
        data->datatype = call.number<quint16>(Arguments::dataType.name);
    if (call.has(category.name))
        data->category = codeOf(categories, call.value(category.name));
    if (!call.store().addIndex(call.line(), call.index(), *data))
        return Reply::refusal(u"Failed to write index %1."_s.arg(indexText(call.index())));
    return call.edited(
        u"Set on line %1, %2: %3."_s.arg(QString::number(call.line()), indexText(call.index()), changed.join(", "_L1)));
}

constexpr Tool dictionaryTools[] = {
    {"set_index"_L1,
     "Change what is given of an object; its subindices stay. Example: {\"line\": 0, \"index\": 8192, \"description\": "
     "\"Oil temperature in 0.1 K\"}"_L1,
     {Arguments::line, Arguments::index},
     {name, objectType, Arguments::dataType, category, Arguments::description},
     {projectIsOpen, storeIsReachable, lineIsCANopen, indexExists},
     setIndex},
    {"set_subindex"_L1,
     "Change what is given of one or several subindices of an object, all of them or none; use it also to add all "
     "subindices of an ARRAY or RECORD at once. A new dataType brings its own limits. Example: {\"line\": 0, "
     "\"index\": "
     "8192, \"subs\": [{\"sub\": 1, \"implementation\": \"variable\", \"varname\": \"oil_temp\", \"lowLimit\": "
     "\"-400\", "
     "\"highLimit\": \"1500\"}]}"_L1,
     {Arguments::line, Arguments::index, subs},
     {addMissing},
     {projectIsOpen, storeIsReachable, lineIsCANopen, indexExists},
     setSubindex},
};

} // namespace

std::span<const Tool> AssistantFamilies::dictionary()
{
    return dictionaryTools;
}
