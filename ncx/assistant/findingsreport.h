#pragma once

#include "generate/run/generatormainhandler.h"

#include <QJsonObject>
#include <QList>
#include <QString>

/// Findings of the check in few bytes: those of the same rule stand together, with the first of them whole and the
/// places of the others.
namespace FindingsReport {

using Findings = QList<CheckFinding>;

/// What `after` has and `before` has not, counted by text and place.
Findings added(const Findings &before, const Findings &after);

/// {"errors": 1, "warnings": 0, "notes": 2, "corrections": 0}
QJsonObject counts(const Findings &findings);

/// Findings by rule, errors first, each group an object; `left` gets the number of findings that `mostBytes` left out.
QJsonArray grouped(const Findings &findings, qsizetype mostBytes, qsizetype &left);

/// What of findings that are gone is worth telling: the first rules, with a place of each.
QJsonArray gone(const Findings &findings);

/// A group of `grouped` as a line of text.
QString line(const QJsonObject &group);
/// "2 errors, 1 warning", or "no findings".
QString countText(const QJsonObject &counts);

} // namespace FindingsReport
