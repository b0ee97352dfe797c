#pragma once

#include <QtGlobal>

// Codes of the domain that several floors compare with, each declared once.

namespace CAN {

/// Protocols of a line, as its setting `line%1type` tells them.
enum class LineType : quint8
{
    CanOpen = 1,
    J1939 = 2,
    RawCan = 4,
    CanOpenAndJ1939 = 5,
    CanOpenAndRawCan = 6,
    J1939AndRawCan = 7
};

inline constexpr quint32 highestBaseId = 0x7FF;       ///< of the 11 bits of a base identifier
inline constexpr quint32 identifierBits = 0x1FFFFFFF; ///< the 29 bits of an extended one
inline constexpr quint32 extendedFlag = 0x80000000;   ///< marks an extended identifier in a project

} // namespace CAN

namespace CANopen {

inline constexpr quint8 lastNodeId = 127; ///< 1 is the first

/// Where the value of a subindex is kept.
enum class Implementation : quint8
{
    ManagedVariable = 0, ///< storage of the stack that may change
    ManagedConst = 1,    ///< read-only storage of the stack
    Variable = 2,        ///< a variable of the application
    VirtualObject = 3    ///< not stored: a callback serves it
};

constexpr quint8 codeOf(Implementation implementation)
{
    return static_cast<quint8>(implementation);
}

/// A record holds its code as a number.
constexpr bool operator==(quint8 code, Implementation implementation)
{
    return code == codeOf(implementation);
}

/// Object indices, both ends included.
struct IndexRange
{
    quint16 first;
    quint16 last;

    constexpr bool contains(quint16 index) const { return index >= first && index <= last; }
};

/// Objects of the communication profile (CiA 301, CiA 302, EN 50325-5).
namespace Index {

inline constexpr quint16 firstCommunicationObject = 0x1000;
inline constexpr quint16 deviceType = 0x1000;
inline constexpr quint16 errorRegister = 0x1001;
inline constexpr quint16 errorHistory = 0x1003;
inline constexpr quint16 syncCobId = 0x1005;
inline constexpr quint16 syncPeriod = 0x1006;
inline constexpr quint16 guardTime = 0x100C;
inline constexpr quint16 storeParameters = 0x1010;
inline constexpr quint16 restoreParameters = 0x1011;
inline constexpr quint16 timeCobId = 0x1012;
inline constexpr quint16 emcyCobId = 0x1014;
inline constexpr quint16 emcyInhibitTime = 0x1015;
inline constexpr quint16 heartbeatConsumers = 0x1016;
inline constexpr quint16 heartbeatProducer = 0x1017;
inline constexpr quint16 identity = 0x1018;
inline constexpr quint16 syncOverflow = 0x1019;
inline constexpr quint16 emcyConsumers = 0x1028;
inline constexpr quint16 nmtInhibitTime = 0x102A;
inline constexpr quint16 activeErrors = 0x1032;
inline constexpr quint16 globalFailSafe = 0x1300;
inline constexpr quint16 slaveReset = 0x1F10;
inline constexpr quint16 networkRouting = 0x1F2C;
inline constexpr quint16 networkStartup = 0x1F80;
inline constexpr quint16 slaveAssignment = 0x1F81;

inline constexpr quint16 firstManufacturerObject = 0x2000;
inline constexpr quint16 lastProfileObject = 0xBFFF;

/// Objects of every kind; what lies below describes data types.
inline constexpr IndexRange all{firstCommunicationObject, 0xFFFF};
inline constexpr IndexRange sdoServers{0x1200, 0x127F};
inline constexpr IndexRange sdoClients{0x1280, 0x12FF};
inline constexpr IndexRange srdos{0x1301, 0x137F};
/// Those that a device may have.
inline constexpr IndexRange deviceSrdos{0x1301, 0x1340};
inline constexpr IndexRange srdoMappings{0x1381, 0x13FF};
/// Mappings of the SRDOs whose data the module of SRDOs may own.
inline constexpr IndexRange staticSrdoMappings{0x1380, 0x13B0};
inline constexpr IndexRange rpdos{0x1400, 0x15FF};
inline constexpr IndexRange rpdoMappings{0x1600, 0x17FF};
inline constexpr IndexRange tpdos{0x1800, 0x19FF};
inline constexpr IndexRange tpdoMappings{0x1A00, 0x1BFF};
/// Distances of a mapping from its communication parameters.
inline constexpr quint16 srdoMappingOffset = 0x80;
inline constexpr quint16 pdoMappingOffset = 0x200;

} // namespace Index
} // namespace CANopen

namespace J1939 {

/// The parameter group by which a device claims its address (SAE J1939-81).
inline constexpr quint32 addressClaim = 60928;

} // namespace J1939
