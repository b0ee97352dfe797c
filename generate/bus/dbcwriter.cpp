#include "generate/bus/dbcwriter.h"

#include "generate/base/codewriter.h"

#include <QLocale>
#include <QStringBuilder>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;
using CANdb::AttributeDefinition;
using Code::dec;

namespace {

/// Whole numbers without an exponent, which readers of integers do not expect.
QString number(double value)
{
    constexpr double exact = 9007199254740992.0; // 2^53
    if (std::abs(value) < exact && std::trunc(value) == value)
        return QString::number(static_cast<qint64>(value));
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString quoted(const QString &text)
{
    return u'"' % dbcText(text) % u'"';
}

/// The values with their names, each behind a blank.
QString valueNames(const CANdb::ValueNames &values)
{
    QString text;
    for (const CANdb::ValueName &value : values)
        text += u" %1 %2"_s.arg(number(value.value), quoted(value.name));
    return text;
}

/// Prints one section after the other.
class Writer
{
public:
    Writer(Utf8Sink &sink, const CANdb::Database &database)
        : out_(sink)
        , database_(database)
    {
    }

    void write()
    {
        writeHead();
        for (const CANdb::Message &message : database_.messages)
            writeMessage(message);
        for (const QString &statement : database_.otherStatements)
            out_(u"${statement}", {{"statement", statement}});
        writeComments();
        for (const AttributeDefinition &definition : database_.definitions)
            writeDefinition(definition);
        for (const AttributeDefinition &definition : database_.definitions)
            writeDefault(definition);
        writeAttributes();
        for (const CANdb::Message &message : database_.messages)
            writeValues(message);
    }

private:
    void writeHead()
    {
        out_(u"VERSION ${version}", {{"version", quoted(database_.version)}});
        out_(u"");
        out_(u"NS_ :");
        for (const QString &symbol : database_.newSymbols)
            out_(u"\t${symbol}", {{"symbol", symbol}});
        out_(u"");
        out_(u"BS_:${timing}", {{"timing", database_.bitTiming.isEmpty() ? QString() : u' ' + database_.bitTiming}});
        out_(u"");
        QString nodes;
        for (const CANdb::Node &node : database_.nodes)
            nodes += u' ' + node.name;
        out_(u"BU_:${nodes}", {{"nodes", nodes}});
        out_(u"");
        for (const CANdb::ValueTable &table : database_.valueTables)
            out_(u"VAL_TABLE_ ${name}${values} ;", {{"name", table.name}, {"values", valueNames(table.values)}});
    }

    void writeMessage(const CANdb::Message &message)
    {
        out_(u"BO_ ${id} ${name}: ${length} ${sender}", {{"id", dec(message.id)},
                                                         {"name", message.name},
                                                         {"length", dec(message.length)},
                                                         {"sender", message.sender}});
        for (const CANdb::Signal &signal : message.signalList)
            writeSignal(signal);
        out_(u"");
    }

    void writeSignal(const CANdb::Signal &signal)
    {
        out_(u" SG_ ${name}${multiplexing} : ${start}|${size}@${order}${sign} (${factor},${offset}) "
             u"[${minimum}|${maximum}] \"${unit}\" ${receivers}",
             {{"name", signal.name},
              {"multiplexing", signal.multiplexing.isEmpty() ? QString() : u' ' + signal.multiplexing},
              {"start", dec(signal.startBit)},
              {"size", dec(signal.size)},
              {"order", signal.isLittleEndian ? u"1"_s : u"0"_s},
              {"sign", signal.isSigned ? u"-"_s : u"+"_s},
              {"factor", number(signal.factor)},
              {"offset", number(signal.offset)},
              {"minimum", number(signal.minimum)},
              {"maximum", number(signal.maximum)},
              {"unit", dbcText(signal.unit)},
              {"receivers", signal.receivers.join(u',')}});
    }

    void writeComment(const QString &about, const QString &comment)
    {
        if (!comment.isEmpty())
            out_(u"CM_ ${about}${text};", {{"about", about}, {"text", quoted(comment)}});
    }

    /// Calls for all that can bear a comment or attributes, with the words that address it.
    template <typename Function>
    void forAll(Function function)
    {
        for (const CANdb::Node &node : database_.nodes)
            function("BU_ "_L1 % node.name % u' ', CANdb::Owner::Node, node);
        for (const CANdb::Message &message : database_.messages) {
            const Digits id = dec(message.id);
            function("BO_ "_L1 % id.view() % u' ', CANdb::Owner::Message, message);
            for (const CANdb::Signal &signal : message.signalList)
                function("SG_ "_L1 % id.view() % u' ' % signal.name % u' ', CANdb::Owner::Signal, signal);
        }
    }

    void writeComments()
    {
        writeComment({}, database_.comment);
        forAll([this](const QString &about, CANdb::Owner, const auto &item) { writeComment(about, item.comment); });
    }

    void writeDefinition(const AttributeDefinition &definition)
    {
        constexpr std::array owners{""_L1, "BU_ "_L1, "BO_ "_L1, "SG_ "_L1};
        out_(u"BA_DEF_ ${owner}${name} ${type};", {{"owner", owners.at(static_cast<size_t>(definition.owner))},
                                                   {"name", quoted(definition.name)},
                                                   {"type", typeOf(definition)}});
    }

    static QString typeOf(const AttributeDefinition &definition)
    {
        constexpr std::array words{"INT"_L1, "HEX"_L1, "FLOAT"_L1, "STRING"_L1, "ENUM"_L1};
        const QString word = words.at(static_cast<size_t>(definition.type));
        // Some readers want a blank between the word and the semicolon.
        if (definition.type == AttributeDefinition::Type::String)
            return word + u' ';
        if (definition.type != AttributeDefinition::Type::Enumeration)
            return u"%1 %2 %3"_s.arg(word, number(definition.minimum), number(definition.maximum));
        QStringList names;
        for (const QString &name : definition.words)
            names.append(quoted(name));
        return u"%1 %2"_s.arg(word, names.join(u','));
    }

    static bool isText(const AttributeDefinition &definition)
    {
        return definition.type == AttributeDefinition::Type::String ||
               definition.type == AttributeDefinition::Type::Enumeration;
    }

    void writeDefault(const AttributeDefinition &definition)
    {
        if (!definition.defaultValue)
            return;
        const QString value = *definition.defaultValue;
        out_(u"BA_DEF_DEF_ ${name} ${value};",
             {{"name", quoted(definition.name)}, {"value", isText(definition) ? quoted(value) : value}});
    }

    void writeAttributes()
    {
        writeAttributesOf({}, CANdb::Owner::Database, database_.attributes);
        forAll([this](const QString &about, CANdb::Owner owner, const auto &item) {
            writeAttributesOf(about, owner, item.attributes);
        });
    }

    void writeAttributesOf(const QString &about, CANdb::Owner owner, const CANdb::Attributes &attributes)
    {
        for (const CANdb::Attribute &attribute : attributes) {
            const bool isText = isTextAttribute(attribute.name, owner) || !dbcNumber(attribute.value);
            out_(u"BA_ \"${name}\" ${about}${value};", {{"name", dbcText(attribute.name)},
                                                        {"about", about},
                                                        {"value", isText ? quoted(attribute.value) : attribute.value}});
        }
    }

    bool isTextAttribute(const QString &name, CANdb::Owner owner) const
    {
        return std::ranges::any_of(database_.definitions, [&](const AttributeDefinition &definition) {
            return definition.name == name && definition.owner == owner &&
                   definition.type == AttributeDefinition::Type::String;
        });
    }

    void writeValues(const CANdb::Message &message)
    {
        const QString id = dec(message.id);
        for (const CANdb::Signal &signal : message.signalList) {
            if (!signal.values.isEmpty())
                out_(u"VAL_ ${id} ${signal}${values} ;",
                     {{"id", id}, {"signal", signal.name}, {"values", valueNames(signal.values)}});
            if (signal.valueType != CANdb::ValueType::Integer)
                out_(u"SIG_VALTYPE_ ${id} ${signal} : ${type};",
                     {{"id", id},
                      {"signal", signal.name},
                      {"type", QString::number(static_cast<int>(signal.valueType))}});
            if (!signal.multiplexer.isEmpty())
                out_(u"SG_MUL_VAL_ ${id} ${signal} ${multiplexer} ${ranges};",
                     {{"id", id},
                      {"signal", signal.name},
                      {"multiplexer", signal.multiplexer},
                      {"ranges", signal.multiplexRanges.join(u", "_s)}});
        }
    }

    CodeWriter out_;
    const CANdb::Database &database_;
};

} // namespace

QString dbcText(QString text)
{
    if (text.endsWith(u'\\'))
        text.append(u' ');
    return text.contains(u'"') ? text.replace(u'"', u"\\\""_s) : text;
}

std::optional<double> dbcNumber(const QString &value)
{
    // Nearly all are a few digits, for which the reading of any number takes four times as long.
    constexpr qsizetype fewDigits = 9;
    const bool isPlain = !value.isEmpty() && value.size() <= fewDigits &&
                         std::ranges::all_of(value, [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (isPlain)
        return value.toUInt();
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

void writeDbc(Utf8Sink &sink, const CANdb::Database &database)
{
    Writer(sink, database).write();
}
