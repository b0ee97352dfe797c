#include "check/line/valueform.h"

#include "check/line/storevalue.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "texttools/numbertext.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

enum class Form : quint8
{
    Unsigned,
    Signed,
    Real,
    Other ///< text, bytes, or a time, which is kept as the user writes it
};

struct TypeRow
{
    quint16 code;
    Form form;
};

/// The types that the stack can hold.
constexpr TypeRow supportedTypes[] = {
    {CAN::Boolean, Form::Unsigned},    {CAN::Integer8, Form::Signed},     {CAN::Integer16, Form::Signed},
    {CAN::Integer32, Form::Signed},    {CAN::Unsigned8, Form::Unsigned},  {CAN::Unsigned16, Form::Unsigned},
    {CAN::Unsigned32, Form::Unsigned}, {CAN::Real32, Form::Real},         {CAN::VisibleString, Form::Other},
    {CAN::OctetString, Form::Other},   {CAN::TimeOfDay, Form::Other},     {CAN::Domain, Form::Other},
    {CAN::Integer24, Form::Signed},    {CAN::Unsigned24, Form::Unsigned}, {CAN::Unsigned40, Form::Unsigned},
    {CAN::Unsigned48, Form::Unsigned}, {CAN::Unsigned64, Form::Unsigned}, {CAN::Unsigned2, Form::Unsigned},
    {CAN::Unsigned3, Form::Unsigned},  {CAN::Unsigned4, Form::Unsigned},  {CAN::Unsigned5, Form::Unsigned},
    {CAN::Unsigned6, Form::Unsigned},  {CAN::Unsigned7, Form::Unsigned},  {CAN::Utf8String, Form::Other},
};

const TypeRow *supportedType(quint16 code)
{
    const auto row = std::ranges::find(supportedTypes, code, &TypeRow::code);
    return row == std::end(supportedTypes) ? nullptr : &*row;
}

Form formOf(quint16 code)
{
    const TypeRow *row = supportedType(code);
    return row ? row->form : Form::Other;
}

/// What the lowest bits of a number mean in the two's complement of a signed type.
qint64 complement(quint64 bits, quint16 type)
{
    const quint32 unused = 64 - COHelper::getDataLengthBits(type);
    return static_cast<qint64>(bits << unused) >> unused;
}

/// A default value of a signed type. Hexadecimal digits that reach its sign bit are its two's complement.
std::optional<qint64> signedValue(const QString &text, quint16 type)
{
    const auto value = NumberText::signedByPrefix(text);
    const bool isComplement = value && *value > 0 && text.contains(u'x', Qt::CaseInsensitive) &&
                              *value >> (COHelper::getDataLengthBits(type) - 1) == 1;
    return isComplement ? complement(static_cast<quint64>(*value), type) : value;
}

/// A limit of a signed type, which is decimal.
qint64 signedLimit(const QString &text, quint16 type)
{
    const qint64 value = NumberText::signedInBase(text, 10).value_or(0);
    const bool fits = value >= std::numeric_limits<qint32>::min() && value <= std::numeric_limits<quint32>::max();
    return fits ? complement(static_cast<quint64>(value), type) : 0;
}

quint64 unsignedLimit(const QString &text, quint16 type)
{
    const quint32 bits = std::max(COHelper::getDataLengthBits(type), 8U);
    const quint64 value =
        bits > 32 ? NumberText::byPrefix<quint64>(text).value_or(0) : NumberText::byPrefix<quint32>(text).value_or(0);
    return value & (~quint64{0} >> (64 - bits));
}

/// A number of an unsigned type, with the node-id where it is relative to that.
std::optional<quint64> unsignedValue(const QString &text, std::optional<quint8> nodeId)
{
    const auto value = StoreValue::parse(text);
    if (!value || value->negative || (value->nodeRelative && !nodeId))
        return {};
    return value->magnitude + (value->nodeRelative ? *nodeId : 0);
}

std::optional<double> realValue(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

/// True unless the value can be read and is beyond a limit.
template <class Value, class ReadLimit>
bool isWithin(const std::optional<Value> &value, const COHelper::Limits &limits, ReadLimit read)
{
    return !value || ((limits.low.isEmpty() || *value >= read(limits.low)) &&
                      (limits.high.isEmpty() || *value <= read(limits.high)));
}

} // namespace

bool ValueForm::isSupported(quint16 dataType)
{
    return supportedType(dataType) != nullptr;
}

bool ValueForm::isReadable(const QString &value, quint16 dataType)
{
    bool isReal = false;
    switch (dataType == CAN::Unsigned7 ? Form::Other : formOf(dataType)) {
    case Form::Unsigned:
        return value.contains("$NODEID"_L1, Qt::CaseInsensitive) || NumberText::byPrefix<quint64>(value);
    case Form::Signed:
        return NumberText::signedByPrefix(value).has_value();
    case Form::Real:
        value.toFloat(&isReal);
        return isReal;
    case Form::Other:
        break;
    }
    return true;
}

bool ValueForm::fitsLimits(const StoreRecords::SubIndexData &data, std::optional<quint8> nodeId)
{
    const auto limits = COHelper::declaredLimits(data.datatype, data.lowlimit, data.uplimit);
    if (!limits)
        return true;
    switch (formOf(data.datatype)) {
    case Form::Unsigned:
        return isWithin(unsignedValue(data.defaultvalue, nodeId), *limits,
                        [&data](const QString &text) { return unsignedLimit(text, data.datatype); });
    case Form::Signed:
        return isWithin(signedValue(data.defaultvalue, data.datatype), *limits,
                        [&data](const QString &text) { return signedLimit(text, data.datatype); });
    case Form::Real:
        return isWithin(realValue(data.defaultvalue), *limits,
                        [](const QString &text) { return realValue(text).value_or(0); });
    case Form::Other:
        break;
    }
    return true;
}
