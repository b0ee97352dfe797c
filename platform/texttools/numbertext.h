#pragma once

#include <QString>

#include <optional>

/// Numbers in the texts of a project. Each reader is named after its notation, takes the text without the blanks around
/// it, and answers nothing for a text that is no such number or does not fit.
namespace NumberText {

/// Decimal, "0x" hexadecimal, or octal with a leading 0, as the prefix says.
std::optional<quint32> byPrefix(const QString &text);

} // namespace NumberText
