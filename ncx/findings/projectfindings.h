#pragma once

#include "generate/run/generatormainhandler.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>

class OpenedProject;

/// The keys of the groups that warnings are in.
inline constexpr QLatin1StringView warningGroupKeys[] = {
    QLatin1StringView("WG_NAMING"),    QLatin1StringView("WG_IDENTITY"),      QLatin1StringView("WG_LAYOUT"),
    QLatin1StringView("WG_IDS"),       QLatin1StringView("WG_TIMING_LIMITS"), QLatin1StringView("WG_EDS"),
    QLatin1StringView("WG_TOOLCHAIN"), QLatin1StringView("WG_CONFIG"),
};

/// A finding as people and programs are told of it.
struct ProjectFinding
{
    CheckFinding finding;
    int fileLine = 0;     ///< in a project in text form; 0 for none
    QString message = {}; ///< without markup, and without what the place tells
    QString advice = {};  ///< a sentence, or empty

    /// Of a project that is not as its file any more, so that there is no line of it.
    static ProjectFinding told(CheckFinding finding);
    /// "error", "warning", "note" or "correction".
    QString severity() const;
    /// Key of its warning group; empty for none.
    QString groupKey() const;
    /// "object 0x1a00:2"; empty where the message tells the place by itself.
    QString placeText(bool withLine) const;
    QJsonObject toJson() const;
};

/// What the check of a project has found. The check works on the project's working copy: the file is not changed, and
/// corrections tell what a run would correct.
struct ProjectFindings
{
    static ProjectFindings of(OpenedProject &project);
    /// Of a check that has been done.
    static ProjectFindings of(const OpenedProject &project, const GeneratorMainHandler::ModelFindings &model);

    QList<ProjectFinding> findings;
    QMap<QString, int> suppressed; ///< warnings that the project does not want to hear of, by the key of their group
    bool hasSeveralLines = false;

    int count(const QString &severity) const;
    /// An entry of the form "ncx-check" (docs/ncx.md).
    QJsonObject toJson(const QString &path) const;
};
