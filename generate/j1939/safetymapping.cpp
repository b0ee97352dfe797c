#include "generate/j1939/safetymapping.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

constexpr quint32 bitsPerByte = 8;
constexpr quint32 maxSignalBits = 64;
constexpr quint32 classicalBytes = 8;
constexpr quint32 fdBytes = 64;

quint64 mask(quint32 bits)
{
    return ~quint64{0} >> (maxSignalBits - bits);
}

quint32 usedBits(const SafetyMapping::Frame &frame)
{
    quint32 bits = 0;
    for (const SafetySignal &signal : frame.items)
        bits += signal.bits;
    return bits;
}

quint32 usedBytes(const SafetyMapping::Frame &frame)
{
    return (usedBits(frame) + bitsPerByte - 1) / bitsPerByte;
}

/// The bits of a signal that stand in one byte of the message.
struct Part
{
    quint32 byte = 0;
    quint32 offset = 0; ///< first bit within the byte
    quint32 first = 0;  ///< first bit of the signal
    quint32 bits = 0;

    bool fillsByte() const { return bits == bitsPerByte; }
};

/// The parts of a signal that begins at a bit of the message.
QList<Part> partsOf(quint32 start, quint32 bits)
{
    QList<Part> parts;
    for (quint32 done = 0; done < bits;) {
        const quint32 offset = (start + done) % bitsPerByte;
        const quint32 count = std::min(bits - done, bitsPerByte - offset);
        parts.append({.byte = (start + done) / bitsPerByte, .offset = offset, .first = done, .bits = count});
        done += count;
    }
    return parts;
}

/// A shift between a signal and a byte; a part that begins at the same bit of both is not shifted.
struct Shift
{
    QString direction;
    quint32 bits;
};

Shift downwards(quint32 from, quint32 to)
{
    return from >= to ? Shift{u">>"_s, from - to} : Shift{u"<<"_s, to - from};
}

class Packer
{
public:
    Packer(CodeWriter &out, QString buffer)
        : out_(out)
        , buffer_(std::move(buffer))
    {
    }

    void pack(const SafetySignal &signal, quint32 start);
    void fillUp(const SafetyMapping::Frame &frame);

private:
    void clear(const Part &part);
    void packInByte(const SafetySignal &signal, const Part &part);
    void packAcrossBytes(const SafetySignal &signal, const QList<Part> &parts);

    CodeWriter &out_;
    QString buffer_;
};

void Packer::clear(const Part &part)
{
    out_(u"${BUFFER}[${BYTE}] = 0x00u;", {{"BUFFER", buffer_}, {"BYTE", dec(part.byte)}});
}

void Packer::packInByte(const SafetySignal &signal, const Part &part)
{
    if (part.fillsByte()) {
        out_(u"${BUFFER}[${BYTE}] = ${VALUE};",
             {{"BUFFER", buffer_}, {"BYTE", dec(part.byte)}, {"VALUE", signal.variable}});
        return;
    }
    if (part.offset == 0) {
        clear(part);
        out_(u"${BUFFER}[${BYTE}] |= (UNSIGNED8)(${VALUE} & 0x${MASK}u);", {{"BUFFER", buffer_},
                                                                            {"BYTE", dec(part.byte)},
                                                                            {"VALUE", signal.variable},
                                                                            {"MASK", hex(mask(part.bits))}});
        return;
    }
    out_(u"${BUFFER}[${BYTE}] |= (UNSIGNED8)((${VALUE} & 0x${MASK}u) << ${SHIFT}u);", {{"BUFFER", buffer_},
                                                                                       {"BYTE", dec(part.byte)},
                                                                                       {"VALUE", signal.variable},
                                                                                       {"MASK", hex(mask(part.bits))},
                                                                                       {"SHIFT", dec(part.offset)}});
}

void Packer::packAcrossBytes(const SafetySignal &signal, const QList<Part> &parts)
{
    for (const Part &part : parts) {
        if (part.offset == 0 && part.first == 0) {
            out_(u"${BUFFER}[${BYTE}] = (UNSIGNED8)(${VALUE} & 0x${MASK}u);", {{"BUFFER", buffer_},
                                                                               {"BYTE", dec(part.byte)},
                                                                               {"VALUE", signal.variable},
                                                                               {"MASK", hex(mask(part.bits))}});
            continue;
        }
        if (part.offset == 0 && !part.fillsByte())
            clear(part);
        const Shift shift = downwards(part.first, part.offset);
        out_(u"${BUFFER}[${BYTE}] |= (UNSIGNED8)((${VALUE} & 0x${MASK}u) ${DIRECTION} ${SHIFT}u);",
             {{"BUFFER", buffer_},
              {"BYTE", dec(part.byte)},
              {"VALUE", signal.variable},
              {"MASK", hex(mask(part.bits) << part.first)},
              {"DIRECTION", shift.direction},
              {"SHIFT", dec(shift.bits)}});
    }
}

void Packer::pack(const SafetySignal &signal, quint32 start)
{
    if (start > 0 && start % bitsPerByte == 0)
        out_(u"");
    const QList<Part> parts = partsOf(start, signal.bits);
    if (parts.size() == 1)
        packInByte(signal, parts.first());
    else
        packAcrossBytes(signal, parts);
}

/// Sets the bits that no signal has, as SAE J1939 wants unused bits.
void Packer::fillUp(const SafetyMapping::Frame &frame)
{
    const quint32 bytes = usedBytes(frame);
    const quint32 freeBits = bytes * bitsPerByte - usedBits(frame);
    if (freeBits > 0)
        out_(uR"(
            /* set ${COUNT} unused bits */
            ${BUFFER}[${BYTE}] |= 0x${MASK};
            )",
             {{"COUNT", dec(freeBits)},
              {"BUFFER", buffer_},
              {"BYTE", dec(bytes - 1)},
              {"MASK", hex(mask(freeBits) << (bitsPerByte - freeBits), 2)}});
    for (quint32 byte = bytes; frame.isClassical && byte < classicalBytes; ++byte)
        out_(u"${BUFFER}[${BYTE}] = 0xff;", {{"BUFFER", buffer_}, {"BYTE", dec(byte)}});
}

QString castTo(quint32 bits)
{
    const std::array widths{8U, 16U, 32U, 64U};
    return u"(UNSIGNED%1)"_s.arg(*std::ranges::find_if(widths, [bits](quint32 width) { return bits <= width; }));
}

class Unpacker
{
public:
    Unpacker(CodeWriter &out, QString element, bool fixedForms)
        : out_(out)
        , element_(std::move(element))
        , fixedForms_(fixedForms)
    {
    }

    void unpack(const SafetySignal &signal, quint32 start);

private:
    void unpackFromByte(const QString &target, const Part &part);
    void unpackWholeBytes(const QString &target, quint32 bits, const QList<Part> &parts);
    void unpackAcrossBytes(const QString &target, quint32 bits, const QList<Part> &parts);

    CodeWriter &out_;
    QString element_;
    bool fixedForms_;
};

void Unpacker::unpackFromByte(const QString &target, const Part &part)
{
    const QString byte = dec(part.byte);
    if (part.fillsByte())
        out_(u"${TARGET} = pBuffer[${BYTE}];", {{"TARGET", target}, {"BYTE", byte}});
    else if (fixedForms_)
        out_(u"${TARGET} = (UNSIGNED8) ((pBuffer[${BYTE}] >> ${SHIFT}) & 0x${MASK}u);",
             {{"TARGET", target}, {"BYTE", byte}, {"SHIFT", dec(part.offset)}, {"MASK", hex(mask(part.bits), 2)}});
    else if (part.offset == 0)
        out_(u"${TARGET} = pBuffer[${BYTE}] & 0x${MASK}u;",
             {{"TARGET", target}, {"BYTE", byte}, {"MASK", hex(mask(part.bits))}});
    else
        out_(u"${TARGET} = (pBuffer[${BYTE}] >> ${SHIFT}) & 0x${MASK}u;",
             {{"TARGET", target}, {"BYTE", byte}, {"SHIFT", dec(part.offset)}, {"MASK", hex(mask(part.bits))}});
}

void Unpacker::unpackWholeBytes(const QString &target, quint32 bits, const QList<Part> &parts)
{
    const QString cast = castTo(bits);
    out_(u"${TARGET} = ${CAST}pBuffer[${BYTE}];",
         {{"TARGET", target}, {"CAST", cast}, {"BYTE", dec(parts.first().byte)}});
    for (const Part &part : parts.sliced(1))
        out_(u"${TARGET} |= ${CAST}(pBuffer[${BYTE}]) << ${SHIFT};",
             {{"TARGET", target}, {"CAST", cast}, {"BYTE", dec(part.byte)}, {"SHIFT", dec(part.first)}});
}

void Unpacker::unpackAcrossBytes(const QString &target, quint32 bits, const QList<Part> &parts)
{
    const QString cast = castTo(bits);
    out_(u"${TARGET} = 0x00u;", {{"TARGET", target}});
    for (const Part &part : parts) {
        if (part.fillsByte() && part.first == 0) {
            out_(u"${TARGET} |= (${CAST}pBuffer[${BYTE}]);",
                 {{"TARGET", target}, {"CAST", cast}, {"BYTE", dec(part.byte)}});
            continue;
        }
        const Shift shift = downwards(part.offset, part.first);
        out_(u"${TARGET} |= (${CAST}pBuffer[${BYTE}] ${DIRECTION} ${SHIFT}u) & 0x${MASK}u;",
             {{"TARGET", target},
              {"CAST", cast},
              {"BYTE", dec(part.byte)},
              {"DIRECTION", shift.direction},
              {"SHIFT", dec(shift.bits)},
              {"MASK", hex(mask(part.bits) << part.first)}});
    }
}

void Unpacker::unpack(const SafetySignal &signal, quint32 start)
{
    const QString target = signal.variable + element_;
    const QList<Part> parts = partsOf(start, signal.bits);
    if (parts.size() == 1)
        unpackFromByte(target, parts.first());
    else if (fixedForms_ && std::ranges::all_of(parts, &Part::fillsByte))
        unpackWholeBytes(target, signal.bits, parts);
    else
        unpackAcrossBytes(target, signal.bits, parts);
}

} // namespace

bool SafetyMapping::isSupported(const Frame &frame)
{
    const auto usable = [](const SafetySignal &signal) {
        return signal.bits > 0 && signal.bits <= maxSignalBits && !signal.variable.isEmpty();
    };
    if (frame.items.isEmpty() || !std::ranges::all_of(frame.items, usable))
        return false;
    if (usedBytes(frame) > (frame.isClassical ? classicalBytes : fdBytes))
        return false;
    const bool positionsTold = std::ranges::any_of(frame.items, [](const SafetySignal &s) { return s.position > 0; });
    quint32 position = 0;
    for (const SafetySignal &signal : frame.items) {
        if (positionsTold && signal.position != position)
            return false;
        position += signal.bits;
    }
    return true;
}

quint32 SafetyMapping::length(const Frame &frame)
{
    return frame.isClassical ? classicalBytes : usedBytes(frame);
}

void SafetyMapping::writeUnsupported(CodeWriter &out)
{
    out(u"#error SDM structure not supported");
}

void SafetyMapping::writePacking(CodeWriter &out, const Frame &frame, const Dialect &dialect)
{
    if (!isSupported(frame)) {
        writeUnsupported(out);
        return;
    }
    Packer packer(out, dialect.safetyBuffer);
    quint32 position = 0;
    for (const SafetySignal &signal : frame.items) {
        packer.pack(signal, position);
        position += signal.bits;
    }
    packer.fillUp(frame);
}

void SafetyMapping::writeUnpacking(CodeWriter &out, const Frame &frame, const QString &element, const Dialect &dialect)
{
    if (!isSupported(frame)) {
        writeUnsupported(out);
        return;
    }
    Unpacker unpacker(out, element, dialect.has(Point::FixedUnpacking));
    quint32 position = 0;
    for (const SafetySignal &signal : frame.items) {
        unpacker.unpack(signal, position);
        position += signal.bits;
    }
}
