#pragma once

#include <QList>
#include <QString>

class CodeWriter;
struct Dialect;

/// A signal of a safety data group: an unsigned variable of the application and the bits of it that are exchanged.
struct SafetySignal
{
    QString variable = {};
    quint32 bits = 0;     ///< 1 to 64; 0 for what cannot be exchanged
    quint32 position = 0; ///< first bit in the group as the project tells it
};

/// The C statements that carry the signals of one safety data group (SAE J1939-76) into the bytes of its message, and
/// back. Signals follow each other without a gap, the least significant bit first.
namespace SafetyMapping {

struct Frame
{
    QList<SafetySignal> items = {};
    bool isClassical = true; ///< of 8 bytes, those behind the data filled up; otherwise as long as its data
};

/// False for a layout that the statements cannot express: a signal without a width or variable, more data than the
/// frame holds, or positions with gaps, overlaps or another order. Positions that are all 0 have not been told.
bool isSupported(const Frame &frame);

/// Length of the message in bytes.
quint32 length(const Frame &frame);

/// What stands in place of the statements of a layout that is not supported, so that the compiler stops there.
void writeUnsupported(CodeWriter &out);
/// Statements that fill the buffer ("pData", or "pBuffer" in the classic form). They take it cleared: a byte that a
/// signal fills whole behind its first one is or-ed in.
void writePacking(CodeWriter &out, const Frame &frame, const Dialect &dialect);
/// Statements that read "pBuffer". `element` stands behind each variable, to choose that of a sender.
void writeUnpacking(CodeWriter &out, const Frame &frame, const QString &element, const Dialect &dialect);

} // namespace SafetyMapping
