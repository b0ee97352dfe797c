#include "generate/j1939/pgntables.h"

#include "generate/base/abstractgenerator.h"
#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/base/runcontext.h"
#include "generate/model/linemessages.h"
#include "generate/model/linesettings.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "store/settings.h"
#include "texttools/numbertext.h"

#include <QDebug>
#include <QSet>
#include <QStringBuilder>

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;
using CANopen::Implementation;

namespace {

/// The arrays in the order of the file.
struct ArrayKind
{
    QLatin1StringView name;
    QLatin1StringView cType;
    bool isSigned;
    quint32 maxBits;
};

constexpr std::array arrayKinds{
    ArrayKind{"mv_u8"_L1, "UNSIGNED8"_L1, false, 8},    ArrayKind{"mv_i8"_L1, "INTEGER8"_L1, true, 8},
    ArrayKind{"mv_u16"_L1, "UNSIGNED16"_L1, false, 16}, ArrayKind{"mv_i16"_L1, "INTEGER16"_L1, true, 16},
    ArrayKind{"mv_u32"_L1, "UNSIGNED32"_L1, false, 32}, ArrayKind{"mv_i32"_L1, "INTEGER32"_L1, true, 32},
    ArrayKind{"mv_u64"_L1, "UNSIGNED64"_L1, false, 64},
};

/// Index of the array that holds managed values of the type; nothing for types without one.
std::optional<size_t> arrayOf(quint32 dataType)
{
    const QString low = COHelper::getDefaultLimits(dataType).low;
    if (low.isEmpty())
        return {};
    const bool isSigned = low.startsWith(u'-');
    const quint32 bits = COHelper::getDataLengthBits(dataType);
    const auto kind = std::ranges::find_if(
        arrayKinds, [&](const ArrayKind &row) { return row.isSigned == isSigned && bits <= row.maxBits; });
    if (kind == arrayKinds.end())
        return {};
    return static_cast<size_t>(kind - arrayKinds.begin());
}

/// The C constant of a value; its base is told by its prefix, and a text that is no number counts as 0.
QString constantOf(const QString &text, const ArrayKind &kind)
{
    if (kind.isSigned) {
        constexpr int automaticBase = 0;
        const quint32 shift = 64 - kind.maxBits;
        const auto bits = static_cast<quint64>(text.trimmed().toLongLong(nullptr, automaticBase)) << shift;
        return QString::number(static_cast<qint64>(bits) >> shift);
    }
    const quint64 value = NumberText::byPrefix<quint64>(text).value_or(0) & (~quint64{0} >> (64 - kind.maxBits));
    return kind.maxBits == 64 ? AbstractGenerator::formatLargeValue(CAN::Unsigned64, value, 0) : Code::dec(value);
}

/// The fields of the NAME from its first bit on. The reserved bit has no setting.
struct NameFieldKind
{
    quint32 spn;
    QLatin1StringView name;
    const char *setting;
    quint32 bits;
    quint32 dataType;
};

constexpr std::array nameFieldKinds{
    NameFieldKind{2837, "Identity Number"_L1, "identitynumber", 21, CAN::Unsigned32},
    NameFieldKind{2838, "Manufacturer Code"_L1, "manufacturercode", 11, CAN::Unsigned16},
    NameFieldKind{2840, "ECU Instance"_L1, "ecuinstance", 3, CAN::Unsigned8},
    NameFieldKind{2839, "Function Instance"_L1, "functioninstance", 5, CAN::Unsigned8},
    NameFieldKind{2841, "Function"_L1, "function", 8, CAN::Unsigned8},
    NameFieldKind{2845, "reserved"_L1, "", 1, CAN::Unsigned8},
    NameFieldKind{2842, "Vehicle System"_L1, "vehiclesystem", 7, CAN::Unsigned8},
    NameFieldKind{2843, "Vehicle System Instance"_L1, "vehicleinstance", 4, CAN::Unsigned8},
    NameFieldKind{2846, "Industry Group"_L1, "industrygroup", 3, CAN::Unsigned8},
    NameFieldKind{2844, "Addr Claiming Supported"_L1, "addresscapable", 1, CAN::Unsigned8},
};
constexpr quint32 reservedBit = 2845;

/// Types whose place in the message is told by more than their width.
struct TypeWord
{
    quint32 dataType;
    QLatin1StringView word;
};

constexpr std::array typeWords{
    TypeWord{CAN::StringAsterisk, "STRING_ASTERIKS"_L1},
    TypeWord{CAN::StringNull, "STRING_NULL"_L1},
    TypeWord{CAN::OctetString, "NON_NUMERIC"_L1},
    TypeWord{CAN::Domain, "NON_NUMERIC"_L1},
};

QString typeWord(quint32 dataType)
{
    const auto row = std::ranges::find(typeWords, dataType, &TypeWord::dataType);
    return row == typeWords.end() ? COHelper::index2DataTypeShortString(dataType).toUpper() : QString(row->word);
}

constexpr std::array trailerFormats{
    "J1939_ATF_SAE_NONE"_L1,
    "J1939_ATF_MANU_CYBERSEC_32"_L1,
    "J1939_ATF_MANU_CYBERSEC_64"_L1,
    "J1939_ATF_MANU_FUNC_SAFETY_32"_L1,
    "J1939_ATF_MANU_FUNC_SAFETY_64"_L1,
    "J1939_ATF_MANU_FUNC_CYB_SAFE_32"_L1,
};

constexpr std::array assuranceTypes{
    "J1939_ADT_MANU_FUNC_CYB_SAFE"_L1,
    "J1939_ADT_MANU_FUNC_SAFETY"_L1,
    "J1939_ADT_MANU_CYBERSEC"_L1,
};

QLatin1StringView trailerFormat(const StoreRecords::PGN &pgn)
{
    return pgn.FD_TrailerFormat < trailerFormats.size() ? trailerFormats.at(pgn.FD_TrailerFormat) : "INVALID_VALUE"_L1;
}

/// A message without a trailer has no assurance data whatever is stored as their type.
QLatin1StringView assuranceType(const StoreRecords::PGN &pgn)
{
    const bool has = pgn.FD_TrailerFormat != 0 && pgn.FD_AssuranceType < assuranceTypes.size();
    return has ? assuranceTypes.at(pgn.FD_AssuranceType) : "J1939_ADT_NONE"_L1;
}

class Collector
{
public:
    Collector(ObjectDataBase &store, const Dialect &dialect, PgnTables &tables)
        : store_(store)
        , settings_(store, Settings::Table::J1939)
        , dialect_(dialect)
        , tables_(tables)
    {
    }

    void collectLine(quint8 number, LineProtocols protocols);
    void takeArrays();

private:
    QList<PgnTables::Message> messagesOf(const QList<LineMessage> &messages);
    PgnTables::Message messageOf(const LineMessage &message);
    void addAddressClaim();
    QString comment(quint32 message, quint32 signal) const;
    QString addManaged(quint32 dataType, const QString &value, const QString &comment);
    QString pointerTo(const StoreRecords::SPN &signal, const QString &comment);
    void partCanIdsFromPgns();
    PgnTables::Line &line() { return tables_.lines.last(); }

    ObjectDataBase &store_;
    Settings settings_;
    const Dialect &dialect_;
    PgnTables &tables_;
    std::array<QList<PgnTables::ManagedArray::Element>, arrayKinds.size()> managed_;
};

QString Collector::comment(quint32 message, quint32 signal) const
{
    const QString key = Code::dec(message).view() % u':' % Code::dec(signal).view();
    return tables_.multiLine ? Code::dec(tables_.lines.last().number).view() % u'-' % key : key;
}

/// The pointer to the new element, or "NULL" for a type that cannot be managed.
QString Collector::addManaged(quint32 dataType, const QString &value, const QString &comment)
{
    const auto index = arrayOf(dataType);
    if (!index)
        return u"NULL"_s;
    QList<PgnTables::ManagedArray::Element> &elements = managed_.at(*index);
    const ArrayKind &kind = arrayKinds.at(*index);
    elements.append({.value = constantOf(value, kind), .comment = comment});
    return u'&' % kind.name % u'[' % QString::number(elements.size() - 1) % u']';
}

QString Collector::pointerTo(const StoreRecords::SPN &signal, const QString &comment)
{
    if (signal.implementation == Implementation::ManagedVariable ||
        signal.implementation == Implementation::ManagedConst)
        return addManaged(signal.datatype, signal.defaultvalue, comment);
    QString variable = LineMessages::variable(signal);
    if (variable.isEmpty())
        return u"NULL"_s;
    tables_.usesApplicationVariables = true;
    // A name with a parenthesis is an expression that yields the pointer.
    if (variable.contains(u'('))
        return variable;
    return u'&' % variable % (SignalType::isArray(signal.datatype) ? "[0]"_L1 : ""_L1);
}

PgnTables::Message Collector::messageOf(const LineMessage &message)
{
    const StoreRecords::PGN &head = message.head;
    const bool isTransmit = message.isTransmitted();
    PgnTables::Message result{.number = head.number,
                              .name = Code::commentText(head.name),
                              .isCanId = message.isCanId,
                              .isTransmit = isTransmit,
                              .priority = head.priority,
                              .cycleMs = head.cycletime_ms,
                              .inhibitMs = head.inhibittime_ms,
                              .trailerFormat = trailerFormat(head),
                              .assuranceType = assuranceType(head),
                              .assuranceSize = head.FD_AssuranceDataSize};
    result.mapping = line().prefix % (isTransmit ? "tx"_L1 : "rx"_L1) % "_mapping_"_L1 % Code::dec(head.number).view();
    result.items.reserve(message.items.size());
    for (const StoreRecords::SPN &signal : message.items) {
        const QString place = comment(head.number, signal.spnnumber);
        result.items.append({.number = signal.spnnumber,
                             .bitPosition = signal.bitposition,
                             .bits = LineMessages::bits(signal),
                             .type = typeWord(signal.datatype),
                             .isNumeric = !COHelper::isTextType(signal.datatype),
                             .pointer = pointerTo(signal, place),
                             .comment = place});
    }
    return result;
}

QList<PgnTables::Message> Collector::messagesOf(const QList<LineMessage> &messages)
{
    QList<PgnTables::Message> result;
    result.reserve(messages.size());
    for (const LineMessage &message : messages)
        result.append(messageOf(message));
    return result;
}

void Collector::addAddressClaim()
{
    constexpr quint8 priority = 6;
    constexpr quint16 inhibitMs = 250;
    PgnTables::Message &claim = line().addressClaim;
    claim = {.number = J1939::addressClaim,
             .name = u"Address Claiming"_s,
             .isTransmit = true,
             .priority = priority,
             .inhibitMs = inhibitMs,
             .mapping = u"%1tx_mapping_%2"_s.arg(line().prefix, Code::dec(J1939::addressClaim))};
    quint32 position = 0;
    for (const NameFieldKind &field : nameFieldKinds) {
        const quint32 first = std::exchange(position, position + field.bits);
        if (field.spn == reservedBit && !dialect_.has(Point::ReservedNameField))
            continue;
        const QString value = settings_.text(QString::fromLatin1(field.setting), line().number);
        const QString place = comment(claim.number, field.spn);
        const QString pointer = addManaged(field.dataType, value, place);
        claim.items.append({.number = field.spn,
                            .bitPosition = first,
                            .bits = field.bits,
                            .type = typeWord(field.dataType),
                            .pointer = pointer,
                            .comment = place});
        const size_t index = arrayOf(field.dataType).value();
        line().nameFields.append({.array = arrayKinds.at(index).name,
                                  .position = managed_.at(index).size() - 1,
                                  .value = managed_.at(index).last().value});
    }
    qDebug() << "add Address Claiming PGN returns:" << true;
    qDebug() << "add Address Claiming last SPN returns:" << true;
}

/// A CAN-ID may have the number of a group of its line; its tables then need another name.
void Collector::partCanIdsFromPgns()
{
    QSet<QString> taken{line().addressClaim.mapping};
    for (const QList<PgnTables::Message> *messages : {&line().receivedPgns, &line().transmittedPgns}) {
        for (const PgnTables::Message &message : *messages)
            taken.insert(message.mapping);
    }
    for (QList<PgnTables::Message> *messages : {&line().receivedCanIds, &line().transmittedCanIds}) {
        for (PgnTables::Message &message : *messages) {
            if (taken.contains(message.mapping))
                message.mapping += u"_canid"_s;
        }
    }
}

void Collector::collectLine(quint8 number, LineProtocols protocols)
{
    tables_.lines.append({.number = number, .hasJ1939 = protocols.j1939, .hasRawCan = protocols.rawCan});
    if (tables_.multiLine) {
        line().prefix = u"l%1_"_s.arg(number);
        line().suffix = u"_l%1"_s.arg(number);
    }
    if (protocols.j1939) {
        const auto groups =
            settings_.isOn(u"safetysupport"_s, number) ? LineMessages::Groups::Ordinary : LineMessages::Groups::All;
        const QList<LineMessage> messages = LineMessages::parameterGroups(store_, number);
        line().receivedPgns = messagesOf(LineMessages::ofStack(messages, StoreRecords::receive, groups));
        line().transmittedPgns = messagesOf(LineMessages::ofStack(messages, StoreRecords::transmit, groups));
        addAddressClaim();
        line().sourceAddress = static_cast<quint8>(settings_.number(u"startaddress"_s, number));
    }
    if (protocols.rawCan) {
        const QList<LineMessage> messages = LineMessages::canIds(store_, number);
        line().receivedCanIds = messagesOf(LineMessages::ofStack(messages, StoreRecords::receive));
        line().transmittedCanIds = messagesOf(LineMessages::ofStack(messages, StoreRecords::transmit));
        partCanIdsFromPgns();
    }
}

void Collector::takeArrays()
{
    for (size_t i = 0; i < arrayKinds.size(); ++i) {
        const ArrayKind &kind = arrayKinds.at(i);
        if (managed_.at(i).isEmpty())
            continue;
        tables_.arrays.append({.name = kind.name,
                               .cType = kind.cType,
                               .cast = kind.maxBits == 64 ? QString() : u"(%1)"_s.arg(kind.cType),
                               .elements = managed_.at(i)});
    }
}

} // namespace

PgnTables PgnTables::collect(ObjectDataBase &store, const Dialect &dialect, bool multiLine, Scope scope)
{
    const Settings j1939(store, Settings::Table::J1939);
    PgnTables tables{.multiLine = multiLine,
                     .dynamic = j1939.onAnyLine(u"dynsupport"_s),
                     .safety = j1939.onAnyLine(u"safetysupport"_s),
                     .initialised = Settings(store).isOn(u"init_static_variables"_s)};
    Collector collector(store, dialect, tables);
    for (const quint8 line : LineSettings::stackLines(store)) {
        LineProtocols protocols = RunContext::protocolsOf(store, line);
        protocols.rawCan = protocols.rawCan && scope == Scope::AllMessages;
        if (protocols.j1939 || protocols.rawCan)
            collector.collectLine(line, protocols);
    }
    collector.takeArrays();
    return tables;
}
