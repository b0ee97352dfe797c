#pragma once

#include "ncx/device/devicemodel.h"

/// Frames as a data sheet draws them, in SVG: a row for each byte, its most significant bit on the left, in each field
/// its letter or name and the numbers of the bits of its value. What points at a field reads its start bit and length.
namespace FrameSvg {

/// How a protocol counts bytes and bits: from 0 (CiA 301, raw CAN) or from 1 (SAE J1939-71).
enum class Count
{
    FromZero,
    FromOne
};

/// A frame with what stands above it.
struct Titled
{
    QString title;
    Frame frame;
    Count count = Count::FromZero;
};

Titled of(const Pdo &pdo);
Titled of(const CheckedPGN &pgn);
Titled of(const CheckedCanId &canId);

/// The drawing of one frame as a part of a page, whose style sheet may colour it by its classes. Empty for a frame
/// without fields, or of more than `Frame::mostBits`.
QString element(const Titled &frame);
/// A file of its own: the frames, one below the other, with their titles and tables of the fields, for light and dark.
QByteArray document(const QList<Titled> &frames);
/// "2.0" for bit 0 of byte 2, in the counting of the protocol.
QString startText(quint32 bit, Count count);

} // namespace FrameSvg
