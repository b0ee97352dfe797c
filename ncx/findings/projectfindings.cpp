#include "ncx/findings/projectfindings.h"

#include "ncx/findings/advice.h"
#include "ncx/findings/textplaces.h"
#include "ncx/project/openedproject.h"
#include "store/objectdatabase.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString keyOf(WarningGroup id)
{
    const QList<WarningGroupInfo> groups = warningGroups();
    const auto found = std::ranges::find_if(groups, [id](const WarningGroupInfo &group) { return group.id == id; });
    return found == groups.end() ? QString() : found->key;
}

/// The text of a finding without the word of its kind, and without the address at its start, which the place takes
/// over.
QString takeMessage(CheckFinding &finding)
{
    static const QRegularExpression kind(uR"(^\s*(?:Error|Warning|Hint|Info|Corrected):\s*)"_s);
    static const QRegularExpression address(uR"(^Object 0x([0-9a-f]{4})(?:-((?:0x)?[0-9a-f]+))?\s*:\s*)"_s);
    QString text = TextSink::plain(finding.text).trimmed().remove(kind);
    const QRegularExpressionMatch match = address.match(text);
    if (match.hasMatch() && finding.place.index == match.captured(1).toUShort(nullptr, 16)) {
        if (match.hasCaptured(2) && !finding.place.subindex)
            finding.place.subindex = static_cast<quint8>(match.captured(2).toUInt(nullptr, 0));
        text.remove(0, match.capturedLength());
    }
    return text;
}

QString directionText(quint8 direction)
{
    return direction == ObjectDataBase::transmit ? u"transmit"_s : u"receive"_s;
}

} // namespace

ProjectFinding ProjectFinding::told(CheckFinding finding)
{
    const QString message = takeMessage(finding);
    return {.finding = finding, .message = message, .advice = adviceOn(finding)};
}

QString ProjectFinding::severity() const
{
    switch (finding.kind) {
    case CheckFinding::Kind::Error:
        return u"error"_s;
    case CheckFinding::Kind::Warning:
        return u"warning"_s;
    case CheckFinding::Kind::Hint:
        return u"note"_s;
    case CheckFinding::Kind::Correction:
        return u"correction"_s;
    }
    return {};
}

QString ProjectFinding::groupKey() const
{
    return finding.group ? keyOf(*finding.group) : QString();
}

QString ProjectFinding::placeText(bool withLine) const
{
    const FindingPlace &place = finding.place;
    QStringList parts;
    if (withLine && place.line)
        parts.append(u"line %1"_s.arg(*place.line));
    if (place.index) {
        const QString index = u"object 0x%1"_s.arg(*place.index, 4, 16, QLatin1Char('0'));
        if (message.startsWith(index, Qt::CaseInsensitive))
            return parts.join(", "_L1);
        parts.append(place.subindex ? u"%1:%2"_s.arg(index).arg(*place.subindex) : index);
    }
    return parts.join(", "_L1);
}

QJsonObject ProjectFinding::toJson() const
{
    const FindingPlace &place = finding.place;
    QJsonObject json{{u"severity"_s, severity()}, {u"message"_s, message}};
    const auto add = [&json](const QString &key, const QJsonValue &value, bool isSet) {
        if (isSet)
            json.insert(key, value);
    };
    add(u"rule"_s, finding.rule, !finding.rule.isEmpty());
    add(u"group"_s, groupKey(), finding.group.has_value());
    add(u"advice"_s, advice, !advice.isEmpty());
    add(u"fileLine"_s, fileLine, fileLine > 0);
    add(u"line"_s, place.line.value_or(0), place.line.has_value());
    add(u"index"_s, u"0x%1"_s.arg(place.index.value_or(0), 4, 16, QLatin1Char('0')), place.index.has_value());
    add(u"subindex"_s, place.subindex.value_or(0), place.subindex.has_value());
    add(u"pgn"_s, qint64{place.pgn.value_or(0)}, place.pgn.has_value());
    add(u"spn"_s, qint64{place.spn.value_or(0)}, place.spn.has_value());
    add(u"canId"_s, qint64{place.canId.value_or(0)}, place.canId.has_value());
    add(u"signal"_s, place.signal.value_or(0), place.signal.has_value());
    add(u"direction"_s, directionText(place.direction.value_or(0)), place.direction.has_value());
    add(u"setting"_s, place.setting, !place.setting.isEmpty());
    return json;
}

ProjectFindings ProjectFindings::of(OpenedProject &project)
{
    return of(project, project.handler().findInModel());
}

ProjectFindings ProjectFindings::of(const OpenedProject &project, const GeneratorMainHandler::ModelFindings &model)
{
    ProjectFindings all;
    all.hasSeveralLines = project.store().getNodeList().size() > 1;
    TextPlaces places(project.path());
    for (CheckFinding finding : model.findings) {
        const QString message = takeMessage(finding);
        all.findings.append({.finding = finding,
                             .fileLine = project.isText() ? places.lineOf(finding.place) : 0,
                             .message = message,
                             .advice = adviceOn(finding)});
    }
    for (auto group = model.suppressed.begin(); group != model.suppressed.end(); ++group)
        all.suppressed.insert(keyOf(group.key()), group.value());
    return all;
}

int ProjectFindings::count(const QString &severity) const
{
    return static_cast<int>(std::ranges::count_if(
        findings, [&severity](const ProjectFinding &finding) { return finding.severity() == severity; }));
}

QJsonObject ProjectFindings::toJson(const QString &path) const
{
    QJsonArray list;
    for (const ProjectFinding &finding : findings)
        list.append(finding.toJson());
    QJsonObject groups;
    for (auto group = suppressed.begin(); group != suppressed.end(); ++group)
        groups.insert(group.key(), group.value());
    return {{u"file"_s, path},
            {u"findings"_s, list},
            {u"errors"_s, count(u"error"_s)},
            {u"warnings"_s, count(u"warning"_s)},
            {u"notes"_s, count(u"note"_s)},
            {u"corrections"_s, count(u"correction"_s)},
            {u"suppressed"_s, groups}};
}
