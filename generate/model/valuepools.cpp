#include "generate/model/valuepools.h"

#include "generate/base/abstractgenerator.h"
#include "generate/base/codewriter.h"
#include "nodedict/canopendatatype.h"
#include "texttools/numbertext.h"

#include <QStringBuilder>

#include <bit>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

struct TypeRow
{
    QLatin1StringView name;
    QLatin1StringView cType;
    int bits;
    bool hasSign;
    QLatin1StringView suffix; ///< of a C constant; empty with `byteWise`
    quint16 byteWise;         ///< data type of a byte-wise initialiser, or 0
};

// In the order of ValueType.
constexpr std::array<TypeRow, valueTypeCount> typeRows{{
    {"u8"_L1, "UNSIGNED8"_L1, 8, false, "u"_L1, CAN::NoType},
    {"u16"_L1, "UNSIGNED16"_L1, 16, false, "u"_L1, CAN::NoType},
    {"u24"_L1, "UNSIGNED24"_L1, 24, false, ""_L1, CAN::Unsigned24},
    {"u32"_L1, "UNSIGNED32"_L1, 32, false, "UL"_L1, CAN::NoType},
    {"u40"_L1, "UNSIGNED40"_L1, 40, false, ""_L1, CAN::Unsigned40},
    {"u48"_L1, "UNSIGNED48"_L1, 48, false, ""_L1, CAN::Unsigned48},
    {"u64"_L1, "UNSIGNED64"_L1, 64, false, ""_L1, CAN::Unsigned64},
    {"i8"_L1, "INTEGER8"_L1, 8, true, ""_L1, CAN::NoType},
    {"i16"_L1, "INTEGER16"_L1, 16, true, ""_L1, CAN::NoType},
    {"i24"_L1, "INTEGER24"_L1, 24, true, ""_L1, CAN::Integer24},
    {"i32"_L1, "INTEGER32"_L1, 32, true, "L"_L1, CAN::NoType},
    {"r32"_L1, "REAL32"_L1, 32, true, "f"_L1, CAN::NoType},
}};

const TypeRow &rowOf(ValueType type)
{
    return typeRows[valueTypePlace(type)];
}

qint64 signedValue(quint64 bits, int width)
{
    const int unused = 64 - width;
    return static_cast<qint64>(bits << unused) >> unused;
}

float parseReal(const QString &text)
{
    bool ok = false;
    const float value = text.toFloat(&ok);
    // C has no constant for what is not finite, and no use for a zero with a sign.
    return ok && std::isfinite(value) && value != 0 ? value : 0;
}

/// The bits of a number of up to 64 bits, or of up to 32 where the type has no more.
quint64 parseBits(const TypeRow &row, const QString &text, int base)
{
    if (!row.hasSign) {
        const std::optional<quint64> value = NumberText::inBase(text, base);
        return row.bits > 32 ? value.value_or(0) : NumberText::fitting<quint32>(value).value_or(0);
    }
    bool ok = false;
    const qint64 value = text.toLongLong(&ok, base);
    const bool fits = value >= std::numeric_limits<qint32>::min() && value <= std::numeric_limits<quint32>::max();
    return ok && fits ? static_cast<quint64>(value) : 0;
}

QString realText(float value)
{
    QString text = QString::number(double{value}, 'g', 6);
    // "1f" is no constant of C.
    if (!text.contains(u'.') && !text.contains(u'e'))
        text += ".0"_L1;
    return text;
}

quint64 poolKey(const PoolValue &value)
{
    return value.type == ValueType::R32 ? std::bit_cast<quint32>(value.real) : value.bits;
}

} // namespace

std::optional<ValueType> valueTypeOf(quint16 dataType)
{
    switch (dataType) {
    case CAN::Boolean:
    case CAN::Unsigned8:
    case CAN::Unsigned2:
    case CAN::Unsigned3:
    case CAN::Unsigned4:
    case CAN::Unsigned5:
    case CAN::Unsigned6:
    case CAN::Unsigned7:
        return ValueType::U8;
    case CAN::Unsigned16:
        return ValueType::U16;
    case CAN::Unsigned24:
        return ValueType::U24;
    case CAN::Unsigned32:
        return ValueType::U32;
    case CAN::Unsigned40:
        return ValueType::U40;
    case CAN::TimeOfDay:
    case CAN::Unsigned48:
        return ValueType::U48;
    case CAN::Unsigned64:
        return ValueType::U64;
    case CAN::Integer8:
        return ValueType::I8;
    case CAN::Integer16:
        return ValueType::I16;
    case CAN::Integer24:
        return ValueType::I24;
    case CAN::Integer32:
        return ValueType::I32;
    case CAN::Real32:
        return ValueType::R32;
    default:
        return std::nullopt;
    }
}

QLatin1StringView valueTypeName(ValueType type)
{
    return rowOf(type).name;
}

QLatin1StringView valueTypeCType(ValueType type)
{
    return rowOf(type).cType;
}

QString PoolValue::initialiser() const
{
    const TypeRow &row = rowOf(type);
    if (row.byteWise != CAN::NoType)
        return AbstractGenerator::formatLargeValue(row.byteWise, bits, static_cast<qint64>(bits));
    QString number;
    if (type == ValueType::R32)
        number = realText(real);
    else
        number = row.hasSign ? QString::number(signedValue(bits, row.bits)) : QString::number(bits);
    return u'(' % row.cType % u')' % number % row.suffix;
}

PoolValue parseValue(ValueType type, const QString &text, int base)
{
    const TypeRow &row = rowOf(type);
    if (type == ValueType::R32)
        return {.type = type, .real = parseReal(text)};
    return {.type = type, .bits = parseBits(row, text, base) & (~quint64{0} >> (64 - row.bits))};
}

quint16 ConstantPool::add(const PoolValue &value)
{
    const auto type = valueTypePlace(value.type);
    std::vector<PoolValue> &values = arrays_[type].values;
    const quint64 key = poolKey(value);
    if (const auto known = positions_[type].constFind(key); known != positions_[type].constEnd())
        return *known;
    const auto position = static_cast<quint16>(values.size());
    positions_[type].insert(key, position);
    values.push_back(value);
    return position;
}
