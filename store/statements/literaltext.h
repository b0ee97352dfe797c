#pragma once

#include <QString>

#include <optional>

/// What a single quote does in a text that an operation is given.
enum class Quotes
{
    Literal, ///< as between the quotes of a statement: two are one, and a text with a single one is not written
    Kept     ///< nothing: the text is stored as it is, unless there is a null character in it
};

/// Texts as they stand in a statement. Many operations have always taken theirs so, and what quotes do there is a part
/// of what these promise, although a text is never a part of a statement any more.
namespace LiteralText {

/// True for a text that would end its statement early, whose write fails: one with a quote that is not one of two
/// behind each other, or with a null character.
bool breaksStatement(QStringView text);
/// The text that is stored; nothing for one whose write fails.
std::optional<QString> stored(const QString &text, Quotes quotes);

} // namespace LiteralText
