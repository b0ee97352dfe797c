#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// A CAN database in memory, as a DBC file describes it: frames, their signals, and attributes of both.
namespace CANdb {

/// What an attribute or a comment belongs to.
enum class Owner
{
    Database,
    Node,
    Message,
    Signal
};

/// The frame identifier's mark of 29 bits.
inline constexpr quint32 extendedFrame = 0x80000000;
/// What stands for a node that the database does not name.
inline constexpr QLatin1StringView noNode{"Vector__XXX"};

/// Where something stands in its file. Two databases are equal wherever their parts stand.
struct FilePlace
{
    int line = 0; ///< from 1; 0 for none

    friend bool operator==(FilePlace, FilePlace) { return true; }
};

struct AttributeDefinition
{
    enum class Type
    {
        Integer,
        Hex,
        Float,
        String,
        Enumeration
    };

    QString name = {};
    Owner owner = Owner::Database;
    Type type = Type::String;
    double minimum = 0; ///< of the numbers
    double maximum = 0;
    QStringList words = {}; ///< of an enumeration
    std::optional<QString> defaultValue = {};

    friend bool operator==(const AttributeDefinition &, const AttributeDefinition &) = default;
};

/// Attribute values as text: numbers as such, enumerations by the place of the word.
struct Attribute
{
    QString name = {};
    QString value = {};

    friend bool operator==(const Attribute &, const Attribute &) = default;
};
using Attributes = QList<Attribute>;

/// The receivers of a signal that names none. All such signals share the list.
inline QStringList noReceivers()
{
    static const QStringList receivers{QString(noNode)};
    return receivers;
}

/// A raw value and its word.
struct ValueName
{
    double value = 0;
    QString name = {};

    friend bool operator==(const ValueName &, const ValueName &) = default;
};
using ValueNames = QList<ValueName>;

/// What the bits of a signal are, by the codes of SIG_VALTYPE_.
enum class ValueType
{
    Integer = 0,
    Float = 1,
    Double = 2
};

struct Signal
{
    QString name = {};
    QString multiplexing = {}; ///< "M", "m" and a number, or both ("m3M"); empty for a plain signal
    quint32 startBit = 0;
    quint32 size = 0; ///< bits
    bool isLittleEndian = true;
    bool isSigned = false;
    double factor = 1;
    double offset = 0;
    double minimum = 0;
    double maximum = 0;
    QString unit = {};
    QStringList receivers = noReceivers();
    QString comment = {};
    ValueNames values = {};
    ValueType valueType = ValueType::Integer;
    QString multiplexer = {};         ///< the signal that switches this one, where that is told with value ranges
    QStringList multiplexRanges = {}; ///< "3-5"
    Attributes attributes = {};
    FilePlace place = {};

    friend bool operator==(const Signal &, const Signal &) = default;
};

struct Message
{
    quint32 id = 0; ///< with `extendedFrame`
    QString name = {};
    quint32 length = 0; ///< bytes
    QString sender = QString(noNode);
    QList<Signal> signalList = {};
    QString comment = {};
    Attributes attributes = {};
    FilePlace place = {};

    friend bool operator==(const Message &, const Message &) = default;
};

struct Node
{
    QString name = {};
    QString comment = {};
    Attributes attributes = {};

    friend bool operator==(const Node &, const Node &) = default;
};

struct ValueTable
{
    QString name = {};
    ValueNames values = {};

    friend bool operator==(const ValueTable &, const ValueTable &) = default;
};

struct Database
{
    QString version = {};
    QStringList newSymbols = {};
    QString bitTiming = {};
    QList<Node> nodes = {};
    QList<ValueTable> valueTables = {};
    QList<Message> messages = {};
    QString comment = {};
    QList<AttributeDefinition> definitions = {};
    Attributes attributes = {};
    /// Statements about what is not modelled here (environment variables, signal groups, relations), as they stand.
    QStringList otherStatements = {};

    friend bool operator==(const Database &, const Database &) = default;
};

} // namespace CANdb
