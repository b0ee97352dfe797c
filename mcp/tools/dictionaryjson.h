#pragma once

#include "nodedict/codes.h"
#include "store/objectdatabase.h"

#include <QJsonArray>
#include <QJsonObject>

/// How objects of a dictionary read in replies. The same for the open project and for the reference profiles.
namespace DictionaryJson {

/// Objects below are data types (CiA 301), which no listing shows.
inline constexpr quint16 firstIndex = CANopen::Index::firstCommunicationObject;
inline constexpr quint16 lastIndex = 0xFFFF;

/// "0x" and four lower-case hexadecimal digits.
QString indexText(quint16 index);
/// "0x1018:2".
QString subindexText(quint16 index, quint8 sub);

/// The names of the objects that a listing of the line has, by index.
QMap<quint16, QString> names(ObjectDataBase &store, quint8 line);
/// A listing as compact JSON, ascending. It may have an entry for each of ten thousand objects, so that it is written
/// at once.
QString listing(const QMap<quint16, QString> &names);
QJsonObject subindex(quint8 sub, const ObjectDataBase::SUBINDEX_DATA_T &data);
/// An object with its subindices, ascending; nothing if there is no such object.
std::optional<QJsonObject> object(ObjectDataBase &store, quint8 line, quint16 index);

} // namespace DictionaryJson
