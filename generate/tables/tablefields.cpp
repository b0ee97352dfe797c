#include "generate/tables/tablefields.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "texttools/numbertext.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// A form of integers.
struct Form
{
    bool isSigned;
    int bits;
};

/// The forms of the data types from `first` to `last`.
struct FormRow
{
    quint16 first;
    quint16 last;
    Form form;
};

constexpr std::array formRows{
    FormRow{CAN::Integer8, CAN::Integer32, {true, 32}},     FormRow{CAN::Unsigned8, CAN::Unsigned8, {false, 16}},
    FormRow{CAN::Unsigned16, CAN::Unsigned32, {false, 32}}, FormRow{CAN::Integer24, CAN::Integer24, {true, 32}},
    FormRow{CAN::Integer40, CAN::Integer40, {false, 16}},   FormRow{CAN::Integer48, CAN::Integer64, {true, 64}},
    FormRow{CAN::Unsigned24, CAN::Unsigned24, {false, 32}}, FormRow{CAN::Unsigned40, CAN::Unsigned64, {false, 64}},
    FormRow{CAN::Unsigned2, CAN::Unsigned7, {false, 16}},   FormRow{106, 0xffff, {false, 32}},
};

constexpr auto nodeId = "$NODEID+"_L1;

constexpr auto magnitude = NumberText::ofDescription<quint64>;

QString unsignedDecimal(const QString &text, int bits)
{
    const auto number = text.startsWith(u'-') ? std::nullopt : magnitude(text);
    return number && *number <= ~quint64{0} >> (64 - bits) ? QString::number(*number) : QString();
}

/// `width` is that of the data type, which may be less than that of its form.
QString signedDecimal(const QString &text, int bits, int width)
{
    const bool isNegative = text.startsWith(u'-');
    const auto number = magnitude(isNegative ? text.sliced(1) : text);
    if (!number)
        return {};
    const quint64 highest = ~quint64{0} >> (65 - bits);
    if (isNegative)
        return *number <= highest + 1 ? (*number == 0 ? u"0"_s : u'-' + QString::number(*number)) : QString();
    const quint64 mostBits = ~quint64{0} >> (64 - width);
    const bool isHex = text.startsWith("0x"_L1, Qt::CaseInsensitive);
    if (isHex && *number > mostBits >> 1 && *number <= mostBits)
        return u'-' + QString::number(mostBits - *number + 1);
    return *number <= highest ? QString::number(*number) : QString();
}

/// Floating point numbers are decimal already; the bits of one, in hexadecimal, stay.
QString realDecimal(const QString &text)
{
    bool isNumber = false;
    text.toDouble(&isNumber);
    return isNumber || magnitude(text) ? text : QString();
}

} // namespace

QString TableFields::field(const QString &text)
{
    const bool isPlain =
        std::ranges::none_of(text, [](QChar c) { return c == u',' || c == u'"' || c == u'\n' || c == u'\r'; });
    return isPlain ? text : u'"' + QString(text).replace(u'"', R"("")"_L1) + u'"';
}

QString TableFields::value(quint16 dataType, const QString &text)
{
    if (text.isEmpty() || COHelper::isTextType(dataType))
        return text;
    const QString number = text.trimmed();
    if (dataType == CAN::Real32 || dataType == CAN::Real64)
        return realDecimal(number);
    const auto row = std::ranges::find_if(formRows, [dataType](const FormRow &candidate) {
        return dataType >= candidate.first && dataType <= candidate.last;
    });
    if (row == formRows.end())
        return text;
    const bool isRelative = number.startsWith(nodeId, Qt::CaseInsensitive);
    const QString digits = isRelative ? number.sliced(nodeId.size()).trimmed() : number;
    const QString decimal = row->form.isSigned ? signedDecimal(digits, row->form.bits,
                                                               static_cast<int>(COHelper::getDataLengthBits(dataType)))
                                               : unsignedDecimal(digits, row->form.bits);
    return isRelative && !decimal.isEmpty() ? nodeId + decimal : decimal;
}

QLatin1StringView TableFields::flag(bool on)
{
    return on ? "yes"_L1 : "no"_L1;
}

QLatin1StringView TableFields::implementation(quint8 code)
{
    constexpr std::array words{"ManagedVariable"_L1, "ManagedConst"_L1, "Variable"_L1, "VirtualObject"_L1};
    return code < words.size() ? words.at(code) : ""_L1;
}
