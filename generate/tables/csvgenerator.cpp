#include "generate/tables/csvgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/common/documentname.h"
#include "generate/model/linedictionary.h"
#include "generate/tables/tablefields.h"
#include "nodedict/cohelper.h"

#include <QStringBuilder>

using namespace Qt::StringLiterals;
using TableFields::Column;
using TableFields::field;
using TableFields::flag;

namespace {

using Sub = StoreRecords::SubEntry;

QString entryNameOf(const LineObject &object, const Sub &sub)
{
    const bool isVariable = object.data.objecttype == CANopen::Var;
    return field(isVariable ? object.name() : object.name() % u' ' % filledText(sub.data.name, sub));
}

QLatin1StringView implementationOf(const Sub &sub)
{
    const QLatin1StringView word = TableFields::implementation(sub.data.implementation);
    return word.isEmpty() ? "NONE"_L1 : word;
}

// clang-format off
constexpr Column csvColumns[] = {
    Column{"Index"_L1, [](const LineObject &object, const Sub &) { return Code::hex0x(object.index, 4); }},
    Column{"Sub"_L1, [](const LineObject &, const Sub &sub) { return Code::hex0x(sub.subindex, 2); }},
    Column{"EDSname"_L1, [](const LineObject &object, const Sub &sub) { return entryNameOf(object, sub); }},
    Column{"Datatype"_L1, [](const LineObject &, const Sub &sub) { return COHelper::index2DataTypeString(sub.data.datatype); }},
    Column{"Access"_L1, [](const LineObject &, const Sub &sub) { return field(sub.data.accesstype); }},
    Column{"Value"_L1, [](const LineObject &, const Sub &sub) { return field(TableFields::value(sub.data.datatype, sub.data.defaultvalue)); }},
    Column{"varname"_L1, [](const LineObject &, const Sub &sub) { return field(sub.data.varname); }},
    Column{"LowLimit"_L1, [](const LineObject &, const Sub &sub) { return field(sub.data.lowlimit); }},
    Column{"UpLimit"_L1, [](const LineObject &, const Sub &sub) { return field(sub.data.uplimit); }},
    Column{"hasDefault"_L1, [](const LineObject &, const Sub &sub) { return flag(sub.data.defaultineds); }},
    Column{"hasLimit"_L1, [](const LineObject &, const Sub &sub) { return flag(sub.data.limitineds); }},
    Column{"refuseRead"_L1, [](const LineObject &, const Sub &sub) { return flag(sub.data.refuseread); }},
    Column{"refuseWrite"_L1, [](const LineObject &, const Sub &sub) { return flag(sub.data.refusewrite); }},
    Column{"defaultInEDS"_L1, [](const LineObject &, const Sub &sub) { return flag(sub.data.writedefaulttoeds != 0); }},
    Column{"implementation"_L1, [](const LineObject &, const Sub &sub) { return implementationOf(sub); }},
    Column{"Size"_L1, [](const LineObject &, const Sub &sub) { return Code::dec(sub.data.size); }},
    Column{"ObjectCode"_L1, [](const LineObject &object, const Sub &) { return COHelper::objectCode2String(object.data.objecttype); }},
    Column{"mapable"_L1, [](const LineObject &, const Sub &sub) { return sub.data.pdomapping.getCSVStringValue(); }},
};
// clang-format on

} // namespace

QString CSVGenerator::fileName() const
{
    return documentName(baseName(), line(), isMultiLine()) + u".csv"_s;
}

void CSVGenerator::writeHead(Utf8Sink &sink)
{
    QStringList names;
    for (const Column &column : csvColumns)
        names.append(column.name);
    sink << names.join(u',') << '\n';
}

void CSVGenerator::writeObject(Utf8Sink &sink, const LineObject &object)
{
    for (const Sub &sub : object.subs) {
        for (const Column &column : csvColumns) {
            column.print(sink, object, sub);
            sink << ',';
        }
        sink << '\n';
    }
}
