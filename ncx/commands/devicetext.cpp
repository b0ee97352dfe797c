#include "ncx/commands/devicetext.h"

#include "ncx/commands/framedrawing.h"
#include "ncx/commands/texttable.h"
#include "nodedict/cohelper.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int indent = 2;
constexpr int widthOfFrames = 80; ///< where nothing is to be cut

QString hex(quint32 number, int digits = 4)
{
    return u"0x%1"_s.arg(number, digits, 16, QLatin1Char('0'));
}

QString count(qsizetype number, const QString &one)
{
    return u"%1 %2%3"_s.arg(QString::number(number), one, number == 1 ? QString() : u"s"_s);
}

QString timeText(quint64 milliseconds)
{
    return milliseconds == 0 ? QString() : u"%1 ms"_s.arg(milliseconds);
}

QString inhibitText(quint64 tenths)
{
    return tenths == 0 ? QString() : u"%1 ms"_s.arg(static_cast<double>(tenths) / 10);
}

QString pdoName(const Pdo &pdo)
{
    return u"%1 %2"_s.arg(pdo.isTransmit ? u"TPDO"_s : u"RPDO"_s).arg(pdo.number);
}

QString mappedNames(const Pdo &pdo)
{
    QStringList names;
    for (const FrameField &field : pdo.frame.fields)
        names.append(field.name.isEmpty() ? u"-"_s : field.name);
    return names.join(", "_L1);
}

QString mappingText(const StoreRecords::SubIndexData &data)
{
    return data.pdomapping == PDOMapping::Forbidden ? QString() : data.pdomapping.getCSVStringValue();
}

QString limitsText(const StoreRecords::SubIndexData &data)
{
    return data.limitineds ? u"%1..%2"_s.arg(data.lowlimit, data.uplimit) : QString();
}

QString typeText(const StoreRecords::SubIndexData &data)
{
    const QString type = COHelper::index2DataTypeString(data.datatype);
    return data.size > 0 ? u"%1[%2]"_s.arg(type).arg(data.size) : type;
}

QStringList pdoTable(DeviceLine &line, int width)
{
    TextTable table({u"PDO"_s, u"COB-ID"_s, u"bits"_s, u"sent"_s, u"event"_s, u"inhibit"_s, u"maps"_s});
    for (const Pdo &pdo : line.pdos())
        table.add({pdoName(pdo), pdo.isEnabled ? pdo.cobId : u"off"_s, QString::number(pdo.frame.bits),
                   pdo.transmission, timeText(pdo.eventTimer), inhibitText(pdo.inhibitTime), mappedNames(pdo)});
    return table.isEmpty() ? QStringList() : table.lines(width, indent);
}

QStringList pgnTable(DeviceLine &line, int width)
{
    TextTable table({u"PGN"_s, u""_s, u"direction"_s, u"bits"_s, u"cycle"_s, u"SPNs"_s, u"name"_s});
    for (const CheckedPGN &pgn : line.pgns())
        table.add({QString::number(pgn.data.number), hex(pgn.data.number), directionText(pgn.data.direction),
                   QString::number(pgn.bits), timeText(pgn.data.cycletime_ms), QString::number(pgn.spns.size()),
                   pgn.data.name});
    return table.isEmpty() ? QStringList() : table.lines(width, indent);
}

QStringList canIdTable(DeviceLine &line, int width)
{
    TextTable table({u"CAN-ID"_s, u"direction"_s, u"bits"_s, u"cycle"_s, u"signals"_s, u"name"_s});
    for (const CheckedCanId &canId : line.canIds())
        table.add({canIdText(canId.data.id), directionText(canId.data.direction), QString::number(canId.bits),
                   timeText(canId.data.cycletime_ms), QString::number(canId.signalList.size()), canId.data.name});
    return table.isEmpty() ? QStringList() : table.lines(width, indent);
}

QStringList signalTable(const std::vector<CheckedSignal> &parts, bool areSpns, int width)
{
    TextTable table({areSpns ? u"SPN"_s : u"#"_s, u"name"_s, u"type"_s, u"default"_s, u"stored"_s, u"description"_s});
    for (const CheckedSignal &part : parts)
        table.add({QString::number(areSpns ? part.data.spnnumber : static_cast<quint32>(part.position)), part.data.name,
                   COHelper::index2DataTypeString(part.data.datatype), part.data.defaultvalue, storageText(part.data),
                   part.data.desc});
    return table.lines(width, indent);
}

int frameWidth(int width)
{
    return width > 0 ? width : widthOfFrames;
}

} // namespace

QStringList DeviceText::glance(DeviceLine &line, int width)
{
    QString head = u"line %1"_s.arg(line.number());
    if (!line.name().isEmpty())
        head += u" \"%1\""_s.arg(line.name());
    head += u": "_s + (line.typeName().isEmpty() ? u"no type"_s : line.typeName());
    QStringList counts;
    if (line.protocols().canOpen) {
        if (!line.nodeId().isEmpty())
            head += u", node-id %1"_s.arg(line.nodeId());
        qsizetype subindices = 0;
        for (const CheckedObject &object : line.objects())
            subindices += static_cast<qsizetype>(object.subs.size());
        counts.append(count(static_cast<qsizetype>(line.objects().size()), u"object"_s));
        counts.append(u"%1 %2"_s.arg(QString::number(subindices), subindices == 1 ? u"subindex"_s : u"subindices"_s));
        counts.append(count(static_cast<qsizetype>(line.pdos().size()), u"PDO"_s));
    }
    if (line.protocols().j1939)
        counts.append(count(static_cast<qsizetype>(line.pgns().size()), u"PGN"_s));
    if (line.protocols().rawCan)
        counts.append(count(static_cast<qsizetype>(line.canIds().size()), u"CAN-ID"_s));
    QStringList lines{head};
    if (!counts.isEmpty())
        lines.append(QString(indent, u' ') + counts.join(", "_L1));
    if (line.protocols().canOpen)
        lines += pdoTable(line, width);
    if (line.protocols().j1939)
        lines += pgnTable(line, width);
    if (line.protocols().rawCan)
        lines += canIdTable(line, width);
    return lines;
}

QStringList DeviceText::dictionary(DeviceLine &line, int width)
{
    TextTable table({u"index"_s, u"name"_s, u"type"_s, u"access"_s, u"default"_s, u"PDO"_s, u"stored"_s});
    for (const CheckedObject &object : line.objects()) {
        if (object.isComplex())
            table.add({hex(object.index), object.data.name, COHelper::objectCode2String(object.data.objecttype)});
        else if (object.subs.empty())
            table.add({hex(object.index), object.data.name, COHelper::index2DataTypeString(object.data.datatype)});
        for (const CheckedSubindex &sub : object.subs) {
            const StoreRecords::SubIndexData &data = *sub.data;
            table.add({object.isComplex() ? u"    :%1"_s.arg(sub.subindex) : hex(object.index),
                       object.isComplex() ? data.name : object.data.name, typeText(data), data.accesstype,
                       data.defaultvalue, mappingText(data), storageText(data)});
        }
    }
    return table.isEmpty() ? QStringList() : table.lines(width, indent);
}

QStringList DeviceText::object(DeviceLine &line, const CheckedObject &object, std::optional<quint8> subindex, int width)
{
    QStringList lines{u"object %1 \"%2\": %3, line %4"_s.arg(hex(object.index), object.data.name,
                                                             COHelper::objectCode2String(object.data.objecttype),
                                                             QString::number(line.number()))};
    if (!object.data.description.isEmpty())
        lines.append(QString(indent, u' ') + object.data.description);
    TextTable table({u"sub"_s, u"name"_s, u"type"_s, u"access"_s, u"default"_s, u"limits"_s, u"PDO"_s, u"stored"_s,
                     u"description"_s});
    for (const CheckedSubindex &sub : object.subs) {
        const StoreRecords::SubIndexData &data = *sub.data;
        if (!subindex || *subindex == sub.subindex)
            table.add({QString::number(sub.subindex), data.name, typeText(data), data.accesstype, data.defaultvalue,
                       limitsText(data), mappingText(data), storageText(data), data.description});
    }
    if (!table.isEmpty())
        lines += table.lines(width, indent);
    const Pdo *pdo = line.pdoOf(object.index);
    if (pdo && !subindex) {
        lines.append(u"%1: COB-ID %2%3, %4 bits"_s.arg(pdoName(*pdo), pdo->cobId, pdo->isEnabled ? u""_s : u" (off)"_s,
                                                       QString::number(pdo->frame.bits)));
        lines += drawing(pdo->frame, frameWidth(width));
    }
    return lines;
}

QStringList DeviceText::pgn(const CheckedPGN &pgn, int width)
{
    QString head = u"PGN %1 (%2) \"%3\": %4, %5 bits, priority %6"_s.arg(
        QString::number(pgn.data.number), hex(pgn.data.number), pgn.data.name, directionText(pgn.data.direction),
        QString::number(pgn.bits), QString::number(pgn.data.priority));
    if (pgn.data.cycletime_ms > 0)
        head += u", every %1 ms"_s.arg(pgn.data.cycletime_ms);
    QStringList lines{head};
    if (!pgn.data.desc.isEmpty())
        lines.append(QString(indent, u' ') + pgn.data.desc);
    return lines + signalTable(pgn.spns, true, width) + drawing(frameOf(pgn), frameWidth(width));
}

QStringList DeviceText::canId(const CheckedCanId &canId, int width)
{
    QString head = u"CAN-ID %1 \"%2\": %3, %4 bits"_s.arg(
        canIdText(canId.data.id), canId.data.name, directionText(canId.data.direction), QString::number(canId.bits));
    if (canId.data.cycletime_ms > 0)
        head += u", every %1 ms"_s.arg(canId.data.cycletime_ms);
    QStringList lines{head};
    if (!canId.data.desc.isEmpty())
        lines.append(QString(indent, u' ') + canId.data.desc);
    return lines + signalTable(canId.signalList, false, width) + drawing(frameOf(canId), frameWidth(width));
}
