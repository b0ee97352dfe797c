#pragma once

#include "check/line/linepart.h"

#include <QHash>

#include <array>
#include <optional>
#include <vector>

class ObjectDataBase;

/// A line as the rules see it: read from the store once, each part when it is first asked for.
class CheckedLine
{
public:
    CheckedLine(ObjectDataBase &store, quint8 line);

    /// What may be other than it was before an update.
    struct Changes
    {
        std::array<WriteLog::Changes, WriteLog::kinds> written;
        bool settings = false;

        WriteLog::Changes &of(WriteLog::Kind kind) { return written[static_cast<std::size_t>(kind)]; }
        const WriteLog::Changes &of(WriteLog::Kind kind) const { return written[static_cast<std::size_t>(kind)]; }
    };
    /// Reads again what was written to the store since the line was read or last updated.
    Changes update();

    quint8 number() const { return line_; }
    const LineSettings &settings() const { return settings_; }
    /// All objects, ascending.
    const std::vector<CheckedObject> &objects() { return objects_.all(); }
    /// Null where the line has no such object, or subindex.
    const CheckedObject *object(quint16 index) { return objects_.find(index); }
    const CheckedSubindex *sub(quint16 index, quint8 subindex);
    /// Receive before transmit, ascending in each, as the next.
    const std::vector<CheckedPGN> &pgns() { return pgns_.all(); }
    const std::vector<CheckedCanId> &canIds() { return canIds_.all(); }

    // Who was the first with something that others may not have, too. Null or nothing for what nobody has.

    const CheckedSubindex *firstUserOf(const QString &variable);
    const CheckedSignal *firstSpnWith(const QString &variable);
    const CheckedSignal *firstSignalWith(const QString &variable);
    /// Counts how often the answers of these three may have changed.
    quint64 variableChanges() const
    {
        return objects_.variableChanges() + pgns_.variableChanges() + canIds_.variableChanges();
    }
    /// Index of the first enabled PDO with the COB-ID of this one.
    std::optional<quint16> firstPdoLike(const CheckedObject &communication);
    bool hasCanId(quint32 id, quint8 direction);

    /// Takes a subindex that was corrected in the store over into the loaded objects.
    void replace(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data);

private:
    /// What makes two COB-IDs the same; nothing for one that is no number.
    std::optional<quint64> cobIdKey(const CheckedObject &communication) const;

    ObjectDataBase &store_;
    quint8 line_;
    WriteLog::Moment readAt_;
    LineSettings settings_;
    LinePart<CheckedObject> objects_;
    LinePart<CheckedPGN> pgns_;
    LinePart<CheckedCanId> canIds_;
    std::optional<QHash<quint64, quint16>> pdos_;
};
