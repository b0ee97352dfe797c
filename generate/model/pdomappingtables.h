#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

struct DictionaryLine;
struct DictionaryTables;

/// One mapped object of a PDO (CiA 301): 0xIIIISSLL.
struct PdoMapEntry
{
    QString pointer{};                 ///< C expression of the data's address
    std::optional<quint16> dataType{}; ///< of the mapped subindex; none if it does not exist
    quint32 value = 0;
    /// With PDO routing, for an RPDO: per line of the line list the number of the TPDO that sends the data on, or 0.
    std::vector<quint32> routing{};

    quint8 bits() const { return static_cast<quint8>(value); }
    /// True for an object that exists, but has no address.
    bool hasNoData() const { return dataType && pointer == QLatin1StringView("NULL"); }
};

/// A PDO that exists, and how it is mapped.
struct PdoMapping
{
    quint16 index = 0;  ///< of the communication object
    quint16 number = 0; ///< of the PDO, from 1
    bool fixed = false; ///< cannot be mapped anew at run time; a dynamic mapping has no entries here
    quint8 count = 0;   ///< as the project has it, markers of multiplexed PDOs included
    std::vector<PdoMapEntry> entries{};
    /// The number in the name of its table (`mapTableName`). A dynamic mapping has none, nor has a fixed one without
    /// entries unless it shares a table.
    std::optional<quint16> table{};
};

/// The PDOs of a line, ascending.
struct LinePdoTables
{
    std::vector<PdoMapping> tpdos;
    std::vector<PdoMapping> rpdos;
    /// Positions in `rpdos` of the mappings that are different from all before, in the order of their table numbers.
    /// Empty with PDO routing, where each RPDO has a table of its own.
    std::vector<std::size_t> uniqueRpdoTables;
};

enum class PdoDirection : quint8
{
    Transmit,
    Receive
};

/// Name of a mapping table: "mapTableTPDO", the line's suffix, and the number.
QString mapTableName(PdoDirection direction, const QString &lineSuffix, quint16 number);

/// What to tell of entries of fixed mappings whose object has no data that a PDO could carry, such as a constant text.
QStringList mappingWarnings(const DictionaryTables &tables);

/// Fills the PDO part of the tables. Everything else must have been collected.
void collectPdoTables(DictionaryTables &tables);
