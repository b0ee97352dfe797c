#include "generate/model/linemessages.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

#include <QHash>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

QList<LineMessage> LineMessages::parameterGroups(ObjectDataBase &store, quint8 line, quint8 direction, Groups groups)
{
    QHash<quint32, StoreRecords::PGN> heads;
    for (const StoreRecords::PGN &pgn : store.getAllPGNs(line)) {
        if (pgn.direction == direction)
            heads.insert(pgn.number, pgn);
    }
    QList<LineMessage> messages;
    for (const quint32 number : store.getPGNList(line, direction, groups == Groups::Ordinary)) {
        const auto head = heads.constFind(number);
        if (number == addressClaim || head == heads.constEnd())
            continue;
        LineMessage message{.head = *head};
        if (groups == Groups::Safety && !message.head.issafe)
            continue;
        for (const quint32 spn : store.getSPNList(line, number, direction)) {
            StoreRecords::SPN item;
            if (store.getSPN(line, number, direction, spn, item))
                message.items.append(item);
        }
        messages.append(message);
    }
    return messages;
}

QList<LineMessage> LineMessages::canIds(ObjectDataBase &store, quint8 line, quint8 direction)
{
    QHash<quint32, QList<StoreRecords::DataElement>> elements;
    for (const StoreRecords::DataElement &element : store.getAllDataElements(line)) {
        if (element.direction == direction)
            elements[element.pgnnumber].append(element);
    }
    QList<LineMessage> messages;
    for (const StoreRecords::CANID &canId : store.getAllCANIDs(line)) {
        if (canId.direction != direction)
            continue;
        LineMessage message{.isCanId = true, .items = elements.value(canId.id)};
        message.head.number = canId.id;
        message.head.direction = direction;
        message.head.name = canId.name;
        message.head.cycletime_ms = canId.cycletime_ms;
        message.head.inhibittime_ms = canId.inhibittime_ms;
        messages.append(message);
    }
    return messages;
}

quint32 LineMessages::bits(const StoreRecords::SPN &signal)
{
    const quint32 ofType = COHelper::getDataLengthBits(signal.datatype);
    return ofType == 0 ? signal.bitsize : ofType;
}

QString LineMessages::variable(const StoreRecords::SPN &signal)
{
    constexpr quint8 applicationVariable = 2;
    return signal.implementation == applicationVariable ? signal.varname.trimmed() : QString();
}

namespace {

struct CType
{
    quint32 maxBits;
    QLatin1StringView unsignedName;
    QLatin1StringView signedName;
};

constexpr std::array cTypes{
    CType{8, "UNSIGNED8"_L1, "INTEGER8"_L1},
    CType{16, "UNSIGNED16"_L1, "INTEGER16"_L1},
    CType{32, "UNSIGNED32"_L1, "INTEGER32"_L1},
    CType{64, "UNSIGNED64"_L1, "INTEGER64"_L1},
};

bool isText(quint32 dataType)
{
    return dataType == CAN::VisibleString || dataType == CAN::StringNull || dataType == CAN::StringAsterisk ||
           dataType == CAN::Utf8String;
}

} // namespace

QString SignalType::cType(quint32 dataType)
{
    if (dataType == CAN::Real32)
        return u"REAL32"_s;
    if (dataType == CAN::Real64)
        return u"REAL64"_s;
    if (isText(dataType))
        return u"char"_s;
    const quint32 bits = COHelper::getDataLengthBits(dataType);
    const auto type = std::ranges::find_if(cTypes, [bits](const CType &row) { return bits <= row.maxBits; });
    return COHelper::getDefaultLimits(dataType).low.startsWith(u'-') ? type->signedName : type->unsignedName;
}

bool SignalType::isArray(quint32 dataType)
{
    return COHelper::isTextType(dataType);
}
