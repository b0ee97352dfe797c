#pragma once

#include <QString>

#include <optional>

/// The notation of values in a device description (CiA 306).
namespace EdsValue {

/// The text without the pair of quotes around it, if there is one.
QString withoutQuotes(const QString &text);

/// A text for people without the quotes around the whole of it; what is inside stays as it is.
QString unquotedText(const QString &text);

/// A word or a number without the remark behind it (";") and the quotes around it.
QString word(const QString &text);

/// A number: decimal, "0x" hexadecimal, or octal with a leading 0; a leading 0 before a digit that is not octal is
/// taken as mere padding. What stands behind the number after a blank or a ";" is a remark and does not count.
std::optional<quint32> number(const QString &text);

/// The value of a data type in the form in which the program keeps it. Text types keep their text. Of the others, a
/// node-relative value in any of its spellings ("0x600+$NODEID", "$NodeID + 384", "$NODEID") becomes "$NODEID+" and
/// the number as it is written, several numbers their sum; "0X" becomes "0x", padding zeros of a decimal number go, and
/// so do quotes around a number and a remark behind it (";", "//" or "#"). All else, a number in a form that is not
/// known included, stays as it is.
QString normalised(const QString &text, quint32 dataType);

/// A limit in that form, but of a signed integer type in decimal, as files write its hexadecimal numbers in two's
/// complement of the type's width: "0xFFFF" of INTEGER16 is "-1". It is so, too, extended to 32 or 64 bits. A number
/// that the type cannot hold keeps its value.
QString limit(const QString &text, quint32 dataType);

} // namespace EdsValue
