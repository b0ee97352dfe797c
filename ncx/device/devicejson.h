#pragma once

#include "ncx/device/devicemodel.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>

class ObjectDataBase;

/// A device and its parts in the form "ncx-device" (docs/ncx.md). Numbers that a project keeps as text stay text.
namespace DeviceJson {

inline constexpr int version = 1;

/// The lines of a device. Of their objects, of whose subindices there may be tens of thousands, only a text is made,
/// which comes into the JSON around it at the end.
class LinesJson
{
public:
    explicit LinesJson(QJsonDocument::JsonFormat format)
        : format_(format)
    {
    }

    void add(DeviceLine &line);
    /// With a mark in the place of the objects of each.
    const QJsonArray &lines() const { return lines_; }
    /// The text of a value that has the lines in it; indented, as `wrap` puts them there.
    QByteArray toJson(const QJsonObject &json) const;

private:
    static constexpr int depthOfObjects = 3; ///< in the form, its lines, and one of these

    QJsonDocument::JsonFormat format_;
    QJsonArray lines_;
    QList<QByteArray> objects_;
};

/// The whole form as an indented text.
QByteArray ofDevice(ObjectDataBase &store, const QString &file, const QList<quint8> &lines);
/// The whole form around lines, or what was asked for of them.
QJsonObject wrap(const QString &file, const QJsonArray &lines);
QJsonObject ofLine(DeviceLine &line);
QJsonObject ofObject(const CheckedObject &object);
QJsonObject ofSubindex(const CheckedSubindex &sub);
QJsonObject ofPdo(const Pdo &pdo);
QJsonObject ofPgn(const CheckedPGN &pgn);
QJsonObject ofCanId(const CheckedCanId &canId);
QJsonObject ofFrame(const Frame &frame);

} // namespace DeviceJson
