#include "ncx/commands/findingtext.h"

#include "ncx/findings/projectfindings.h"
#include "ncx/usage/terminal.h"

using namespace Qt::StringLiterals;

namespace {

Terminal::Style styleOf(CheckFinding::Kind kind)
{
    switch (kind) {
    case CheckFinding::Kind::Error:
        return Terminal::Style::Bad;
    case CheckFinding::Kind::Warning:
        return Terminal::Style::Doubtful;
    case CheckFinding::Kind::Hint:
    case CheckFinding::Kind::Correction:
        break;
    }
    return Terminal::Style::Strong;
}

QString headOf(const Terminal &terminal, const QString &path, const ProjectFinding &finding, bool withLine)
{
    QString text = finding.fileLine > 0 ? u"%1:%2: "_s.arg(path).arg(finding.fileLine) : u"%1: "_s.arg(path);
    text += terminal.styled(styleOf(finding.finding.kind), finding.severity() + u':') + u' ';
    if (const QString place = finding.placeText(withLine); !place.isEmpty())
        text += place + ": "_L1;
    text += finding.message;
    const QString group = finding.groupKey();
    return group.isEmpty() ? text : u"%1 [%2]"_s.arg(text, group);
}

} // namespace

QStringList FindingText::ofAll(const Terminal &terminal, const QString &path, const ProjectFindings &findings)
{
    QStringList texts;
    for (qsizetype i = 0; i < findings.findings.size(); ++i) {
        const ProjectFinding &finding = findings.findings.at(i);
        QString text = headOf(terminal, path, finding, findings.hasSeveralLines);
        const bool goesOn = i + 1 < findings.findings.size() &&
                            findings.findings.at(i + 1).finding.rule == finding.finding.rule &&
                            findings.findings.at(i + 1).advice == finding.advice;
        if (!finding.advice.isEmpty() && !goesOn)
            text += "\n    "_L1 + terminal.styled(Terminal::Style::Faint, finding.advice);
        texts.append(text);
    }
    return texts;
}

QString FindingText::summary(const ProjectFindings &findings)
{
    QStringList parts;
    for (const QString &severity : {u"error"_s, u"warning"_s, u"correction"_s, u"note"_s}) {
        if (const int count = findings.count(severity); count > 0)
            parts.append(u"%1 %2%3"_s.arg(count).arg(severity, count > 1 ? u"s"_s : QString()));
    }
    QString text = parts.isEmpty() ? u"nothing found"_s : parts.join(", "_L1);
    QStringList suppressed;
    for (auto group = findings.suppressed.begin(); group != findings.suppressed.end(); ++group)
        suppressed.append(u"%1 %2"_s.arg(group.key()).arg(group.value()));
    return suppressed.isEmpty() ? text : u"%1; suppressed: %2"_s.arg(text, suppressed.join(", "_L1));
}

void FindingText::tellAll(Terminal &terminal, const QString &path, const ProjectFindings &findings)
{
    for (const QString &text : ofAll(terminal, path, findings))
        terminal.answer(text);
    terminal.answer(u"%1: %2"_s.arg(path, summary(findings)));
}
