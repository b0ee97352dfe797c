#pragma once

#include <QHash>
#include <QJsonArray>
#include <QLatin1StringView>
#include <QString>
#include <QStringList>

#include <vector>

/// What was decided about a description, and why.
struct SettlingTopic
{
    enum class Kind
    {
        Read,     ///< it was read otherwise than it is written, or left out
        Settled,  ///< it does not say it
        Repaired, ///< it was wrong
        Left,     ///< it is wrong, still is, and stops a generation
        Doubtful  ///< the check warns of it
    };

    Kind kind = Kind::Settled;
    QString title = {};  ///< what was done, without a full stop
    QString reason = {}; ///< a sentence
    QString next = {};   ///< what is left to the reader, a sentence; may be empty
};

/// The decisions about a description, for its reader: by topic, each with its places.
class SettlingReport
{
public:
    /// `file` is how the description is called.
    explicit SettlingReport(QString file)
        : file_(std::move(file))
    {
    }

    /// One decision. `place` may be empty, `line` is that of the description, 0 for none.
    void add(const SettlingTopic &topic, int line, const QString &place, const QString &text);

    qsizetype count(SettlingTopic::Kind kind) const;
    /// The lines of the report; of a topic only the first places where `mostPlaces` is above 0.
    QStringList lines(qsizetype mostPlaces = 0) const;
    /// The topics in the order of the lines, each with its places.
    QJsonArray toJson() const;

private:
    struct Place
    {
        int line = 0;
        QString place;
        QString text;
    };
    struct Told
    {
        SettlingTopic topic;
        std::vector<Place> places = {};
    };

    QString lineOf(const Place &place) const;

    QString file_;
    std::vector<Told> told_; ///< in the order in which topics came up
    QHash<QString, size_t> byTitle_;
};
