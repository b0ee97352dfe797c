#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// A setting of the project that clients may read and write, as a settings page would show it.
struct Setting
{
    enum class Scope : quint8
    {
        Global,
        PerLine ///< one value for each line
    };
    enum class Type : quint8
    {
        Bool,
        UInt, ///< 32 bits
        Enum, ///< stored as the item's position
        String
    };

    QString key{};     ///< in GeneralSettings
    QString group{};   ///< "general" or "stack"
    QString section{}; ///< heading within the group
    Scope scope = Scope::Global;
    Type type = Type::String;
    QString label{};
    QString description{};
    QString requiredKey{}; ///< a setting of type bool that must be enabled before this one is written; may be empty
    QStringList enumValues{};
    bool falseAsEmpty = false; ///< false is stored as an empty text, not as "0"
    bool readOnly = false;
    bool decimal = false;     ///< a number is stored in decimal; otherwise its notation is kept
    bool emptyIsTrue = false; ///< what is stored reads as true if it is empty or no number
    std::optional<quint32> min{};
    std::optional<quint32> max{};

    bool isPerLine() const { return scope == Scope::PerLine; }
};

/// The settings that clients can reach, and nothing else of the project's settings. Built on the first use.
namespace SettingsCatalogue {

/// All rows, in the order in which they are shown.
const std::vector<Setting> &settings();
/// Null for a key that is not in the catalogue.
const Setting *find(const QString &key);

} // namespace SettingsCatalogue
