#include "store/statements/writelog.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Table
{
    QByteArrayView name; ///< in front of the number of its line
    WriteLog::Kind kind;
};

constexpr Table tables[] = {
    {"Objects", WriteLog::Kind::Object}, {"SubObjects", WriteLog::Kind::Object},
    {"PGNs", WriteLog::Kind::Pgn},       {"SPNs", WriteLog::Kind::Pgn},
    {"CANIDs", WriteLog::Kind::CanId},   {"DataElements", WriteLog::Kind::CanId},
};

/// Beyond that, one who asks is not much slower when he reads all.
constexpr qsizetype mostKeys = 256;

} // namespace

WriteLog::Changes WriteLog::since(Moment moment, quint8 line, Kind kind) const
{
    Changes changes{.all = anything_ >= moment, .keys = {}};
    const auto ofLine = lines_.constFind(line);
    if (changes.all || ofLine == lines_.cend())
        return changes;
    const Written &written = (*ofLine)[static_cast<std::size_t>(kind)];
    changes.all = written.all >= moment;
    for (const auto &[key, at] : written.keys.asKeyValueRange()) {
        if (at >= moment)
            changes.keys.append(key);
    }
    std::ranges::sort(changes.keys);
    return changes;
}

void WriteLog::rowWritten(QByteArrayView table)
{
    if (!isAsked())
        return;
    qsizetype end = table.size();
    while (end > 0 && table[end - 1] >= '0' && table[end - 1] <= '9')
        --end;
    const auto found = std::ranges::find_if(tables, [name = table.first(end)](const Table &each) {
        return each.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    if (found == std::end(tables))
        return;
    const auto line = static_cast<quint8>(table.sliced(end).toUInt());
    if (!announced_ || announced_->line != line || announced_->kind != found->kind)
        noteAll(line, found->kind);
}

void WriteLog::note(quint8 line, Kind kind, quint64 key)
{
    if (!isAsked())
        return;
    Written &written = writtenOf(line, kind);
    if (written.all == now_)
        return;
    written.keys.insert(key, now_);
    if (written.keys.size() > mostKeys)
        noteAll(line, kind);
}

void WriteLog::noteAll(quint8 line, Kind kind)
{
    Written &written = writtenOf(line, kind);
    written.all = now_;
    written.keys.clear();
}
