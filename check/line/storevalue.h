#pragma once

#include <QString>

#include <optional>

/// A number of a project's text (CiA 306): decimal, "0x" hexadecimal, octal with a leading 0, any of these behind
/// "$NODEID+", or "$NODEID" alone.
struct StoreValue
{
    quint64 magnitude = 0;
    bool negative = false;
    bool nodeRelative = false; ///< the node-id is to be added at run time

    /// Nothing for an empty text or one that is no number.
    static std::optional<StoreValue> parse(const QString &text);
};

/// An unsigned number that is not relative to the node-id; nothing for any other text.
std::optional<quint64> plainValue(const QString &text);
