#include "ncx/device/devicejson.h"

#include "ncx/device/jsontext.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

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

QString implementationText(quint8 implementation)
{
    static const QStringList words{u"managedVariable"_s, u"managedConst"_s, u"variable"_s, u"virtual"_s};
    return words.value(implementation, QString::number(implementation));
}

void write(JsonText &json, const CheckedSubindex &sub)
{
    const StoreRecords::SubIndexData &data = *sub.data;
    json.beginObject();
    json.key("access"_L1);
    json.value(data.accesstype);
    json.add("current"_L1, data.currentvalue);
    json.key("dataType"_L1);
    json.value(COHelper::index2DataTypeString(data.datatype));
    json.add("default"_L1, data.defaultvalue);
    json.add("denotation"_L1, data.denotation);
    json.add("description"_L1, data.description);
    if (data.limitineds)
        json.add("highLimit"_L1, data.uplimit);
    json.key("implementation"_L1);
    json.value(implementationText(data.implementation));
    if (data.limitineds)
        json.add("lowLimit"_L1, data.lowlimit);
    json.key("mapping"_L1);
    json.value(data.pdomapping.getCSVStringValue());
    json.key("name"_L1);
    json.value(data.name);
    if (data.size > 0) {
        json.key("size"_L1);
        json.value(qint64{data.size});
    }
    json.key("subindex"_L1);
    json.value(qint64{sub.subindex});
    json.add("variable"_L1, data.varname);
    json.endObject();
}

void write(JsonText &json, const CheckedObject &object)
{
    json.beginObject();
    json.key("dataType"_L1);
    json.value(COHelper::index2DataTypeString(object.data.datatype));
    json.add("description"_L1, object.data.description);
    json.key("index"_L1);
    json.value(hex(object.index));
    json.key("name"_L1);
    json.value(object.data.name);
    json.key("objectCode"_L1);
    json.value(COHelper::objectCode2String(object.data.objecttype));
    json.key("subindices"_L1);
    json.beginArray();
    for (const CheckedSubindex &sub : object.subs)
        write(json, sub);
    json.endArray();
    json.endObject();
}

template <class Part>
QJsonObject valueOf(const Part &part)
{
    JsonText json(QJsonDocument::Compact);
    write(json, part);
    return QJsonDocument::fromJson(json.text()).object();
}

QJsonObject ofSignal(const CheckedSignal &signal)
{
    QJsonObject json{{u"name"_s, signal.data.name},
                     {u"dataType"_s, COHelper::index2DataTypeString(signal.data.datatype)},
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

QByteArray DeviceJson::ofDevice(ObjectDataBase &store, const QString &file, const QList<quint8> &lines)
{
    LinesJson list(QJsonDocument::Indented);
    for (const quint8 number : lines) {
        DeviceLine line(store, number);
        list.add(line);
    }
    return list.toJson(wrap(file, list.lines()));
}

QJsonObject DeviceJson::wrap(const QString &file, const QJsonArray &lines)
{
    return {{u"format"_s, u"ncx-device"_s}, {u"version"_s, version}, {u"file"_s, file}, {u"lines"_s, lines}};
}

void DeviceJson::LinesJson::add(DeviceLine &line)
{
    QJsonObject json{{u"line"_s, line.number()}, {u"name"_s, line.name()}, {u"type"_s, line.typeName()}};
    if (line.protocols().canOpen) {
        ::add(json, u"nodeId"_s, line.nodeId());
        json.insert(u"objects"_s, QJsonValue::Null);
        JsonText objects(format_, depthOfObjects);
        objects.beginArray();
        for (const CheckedObject &object : line.objects())
            write(objects, object);
        objects.endArray();
        objects_.append(objects.text());
        json.insert(u"pdos"_s, listOf(line.pdos(), ofPdo));
    }
    if (line.protocols().j1939)
        json.insert(u"pgns"_s, listOf(line.pgns(), ofPgn));
    if (line.protocols().rawCan)
        json.insert(u"canIds"_s, listOf(line.canIds(), ofCanId));
    lines_.append(json);
}

QByteArray DeviceJson::LinesJson::toJson(const QJsonObject &json) const
{
    // No text has this in it: its quotes would have backslashes before them.
    const QByteArray key = format_ == QJsonDocument::Compact ? "\"objects\":" : "\"objects\": ";
    const QByteArray mark = key + "null";
    const QByteArray frame = QJsonDocument(json).toJson(format_);
    QByteArray whole;
    qsizetype place = 0;
    for (const QByteArray &objects : objects_) {
        const qsizetype end = frame.indexOf(mark, place);
        whole += QByteArrayView(frame).sliced(place, end - place);
        whole += key;
        whole += objects;
        place = end + mark.size();
    }
    return whole += QByteArrayView(frame).sliced(place);
}

QJsonObject DeviceJson::ofLine(DeviceLine &line)
{
    LinesJson list(QJsonDocument::Compact);
    list.add(line);
    return QJsonDocument::fromJson(list.toJson(list.lines().first().toObject())).object();
}

QJsonObject DeviceJson::ofObject(const CheckedObject &object)
{
    return valueOf(object);
}

QJsonObject DeviceJson::ofSubindex(const CheckedSubindex &sub)
{
    return valueOf(sub);
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
