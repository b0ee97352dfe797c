#pragma once

#include <QString>

/// Whether an object may be mapped into a PDO, and in which direction.
///
/// The number is what a project file stores; it never changes meaning.
class PDOMapping
{
public:
    enum PDOMappingType : quint8
    {
        Forbidden = 0,
        Allowed = 1, ///< in both directions, as far as the access type lets it
        Default = 2, ///< allowed, and part of the default mapping
        RPDO = 3,
        TPDO = 4
    };

    constexpr PDOMapping() = default;
    constexpr PDOMapping(PDOMappingType type)
        : value_(type)
    {
    } // NOLINT(google-explicit-constructor)
    /// Takes any number as it is, so that a value this version does not know survives being read and written.
    constexpr explicit PDOMapping(uint value)
        : value_(value)
    {
    }

    constexpr uint toUInt() const { return value_; }
    /// 0 or 1, the form of an EDS (CiA 306): 1 for every mapping but `Forbidden`.
    constexpr uint toBinary() const { return value_ == Forbidden ? 0U : 1U; }
    /// The word of the XDD attribute `PDOmapping` (CiA 311): "no", "optional", "default", "RPDO", "TPDO"; an unknown
    /// number reads "no".
    QString getXDDStringValue() const;
    /// The word of CSV tables and of the server: "forbidden", "allowed", "default", "rpdo", "tpdo"; an unknown number
    /// reads "forbidden".
    QString getCSVStringValue() const;
    /// Reverse of `getCSVStringValue`, letter case and surrounding blanks ignored; an unknown word gives `Forbidden`.
    static PDOMapping fromCSVString(const QString &text);

    friend constexpr bool operator==(PDOMapping a, PDOMapping b) { return a.value_ == b.value_; }

private:
    uint value_ = Forbidden;
};
