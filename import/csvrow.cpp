#include "import/csvrow.h"

#include "nodedict/cohelper.h"
#include "texttools/helper.h"

using namespace Qt::StringLiterals;

namespace {

struct ColumnRule
{
    QLatin1StringView name;
    bool mustBeReached; ///< a row that ends before this column is dropped
    bool notFirst;      ///< the column is not read if it is the first
};

constexpr std::array<ColumnRule, CsvRow::ColumnCount> rules = {{
    {"index"_L1, false, false},          {"sub"_L1, true, false},        {"datatype"_L1, true, false},
    {"access"_L1, true, false},          {"varname"_L1, true, false},    {"nvstorage"_L1, true, false},
    {"edsname"_L1, true, false},         {"value"_L1, true, false},      {"description"_L1, true, false},
    {"objectcode"_L1, false, false},     {"size"_L1, false, false},      {"mapable"_L1, false, true},
    {"implementation"_L1, false, false}, {"hasdefault"_L1, false, true}, {"defaultineds"_L1, false, true},
    {"line"_L1, false, false},           {"lowlimit"_L1, false, false},  {"uplimit"_L1, false, false},
    {"haslimit"_L1, false, true},
}};

} // namespace

CsvRow::Places CsvRow::placesIn(const QStringList &header)
{
    QStringList names;
    for (const QString &name : header)
        names.append(name.trimmed());
    Places places = {};
    for (std::size_t column = 0; column < ColumnCount; ++column) {
        const qsizetype place = names.indexOf(rules[column].name);
        places[column] = rules[column].notFirst && place == 0 ? -1 : place;
    }
    return places;
}

bool CsvRow::isComplete() const
{
    for (quint8 i = 0; i < ColumnCount; ++i) {
        const auto column = static_cast<Column>(i);
        if (rules[i].mustBeReached && has(column) && !reaches(column))
            return false;
    }
    return true;
}

QString CsvRow::name(quint16 index) const
{
    if (!text(EdsName).isEmpty())
        return text(EdsName);
    return text(VarName).isEmpty() ? u"Object_%1"_s.arg(index, 4, 16, QLatin1Char('0')) : text(VarName);
}

bool CsvRow::isHead() const
{
    if (!has(Sub) || !word(Sub).isEmpty() || word(ObjectCode).isEmpty())
        return false;
    const quint32 code = COHelper::string2objectCode(word(ObjectCode));
    return code == CANopen::Array || code == CANopen::Record;
}

QString CsvRow::description() const
{
    return text(Description).replace(Helper::csvDescLinebreak, "\n"_L1);
}
