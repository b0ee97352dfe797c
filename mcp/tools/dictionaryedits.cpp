// Tools that edit the object dictionary of a CANopen line.

#include "mcp/tools/arguments.h"
#include "mcp/tools/dictionaryguards.h"
#include "mcp/tools/dictionaryjson.h"
#include "mcp/tools/dictionarywords.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/toolfamilies.h"
#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using namespace DictionaryGuards;
using namespace DictionaryWords;
using namespace Guards;
using DictionaryJson::indexText;
using DictionaryJson::subindexText;

namespace {

constexpr Property newName = Properties::string("name"_L1, "New index name"_L1);
constexpr Property indexName = Properties::string("name"_L1, "Index name"_L1);
constexpr Property objectType = Properties::choice("objectType"_L1, objectTypes, "CANopen object code"_L1);
constexpr Property category = Properties::choice("category"_L1, categories, "Default: Optional"_L1);
constexpr Property subindexName = Properties::string("name"_L1, "Subindex name"_L1);
constexpr Property accessType =
    Properties::string("accessType"_L1, R"(e.g. "ro", "rw", "wo", "const" (default: "ro"))"_L1);
constexpr Property size =
    Properties::integer("size"_L1, 0, 2147483647, "Size in bytes, only relevant for strings/domain (optional)"_L1);
constexpr Property pdoMapping =
    Properties::choice("pdoMapping"_L1, pdoMappings, R"(PDO mapping attribute (default: "forbidden"))"_L1);
constexpr Property newDefaultValue = Properties::string("defaultValue"_L1, R"(New default value, e.g. "0x0")"_L1);
constexpr Property srcLine = Properties::integer("srcLine"_L1, 0, 255, "Source line id"_L1);
constexpr Property srcIndex = Properties::integer("srcIndex"_L1, 0, 65535, "Source index, decimal"_L1);
constexpr Property destLine = Properties::integer("destLine"_L1, 0, 255, "Destination line id"_L1);
constexpr Property destIndex = Properties::integer(
    "destIndex"_L1, 0, 65535, "Destination index, decimal. Any existing index there is overwritten."_L1);

/// Subindex 0 of a new object: the value of a Variable or Domain, else the number of entries.
ObjectDataBase::SUBINDEX_DATA_T firstSubindex(const ObjectDataBase::INDEX_DATA_T &object)
{
    ObjectDataBase::SUBINDEX_DATA_T sub;
    if (object.objecttype == CANopen::Array || object.objecttype == CANopen::Record) {
        sub.name = QCoreApplication::translate("DictionaryTools", "Highest sub-index supported");
        sub.datatype = CAN::Unsigned8;
        sub.defaultvalue = u"0"_s;
        sub.lowlimit = u"0"_s;
        sub.uplimit = u"255"_s;
        sub.implementation = codeOf(CANopen::Implementation::ManagedConst);
        return sub;
    }
    const COHelper::Limits limits = COHelper::getDefaultLimits(object.datatype);
    sub.name = object.name;
    sub.datatype = static_cast<quint16>(object.datatype);
    sub.lowlimit = limits.low;
    sub.uplimit = limits.high;
    return sub;
}

Reply addIndex(const ToolCall &call)
{
    const auto type = placeOf(objectTypes, call.text(objectType.name));
    if (!type)
        return Reply::invalidParams(u"Invalid objectType: expected Variable, Array, Record or Domain"_s);
    const auto categoryCode = placeOf(categories, call.text(category.name, u"Optional"_s));
    if (!categoryCode)
        return Reply::invalidParams(u"Invalid category: expected Mandatory, Optional or Conditional"_s);

    ObjectDataBase::INDEX_DATA_T object;
    object.name = call.text(indexName.name);
    object.datatype = call.number<quint16>(Arguments::dataType.name);
    object.objecttype = objectCodes[*type];
    object.description = call.text(Arguments::description.name);
    object.category = *categoryCode;
    const bool done = call.store().addIndex(call.line(), call.index(), object);

    const QString line = QString::number(call.line());
    if (!done || !call.store().indexExists(call.line(), call.index()))
        return Reply::refusal(u"Failed to add index %1 on line %2."_s.arg(indexText(call.index()), line));
    if (!call.store().addSubIndex(call.line(), call.index(), 0, firstSubindex(object))) {
        return Reply::refusal(u"Index %1 was added on line %2, but its subindex 0 could not be created."_s.arg(
            indexText(call.index()), line));
    }
    return call.edited(u"Index %1 added on line %2, with subindex 0."_s.arg(indexText(call.index()), line));
}

Reply deleteIndex(const ToolCall &call)
{
    const bool done = call.store().removeIndex(call.line(), call.index());
    const QString sentence = done ? u"Index %1 deleted from line %2."_s : u"Failed to delete index %1 from line %2."_s;
    return call.edited(sentence.arg(indexText(call.index()), QString::number(call.line())), !done);
}

/// Adds the subindex; returns what its caller should know of subindex 0, which the store may have adapted.
QString addAndCompareFirst(const ToolCall &call, const ObjectDataBase::SUBINDEX_DATA_T &sub)
{
    ObjectDataBase &store = call.store();
    const bool hasFirst = store.subIndexExists(call.line(), call.index(), 0);
    const QString before = store.getSubIndexDefaultValue(call.line(), call.index(), 0);
    std::ignore = store.addSubIndex(call.line(), call.index(), call.sub(), sub); // the caller looks for it
    const QString after = store.getSubIndexDefaultValue(call.line(), call.index(), 0);
    if (!hasFirst || before == after)
        return {};
    return u"\nNote: the value of subindex 0 changed from \"%1\" to \"%2\". Use set_subindex_value on subindex 0 if "
           u"the "
           "object needs a different value."_s.arg(before, after);
}

Reply addSubindex(const ToolCall &call)
{
    const auto mapping = placeOf(pdoMappings, call.text(pdoMapping.name, u"forbidden"_s).trimmed().toLower());
    if (!mapping) {
        return Reply::invalidParams(u"Invalid pdoMapping, expected one of: forbidden, allowed, default, rpdo, tpdo"_s);
    }
    ObjectDataBase::SUBINDEX_DATA_T sub;
    sub.name = call.text(subindexName.name);
    sub.datatype = call.number<quint16>(Arguments::dataType.name);
    sub.accesstype = call.text(accessType.name, textOf(CANopen::Access::ReadOnly));
    sub.defaultvalue = call.text(Arguments::defaultValue.name);
    sub.size = call.number<quint32>(size.name);
    sub.pdomapping = PDOMapping(*mapping);
    const QString note = addAndCompareFirst(call, sub);

    const QString address = subindexText(call.index(), call.sub());
    const QString line = QString::number(call.line());
    if (!call.store().subIndexExists(call.line(), call.index(), call.sub()))
        return Reply::refusal(u"Failed to add subindex %1 on line %2."_s.arg(address, line));
    return call.edited(u"Subindex %1 added on line %2."_s.arg(address, line) + note);
}

Reply deleteSubindex(const ToolCall &call)
{
    const bool done = call.store().removeSubIndex(call.line(), call.index(), call.sub());
    const QString sentence =
        done ? u"Subindex %1 deleted from line %2."_s : u"Failed to delete subindex %1 from line %2."_s;
    return call.edited(sentence.arg(subindexText(call.index(), call.sub()), QString::number(call.line())), !done);
}

Reply setSubindexValue(const ToolCall &call)
{
    const bool done = call.store().setSubIndexDefaultValue(call.line(), call.index(), call.sub(),
                                                           call.text(newDefaultValue.name), Quotes::Kept);
    const QString sentence = done ? u"Updated defaultValue of subindex %1 on line %2."_s
                                  : u"Failed to update defaultValue of subindex %1 on line %2."_s;
    return call.edited(sentence.arg(subindexText(call.index(), call.sub()), QString::number(call.line())), !done);
}

Reply setIndexName(const ToolCall &call)
{
    const QString name = call.text(newName.name);
    std::ignore = call.store().setIndexName(call.line(), call.index(), name);
    const QString stored = call.store().getIndexName(call.line(), call.index());
    const QString line = QString::number(call.line());
    if (stored != name) {
        return Reply::refusal(u"Rename may have failed: index %1 on line %2 now reads \"%3\"."_s.arg(
            indexText(call.index()), line, stored));
    }
    return call.edited(u"Index %1 on line %2 renamed to \"%3\"."_s.arg(indexText(call.index()), line, name));
}

struct Place
{
    quint8 line;
    quint16 index;

    QString text() const { return u"%1 (line %2)"_s.arg(indexText(index), QString::number(line)); }
};

Place sourceOf(const ToolCall &call)
{
    return {call.number<quint8>(srcLine.name), call.number<quint16>(srcIndex.name)};
}

Place destinationOf(const ToolCall &call)
{
    return {call.number<quint8>(destLine.name), call.number<quint16>(destIndex.name)};
}

std::optional<Reply> sourceLineIsCANopen(const ToolCall &call)
{
    return canOpenRefusal(call, sourceOf(call).line);
}

std::optional<Reply> destinationLineIsCANopen(const ToolCall &call)
{
    return canOpenRefusal(call, destinationOf(call).line);
}

std::optional<Reply> sourceExists(const ToolCall &call)
{
    const Place source = sourceOf(call);
    if (call.store().indexExists(source.line, source.index))
        return {};
    return Reply::refusal(
        u"Source index %1 does not exist on line %2."_s.arg(indexText(source.index), QString::number(source.line)));
}

/// Refuses a line that has a type but no record.
std::optional<Reply> destinationLineExists(const ToolCall &call)
{
    const quint8 line = destinationOf(call).line;
    if (call.store().nodeExists(line))
        return {};
    return Reply::refusal(u"Destination line %1 does not exist."_s.arg(line));
}

Reply copyIndex(const ToolCall &call)
{
    const Place source = sourceOf(call);
    const Place destination = destinationOf(call);
    const bool done = call.store().copyIndex(source.line, source.index, destination.line, destination.index);
    if (!done || !call.store().indexExists(destination.line, destination.index))
        return Reply::refusal(u"Failed to copy index %1 to %2."_s.arg(source.text(), destination.text()));
    return call.edited(u"Copied index %1 to %2."_s.arg(source.text(), destination.text()));
}

constexpr Tool dictionaryEditTools[] = {
    {"add_index"_L1,
     "Add a new object dictionary index to a line. Fails if the index already exists on that line - use delete_index "
     "first to replace it."_L1,
     {Arguments::line, Arguments::index, indexName, objectType, Arguments::dataType},
     {category, Arguments::description},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineExists, lineIsCANopen, indexIsNew},
     addIndex},
    {"delete_index"_L1,
     "Delete an object dictionary index and all its subindices from a line."_L1,
     {Arguments::line, Arguments::index},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen, indexExists},
     deleteIndex},
    {"add_subindex"_L1,
     "Add a new subindex to an existing object dictionary index. Fails if the index doesn't exist yet, or the subindex "
     "already exists."_L1,
     {Arguments::line, Arguments::index, Arguments::sub, subindexName, Arguments::dataType},
     {accessType, Arguments::defaultValue, pdoMapping, size},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen, indexExists, subindexIsNew},
     addSubindex},
    {"delete_subindex"_L1,
     "Delete a single subindex from an object dictionary index."_L1,
     {Arguments::line, Arguments::index, Arguments::sub},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen, subindexExists},
     deleteSubindex},
    {"set_subindex_value"_L1,
     "Change the default value of an existing subindex."_L1,
     {Arguments::line, Arguments::index, Arguments::sub, newDefaultValue},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen, subindexExists},
     setSubindexValue},
    {"set_index_name"_L1,
     "Rename an existing object dictionary index."_L1,
     {Arguments::line, Arguments::index, newName},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsCANopen, indexExists},
     setIndexName},
    {"copy_index"_L1,
     "Copy an object dictionary index (and its subindices) from one line/index location to another within the "
     "currently open project. Overwrites any existing index at the destination."_L1,
     {srcLine, srcIndex, destLine, destIndex},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, sourceLineIsCANopen, destinationLineIsCANopen, sourceExists,
      destinationLineExists},
     copyIndex},
};

} // namespace

std::span<const Tool> ToolFamilies::dictionaryEdits()
{
    return dictionaryEditTools;
}
