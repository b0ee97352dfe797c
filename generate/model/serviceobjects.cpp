#include "generate/model/serviceobjects.h"

#include "nodedict/codes.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

enum class Subs : quint8
{
    None,
    All,
    NotZero,
    One
};

/// What the value column has.
enum class Value : quint8
{
    Position, ///< of the variable or constant
    Index,    ///< of the object
    Number    ///< of the SDO or PDO that the object belongs to, from 1
};

struct Row
{
    CANopen::IndexRange objects;
    QLatin1StringView suffix; ///< of the specifier
    Subs suffixOf;
    Value value;
    Subs valueOf;
    Subs keptByStack;
};

using enum Subs;
using enum Value;

constexpr Row rows[] = {
    {{0x1003, 0x1003}, "_EMCY"_L1, All, Index, All, None},
    {{0x1005, 0x1006}, "_SYNC"_L1, All, Index, All, All},
    {{0x100C, 0x100D}, "_ERRCTRL"_L1, All, Index, All, All},
    {{0x1010, 0x1011}, "_STORE"_L1, NotZero, Index, NotZero, NotZero},
    {{0x1012, 0x1012}, "_TIME"_L1, All, Position, None, All},
    {{0x1014, 0x1015}, "_EMCY"_L1, All, Index, All, None},
    {{0x1016, 0x1016}, "_ERRCTRL"_L1, NotZero, Index, NotZero, All},
    {{0x1017, 0x1017}, "_ERRCTRL"_L1, All, Index, All, All},
    {{0x1019, 0x1019}, "_SYNC"_L1, All, Index, All, All},
    {{0x1028, 0x1028}, "_EMCY"_L1, NotZero, Index, NotZero, NotZero},
    {{0x1029, 0x1029}, "_ERRCTRL"_L1, One, Index, One, One},
    {{0x102A, 0x102A}, "_NMT"_L1, All, Index, All, All},
    {{0x1032, 0x1032}, "_EMCY"_L1, All, Index, All, None},
    {{0x1200, 0x127F}, "_SDO_SERVER"_L1, NotZero, Number, NotZero, NotZero},
    {{0x1280, 0x12FF}, "_SDO_CLIENT"_L1, NotZero, Number, NotZero, NotZero},
    {{0x1300, 0x1300}, "_GFC"_L1, All, Position, None, All},
    {{0x1301, 0x13F0}, "_SRDO"_L1, NotZero, Index, NotZero, NotZero},
    {{0x13F1, 0x13FD}, ""_L1, None, Position, None, NotZero},
    {{0x13FE, 0x13FF}, "_SRDO"_L1, All, Index, All, NotZero},
    {{0x1400, 0x15FF}, "_RPDO"_L1, NotZero, Number, NotZero, NotZero},
    {{0x1600, 0x17FF}, "_RMAP"_L1, All, Number, All, NotZero},
    {{0x1800, 0x19FF}, "_TPDO"_L1, NotZero, Number, NotZero, NotZero},
    {{0x1A00, 0x1BFF}, "_TMAP"_L1, All, Number, All, NotZero},
    {{0x1F10, 0x1F11}, "_SRD"_L1, All, Position, None, All},
    {{0x1F2C, 0x1F2C}, "_NETWORK"_L1, NotZero, Index, NotZero, None},
    {{0x1F80, 0x1F80}, "_NMT"_L1, All, Index, All, None},
    {{0x1F81, 0x1F82}, "_NMT"_L1, All, Index, All, NotZero},
    {{0x1F90, 0x1F90}, "_FLYMA"_L1, All, Index, NotZero, None},
};

const Row *rowOf(quint16 index)
{
    const auto row = std::ranges::lower_bound(rows, index, {}, [](const Row &each) { return each.objects.last; });
    return row != std::end(rows) && row->objects.contains(index) ? row : nullptr;
}

constexpr bool hold(Subs subs, quint8 subindex)
{
    switch (subs) {
    case None:
        return false;
    case All:
        return true;
    case NotZero:
        return subindex != 0;
    case One:
        return subindex == 1;
    }
    return false;
}

} // namespace

QLatin1StringView ServiceObjects::specifier(quint16 index, quint8 subindex)
{
    const Row *row = rowOf(index);
    return row && hold(row->suffixOf, subindex) ? row->suffix : QLatin1StringView();
}

std::optional<quint16> ServiceObjects::value(quint16 index, quint8 subindex)
{
    const Row *row = rowOf(index);
    if (!row || !hold(row->valueOf, subindex))
        return std::nullopt;
    return row->value == Number ? static_cast<quint16>(index - row->objects.first + 1) : index;
}

bool ServiceObjects::keepsValue(quint16 index, quint8 subindex)
{
    const Row *row = rowOf(index);
    return row && hold(row->keptByStack, subindex);
}
