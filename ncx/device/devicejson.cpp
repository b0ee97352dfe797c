#include "ncx/device/devicejson.h"

#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {

QString hex(quint32 number, int digits = 4)
{
    return u"0x%1"_s.arg(number, digits, 16, QLatin1Char('0'));
}

/// Puts a text in unless it is empty.
void add(QJsonObject &json, const QString &key, const QString &text)
{
    if (!text.isEmpty())
        json.insert(key, text);
}

/// A word that thousands of parts have. A value of JSON is a container of its own, which such parts can share.
template <class Word>
QJsonValue shared(QHash<Word, QJsonValue> &known, const Word &word, const auto &textOf)
{
    const auto place = known.constFind(word);
    return place != known.constEnd() ? *place : *known.insert(word, QJsonValue(textOf()));
}

QJsonValue implementationText(quint8 implementation)
{
    static const QJsonValue words[] = {u"managedVariable"_s, u"managedConst"_s, u"variable"_s, u"virtual"_s};
    return implementation < std::size(words) ? words[implementation] : QJsonValue(QString::number(implementation));
}

QJsonValue dataTypeText(quint32 type)
{
    static QHash<quint32, QJsonValue> known;
    return shared(known, type, [type] { return COHelper::index2DataTypeString(type); });
}

QJsonValue wordText(const QString &word)
{
    static QHash<QString, QJsonValue> known;
    return shared(known, word, [&word] { return word; });
}

QJsonObject ofSignal(const CheckedSignal &signal)
{
    QJsonObject json{{u"name"_s, signal.data.name},
                     {u"dataType"_s, dataTypeText(signal.data.datatype)},
                     {u"firstBit"_s, signal.data.bitposition},
                     {u"bits"_s, qint64{signal.bits}},
                     {u"implementation"_s, implementationText(signal.data.implementation)}};
    add(json, u"description"_s, signal.data.desc);
    add(json, u"default"_s, signal.data.defaultvalue);
    add(json, u"variable"_s, signal.data.varname);
    return json;
}

template <class Part, class Make>
QJsonArray listOf(const std::vector<Part> &parts, const Make &make)
{
    QJsonArray list;
    for (const Part &part : parts)
        list.append(make(part));
    return list;
}

} // namespace

QJsonObject DeviceJson::ofDevice(ObjectDataBase &store, const QString &file, const QList<quint8> &lines)
{
    QJsonArray list;
    for (const quint8 number : lines) {
        DeviceLine line(store, number);
        list.append(ofLine(line));
    }
    return wrap(file, list);
}

QJsonObject DeviceJson::wrap(const QString &file, const QJsonArray &lines)
{
    return {{u"format"_s, u"ncx-device"_s}, {u"version"_s, version}, {u"file"_s, file}, {u"lines"_s, lines}};
}

QJsonObject DeviceJson::ofLine(DeviceLine &line)
{
    QJsonObject json{{u"line"_s, line.number()}, {u"name"_s, line.name()}, {u"type"_s, line.typeName()}};
    if (line.protocols().canOpen) {
        add(json, u"nodeId"_s, line.nodeId());
        json.insert(u"objects"_s, listOf(line.objects(), ofObject));
        json.insert(u"pdos"_s, listOf(line.pdos(), ofPdo));
    }
    if (line.protocols().j1939)
        json.insert(u"pgns"_s, listOf(line.pgns(), ofPgn));
    if (line.protocols().rawCan)
        json.insert(u"canIds"_s, listOf(line.canIds(), ofCanId));
    return json;
}

QJsonObject DeviceJson::ofObject(const CheckedObject &object)
{
    QJsonObject json{{u"index"_s, hex(object.index)},
                     {u"name"_s, object.data.name},
                     {u"objectCode"_s, wordText(COHelper::objectCode2String(object.data.objecttype))},
                     {u"dataType"_s, dataTypeText(object.data.datatype)},
                     {u"subindices"_s, listOf(object.subs, ofSubindex)}};
    add(json, u"description"_s, object.data.description);
    return json;
}

QJsonObject DeviceJson::ofSubindex(const CheckedSubindex &sub)
{
    const StoreRecords::SubIndexData &data = sub.data;
    QJsonObject json{{u"subindex"_s, sub.subindex},
                     {u"name"_s, data.name},
                     {u"dataType"_s, dataTypeText(data.datatype)},
                     {u"access"_s, wordText(data.accesstype)},
                     {u"mapping"_s, wordText(data.pdomapping.getCSVStringValue())},
                     {u"implementation"_s, implementationText(data.implementation)}};
    add(json, u"default"_s, data.defaultvalue);
    add(json, u"current"_s, data.currentvalue);
    add(json, u"variable"_s, data.varname);
    add(json, u"description"_s, data.description);
    add(json, u"denotation"_s, data.denotation);
    if (data.size > 0)
        json.insert(u"size"_s, qint64{data.size});
    if (data.limitineds) {
        add(json, u"lowLimit"_s, data.lowlimit);
        add(json, u"highLimit"_s, data.uplimit);
    }
    return json;
}

QJsonObject DeviceJson::ofPdo(const Pdo &pdo)
{
    QJsonObject json{{u"direction"_s, pdo.isTransmit ? u"transmit"_s : u"receive"_s},
                     {u"number"_s, pdo.number},
                     {u"communication"_s, hex(pdo.communication->index)},
                     {u"cobId"_s, pdo.cobId},
                     {u"enabled"_s, pdo.isEnabled},
                     {u"transmission"_s, pdo.transmission},
                     {u"inhibitTime"_s, static_cast<qint64>(pdo.inhibitTime)},
                     {u"eventTimer"_s, static_cast<qint64>(pdo.eventTimer)},
                     {u"frame"_s, ofFrame(pdo.frame)}};
    if (pdo.mapping)
        json.insert(u"mapping"_s, hex(pdo.mapping->index));
    return json;
}

QJsonObject DeviceJson::ofPgn(const CheckedPGN &pgn)
{
    QJsonArray spns;
    for (const CheckedSignal &spn : pgn.spns) {
        QJsonObject json = ofSignal(spn);
        json.insert(u"spn"_s, qint64{spn.data.spnnumber});
        spns.append(json);
    }
    QJsonObject json{{u"pgn"_s, qint64{pgn.data.number}},
                     {u"direction"_s, directionText(pgn.data.direction)},
                     {u"name"_s, pgn.data.name},
                     {u"priority"_s, pgn.data.priority},
                     {u"cycleTime"_s, pgn.data.cycletime_ms},
                     {u"inhibitTime"_s, pgn.data.inhibittime_ms},
                     {u"spns"_s, spns},
                     {u"frame"_s, ofFrame(frameOf(pgn))}};
    add(json, u"description"_s, pgn.data.desc);
    return json;
}

QJsonObject DeviceJson::ofCanId(const CheckedCanId &canId)
{
    QJsonObject json{{u"canId"_s, canIdText(canId.data.id)},
                     {u"direction"_s, directionText(canId.data.direction)},
                     {u"name"_s, canId.data.name},
                     {u"cycleTime"_s, canId.data.cycletime_ms},
                     {u"inhibitTime"_s, canId.data.inhibittime_ms},
                     {u"signals"_s, listOf(canId.signalList, ofSignal)},
                     {u"frame"_s, ofFrame(frameOf(canId))}};
    add(json, u"description"_s, canId.data.desc);
    return json;
}

QJsonObject DeviceJson::ofFrame(const Frame &frame)
{
    QJsonArray fields;
    for (const FrameField &field : frame.fields)
        fields.append(QJsonObject{{u"firstBit"_s, qint64{field.first}},
                                  {u"bits"_s, qint64{field.bits}},
                                  {u"name"_s, field.name},
                                  {u"address"_s, field.address}});
    return {{u"bits"_s, qint64{frame.bits}}, {u"fields"_s, fields}};
}
