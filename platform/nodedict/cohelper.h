#pragma once

#include <QString>

#include <optional>

namespace CANopen {

/// Category of an object in a device profile. The numbers are those that a project file stores.
enum ObjectCategory : quint32
{
    Mandatory = 0,
    Optional = 1,
    Conditional = 2
};

/// Object codes of CiA 301.
enum ObjectCode : quint32
{
    Domain = 2,
    DefType = 5,
    DefStruct = 6,
    Var = 7,
    Array = 8,
    Record = 9
};

} // namespace CANopen

/// Names, widths and limits of CANopen data types, object codes, access types and categories.
///
/// Everything here is a lookup in a table: without state, callable from any thread. A text is compared without regard
/// to letter case, surrounding blanks and the blanks, "_" and "-" between its words.
class COHelper
{
public:
    /// Limits as decimal text; empty where a type has none.
    struct Limits
    {
        QString low;
        QString high;
    };

    /// Name of a data type as CiA 301 writes it, "UNSIGNED32"; "0x" and four digits for a code without a name.
    static QString index2DataTypeString(quint32 dataType);
    /// Short name of a data type: "B", "I8" to "I64", "U2" to "U64", "R32", "R64", "VS", "OS", "US" (UNICODE_STRING),
    /// "TOD", "TD", "D", "SN" and "SA" (120 and 121), "UTF8"; empty for a code without a name.
    static QString index2DataTypeShortString(quint32 dataType);
    /// Code of a data type given by its name, its short name or a common C spelling ("uint8_t", "float", "string"), or
    /// as a number: decimal, "0x" hexadecimal, or octal with a leading 0. "U8S", the word of CSV tables for the
    /// number of entries of an array, is UNSIGNED8. 0 if the text is none of these or is beyond 16 bits.
    static quint32 mapDataTypeString(const QString &text);
    /// Width of a value of the type in bits, 1 for BOOLEAN; 0 where the type does not imply one (strings, domains,
    /// unknown codes).
    static quint32 getDataLengthBits(quint32 dataType);
    /// True for the integer types that hold negative numbers, in two's complement.
    static bool isSigned(quint32 dataType);
    /// The range of an integer type; both empty for types without one (floats, strings, domains, times).
    static Limits getDefaultLimits(quint32 dataType);
    /// The limits of a value for which these two are declared: one that is empty is the type's own where the other one
    /// is told. Nothing if both are empty. A limit is delivered as it stands.
    static std::optional<Limits> declaredLimits(quint32 dataType, const QString &low, const QString &high);
    /// True for the types whose values are text or bytes rather than a number: the strings and DOMAIN.
    static bool isTextType(quint32 dataType);

    /// "DOMAIN", "DEFTYPE", "DEFSTRUCT", "VARIABLE", "ARRAY", "RECORD"; the decimal number for another code.
    static QString objectCode2String(quint32 objectCode);
    /// Object code of "VAR", "VARIABLE", "ARRAY", "RECORD", "DOMAIN", "DEFTYPE", "DEFSTRUCT" or of a number; 7 if
    /// unknown.
    static quint32 string2objectCode(const QString &text);
    /// One of "const", "ro", "rw", "wo", "rww", "rwr"; other spellings ("r", "read/write", "constant") are mapped to
    /// these. Of a text that is none as a whole the first word counts; an unknown one gives "ro".
    static QString normalizeAccessType(const QString &text);
    /// Category of "mandatory", "optional", "conditional"; `Optional` if unknown.
    static CANopen::ObjectCategory convertCategory(const QString &text);
};
