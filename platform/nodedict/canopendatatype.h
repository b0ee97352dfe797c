#pragma once

#include <QtGlobal>

namespace CAN {

/// Data type codes of an object or signal. 0x01 to 0x1b are the static data types of CiA 301; the codes from 100 up
/// are this program's own and never reach a device description.
enum CANopenDataType : quint16
{
    NoType = 0x00,
    Boolean = 0x01,
    Integer8 = 0x02,
    Integer16 = 0x03,
    Integer32 = 0x04,
    Unsigned8 = 0x05,
    Unsigned16 = 0x06,
    Unsigned32 = 0x07,
    Real32 = 0x08,
    VisibleString = 0x09,
    OctetString = 0x0a,
    UnicodeString = 0x0b,
    TimeOfDay = 0x0c,
    TimeDifference = 0x0d,
    Domain = 0x0f,
    Integer24 = 0x10,
    Real64 = 0x11,
    Integer40 = 0x12,
    Integer48 = 0x13,
    Integer56 = 0x14,
    Integer64 = 0x15,
    Unsigned24 = 0x16,
    Unsigned40 = 0x18,
    Unsigned48 = 0x19,
    Unsigned56 = 0x1a,
    Unsigned64 = 0x1b,
    Unsigned2 = 100, ///< 100 to 105: numbers of 2 to 7 bits, as bus signals use them
    Unsigned3 = 101,
    Unsigned4 = 102,
    Unsigned5 = 103,
    Unsigned6 = 104,
    Unsigned7 = 105,
    Unsigned9 = 106, ///< 106 to 112: 9 to 15 bits
    Unsigned10 = 107,
    Unsigned11 = 108,
    Unsigned12 = 109,
    Unsigned13 = 110,
    Unsigned14 = 111,
    Unsigned15 = 112,
    Unsigned17 = 113, ///< 113 to 119: 17 to 23 bits
    Unsigned18 = 114,
    Unsigned19 = 115,
    Unsigned20 = 116,
    Unsigned21 = 117,
    Unsigned22 = 118,
    Unsigned23 = 119,
    StringNull = 120,     ///< text that a zero byte ends; its width is the record's own size
    StringAsterisk = 121, ///< text that an asterisk ends (SAE J1939); its width is the record's own size
    Utf8String = 124
};

} // namespace CAN
