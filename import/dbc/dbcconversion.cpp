#include "import/dbc/dbcconversion.h"

#include "import/dbc/dbcsignaltype.h"
#include "import/importreport.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"

#include <QMap>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Numbers that no SPN of the standard has (SAE J1939-71).
constexpr quint32 firstOwnSpn = 520192;
constexpr quint8 nullAddress = 0xfe;

QString hex(quint32 number)
{
    return u"0x%1"_s.arg(number, 0, 16);
}

/// Fields of an identifier of 29 bits (SAE J1939-21).
struct Identifier
{
    explicit Identifier(quint32 id)
        : priority(static_cast<quint8>(id >> 26 & 7))
        , source(static_cast<quint8>(id))
        , pgn(id >> 8 & 0x3ffff)
    {
        constexpr quint32 firstPdu2 = 0xf000;
        if ((pgn & 0xff00) >= firstPdu2)
            return;
        destination = static_cast<quint8>(pgn);
        pgn &= 0x3ff00;
    }

    quint8 priority;
    quint8 source;
    quint32 pgn;
    std::optional<quint8> destination = {}; ///< of a PGN in format PDU1
};

bool namesReceiver(const CANdb::Message &frame)
{
    return std::ranges::any_of(frame.signalList, [](const CANdb::Signal &signal) {
        return std::ranges::any_of(signal.receivers, [](const QString &node) { return node != CANdb::noNode; });
    });
}

bool isReceivedBy(const CANdb::Message &frame, const QString &node)
{
    return std::ranges::any_of(frame.signalList,
                               [&node](const CANdb::Signal &signal) { return signal.receivers.contains(node); });
}

} // namespace

DbcConversion::DbcConversion(const CANdb::Database &database, Options options, ImportReport &report)
    : database_(database)
    , options_(std::move(options))
    , report_(report)
    , nextSpn_(firstOwnSpn)
{
    for (const CANdb::AttributeDefinition &definition : database_.definitions)
        definitions_.insert(definition.name, &definition);
    isOwn_ = isOwnForm();
}

/// The two forms that this program writes.
bool DbcConversion::isOwnForm() const
{
    if (definitions_.contains(u"norvane_bitsize"_s))
        return true;
    const CANdb::AttributeDefinition *sendType = definitions_.value(u"GenMsgSendType"_s);
    const bool namesNoNode = std::ranges::all_of(
        database_.messages, [](const CANdb::Message &frame) { return frame.sender == CANdb::noNode; });
    return sendType && definitions_.size() == 2 && database_.nodes.isEmpty() && namesNoNode &&
           sendType->words == QStringList{u"Cyclic"_s, u"NoMsgSendType"_s};
}

void DbcConversion::drop(int line, const QString &what)
{
    report_.drop(line, what);
}

void DbcConversion::note(int line, const QString &what)
{
    report_.note(line, what);
}

/// The value of an attribute, or its default.
QString DbcConversion::value(const CANdb::Attributes &attributes, const QString &name) const
{
    const auto found = std::ranges::find(attributes, name, &CANdb::Attribute::name);
    if (found != attributes.end())
        return found->value;
    const CANdb::AttributeDefinition *definition = definitions_.value(name);
    return definition ? definition->defaultValue.value_or(QString()) : QString();
}

/// The same of an enumeration, as its word; attributes have the place of it, defaults the word itself.
QString DbcConversion::word(const CANdb::Attributes &attributes, const QString &name) const
{
    const QString text = value(attributes, name);
    const CANdb::AttributeDefinition *definition = definitions_.value(name);
    bool isPlace = false;
    const int place = text.toInt(&isPlace);
    return isPlace && definition ? definition->words.value(place) : text;
}

QSet<quint32> DbcConversion::numbersOf(const CANdb::Database &database)
{
    QSet<quint32> numbers;
    for (const CANdb::Message &frame : database.messages)
        numbers += {frame.id, Identifier(frame.id).pgn};
    return numbers;
}

QList<DbcConversion::Message> DbcConversion::messages()
{
    QList<Message> list;
    for (const CANdb::Message &frame : database_.messages) {
        std::optional<Message> message = messageOf(frame);
        if (!message)
            continue;
        addSignals(*message, frame);
        list.append(*std::move(message));
    }
    if (others_ > 0)
        note(0, u"frames neither from %1 nor for it: %2"_s.arg(options_.node).arg(others_));
    if (const QString told = descriptions_.summary(); !told.isEmpty())
        note(0, told);
    return list;
}

std::optional<quint8> DbcConversion::sourceAddress() const
{
    const bool isKnown = (isOwn_ || !options_.node.isEmpty()) && sources_.size() == 1;
    return isKnown && *sources_.begin() < nullAddress ? std::optional(*sources_.begin()) : std::nullopt;
}

bool DbcConversion::isParameterGroup(const CANdb::Message &frame) const
{
    if ((frame.id & CANdb::extendedFrame) == 0 || !options_.j1939)
        return false;
    const bool isMarked =
        std::ranges::find(frame.attributes, u"VFrameFormat"_s, &CANdb::Attribute::name) != frame.attributes.end();
    if (isMarked || (definitions_.contains(u"VFrameFormat"_s) && options_.rawCan))
        return word(frame.attributes, u"VFrameFormat"_s) == "J1939PG"_L1;
    return !options_.rawCan || value(database_.attributes, u"ProtocolType"_s) == "J1939"_L1;
}

/// What the stack sends by itself stands in files of this program beside what the project sends.
bool DbcConversion::isOfOwnStack(const CANdb::Message &frame, quint32 pgn)
{
    static const QSet<QString> names{u"AddressClaiming"_s, u"Acknowledge_Message"_s, u"Diagnostic_Message_1"_s};
    constexpr quint32 dm1 = 65226;
    if (!isOwn_ || !names.contains(frame.name))
        return false;
    sources_.insert(Identifier(frame.id).source);
    hasOwnDm1_ |= pgn == dm1;
    return true;
}

/// Files of this program have first what is sent, then what is received, both ascending.
std::optional<DbcConversion::Direction> DbcConversion::directionOf(const CANdb::Message &frame, quint32 number,
                                                                   bool isPgn)
{
    if (isOwn_ && options_.node.isEmpty()) {
        areReceived_[isPgn] |= last_.contains(isPgn) && number <= last_.value(isPgn);
        last_.insert(isPgn, number);
        return areReceived_.value(isPgn) ? StoreRecords::receive : StoreRecords::transmit;
    }
    if (options_.node.isEmpty() || frame.sender == options_.node)
        return StoreRecords::transmit;
    if (isReceivedBy(frame, options_.node) || !namesReceiver(frame))
        return StoreRecords::receive;
    return std::nullopt;
}

std::optional<DbcConversion::Message> DbcConversion::messageOf(const CANdb::Message &frame)
{
    constexpr quint32 noFrame = 0xc0000000; // of the signals that belong to none
    if (frame.id == noFrame)
        return std::nullopt;
    const Identifier identifier(frame.id);
    const int line = frame.place.line;
    Message message{.isPgn = isParameterGroup(frame), .line = line};
    if (!message.isPgn && !options_.rawCan) {
        drop(line, u"frame %1 is no parameter group"_s.arg(frame.name));
        return std::nullopt;
    }
    message.head.number = message.isPgn ? identifier.pgn : frame.id;
    if (message.isPgn && isOfOwnStack(frame, identifier.pgn))
        return std::nullopt;
    if (message.isPgn && options_.handledPgns.contains(identifier.pgn)) {
        drop(line, u"frame %1: the stack handles PGN %2 by itself"_s.arg(frame.name).arg(identifier.pgn));
        return std::nullopt;
    }
    const std::optional<Direction> direction = directionOf(frame, message.head.number, message.isPgn);
    if (!direction) {
        ++others_;
        return std::nullopt;
    }
    message.head.direction = *direction;
    if (!takeKey(message, frame))
        return std::nullopt;
    const QString longName = value(frame.attributes, u"SystemMessageLongSymbol"_s);
    message.head.name = longName.isEmpty() ? frame.name : longName;
    message.head.desc = frame.comment;
    message.head.cycletime_ms = timeOf(frame, u"GenMsgCycleTime"_s);
    message.head.inhibittime_ms = timeOf(frame, u"GenMsgDelayTime"_s);
    if (!message.isPgn)
        return message;
    message.head.priority = identifier.priority;
    message.head.edp_dp_key = static_cast<quint8>(identifier.pgn >> 16);
    if (*direction == StoreRecords::transmit)
        sources_.insert(identifier.source);
    if (identifier.destination && *identifier.destination < nullAddress)
        note(line, u"frame %1: its destination %2 has no place"_s.arg(frame.name, hex(*identifier.destination)));
    return message;
}

/// A project has a message once in each direction.
bool DbcConversion::takeKey(Message &message, const CANdb::Message &frame)
{
    const auto keyOf = [&message] {
        return std::pair(quint64{message.head.number} << 8 | message.head.direction, message.isPgn);
    };
    const QString other = names_.value(keyOf());
    if (other.isEmpty()) {
        names_.insert(keyOf(), frame.name);
        return true;
    }
    drop(frame.place.line,
         message.isPgn ? u"frame %1 is the PGN %2 as %3 is"_s.arg(frame.name).arg(message.head.number).arg(other)
                       : u"frame %1 has the CAN-ID of %2"_s.arg(frame.name, other));
    return false;
}

quint16 DbcConversion::timeOf(const CANdb::Message &frame, const QString &attribute)
{
    constexpr double longest = 0xffff;
    const double time = std::max(0.0, value(frame.attributes, attribute).toDouble());
    if (time > longest)
        note(frame.place.line,
             u"frame %1: %2 ms are cut to %3"_s.arg(frame.name, DbcDescriptions::numberText(time)).arg(longest));
    return static_cast<quint16>(std::min(time, longest));
}

void DbcConversion::addSignals(Message &message, const CANdb::Message &frame)
{
    QMap<quint32, std::pair<quint32, QString>> taken; // ends and names, by the first bits
    const auto ownerOf = [&taken](quint32 first, quint32 bits) -> QString {
        auto next = taken.lowerBound(first);
        if (next != taken.end() && next.key() < first + bits)
            return next->second;
        if (next != taken.begin() && (--next)->first > first)
            return next->second;
        return {};
    };
    spnsOfMessage_.clear();
    for (const CANdb::Signal &signal : frame.signalList) {
        std::optional<StoreRecords::SPN> item = itemOf(frame, signal);
        if (!item)
            continue;
        const QString owner = ownerOf(item->bitposition, item->bitsize);
        if (!isOwn_ && !owner.isEmpty()) {
            drop(signal.place.line, u"signal %1 of %2: its bits are those of %3"_s.arg(signal.name, frame.name, owner));
            continue;
        }
        taken.insert(item->bitposition, {item->bitposition + item->bitsize, signal.name});
        item->desc = descriptions_.of(signal);
        nameItem(*item, message, signal);
        message.items.append(*item);
    }
    // Lists of signals follow the bits, in whatever order an editor has left them.
    if (!isOwn_)
        std::ranges::stable_sort(message.items, {}, &StoreRecords::SPN::bitposition);
    quint32 end = 0;
    for (qsizetype i = 0; i < message.items.size(); ++i) {
        StoreRecords::SPN &item = message.items[i];
        item.pos = static_cast<quint32>(i) + 1;
        end = std::max(end, quint32{item.bitposition} + item.bitsize);
        if (!message.isPgn)
            item.spnnumber = item.pos;
    }
    if (constexpr quint32 byteBits = 8; !isOwn_ && end > 0 && (end + byteBits - 1) / byteBits < frame.length)
        note(frame.place.line,
             u"frame %1 has %2 bytes, its signals end in byte %3, and so does the message"_s.arg(frame.name)
                 .arg(frame.length)
                 .arg((end + byteBits - 1) / byteBits));
    message.head.mappingcount = static_cast<quint16>(message.items.size());
}

std::optional<StoreRecords::SPN> DbcConversion::itemOf(const CANdb::Message &frame, const CANdb::Signal &signal)
{
    constexpr quint32 mostBits = 0xffff;
    const std::optional<quint32> first = DbcSignalType::firstBit(signal);
    if (!first) {
        drop(signal.place.line,
             u"signal %1 of %2: %3 bits in Motorola byte order"_s.arg(signal.name, frame.name).arg(signal.size));
        return std::nullopt;
    }
    if (*first > mostBits) {
        drop(signal.place.line, u"signal %1 of %2 begins at bit %3"_s.arg(signal.name, frame.name).arg(*first));
        return std::nullopt;
    }
    StoreRecords::SPN item{.direction = 0, .bitposition = static_cast<quint16>(*first)};
    if (!setType(item, frame, signal))
        return std::nullopt;
    if (const QString start = value(signal.attributes, u"GenSigStartValue"_s); !start.isEmpty())
        item.defaultvalue = DbcDescriptions::numberText(start.toDouble());
    return item;
}

bool DbcConversion::setType(StoreRecords::SPN &item, const CANdb::Message &frame, const CANdb::Signal &signal)
{
    const bool isText = word(signal.attributes, u"SigType"_s) == "ASCII"_L1;
    const std::optional<quint16> type = DbcSignalType::of(signal, isText);
    const QString name = u"signal %1 of %2"_s.arg(signal.name, frame.name);
    if (!type) {
        drop(signal.place.line, u"%1: no data type has %2 bits"_s.arg(name).arg(signal.size));
        return false;
    }
    if (!DbcSignalType::keepsSign(signal))
        note(signal.place.line,
             u"%1: no data type has %2 bits and a sign, which is left to the application"_s.arg(name).arg(signal.size));
    item.datatype = *type;
    item.bitsize = static_cast<quint16>(signal.size);
    return true;
}

/// Names a signal, and where its value is kept: a data element is always in a variable of the application.
void DbcConversion::nameItem(StoreRecords::SPN &item, const Message &message, const CANdb::Signal &signal)
{
    const QString longName = value(signal.attributes, u"SystemSignalLongSymbol"_s);
    item.name = longName.isEmpty() ? signal.name : longName;
    const bool isVariable = word(signal.attributes, u"norvane_implementation_type"_s) == "Variable"_L1;
    item.varname = value(signal.attributes, u"norvane_variable_name"_s);
    const auto implementation =
        isVariable || !message.isPgn ? CANopen::Implementation::Variable : CANopen::Implementation::ManagedVariable;
    item.implementation = CANopen::codeOf(implementation);
    if (!message.isPgn && item.varname.isEmpty()) {
        item.varname = signal.name;
        for (int number = 2; options_.takenVariables.contains(item.varname); ++number)
            item.varname = number == 2 ? message.head.name + u'_' + signal.name
                                       : u"%1_%2_%3"_s.arg(message.head.name, signal.name).arg(number);
    }
    options_.takenVariables.insert(item.varname);
    if (!message.isPgn)
        return;
    item.spnnumber = value(signal.attributes, u"SPN"_s).toUInt();
    if (item.spnnumber != 0 && !spnsOfMessage_.contains(item.spnnumber)) {
        spnsOfMessage_.insert(item.spnnumber);
        return;
    }
    while (options_.takenSpns.contains(nextSpn_))
        ++nextSpn_;
    item.spnnumber = nextSpn_++;
}
