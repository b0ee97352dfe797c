#include "ncx/settling/settlingreport.h"

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

struct Chapter
{
    SettlingTopic::Kind kind;
    QLatin1StringView title;
};
constexpr Chapter chapters[] = {
    {SettlingTopic::Kind::Left, "Faults of the file that are left, and stop a generation"_L1},
    {SettlingTopic::Kind::Doubtful, "What the check warns of"_L1},
    {SettlingTopic::Kind::Repaired, "Faults of the file that were mended"_L1},
    {SettlingTopic::Kind::Settled, "What the file does not say, and what was settled"_L1},
    {SettlingTopic::Kind::Read, "What was read otherwise than it is written, or left out"_L1},
};

} // namespace

void SettlingReport::add(const SettlingTopic &topic, int line, const QString &place, const QString &text)
{
    const QString key = QString::number(static_cast<int>(topic.kind)) + topic.title;
    if (!byTitle_.contains(key)) {
        byTitle_.insert(key, told_.size());
        told_.push_back({topic});
    }
    QString entry = line > 0 ? u"%1:%2: "_s.arg(file_).arg(line) : QString();
    if (!place.isEmpty())
        entry += place + ": "_L1;
    told_[byTitle_.value(key)].places.append(entry + text);
}

qsizetype SettlingReport::count(SettlingTopic::Kind kind) const
{
    return std::accumulate(told_.begin(), told_.end(), qsizetype{0}, [kind](qsizetype sum, const Told &told) {
        return sum + (told.topic.kind == kind ? told.places.size() : 0);
    });
}

QStringList SettlingReport::lines(qsizetype mostPlaces) const
{
    QStringList lines;
    for (const Chapter &chapter : chapters) {
        if (count(chapter.kind) == 0)
            continue;
        lines.append({QString(), chapter.title});
        for (const Told &told : told_) {
            if (told.topic.kind != chapter.kind)
                continue;
            lines.append(u"- %1 (%2)"_s.arg(told.topic.title).arg(told.places.size()));
            for (const QString &sentence : {told.topic.reason, told.topic.next}) {
                if (!sentence.isEmpty())
                    lines.append("  "_L1 + sentence);
            }
            const qsizetype shown = mostPlaces > 0 ? std::min(mostPlaces, told.places.size()) : told.places.size();
            for (const QString &place : told.places.first(shown))
                lines.append("    "_L1 + place);
            if (shown < told.places.size())
                lines.append(u"    and %1 more"_s.arg(told.places.size() - shown));
        }
    }
    return lines;
}
