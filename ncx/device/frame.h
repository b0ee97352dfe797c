#pragma once

#include <QList>
#include <QString>

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
    quint32 bits = 0; ///< to the end of the last field
    QList<FrameField> fields = {};
};
