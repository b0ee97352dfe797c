#include "ncx/assistant/findingsreport.h"

#include "ncx/findings/projectfindings.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Of the places of a group, so many are told.
constexpr qsizetype mostPlaces = 4;
/// Of groups that are gone, so many are told.
constexpr qsizetype mostGone = 5;

QString keyOf(const CheckFinding &finding)
{
    const FindingPlace &place = finding.place;
    return u"%1|%2|%3|%4|%5|"_s.arg(static_cast<int>(finding.kind))
               .arg(place.line.value_or(0))
               .arg(place.index.value_or(0))
               .arg(place.subindex.value_or(0))
               .arg(place.pgn.value_or(0) + place.canId.value_or(0)) +
           finding.rule + finding.text;
}

int rankOf(const CheckFinding &finding)
{
    switch (finding.kind) {
    case CheckFinding::Kind::Error:
        return 0;
    case CheckFinding::Kind::Warning:
        return 1;
    case CheckFinding::Kind::Correction:
        return 2;
    case CheckFinding::Kind::Hint:
        break;
    }
    return 3;
}

/// "line 1 0x1a00:2", "line 0 PGN 65226 SPN 1214".
QString placeOf(const FindingPlace &place)
{
    QStringList parts;
    if (place.line)
        parts.append(u"line %1"_s.arg(*place.line));
    if (place.index) {
        const QString index = u"0x%1"_s.arg(*place.index, 4, 16, QLatin1Char('0'));
        parts.append(place.subindex ? u"%1:%2"_s.arg(index).arg(*place.subindex) : index);
    }
    if (place.pgn)
        parts.append(u"PGN %1"_s.arg(*place.pgn));
    if (place.spn)
        parts.append(u"SPN %1"_s.arg(*place.spn));
    if (place.canId)
        parts.append(u"CAN-ID 0x%1"_s.arg(*place.canId, 0, 16));
    if (place.signal)
        parts.append(u"element %1"_s.arg(*place.signal));
    if (!place.setting.isEmpty())
        parts.append(place.setting);
    return parts.join(u' ');
}

struct Group
{
    CheckFinding first;
    QStringList places;
    qsizetype count = 0;
};

QList<Group> groupsOf(const FindingsReport::Findings &findings)
{
    QList<Group> groups;
    QHash<QString, qsizetype> byRule;
    for (const CheckFinding &finding : findings) {
        const QString key = finding.rule + QChar(u'0' + rankOf(finding));
        const qsizetype place = byRule.value(key, groups.size());
        if (place == groups.size())
            groups.append(Group{.first = finding, .places = {}});
        byRule.insert(key, place);
        Group &group = groups[place];
        ++group.count;
        if (group.places.size() < mostPlaces)
            group.places.append(placeOf(finding.place));
    }
    std::ranges::stable_sort(groups, {}, [](const Group &group) { return rankOf(group.first); });
    return groups;
}

QJsonObject toJson(const Group &group)
{
    const ProjectFinding finding = ProjectFinding::told(group.first);
    QJsonObject json{{u"severity"_s, finding.severity()},
                     {u"rule"_s, finding.finding.rule},
                     {u"at"_s, group.places.first()},
                     {u"message"_s, finding.message}};
    if (!finding.advice.isEmpty())
        json.insert(u"advice"_s, finding.advice);
    if (const QString key = finding.groupKey(); !key.isEmpty())
        json.insert(u"group"_s, key);
    if (group.count > 1) {
        json.insert(u"count"_s, group.count);
        json.insert(u"alsoAt"_s, QJsonArray::fromStringList(group.places.sliced(1)));
    }
    return json;
}

} // namespace

FindingsReport::Findings FindingsReport::added(const Findings &before, const Findings &after)
{
    QHash<QString, int> known;
    for (const CheckFinding &finding : before)
        ++known[keyOf(finding)];
    Findings added;
    for (const CheckFinding &finding : after) {
        const auto found = known.find(keyOf(finding));
        if (found != known.end() && *found > 0)
            --*found;
        else
            added.append(finding);
    }
    return added;
}

QJsonObject FindingsReport::counts(const Findings &findings)
{
    int counts[4] = {};
    for (const CheckFinding &finding : findings)
        ++counts[rankOf(finding)];
    return {
        {u"errors"_s, counts[0]}, {u"warnings"_s, counts[1]}, {u"corrections"_s, counts[2]}, {u"notes"_s, counts[3]}};
}

QJsonArray FindingsReport::grouped(const Findings &findings, qsizetype mostBytes, qsizetype &left)
{
    QJsonArray list;
    qsizetype bytes = 0;
    left = 0;
    for (const Group &group : groupsOf(findings)) {
        const QJsonObject json = left > 0 ? QJsonObject() : toJson(group);
        bytes += QJsonDocument(json).toJson(QJsonDocument::Compact).size();
        if (left > 0 || bytes > mostBytes)
            left += group.count;
        else
            list.append(json);
    }
    return list;
}

QJsonArray FindingsReport::gone(const Findings &findings)
{
    QJsonArray list;
    for (const Group &group : groupsOf(findings)) {
        if (list.size() == mostGone)
            break;
        QJsonObject json{{u"rule"_s, group.first.rule}, {u"at"_s, group.places.first()}};
        if (group.count > 1)
            json.insert(u"count"_s, group.count);
        list.append(json);
    }
    return list;
}

QString FindingsReport::line(const QJsonObject &group)
{
    const QString head = group.value("severity"_L1).toString() + u' ' + group.value("at"_L1).toString();
    QString text = u"- %1: %2"_s.arg(head.trimmed(), group.value("message"_L1).toString());
    if (const int count = group.value("count"_L1).toInt(); count > 1)
        text += u" (and %1 more of this kind)"_s.arg(count - 1);
    const QString advice = group.value("advice"_L1).toString();
    return advice.isEmpty() ? text : text + u' ' + advice;
}

QString FindingsReport::countText(const QJsonObject &counts)
{
    QStringList parts;
    for (const QString &key : {u"errors"_s, u"warnings"_s, u"corrections"_s, u"notes"_s}) {
        if (const int count = counts.value(key).toInt(); count > 0)
            parts.append(u"%1 %2"_s.arg(count).arg(count == 1 ? key.chopped(1) : key));
    }
    return parts.isEmpty() ? u"no findings"_s : parts.join(", "_L1);
}
