#include "candb/dbcreader.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using CANdb::AttributeDefinition;

namespace {

struct TypeWord
{
    QLatin1StringView word;
    AttributeDefinition::Type type;
};

constexpr TypeWord typeWords[] = {
    {"INT"_L1, AttributeDefinition::Type::Integer},      {"HEX"_L1, AttributeDefinition::Type::Hex},
    {"FLOAT"_L1, AttributeDefinition::Type::Float},      {"STRING"_L1, AttributeDefinition::Type::String},
    {"ENUM"_L1, AttributeDefinition::Type::Enumeration},
};

} // namespace

std::optional<CANdb::Database> DbcReader::read(const QString &text)
{
    *this = {};
    text_ = text;
    advance();
    while (ok() && token_.kind != Kind::End) {
        statementStart_ = token_.start;
        if (token_.kind != Kind::Word)
            fail(u"Keyword expected"_s);
        else
            (this->*statements().value(token_.text, &DbcReader::keepStatement))();
    }
    if (!ok())
        return std::nullopt;
    return std::move(database_);
}

const QHash<QString, DbcReader::Statement> &DbcReader::statements()
{
    static const QHash<QString, Statement> table{
        {u"VERSION"_s, &DbcReader::readVersion},
        {u"NS_"_s, &DbcReader::readNewSymbols},
        {u"BS_"_s, &DbcReader::readBitTiming},
        {u"BU_"_s, &DbcReader::readNodes},
        {u"VAL_TABLE_"_s, &DbcReader::readValueTable},
        {u"BO_"_s, &DbcReader::readMessage},
        {u"CM_"_s, &DbcReader::readComment},
        {u"BA_DEF_"_s, &DbcReader::readDefinition},
        {u"BA_DEF_DEF_"_s, &DbcReader::readDefault},
        {u"BA_"_s, &DbcReader::readAttribute},
        {u"VAL_"_s, &DbcReader::readValues},
        {u"SIG_VALTYPE_"_s, &DbcReader::readValueType},
        {u"SG_MUL_VAL_"_s, &DbcReader::readMultiplexing},
    };
    return table;
}

/// Keeps a statement from its beginning, wherever in it the reading stands, to its semicolon.
void DbcReader::keepStatement()
{
    while (token_.kind != Kind::End && !(token_.kind == Kind::Symbol && token_.text == u';'))
        advance();
    const qsizetype end = token_.end;
    expectSymbol(u';', "statement"_L1);
    if (ok())
        database_.otherStatements.append(text_.sliced(statementStart_, end - statementStart_));
}

void DbcReader::readVersion()
{
    advance();
    database_.version = expect(Kind::Text, "Version text expected"_L1);
}

void DbcReader::readNewSymbols()
{
    advance();
    expectSymbol(u':', "new symbols"_L1);
    // The symbols are keywords themselves; these two follow the section and are never in it.
    while (token_.kind == Kind::Word && !isWord("BS_"_L1) && !isWord("BU_"_L1)) {
        database_.newSymbols.append(token_.text);
        advance();
    }
}

void DbcReader::readBitTiming()
{
    advance();
    expectSymbol(u':', "bit timing"_L1);
    const qsizetype start = token_.start;
    qsizetype end = start;
    for (; token_.kind == Kind::Number || token_.kind == Kind::Symbol; advance())
        end = token_.end;
    database_.bitTiming = text_.sliced(start, end - start);
}

void DbcReader::readNodes()
{
    advance();
    expectSymbol(u':', "nodes"_L1);
    while (token_.kind == Kind::Word && !statements().contains(token_.text) && !token_.text.endsWith(u'_')) {
        nodeByName_.insert(token_.text, database_.nodes.size());
        database_.nodes.append(CANdb::Node{.name = token_.text});
        advance();
    }
}

void DbcReader::readValueTable()
{
    advance();
    CANdb::ValueTable table;
    table.name = expect(Kind::Word, "Value table name missing or invalid"_L1);
    table.values = expectValueNames("value table"_L1);
    database_.valueTables.append(table);
}

void DbcReader::readMessage()
{
    advance();
    CANdb::Message message;
    message.place.line = token_.line;
    message.id = expectUnsigned("Message id missing or invalid"_L1);
    message.name = expect(Kind::Word, "Message name missing or invalid"_L1);
    expectSymbol(u':', "message"_L1);
    message.length = expectUnsigned("Message length expected"_L1);
    message.sender = expect(Kind::Word, "Message sender expected"_L1);
    messagesById_[message.id].append(database_.messages.size());
    database_.messages.append(message);
    while (ok() && isWord("SG_"_L1))
        readSignal();
}

void DbcReader::readSignal()
{
    advance();
    CANdb::Signal signal;
    signal.place.line = token_.line;
    signal.name = expect(Kind::Word, "Signal name missing or invalid"_L1);
    if (token_.kind == Kind::Word)
        signal.multiplexing = expect(Kind::Word, {});
    expectSymbol(u':', "signal"_L1);
    signal.startBit = expectUnsigned("Signal bit position expected"_L1);
    expectSymbol(u'|', "signal"_L1);
    signal.size = expectUnsigned("Signal size expected"_L1);
    expectSymbol(u'@', "signal"_L1);
    signal.isLittleEndian = expectUnsigned("Signal byte order expected"_L1) == 1;
    signal.isSigned = takeSymbol(u'-');
    if (!signal.isSigned)
        expectSymbol(u'+', "signal sign"_L1);
    expectSymbol(u'(', "signal factor"_L1);
    signal.factor = expectNumber("Signal factor expected"_L1);
    expectSymbol(u',', "signal factor"_L1);
    signal.offset = expectNumber("Signal offset expected"_L1);
    expectSymbol(u')', "signal offset"_L1);
    expectSymbol(u'[', "signal range"_L1);
    signal.minimum = expectNumber("Signal minimum expected"_L1);
    expectSymbol(u'|', "signal range"_L1);
    signal.maximum = expectNumber("Signal maximum expected"_L1);
    expectSymbol(u']', "signal range"_L1);
    const int line = token_.line;
    signal.unit = expect(Kind::Text, "Signal unit expected"_L1);
    signal.receivers.clear();
    while (token_.kind == Kind::Word && token_.line == line) {
        signal.receivers.append(token_.text);
        advance();
        takeSymbol(u',');
    }
    CANdb::Message &message = database_.messages.last();
    signalsByName_[{message.id, signal.name}].append({database_.messages.size() - 1, message.signalList.size()});
    message.signalList.append(signal);
}

/// A device that sends and receives an identifier has two messages of it, and what is said of them stands in their
/// order. A comment is that of the first without one. Of attributes, which a message may lack, this program writes the
/// type of sending last.
CANdb::Message *DbcReader::message(quint32 id, const std::optional<QString> &attribute)
{
    const QList<qsizetype> places = messagesById_.value(id);
    if (places.size() < 2)
        return places.isEmpty() ? nullptr : &database_.messages[places.first()];
    if (attribute) {
        qsizetype &ended = attributesEnded_[id];
        CANdb::Message *found = &database_.messages[places.at(std::min(ended, places.size() - 1))];
        ended += *attribute == "GenMsgSendType"_L1 ? 1 : 0;
        return found;
    }
    const auto isFree = [this](qsizetype place) { return database_.messages.at(place).comment.isEmpty(); };
    const auto place = std::ranges::find_if(places, isFree);
    return &database_.messages[place == places.end() ? places.last() : *place];
}

/// Of equal names the first is the one that others refer to; for a comment, the first without one.
CANdb::Signal *DbcReader::expectSignal(bool forComment)
{
    const quint32 id = expectUnsigned("Message id expected"_L1);
    const QString name = expect(Kind::Word, "Signal name expected"_L1);
    const auto places = signalsByName_.constFind({id, name});
    if (places == signalsByName_.constEnd())
        return nullptr;
    const auto signalAt = [this](const std::pair<qsizetype, qsizetype> &place) {
        return &database_.messages[place.first].signalList[place.second];
    };
    const auto isFree = [&](const auto &place) { return signalAt(place)->comment.isEmpty(); };
    const auto free = std::ranges::find_if(*places, isFree);
    return signalAt(forComment && free != places->end() ? *free : places->first());
}

DbcReader::Target DbcReader::readTarget(const std::optional<QString> &attribute)
{
    if (token_.kind != Kind::Word)
        return {&database_.comment, &database_.attributes};
    const QString owner = expect(Kind::Word, {});
    if (owner == "BO_"_L1) {
        CANdb::Message *found = message(expectUnsigned("Message id expected"_L1), attribute);
        return found ? Target{&found->comment, &found->attributes} : Target{};
    }
    if (owner == "SG_"_L1) {
        CANdb::Signal *found = expectSignal(!attribute);
        return found ? Target{&found->comment, &found->attributes} : Target{};
    }
    const auto place =
        owner == "BU_"_L1 ? nodeByName_.constFind(expect(Kind::Word, "Node name expected"_L1)) : nodeByName_.constEnd();
    if (place == nodeByName_.constEnd())
        return {};
    return {&database_.nodes[*place].comment, &database_.nodes[*place].attributes};
}

void DbcReader::readComment()
{
    advance();
    const Target target = readTarget();
    if (!target.comment) {
        keepStatement();
        return;
    }
    *target.comment = expect(Kind::Text, "Comment text expected"_L1);
    expectSymbol(u';', "comment"_L1);
}

void DbcReader::readDefinition()
{
    advance();
    AttributeDefinition definition;
    if (token_.kind == Kind::Word) {
        const QString owner = expect(Kind::Word, {});
        if (owner == "EV_"_L1) {
            keepStatement();
            return;
        }
        definition.owner = owner == "BO_"_L1   ? CANdb::Owner::Message
                           : owner == "SG_"_L1 ? CANdb::Owner::Signal
                                               : CANdb::Owner::Node;
    }
    definition.name = expect(Kind::Text, "Attribute name expected"_L1);
    const QString type = expect(Kind::Word, "Attribute type expected"_L1);
    const auto row = std::ranges::find(typeWords, type, &TypeWord::word);
    if (row == std::end(typeWords)) {
        fail(u"Unknown attribute type"_s);
        return;
    }
    definition.type = row->type;
    if (definition.type == AttributeDefinition::Type::Enumeration) {
        do
            definition.words.append(expect(Kind::Text, "Word of an enumeration expected"_L1));
        while (ok() && takeSymbol(u','));
    } else if (token_.kind == Kind::Number) {
        definition.minimum = expectNumber("Attribute minimum expected"_L1);
        definition.maximum = expectNumber("Attribute maximum expected"_L1);
    }
    expectSymbol(u';', "attribute definition"_L1);
    database_.definitions.append(definition);
}

void DbcReader::readDefault()
{
    advance();
    const QString name = expect(Kind::Text, "Attribute name expected"_L1);
    const Token value = token_;
    if (value.kind != Kind::Text && value.kind != Kind::Number)
        fail(u"Attribute default expected"_s);
    advance();
    expectSymbol(u';', "attribute default"_L1);
    bool known = false;
    for (AttributeDefinition &definition : database_.definitions) {
        if (definition.name != name)
            continue;
        definition.defaultValue = value.text;
        known = true;
    }
    if (!known && ok())
        database_.otherStatements.append(text_.sliced(statementStart_, value.end - statementStart_) + u';');
}

QString DbcReader::valueOf(const QString &attribute, const Token &value) const
{
    if (value.kind == Kind::Number)
        return value.text;
    const auto definition = std::ranges::find(database_.definitions, attribute, &AttributeDefinition::name);
    const bool isWord =
        definition != database_.definitions.end() && definition->type == AttributeDefinition::Type::Enumeration;
    const qsizetype place = isWord ? definition->words.indexOf(value.text) : -1;
    return place < 0 ? value.text : QString::number(place);
}

void DbcReader::readAttribute()
{
    advance();
    const QString name = expect(Kind::Text, "Attribute name expected"_L1);
    const Target target = readTarget(name);
    if (!target.attributes) {
        keepStatement();
        return;
    }
    const Token value = token_;
    if (value.kind != Kind::Text && value.kind != Kind::Number)
        fail(u"Attribute value expected"_s);
    advance();
    expectSymbol(u';', "attribute value"_L1);
    target.attributes->append({name, valueOf(name, value)});
}

void DbcReader::readValues()
{
    advance();
    CANdb::Signal *signal = token_.kind == Kind::Number ? expectSignal() : nullptr;
    if (signal)
        signal->values = expectValueNames("values"_L1);
    else
        keepStatement();
}

void DbcReader::readValueType()
{
    advance();
    CANdb::Signal *signal = expectSignal();
    if (!signal) {
        keepStatement();
        return;
    }
    takeSymbol(u':');
    signal->valueType = static_cast<CANdb::ValueType>(expectUnsigned("Signal value type expected"_L1));
    expectSymbol(u';', "signal value type"_L1);
}

void DbcReader::readMultiplexing()
{
    advance();
    CANdb::Signal *signal = expectSignal();
    if (!signal) {
        keepStatement();
        return;
    }
    signal->multiplexer = expect(Kind::Word, "Multiplexer expected"_L1);
    do {
        const quint32 first = expectUnsigned("Multiplexer value expected"_L1);
        // The end of a range is read together with the dash before it.
        const double last = -expectNumber("Multiplexer range expected"_L1);
        signal->multiplexRanges.append(u"%1-%2"_s.arg(first).arg(last, 0, 'f', 0));
    } while (ok() && takeSymbol(u','));
    expectSymbol(u';', "multiplexer ranges"_L1);
}
