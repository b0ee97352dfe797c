#pragma once

#include "generate/model/linedictionary.h"
#include "generate/model/pdomappingtables.h"
#include "generate/model/valuepools.h"

#include <QMap>
#include <QSet>

#include <vector>

class ObjectDataBase;

/// Key of a subindex in the maps of a dictionary: line in bits 24 to 31, index in 8 to 23, subindex in 0 to 7.
constexpr quint32 subKey(quint8 line, quint16 index, quint8 subindex)
{
    return quint32{line} << 24 | quint32{index} << 8 | subindex;
}
constexpr quint32 subKey(const StoreRecords::SubEntry &sub)
{
    return subKey(sub.line, sub.index, sub.subindex);
}
/// Key of an object: line in bits 24 to 31, index in 0 to 15.
constexpr quint32 objectKey(quint8 line, quint16 index)
{
    return quint32{line} << 24 | index;
}

/// Positions by the key of a subindex or object.
using Positions = QHash<quint32, quint16>;

/// A line that has objects from 0x1000 up, with all of these.
struct DictionaryLine : LineDictionary
{
    // The line's part of the tables. The start and the number of rows run on from line to line.
    quint32 assignStart = 0;
    quint32 assignCount = 0;
    quint32 descriptionCount = 0; ///< all rows up to the line's last, among them those of objects shared with line 0
    LinePdoTables pdos{};

    /// With a single object the line is no CANopen device: it has no start-up, no PDO tables and no string defaults.
    bool isDevice() const { return objects.size() > 1; }
};

/// What the attributes of a row say, a bit for each.
enum class Attribute : quint16
{
    Numeric = 0x001,
    Readable = 0x002,
    Writable = 0x004,
    Transmitted = 0x008, ///< may be mapped into a TPDO
    Received = 0x010,    ///< may be mapped into an RPDO
    HasDefault = 0x020,
    HasLimits = 0x040,
    Stored = 0x080,
    Dynamic = 0x100,
    Compact = 0x200 ///< stands for the subindices behind it too
};
Q_DECLARE_FLAGS(Attributes, Attribute)
Q_DECLARE_OPERATORS_FOR_FLAGS(Attributes)

/// A row of od_description.
struct DescriptionRow
{
    quint8 line = 0;
    quint16 index = 0;
    quint8 subindex = 0;
    quint16 dataType = 0;
    QLatin1StringView specifier{}; ///< "_VAR", "_SYNC" and so on
    quint16 value = 0;             ///< array position, service number or index, as the specifier says
    Attributes attributes{};
    quint16 defaultPosition = 0; ///< in od_const_*, as the limits
    quint16 lowerPosition = 0;
    quint16 upperPosition = 0;
};

/// A row of od_assign.
struct AssignRow
{
    quint16 index = 0;
    quint32 subs = 0; ///< number of subindices
    quint8 highest = 0;
    QLatin1StringView objectType{};
    quint32 start = 0; ///< row of the object's first subindex in od_description
};

/// Text constants: strings as the project has them, and their sizes. Each constant stands for itself.
struct TextArray
{
    std::vector<QString> texts;
    std::vector<quint32> sizes;
};

/// Variables of the application that a table points to, as C names or expressions.
struct VariableArray
{
    std::vector<QString> names;
    std::vector<quint32> sizes; ///< of a string type
    std::vector<quint32> keys;  ///< of the subindices (`subKey`)
};

/// The tables of variables that are no numbers.
enum class TextTable : quint8
{
    VisibleString,
    Utf8String,
    OctetString,
    Domain
};

/// A string default that start-up copies to its variable.
struct StringDefault
{
    QString text;
    QByteArray bytes;
};

/// What the caller of `collectDictionaryTables` decides.
struct DictionaryOptions
{
    bool compactDescription = false; ///< equal subindices at the end of an object share a row
    bool serverMode = false;         ///< the SDO server beside J1939 (CAM11/CAM21): no start-up, no PDO tables
};

/// The object dictionary of a project as the generated sources hold it: read from the store once and computed whole,
/// ready to print.
struct DictionaryTables
{
    DictionaryOptions options;
    /// Functions carry the line, see `LineSettings::severalLines`; those of a server, if line 1 has objects or
    /// MiscSettings `generateML` is "true".
    bool multiLine = false;
    /// The lines that are devices, ascending; line 0 if there is none.
    std::vector<quint8> lineList;
    bool canFd = false;
    bool limitCheck = false;          ///< description rows have limits
    bool stringDefaults = false;      ///< GeneralSettings `generate_string_defaults`
    bool initStaticVariables = false; ///< arrays of managed variables have an initialiser
    QString memorySpecifier;          ///< of these arrays
    bool bitwiseMapping = false;      ///< mapping lengths in bits

    /// All lines with objects, ascending.
    std::vector<DictionaryLine> lines;

    /// Keys of the objects that SRDOs carry, whose data the SRDO tables hold.
    QSet<quint32> staticSrdoObjects;

    ValueArrays managed;
    ConstantPool constants;
    TextArray visibleStrings; ///< constants; octet strings too
    TextArray utf8Strings;
    std::array<VariableArray, valueTypeCount> pointers;
    std::array<VariableArray, 4> textVariables; ///< by TextTable

    // Positions by subKey; a subindex without one is not in the map.
    Positions variableIndexMap; ///< in the array of managed or application variables of its type
    Positions defaultIndexMap;  ///< in the constants, as the limits
    Positions lowerLimitIndexMap;
    Positions upperLimitIndexMap;
    /// First description row of each object, by objectKey.
    Positions descriptionStartMap;

    // String variables with a default, by subKey: place and size in the table of string defaults.
    QMap<quint32, quint32> stringOffsetMap;
    QMap<quint32, quint32> stringSizeMap;
    QMap<quint32, StringDefault> stringDefaultMap;

    std::vector<DescriptionRow> description;
    std::vector<AssignRow> assign;
    quint32 assignCount = 0;      ///< CO_OD_ASSIGN_CNT
    quint32 descriptionCount = 0; ///< CO_OBJ_DESC_CNT; more than the rows if lines share objects

    bool pdoRouting = false; ///< some line routes PDOs (object 0x1F2C)
    std::size_t mapRows = 0; ///< rows that every mapping table is padded to

    /// Not empty if the tables are too large for the 16 bits of their positions.
    QString error;

    /// Null for a line without objects.
    const DictionaryLine *line(quint8 number) const;
    /// Null where the line has no such subindex.
    const StoreRecords::SubEntry *sub(quint8 line, quint16 index, quint8 subindex) const;
    /// Position of a subindex's default value in the constants of its type; 0 if there is none.
    quint16 defaultPosition(quint8 line, quint16 index, quint8 subindex) const
    {
        return defaultIndexMap.value(subKey(line, index, subindex));
    }
    /// What a line's names have behind them: a letter in a project of several lines, else nothing.
    QString lineSuffix(quint8 line) const;
};

/// Reads the dictionary of all lines.
DictionaryTables collectDictionaryTables(ObjectDataBase &store, const DictionaryOptions &options);
