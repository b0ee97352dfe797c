#pragma once

#include <QList>
#include <QString>

#include <vector>

/// A part of a frame: a mapped object, an SPN or a data element.
struct FrameField
{
    quint32 first = 0; ///< bit, from 0, the least significant of byte 0 first, as all three protocols count
    quint32 bits = 0;
    QString name = {};
    QString address = {}; ///< "0x2000:1", "SPN 110"; empty for a gap that a dummy entry makes
};

/// The data of a message on the bus.
struct Frame
{
    static constexpr quint32 byteBits = 8;
    static constexpr quint32 mostBits = 512; ///< of a CAN FD frame; what is longer goes in several, and is listed only
    static constexpr int nobody = -1;

    quint32 bits = 0; ///< to the end of the last field
    QList<FrameField> fields = {};

    /// Which field has which bit, byte for byte up to `mostBits`; of two fields the first one keeps it.
    std::vector<int> owners() const;
    /// How a drawing names a field by its place in the list: "A" to "Z", then "a" to "z", "A1", ...
    static QString letterOf(int field);
};
