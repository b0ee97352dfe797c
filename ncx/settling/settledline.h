#pragma once

#include "ncx/settling/descriptiontext.h"
#include "ncx/settling/settlingreport.h"
#include "store/records/storerecords.h"

#include <QHash>
#include <QMap>

#include <memory>

class ObjectDataBase;
class ProfileDatabases;

/// A line whose objects come from a description, while it is being settled. All changes go through it, and each is told
/// to the report under the present topic: what changed, from what to what, and where that stands in the description.
class SettledLine
{
public:
    using Object = StoreRecords::IndexData;
    using Sub = StoreRecords::SubIndexData;

    SettledLine(ObjectDataBase &store, quint8 line, const DescriptionText &file, SettlingReport &report);

    ObjectDataBase &store() const { return store_; }
    quint8 number() const { return line_; }
    const DescriptionText &file() const { return file_; }

    const QMap<quint16, Object> &objects() const { return objects_; }
    /// Null where there is none.
    const Object *object(quint16 index) const;
    const Sub *sub(quint16 index, quint8 subindex) const;
    QList<quint8> subindicesOf(quint16 index) const;
    /// Addresses of all subindices, ascending.
    QList<StoreRecords::SubKey> allSubindices() const;
    /// The number that a subindex holds, which is not relative to the node-id; nothing where it is missing or none.
    std::optional<quint64> value(quint16 index, quint8 subindex) const;

    void setTopic(const SettlingTopic &topic) { topic_ = topic; }
    /// The same of what was read otherwise than it is written.
    void setReading(const QString &title, const QString &reason, const QString &next = {})
    {
        setTopic({SettlingTopic::Kind::Read, title, reason, next});
    }
    void tell(quint16 index, std::optional<quint8> subindex, const QString &text, QLatin1StringView key = {});
    void tell(int line, const QString &text) { report_.add(topic_, line, {}, text); }

    // Each answers whether there was something to change. A record that is new to the line is added.

    bool set(quint16 index, const Object &object);
    bool set(quint16 index, quint8 subindex, const Sub &sub);
    bool setDefault(quint16 index, quint8 subindex, const QString &value);
    bool setGeneral(const QString &key, const QString &value);
    bool setDescription(const QString &key, const QString &value, int line);
    /// Takes over an object of CiA 301 that the line lacks.
    bool addStandardObject(quint16 index);

    /// True once something could not be written.
    bool hasFailed() const { return hasFailed_; }

private:
    ObjectDataBase &store_;
    quint8 line_;
    const DescriptionText &file_;
    SettlingReport &report_;
    SettlingTopic topic_;
    QMap<quint16, Object> objects_;
    QMap<quint32, Sub> subs_;                    ///< by index and subindex
    std::shared_ptr<ProfileDatabases> profiles_; ///< once they are asked for
    bool hasFailed_ = false;
};
