#include "ncx/page/changespage.h"

#include "ncx/device/devicejson.h"
#include "ncx/page/framesvg.h"
#include "ncx/page/webpage.h"
#include "store/settings.h"

#include <QHash>
#include <QJsonDocument>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// What of a line has changed, by the numbers that its messages are found by.
class Touched
{
public:
    Touched(const QList<DeviceChange> &changes, quint8 line)
    {
        for (const DeviceChange &change : changes) {
            if (change.place.line == line)
                add(change.place);
        }
    }

    bool has(const CheckedPGN &pgn) const { return pgns_.contains({pgn.data.number, pgn.data.direction}); }
    bool has(const CheckedCanId &canId) const { return canIds_.contains({canId.data.id, canId.data.direction}); }

    /// True if one of the objects that describe a PDO has changed, or an object that its frame shows in another way.
    bool has(const Pdo &pdo, const Pdo *other) const
    {
        if (objects_.contains(pdo.communication->index) || (pdo.mapping && objects_.contains(pdo.mapping->index)))
            return true;
        return other && DeviceJson::ofFrame(pdo.frame) != DeviceJson::ofFrame(other->frame) &&
               (mapsChanged(pdo.frame) || mapsChanged(other->frame));
    }

private:
    void add(const PartPlace &place)
    {
        if (place.kind == PartKind::Object || place.kind == PartKind::Subindex)
            objects_.insert(place.number);
        else if (place.kind == PartKind::Pgn || place.kind == PartKind::Spn)
            pgns_.insert({place.number, place.direction});
        else if (place.kind == PartKind::CanId || place.kind == PartKind::Signal)
            canIds_.insert({place.number, place.direction});
    }

    bool mapsChanged(const Frame &frame) const
    {
        return std::ranges::any_of(frame.fields, [this](const FrameField &field) {
            return objects_.contains(field.address.section(u':', 0, 0).toUInt(nullptr, 0));
        });
    }

    QSet<quint32> objects_;
    QSet<std::pair<quint32, quint8>> pgns_;
    QSet<std::pair<quint32, quint8>> canIds_;
};

/// A list of messages and, in the same order, their drawings.
class Messages
{
public:
    template <class Message>
    void add(const Message &message, const QJsonObject &json)
    {
        list_.append(json);
        drawings_.append(FrameSvg::element(FrameSvg::of(message)));
    }

    void putInto(QJsonObject &device, QJsonObject &drawings, const QString &key) const
    {
        device.insert(key, list_);
        drawings.insert(key, drawings_);
    }

private:
    QJsonArray list_;
    QJsonArray drawings_;
};

Messages touchedPdos(DeviceLine &line, DeviceLine *other, const Touched &touched)
{
    QHash<quint16, const Pdo *> partners;
    if (other && other->protocols().canOpen) {
        for (const Pdo &pdo : other->pdos())
            partners.insert(pdo.communication->index, &pdo);
    }
    Messages messages;
    for (const Pdo &pdo : line.pdos()) {
        if (touched.has(pdo, partners.value(pdo.communication->index)))
            messages.add(pdo, DeviceJson::ofPdo(pdo));
    }
    return messages;
}

/// A side of a line: its messages that have changed, in the form of a line of "ncx-device", and their drawings.
QJsonObject sideOf(ComparedDevice &device, DeviceLine &line, DeviceLine *other, const Touched &touched)
{
    QJsonObject json{{u"line"_s, line.number()}, {u"name"_s, line.name()}, {u"type"_s, line.typeName()}};
    QJsonObject drawings;
    if (line.protocols().canOpen) {
        if (!line.nodeId().isEmpty())
            json.insert(u"nodeId"_s, line.nodeId());
        touchedPdos(line, other, touched).putInto(json, drawings, u"pdos"_s);
    }
    if (line.protocols().j1939) {
        Messages messages;
        for (const CheckedPGN &pgn : line.pgns()) {
            if (touched.has(pgn))
                messages.add(pgn, DeviceJson::ofPgn(pgn));
        }
        messages.putInto(json, drawings, u"pgns"_s);
    }
    if (line.protocols().rawCan) {
        Messages messages;
        for (const CheckedCanId &canId : line.canIds()) {
            if (touched.has(canId))
                messages.add(canId, DeviceJson::ofCanId(canId));
        }
        messages.putInto(json, drawings, u"canIds"_s);
    }
    QJsonObject side{{u"device"_s, json}, {u"drawings"_s, drawings}};
    if (line.protocols().j1939)
        side.insert(u"sourceAddress"_s,
                    qint64{Settings(device.store(), Settings::Table::J1939).number(u"startaddress"_s, line.number())});
    return side;
}

} // namespace

QJsonObject ChangesPage::data(const DeviceChanges &changes, const QList<DeviceChange> &told, const QJsonObject &diff)
{
    QJsonArray lines;
    for (const DeviceChanges::Sides &sides : changes.lines()) {
        const Touched touched(told, sides.line);
        QJsonObject json{{u"line"_s, sides.line}};
        if (sides.before)
            json.insert(u"old"_s, sideOf(changes.before(), *sides.before, sides.after, touched));
        if (sides.after)
            json.insert(u"new"_s, sideOf(changes.after(), *sides.after, sides.before, touched));
        lines.append(json);
    }
    return {{u"format"_s, u"ncx-changes-page"_s}, {u"version"_s, version}, {u"diff"_s, diff}, {u"lines"_s, lines}};
}

QByteArray ChangesPage::html(const QJsonObject &data)
{
    return WebPage::html(u"changes.html"_s, QJsonDocument(data).toJson(QJsonDocument::Compact));
}
