#include "import/dbc/dbcsignaltype.h"

#include "nodedict/canopendatatype.h"

#include <algorithm>
#include <array>

namespace {

constexpr quint32 byteBits = 8;

struct WidthRow
{
    quint32 bits;
    CAN::CANopenDataType type;
};

constexpr std::array unsignedTypes{
    WidthRow{1, CAN::Boolean},     WidthRow{2, CAN::Unsigned2},   WidthRow{3, CAN::Unsigned3},
    WidthRow{4, CAN::Unsigned4},   WidthRow{5, CAN::Unsigned5},   WidthRow{6, CAN::Unsigned6},
    WidthRow{7, CAN::Unsigned7},   WidthRow{8, CAN::Unsigned8},   WidthRow{9, CAN::Unsigned9},
    WidthRow{10, CAN::Unsigned10}, WidthRow{11, CAN::Unsigned11}, WidthRow{12, CAN::Unsigned12},
    WidthRow{13, CAN::Unsigned13}, WidthRow{14, CAN::Unsigned14}, WidthRow{15, CAN::Unsigned15},
    WidthRow{16, CAN::Unsigned16}, WidthRow{17, CAN::Unsigned17}, WidthRow{18, CAN::Unsigned18},
    WidthRow{19, CAN::Unsigned19}, WidthRow{20, CAN::Unsigned20}, WidthRow{21, CAN::Unsigned21},
    WidthRow{22, CAN::Unsigned22}, WidthRow{23, CAN::Unsigned23}, WidthRow{24, CAN::Unsigned24},
    WidthRow{32, CAN::Unsigned32}, WidthRow{40, CAN::Unsigned40}, WidthRow{48, CAN::Unsigned48},
    WidthRow{56, CAN::Unsigned56}, WidthRow{64, CAN::Unsigned64},
};

constexpr std::array signedTypes{
    WidthRow{8, CAN::Integer8},   WidthRow{16, CAN::Integer16}, WidthRow{24, CAN::Integer24},
    WidthRow{32, CAN::Integer32}, WidthRow{40, CAN::Integer40}, WidthRow{48, CAN::Integer48},
    WidthRow{56, CAN::Integer56}, WidthRow{64, CAN::Integer64},
};

template <size_t count>
std::optional<quint16> typeOf(const std::array<WidthRow, count> &types, quint32 bits)
{
    const auto row = std::ranges::find(types, bits, &WidthRow::bits);
    return row == types.end() ? std::nullopt : std::optional<quint16>(row->type);
}

} // namespace

std::optional<quint16> DbcSignalType::of(const CANdb::Signal &signal, bool isText)
{
    constexpr quint32 mostBits = 0xffff; // of a record's own width
    if (signal.size > mostBits)
        return std::nullopt;
    const bool isBytes = signal.size > 0 && signal.size % byteBits == 0;
    if (isText && isBytes)
        return CAN::VisibleString;
    if (signal.valueType == CANdb::ValueType::Float && signal.size == 32)
        return CAN::Real32;
    if (signal.valueType == CANdb::ValueType::Double && signal.size == 64)
        return CAN::Real64;
    if (signal.isSigned && keepsSign(signal))
        return typeOf(signedTypes, signal.size);
    const std::optional<quint16> type = typeOf(unsignedTypes, signal.size);
    return !type && isBytes ? std::optional<quint16>(CAN::OctetString) : type;
}

bool DbcSignalType::keepsSign(const CANdb::Signal &signal)
{
    return !signal.isSigned || typeOf(signedTypes, signal.size).has_value();
}

std::optional<quint32> DbcSignalType::firstBit(const CANdb::Signal &signal)
{
    if (signal.isLittleEndian)
        return signal.startBit;
    // A start bit in Motorola byte order is the most significant one.
    const bool isInByte = signal.size > 0 && signal.startBit % byteBits + 1 >= signal.size;
    return isInByte ? std::optional(signal.startBit - signal.size + 1) : std::nullopt;
}
