#pragma once

#include <QJsonObject>
#include <QLatin1StringView>
#include <QString>

#include <initializer_list>
#include <optional>
#include <span>

/// One argument of a tool: its name and its schema (the part of JSON Schema that the tools need).
struct Property
{
    QLatin1StringView name;
    std::span<const QLatin1StringView> types; ///< "boolean", "integer", "number", "string" or "array"
    QLatin1StringView description = {};
    std::optional<qint64> minimum = {}; ///< of an integer, inclusive
    std::optional<qint64> maximum = {};
    std::span<const QLatin1StringView> choices = {}; ///< told to the client; the tools test them in their own words
    const Property *items = nullptr;                 ///< schema of an array's elements
    std::span<const Property> members = {};          ///< of an object, which has no others; the first is required

    QJsonObject schema() const;
};

/// Makers of properties, so that a table of them reads as a list.
namespace Properties {

namespace Types {

inline constexpr QLatin1StringView boolean[]{QLatin1StringView("boolean")};
inline constexpr QLatin1StringView integer[]{QLatin1StringView("integer")};
inline constexpr QLatin1StringView string[]{QLatin1StringView("string")};
inline constexpr QLatin1StringView array[]{QLatin1StringView("array")};
inline constexpr QLatin1StringView object[]{QLatin1StringView("object")};
inline constexpr QLatin1StringView scalar[]{QLatin1StringView("string"), QLatin1StringView("number"),
                                            QLatin1StringView("boolean")};

} // namespace Types

constexpr Property boolean(QLatin1StringView name, QLatin1StringView description)
{
    return {.name = name, .types = Types::boolean, .description = description};
}

constexpr Property integer(QLatin1StringView name, qint64 minimum, qint64 maximum, QLatin1StringView description)
{
    return {.name = name, .types = Types::integer, .description = description, .minimum = minimum, .maximum = maximum};
}

constexpr Property string(QLatin1StringView name, QLatin1StringView description)
{
    return {.name = name, .types = Types::string, .description = description};
}

constexpr Property choice(QLatin1StringView name, std::span<const QLatin1StringView> choices,
                          QLatin1StringView description)
{
    return {.name = name, .types = Types::string, .description = description, .choices = choices};
}

constexpr Property array(QLatin1StringView name, const Property &items, QLatin1StringView description)
{
    return {.name = name, .types = Types::array, .description = description, .items = &items};
}

/// An object whose first member is required.
constexpr Property object(std::span<const Property> members)
{
    return {.name = {}, .types = Types::object, .members = members};
}

constexpr Property scalar(QLatin1StringView name, QLatin1StringView description)
{
    return {.name = name, .types = Types::scalar, .description = description};
}

} // namespace Properties

/// What is wrong with the arguments of a call, in words for the client; nothing if they fit. Unknown arguments come
/// first, then missing ones, then values; each in alphabetical order but for the missing ones, which come in the order
/// of `required`.
std::optional<QString> argumentProblem(const QJsonObject &arguments, std::span<const Property> required,
                                       std::span<const Property> optional);

/// The same for texts that are none of the choices of their schema, for servers whose tools leave that to it.
std::optional<QString> choiceProblem(const QJsonObject &arguments, std::span<const Property> properties);
