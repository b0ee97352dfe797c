#include "generate/tables/csvgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/common/documentname.h"
#include "generate/model/linedictionary.h"
#include "generate/tables/tablefields.h"
#include "nodedict/cohelper.h"

#include <QTextStream>

#include <array>

using namespace Qt::StringLiterals;
using TableFields::field;
using TableFields::flag;

namespace {

using Sub = StoreRecords::SubEntry;

QString nameOf(const LineObject &object, const Sub &sub)
{
    const bool isVariable = object.data.objecttype == CANopen::Var;
    return field(isVariable ? object.name() : object.name() + u' ' + filledText(sub.data.name, sub));
}

QString implementationOf(const Sub &sub)
{
    const QString word = TableFields::implementation(sub.data.implementation);
    return word.isEmpty() ? u"NONE"_s : word;
}

struct Column
{
    QLatin1StringView name;
    QString (*field)(const LineObject &, const Sub &);
};

// clang-format off
constexpr std::array columns{
    Column{"Index"_L1, [](const LineObject &object, const Sub &) { return "0x"_L1 + Code::hex(object.index, 4); }},
    Column{"Sub"_L1, [](const LineObject &, const Sub &sub) { return "0x"_L1 + Code::hex(sub.subindex, 2); }},
    Column{"EDSname"_L1, nameOf},
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

void CSVGenerator::writeHead(QTextStream &stream)
{
    QStringList names;
    for (const Column &column : columns)
        names.append(column.name);
    stream << names.join(u',') << '\n';
}

void CSVGenerator::writeObject(QTextStream &stream, const LineObject &object)
{
    for (const Sub &sub : object.subs) {
        for (const Column &column : columns)
            stream << column.field(object, sub) << ',';
        stream << '\n';
    }
}
