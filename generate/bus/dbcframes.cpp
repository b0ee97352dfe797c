#include "generate/bus/dbcframes.h"

#include "candb/candb.h"
#include "generate/base/codewriter.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "texttools/asciitext.h"

#include <QSet>
#include <QStringBuilder>

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Words that a reader takes for the beginning of a statement or for a type.
bool isKeyword(const QString &text)
{
    static const QSet<QString> words{
        u"VERSION"_s,
        u"NS_"_s,
        u"NS_DESC_"_s,
        u"BS_"_s,
        u"BU_"_s,
        u"BO_"_s,
        u"SG_"_s,
        u"EV_"_s,
        u"CM_"_s,
        u"BA_"_s,
        u"BA_DEF_"_s,
        u"BA_DEF_DEF_"_s,
        u"BA_DEF_REL_"_s,
        u"BA_REL_"_s,
        u"BA_DEF_DEF_REL_"_s,
        u"BA_DEF_SGTYPE_"_s,
        u"BA_SGTYPE_"_s,
        u"BO_TX_BU_"_s,
        u"BU_BO_REL_"_s,
        u"BU_EV_REL_"_s,
        u"BU_SG_REL_"_s,
        u"CAT_"_s,
        u"CAT_DEF_"_s,
        u"ENVVAR_DATA_"_s,
        u"EV_DATA_"_s,
        u"FILTER"_s,
        u"SGTYPE_"_s,
        u"SGTYPE_VAL_"_s,
        u"SG_MUL_VAL_"_s,
        u"SIGTYPE_VALTYPE_"_s,
        u"SIG_GROUP_"_s,
        u"SIG_TYPE_REF_"_s,
        u"SIG_VALTYPE_"_s,
        u"VAL_"_s,
        u"VAL_TABLE_"_s,
        u"INT"_s,
        u"HEX"_s,
        u"FLOAT"_s,
        u"STRING"_s,
        u"ENUM"_s,
    };
    return words.contains(text);
}

/// The text as an identifier: letters, digits and underscores of it, or the word with the number behind it where there
/// are none.
QString identifier(QString text, QLatin1StringView word, quint32 number)
{
    text.removeIf([](QChar c) { return !AsciiText::isWordCharacter(c); });
    if (text.isEmpty())
        return word + Code::dec(number).view();
    return text.front().isDigit() || isKeyword(text) ? u'_' + text : text;
}

/// The name, with the first number behind it that makes it free. `lastOf` tells where the highest number that was
/// behind a taken name is kept.
template <typename LastOf, typename IsTaken>
QString freeName(const QString &name, LastOf lastOf, IsTaken isTaken)
{
    QString candidate = name;
    while (isTaken(candidate)) {
        int &last = lastOf(name);
        last = std::max(last + 1, 2);
        candidate = name % u'_' % QString::number(last);
    }
    return candidate;
}

/// A comment on one line, since many readers of DBC files take them line by line.
QString comment(QString text)
{
    for (QChar &c : text) {
        if (c < u' ')
            c = u' ';
    }
    return text.trimmed();
}

bool isSigned(quint32 dataType)
{
    return COHelper::getDefaultLimits(dataType).low.startsWith(u'-') || dataType == CAN::Real32 ||
           dataType == CAN::Real64;
}

CANdb::ValueType valueType(quint32 dataType)
{
    return dataType == CAN::Real32   ? CANdb::ValueType::Float
           : dataType == CAN::Real64 ? CANdb::ValueType::Double
                                     : CANdb::ValueType::Integer;
}

bool isCharacterType(quint32 dataType)
{
    return COHelper::isTextType(dataType) && dataType != CAN::OctetString && dataType != CAN::Domain;
}

// What stands for a name, with a number behind it.
constexpr auto messageWord = "MSG_"_L1;
constexpr auto signalWord = "SIG_"_L1;

struct StackSignal
{
    QLatin1StringView name;
    quint32 startBit;
    quint32 bits;
};

// Layouts of SAE J1939-81 (NAME), SAE J1939-21 (acknowledgement) and SAE J1939-73 (lamps).
constexpr StackSignal nameSignals[] = {
    {"Identity Number"_L1, 0, 21}, {"Manufacturer Code"_L1, 21, 11},
    {"ECU Instance"_L1, 32, 3},    {"Function Instance"_L1, 35, 5},
    {"Function"_L1, 40, 8},        {"reserved"_L1, 48, 1},
    {"Vehicle System"_L1, 49, 7},  {"Vehicle System Instance"_L1, 56, 4},
    {"Industry Group"_L1, 60, 3},  {"Addr Claiming Supported"_L1, 63, 1},
};
constexpr StackSignal acknowledgeSignals[] = {
    {"Control_Byte"_L1, 0, 8},
    {"Group_Function"_L1, 8, 8},
    {"reserved"_L1, 16, 16},
    {"Address"_L1, 32, 8},
};
constexpr StackSignal lampSignals[] = {
    {"Protect_Lamp"_L1, 0, 2},
    {"AmberWarningLamp"_L1, 2, 2},
    {"RedStopLamp"_L1, 4, 2},
    {"MILLamp"_L1, 6, 2},
};

struct StackMessage
{
    quint32 pgn;
    QLatin1StringView name;
    QLatin1StringView comment;
    std::span<const StackSignal> signalList;
    bool isDm1;
};

constexpr StackMessage stackMessages[] = {
    {J1939::addressClaim, "Address Claiming"_L1, "This PGN is used to send the Address Claiming."_L1, nameSignals,
     false},
    {59392, "Acknowledge_Message"_L1, ""_L1, acknowledgeSignals, false},
    {65226, "Diagnostic_Message_1"_L1, ""_L1, lampSignals, true},
};
constexpr quint8 stackPriority = 6;
constexpr quint32 classicalLength = 8;

} // namespace

quint32 DbcFrames::idOfPGN(quint32 pgn, quint8 priority, quint8 sourceAddress)
{
    const bool isPdu1 = (pgn & 0xFF00) < 0xF000;
    const quint32 group = isPdu1 ? (pgn & 0x3FF00) | 0xFE : pgn & 0x3FFFF;
    return CANdb::extendedFrame | (quint32{priority} & 7) << 26 | group << 8 | sourceAddress;
}

void DbcFrames::addCanIds(ObjectDataBase &store, quint8 line)
{
    for (const LineMessage &message : LineMessages::ofDocuments(LineMessages::canIds(store, line), line)) {
        const quint32 id = message.isExtended() ? message.canId() | CANdb::extendedFrame : message.canId();
        add({.id = id, .name = identifier(message.head.name, messageWord, message.canId())}, message);
    }
}

void DbcFrames::addPGNs(ObjectDataBase &store, quint8 line, quint8 sourceAddress)
{
    for (const LineMessage &pgn : LineMessages::ofDocuments(LineMessages::parameterGroups(store, line), line)) {
        add({.id = idOfPGN(pgn.head.number, pgn.head.priority, sourceAddress),
             .name = identifier(pgn.head.name, messageWord, pgn.head.number),
             .isJ1939 = true},
            pgn);
    }
}

void DbcFrames::addStackMessages(quint8 sourceAddress, bool withDm1)
{
    for (const StackMessage &own : stackMessages) {
        if (own.isDm1 && !withDm1)
            continue;
        LineMessage message{.head = {.desc = own.comment, .number = own.pgn}};
        for (const StackSignal &signal : own.signalList) {
            StoreRecords::SPN &spn = message.items.emplaceBack();
            spn.name = signal.name;
            spn.implementation = 0;
            spn.bitposition = static_cast<quint16>(signal.startBit);
            spn.bitsize = static_cast<quint16>(signal.bits);
        }
        add({.id = idOfPGN(own.pgn, stackPriority, sourceAddress),
             .name = identifier(own.name, messageWord, own.pgn),
             .length = classicalLength,
             .isJ1939 = true},
            message);
    }
}

/// The frame that a message goes into.
qsizetype DbcFrames::placeFor(DbcFrame frame)
{
    const auto place = frameById_.constFind(frame.id);
    if (place != frameById_.constEnd() && form_ == Form::OneFrame)
        return *place;
    const auto isTaken = [&](const QString &name) {
        const auto owner = frameNames_.constFind(name);
        return owner != frameNames_.constEnd() && *owner != frame.id;
    };
    frame.name = freeName(
        frame.name, [this](const QString &name) -> int & { return frameNumbers_[name]; }, isTaken);
    frameNames_.insert(frame.name, frame.id);
    frameById_.insert(frame.id, frames_.size());
    frames_.append(std::move(frame));
    return frames_.size() - 1;
}

void DbcFrames::add(DbcFrame frame, const LineMessage &message)
{
    const qsizetype place = placeFor(std::move(frame));
    DbcFrame &target = frames_[place];
    if (target.comment.isEmpty())
        target.comment = comment(message.head.desc);
    if (target.cycleTimeMs == 0)
        target.cycleTimeMs = message.head.cycletime_ms;
    for (const StoreRecords::SPN &signal : message.items) {
        DbcSignal added{.name = identifier(signal.name, signalWord, signal.spnnumber),
                        .comment = comment(signal.desc),
                        .startBit = signal.bitposition,
                        .bits = LineMessages::bits(signal),
                        .isSigned = isSigned(signal.datatype),
                        .valueType = valueType(signal.datatype),
                        .isText = isCharacterType(signal.datatype),
                        .isApplicationVariable = signal.implementation == CANopen::Implementation::Variable,
                        .variable = signal.varname};
        if (added.bits > 0)
            addSignal(place, std::move(added), message);
    }
}

bool DbcFrames::overlaps(qsizetype place, const DbcSignal &signal) const
{
    const auto behind = signalEnds_.lowerBound({place, signal.startBit});
    if (behind != signalEnds_.end() && behind.key() < std::pair(place, signal.startBit + signal.bits))
        return true;
    if (behind == signalEnds_.begin())
        return false;
    const auto before = std::prev(behind);
    return before.key().first == place && before.value() > signal.startBit;
}

void DbcFrames::addSignal(qsizetype place, DbcSignal signal, const LineMessage &message)
{
    DbcFrame &target = frames_[place];
    const auto sameName = signalPlaces_.constFind({place, signal.name});
    if (sameName != signalPlaces_.constEnd()) {
        const DbcSignal &other = target.signalList.at(*sameName);
        if (other.startBit == signal.startBit && other.bits == signal.bits && other.isSigned == signal.isSigned &&
            other.valueType == signal.valueType)
            return;
    }
    if (form_ == Form::OneFrame && overlaps(place, signal)) {
        const QLatin1StringView direction = message.head.direction == 0 ? ""_L1
                                            : message.isTransmitted()   ? ", sent"_L1
                                                                        : ", received"_L1;
        target.leftOut.append(signal.name % " ("_L1 % Code::dec(signal.startBit).view() % u'|' %
                              Code::dec(signal.bits).view() % direction % u')');
        return;
    }
    signal.name = freeName(
        signal.name,
        [&](const QString &name) -> int & {
            return signalNumbers_[{place, name}];
        },
        [&](const QString &name) {
            return signalPlaces_.contains({place, name});
        });
    signalPlaces_.insert({place, signal.name}, target.signalList.size());
    if (form_ == Form::OneFrame)
        signalEnds_.insert({place, signal.startBit}, signal.startBit + signal.bits);
    target.length = std::max(target.length, (signal.startBit + signal.bits + 7) / 8);
    target.signalList.append(std::move(signal));
}

QString DbcFrame::fullComment() const
{
    if (leftOut.isEmpty())
        return comment;
    const QString told = u"Left out, since other signals have their bits: "_s + leftOut.join(", "_L1);
    return comment.isEmpty() ? told : u"%1 - %2"_s.arg(comment, told);
}
