#include "ncx/settling/settlingreport.h"

#include <QJsonObject>

#include <algorithm>
#include <numeric>
#include <span>

using namespace Qt::StringLiterals;

namespace {

struct Chapter
{
    SettlingTopic::Kind kind;
    QLatin1StringView title;
    QLatin1StringView key; ///< for programs
};
constexpr Chapter chapters[] = {
    {SettlingTopic::Kind::Left, "Faults of the file that are left, and stop a generation"_L1, "left"_L1},
    {SettlingTopic::Kind::Doubtful, "What the check warns of"_L1, "doubtful"_L1},
    {SettlingTopic::Kind::Repaired, "Faults of the file that were mended"_L1, "repaired"_L1},
    {SettlingTopic::Kind::Settled, "What the file does not say, and what was settled"_L1, "settled"_L1},
    {SettlingTopic::Kind::Read, "What was read otherwise than it is written, or left out"_L1, "read"_L1},
};

} // namespace

void SettlingReport::add(const SettlingTopic &topic, int line, const QString &place, const QString &text)
{
    const QString key = QString::number(static_cast<int>(topic.kind)) + topic.title;
    if (!byTitle_.contains(key)) {
        byTitle_.insert(key, told_.size());
        told_.push_back({topic});
    }
    told_[byTitle_.value(key)].places.push_back({line, place, text});
}

QString SettlingReport::lineOf(const Place &place) const
{
    QString entry = place.line > 0 ? u"%1:%2: "_s.arg(file_).arg(place.line) : QString();
    if (!place.place.isEmpty())
        entry += place.place + ": "_L1;
    return entry + place.text;
}

qsizetype SettlingReport::count(SettlingTopic::Kind kind) const
{
    return std::accumulate(told_.begin(), told_.end(), qsizetype{0}, [kind](qsizetype sum, const Told &told) {
        return sum + (told.topic.kind == kind ? std::ssize(told.places) : 0);
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
            const qsizetype all = std::ssize(told.places);
            const qsizetype shown = mostPlaces > 0 ? std::min(mostPlaces, all) : all;
            for (const Place &place : std::span(told.places).first(static_cast<size_t>(shown)))
                lines.append("    "_L1 + lineOf(place));
            if (shown < all)
                lines.append(u"    and %1 more"_s.arg(all - shown));
        }
    }
    return lines;
}

QJsonArray SettlingReport::toJson() const
{
    QJsonArray topics;
    for (const Chapter &chapter : chapters) {
        for (const Told &told : told_) {
            if (told.topic.kind != chapter.kind)
                continue;
            QJsonArray places;
            for (const Place &place : told.places) {
                QJsonObject json{{u"what"_s, place.text}};
                if (place.line > 0)
                    json.insert(u"fileLine"_s, place.line);
                if (!place.place.isEmpty())
                    json.insert(u"place"_s, place.place);
                places.append(json);
            }
            QJsonObject topic{{u"kind"_s, chapter.key}, {u"title"_s, told.topic.title}, {u"places"_s, places}};
            for (const auto &[key, sentence] :
                 {std::pair(u"reason"_s, told.topic.reason), {u"next"_s, told.topic.next}}) {
                if (!sentence.isEmpty())
                    topic.insert(key, sentence);
            }
            topics.append(topic);
        }
    }
    return topics;
}
