#pragma once

#include <QStringList>

struct ProjectFindings;
class Terminal;

/// Findings as people read them: "FILE:LINE: error: object 0x1a00: ... [WG_LAYOUT]" and below what to do.
namespace FindingText {

/// Of neighbours that the same rule has found, the last one tells what to do.
QStringList ofAll(const Terminal &terminal, const QString &path, const ProjectFindings &findings);
/// "2 errors, 1 warning; suppressed: WG_EDS 3"
QString summary(const ProjectFindings &findings);
/// All of them, and the summary.
void tellAll(Terminal &terminal, const QString &path, const ProjectFindings &findings);

} // namespace FindingText
