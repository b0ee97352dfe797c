#include "ncx/compare/part.h"

#include "ncx/device/devicemodel.h"

using namespace Qt::StringLiterals;

namespace {

QString hex(quint32 number, int digits)
{
    return u"0x%1"_s.arg(number, digits, 16, QLatin1Char('0'));
}

QString addressOf(const PartPlace &place)
{
    switch (place.kind) {
    case PartKind::Project:
    case PartKind::Line:
        break;
    case PartKind::Object:
        return hex(place.number, 4);
    case PartKind::Subindex:
        return u"%1:%2"_s.arg(hex(place.number, 4)).arg(place.sub);
    case PartKind::Pgn:
        return u"%1 (%2)"_s.arg(place.number).arg(directionText(place.direction));
    case PartKind::Spn:
        return u"%1 in PGN %2 (%3)"_s.arg(place.sub).arg(place.number).arg(directionText(place.direction));
    case PartKind::CanId:
        return u"%1 (%2)"_s.arg(canIdText(place.number), directionText(place.direction));
    case PartKind::Signal:
        return u"%1 in CAN-ID %2 (%3)"_s.arg(place.sub).arg(canIdText(place.number), directionText(place.direction));
    case PartKind::Service:
        return hex(place.number, 2);
    }
    return {};
}

} // namespace

QString nameOf(PartKind kind)
{
    static const QStringList names{u"project"_s, u"line"_s,   u"object"_s, u"object"_s,     u"PGN"_s,
                                   u"SPN"_s,     u"CAN-ID"_s, u"signal"_s, u"UDS service"_s};
    return names.at(static_cast<int>(kind));
}

QString PartPlace::text(bool withLine) const
{
    QString lineText = u"line %1"_s.arg(line);
    if (kind == PartKind::Project)
        return nameOf(kind);
    if (kind == PartKind::Line)
        return lineText;
    const QString text = nameOf(kind) + u' ' + addressOf(*this);
    return withLine ? lineText + ", "_L1 + text : text;
}

QJsonObject PartPlace::toJson() const
{
    QJsonObject json{{u"part"_s, kind == PartKind::Subindex ? u"subindex"_s : nameOf(kind)}};
    if (kind != PartKind::Project)
        json.insert(u"line"_s, line);
    if (kind == PartKind::Object || kind == PartKind::Subindex)
        json.insert(u"index"_s, hex(number, 4));
    if (kind == PartKind::Subindex)
        json.insert(u"subindex"_s, qint64{sub});
    if (kind == PartKind::Pgn || kind == PartKind::Spn)
        json.insert(u"pgn"_s, qint64{number});
    if (kind == PartKind::Spn)
        json.insert(u"spn"_s, qint64{sub});
    if (kind == PartKind::CanId || kind == PartKind::Signal)
        json.insert(u"canId"_s, canIdText(number));
    if (kind == PartKind::Signal)
        json.insert(u"signal"_s, qint64{sub});
    if (kind == PartKind::Service)
        json.insert(u"service"_s, hex(number, 2));
    if (direction != 0)
        json.insert(u"direction"_s, directionText(direction));
    return json;
}
