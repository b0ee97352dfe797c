#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QList>

#include <array>
#include <optional>

/// What has been written of the objects and messages of a project, so that whoever has read them knows what to read
/// again.
///
/// An operation on one object or message announces it. The rows themselves tell what is written, whichever statement
/// does it: a row that nobody has announced makes all of its kind on its line count as written.
class WriteLog
{
public:
    /// What has a key, and rows in the tables of a line.
    enum class Kind : quint8
    {
        Object, ///< by index
        Pgn,    ///< by number and direction, as the next
        CanId
    };
    static constexpr std::size_t kinds = 3;

    static constexpr quint64 messageKey(quint32 number, quint8 direction) { return quint64{number} << 8 | direction; }

    /// A moment between two writes; the default is before all of them.
    using Moment = quint64;
    Moment moment() { return ++now_; }

    struct Changes
    {
        bool all = false;    ///< maybe anything of the kind
        QList<quint64> keys; ///< ascending
    };
    Changes since(Moment moment, quint8 line, Kind kind) const;

    /// Of the table with this name.
    void rowWritten(QByteArrayView table);
    /// Tables may have come or gone, rows may be as they were before.
    void anythingWritten()
    {
        anything_ = now_;
        lines_.clear();
    }

private:
    struct Subject
    {
        quint8 line;
        Kind kind;
    };

public:
    /// For its lifetime, all rows of its kind that are written in its line are of one object or message.
    class Announcement
    {
    public:
        Announcement(WriteLog &log, quint8 line, Kind kind, quint64 key)
            : log_(log)
            , outer_(log.announced_)
        {
            log.announced_ = {line, kind};
            log.note(line, kind, key);
        }
        ~Announcement() { log_.announced_ = outer_; }
        Q_DISABLE_COPY_MOVE(Announcement)

    private:
        WriteLog &log_;
        const std::optional<Subject> outer_;
    };

private:
    struct Written
    {
        Moment all = 0;
        QHash<quint64, Moment> keys;
    };

    void note(quint8 line, Kind kind, quint64 key);
    void noteAll(quint8 line, Kind kind);
    /// False as long as nobody wants to know, as in a run over one project.
    bool isAsked() const { return now_ > 0; }
    Written &writtenOf(quint8 line, Kind kind) { return lines_[line][static_cast<std::size_t>(kind)]; }

    Moment now_ = 0;
    Moment anything_ = 0;
    QHash<quint8, std::array<Written, kinds>> lines_;
    std::optional<Subject> announced_;
};
