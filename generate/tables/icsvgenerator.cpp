#include "generate/tables/icsvgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/common/doctext.h"
#include "generate/common/documentname.h"
#include "generate/model/linedictionary.h"
#include "generate/tables/tablefields.h"
#include "nodedict/cohelper.h"
#include "texttools/helper.h"

#include <utility>

using namespace Qt::StringLiterals;
using TableFields::Column;
using TableFields::field;
using TableFields::flag;

namespace {

using Object = LineObject;
using Sub = StoreRecords::SubEntry;

/// The row tells of an object without items, a variable or a domain, rather than of an item.
bool isWholeObject(const Object &object, const Sub &sub)
{
    return !object.isGroup() && sub.subindex == 0;
}

/// The word is on the row that tells of the object: an importer takes it from there.
QString codeOf(const Object &object, const Sub &sub)
{
    const bool tells = isWholeObject(object, sub) || object.data.objecttype == CANopen::Var;
    return tells ? COHelper::objectCode2String(object.data.objecttype) : QString();
}

QString typeOf(const Object &object, const Sub &sub)
{
    return COHelper::index2DataTypeString(isWholeObject(object, sub) ? object.data.datatype : sub.data.datatype);
}

QString nameOf(const Object &object, const Sub &sub)
{
    return field(isWholeObject(object, sub) ? object.name() : filledText(sub.data.name, sub));
}

/// A row of the table is one line, so that the text's line breaks are spelled out.
QString descriptionField(const QString &text)
{
    if (text.isEmpty())
        return text;
    return field(DocText::lines(text).join(Helper::csvDescLinebreak));
}

QString descriptionOf(const Object &object, const Sub &sub)
{
    return descriptionField(isWholeObject(object, sub) ? object.plainDescription() : sub.data.description);
}

constexpr QLatin1StringView documentationColumn = "description"_L1;

// clang-format off
constexpr Column columns[] = {
    Column{"index"_L1, [](const Object &object, const Sub &) { return Code::hex0x(object.index, 4); },
           [](const Object &object) { return Code::hex0x(object.index, 4); }},
    Column{"sub"_L1, [](const Object &, const Sub &sub) { return Code::hex0x(sub.subindex, 2); }},
    Column{"objectcode"_L1, [](const Object &object, const Sub &sub) { return codeOf(object, sub); },
           [](const Object &object) { return COHelper::objectCode2String(object.data.objecttype); }},
    Column{"datatype"_L1, [](const Object &object, const Sub &sub) { return typeOf(object, sub); },
           [](const Object &object) { return COHelper::index2DataTypeString(object.data.datatype); }},
    Column{"edsname"_L1, [](const Object &object, const Sub &sub) { return nameOf(object, sub); }, [](const Object &object) { return field(object.name()); }},
    Column{"varname"_L1, [](const Object &, const Sub &sub) { return field(sub.data.varname); }},
    Column{"access"_L1, [](const Object &, const Sub &sub) { return field(sub.data.accesstype); }},
    Column{"mapable"_L1, [](const Object &, const Sub &sub) { return sub.data.pdomapping.getCSVStringValue(); }},
    Column{"hasdefault"_L1, [](const Object &, const Sub &sub) { return flag(sub.data.defaultineds); }},
    Column{"defaultineds"_L1, [](const Object &, const Sub &sub) { return flag(sub.data.writedefaulttoeds != 0); }},
    Column{"value"_L1, [](const Object &, const Sub &sub) { return field(TableFields::value(sub.data.datatype, sub.data.defaultvalue)); }},
    Column{documentationColumn, [](const Object &object, const Sub &sub) { return descriptionOf(object, sub); },
           [](const Object &object) { return descriptionField(object.data.description); }},
    Column{"size"_L1, [](const Object &, const Sub &sub) { return Code::dec(sub.data.size); }},
    Column{"implementation"_L1, [](const Object &, const Sub &sub) { return TableFields::implementation(sub.data.implementation); }},
    Column{"haslimit"_L1, [](const Object &, const Sub &sub) { return flag(sub.data.limitineds); }},
    Column{"lowlimit"_L1, [](const Object &, const Sub &sub) { return field(sub.data.lowlimit); }},
    Column{"uplimit"_L1, [](const Object &, const Sub &sub) { return field(sub.data.uplimit); }},
    Column{"nvstorage"_L1, [](const Object &, const Sub &sub) { return flag(sub.data.nvstorage); }},
};
// clang-format on

/// A row of what `print` prints for each column.
template <typename Print>
void writeRow(Utf8Sink &sink, bool withDocumentation, Print print)
{
    bool isFirst = true;
    for (const Column &column : columns) {
        if (!withDocumentation && column.name == documentationColumn)
            continue;
        if (!std::exchange(isFirst, false))
            sink << ',';
        print(column);
    }
    sink << '\n';
}

} // namespace

QString ICSVGenerator::fileName() const
{
    return documentName(baseName(), line(), isMultiLine()) + u".icsv"_s;
}

void ICSVGenerator::writeHead(Utf8Sink &sink)
{
    sink << u"# This is an importable ICSV file for the %1 project.\n#\n"_s.arg(DocText::oneLine(baseName()));
    writeRow(sink, hasDocumentation_, [&](const Column &column) { sink << column.name; });
}

void ICSVGenerator::writeObject(Utf8Sink &sink, const LineObject &object)
{
    if (object.isGroup()) {
        writeRow(sink, hasDocumentation_, [&](const Column &column) {
            if (column.printHead)
                column.printHead(sink, object);
        });
    }
    for (const Sub &sub : object.subs)
        writeRow(sink, hasDocumentation_, [&](const Column &column) { column.print(sink, object, sub); });
}
