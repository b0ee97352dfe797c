#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <optional>
#include <vector>

/// The number types that have arrays of their own in a generated object dictionary.
enum class ValueType : quint8
{
    U8,
    U16,
    U24,
    U32,
    U40,
    U48,
    U64,
    I8,
    I16,
    I24,
    I32,
    R32
};
inline constexpr std::size_t valueTypeCount = 12;
/// The place of a type in a table that has an entry for each.
constexpr std::size_t valueTypePlace(ValueType type)
{
    return static_cast<std::size_t>(type);
}

/// The array type of a data type code; none for strings, domains and numbers that the stack keeps in no array.
/// BOOLEAN and numbers of 2 to 7 bits live in bytes, TIME_OF_DAY in 48 bits.
std::optional<ValueType> valueTypeOf(quint16 dataType);
/// The end of the array names: "u8", "i24", "r32".
QLatin1StringView valueTypeName(ValueType type);
/// The C type of an element: that of a byte-wise initialiser has the width in its name, "UNSIGNED24".
QLatin1StringView valueTypeCType(ValueType type);

/// A value as the arrays hold it. An integer is cut to the width of its type, two's complement.
struct PoolValue
{
    ValueType type = ValueType::U8;
    quint64 bits = 0; ///< of an integer
    float real = 0;   ///< of R32

    /// The C initialiser: "(UNSIGNED8)16u", "U24_SET(0x00,0x00,0x10)", "(REAL32)0.5f".
    QString initialiser() const;
};

/// Reads a number in the notation of CiA 306. What is no number of the type's kind is 0; one beyond the type's width
/// is cut to it, so that 0xFF is -1 in an INTEGER8. `base` 0 takes the base from the prefix.
PoolValue parseValue(ValueType type, const QString &text, int base = 0);

/// One array of values, its elements in the order of their positions.
struct ValueArray
{
    std::vector<PoolValue> values;
    std::vector<quint32> keys; ///< the subindex of each element (`subKey`); none in a pool of constants
};

/// One array per value type.
using ValueArrays = std::array<ValueArray, valueTypeCount>;

/// Constants: each value of a type stands once, at the position of its first use.
class ConstantPool
{
public:
    /// Position of the value in the array of its type.
    quint16 add(const PoolValue &value);
    const ValueArray &array(ValueType type) const { return arrays_[valueTypePlace(type)]; }

private:
    ValueArrays arrays_;
    std::array<QHash<quint64, quint16>, valueTypeCount> positions_;
};
