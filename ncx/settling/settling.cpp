#include "ncx/settling/settling.h"

#include "generate/run/importdispatch.h"
#include "ncx/findings/projectfindings.h"
#include "ncx/project/openedproject.h"
#include "ncx/settling/readings.h"
#include "ncx/settling/settlingrows.h"
#include "nodedict/edsvalue.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Some repairs make way for others. A file needs two or three passes.
constexpr int mostPasses = 10;

/// Real descriptions have a few megabytes at most.
constexpr qint64 mostBytes = 64LL << 20;

void takeNodeId(SettledLine &line)
{
    line.setTopic({SettlingTopic::Kind::Settled, u"The node-id is that of the file"_s,
                   u"[DeviceCommissioning] tells it."_s, u"--node-id gives it another one."_s});
    // The name of the section has been misspelled since the first edition of CiA 306.
    for (const QString &name : {u"devicecommissioning"_s, u"devicecomissioning"_s}) {
        const DescriptionText::Section *section = line.file().section(name);
        const quint32 nodeId = section ? EdsValue::number(section->word("nodeid"_L1)).value_or(0) : 0;
        if (nodeId >= 1 && nodeId <= CANopen::lastNodeId)
            line.setGeneral(u"co_node_id"_s, QString::number(nodeId));
    }
}

bool isAsked(const SettlingRow &row, const Settling &settling)
{
    return (row.kind != SettlingTopic::Kind::Repaired || settling.repairs) &&
           (!row.isConfigured || settling.isConfigured);
}

/// Lets the rows of a rule look at a finding, in their order. True if one of them has changed something.
bool mend(SettledLine &line, const Settling &settling, const QString &rule, const FindingPlace &place)
{
    for (const SettlingRow &row : settlingRows()) {
        if (!row.settles(rule) || !isAsked(row, settling))
            continue;
        line.setTopic(row.topic());
        if (row.mend(line, place) && !rule.isEmpty())
            return true;
    }
    return false;
}

void tellLeft(const Settling &settling, const ProjectFindings &findings, SettledLine &line)
{
    for (const ProjectFinding &finding : findings.findings) {
        if (finding.severity() == "note"_L1)
            continue;
        const bool isMendable = std::ranges::any_of(settlingRows(), [&](const SettlingRow &row) {
            return row.settles(finding.finding.rule) && row.kind == SettlingTopic::Kind::Repaired && !settling.repairs;
        });
        line.setTopic({finding.severity() == "error"_L1 ? SettlingTopic::Kind::Left : SettlingTopic::Kind::Doubtful,
                       u"by the rule %1"_s.arg(finding.finding.rule), finding.advice,
                       isMendable ? u"--repair mends it by the smallest change."_s : QString()});
        const FindingPlace &place = finding.finding.place;
        if (place.index)
            line.tell(*place.index, place.subindex, finding.message);
        else
            line.tell(0, finding.message);
    }
}

} // namespace

QString Settling::settle(OpenedProject &project, SettlingReport &report) const
{
    DescriptionText text;
    if (QFileInfo(file).size() > mostBytes)
        return u"it is too large for a description, of which 64 MB are read"_s;
    if (QString reason = OpenedProject::reasonNotToRead(file); !reason.isEmpty())
        return reason;
    if (!text.load(file))
        return u"it cannot be read"_s;
    if (QString reason = importInto(project, text, report); !reason.isEmpty())
        return reason;
    if (!goesOn())
        return u"it was taken back"_s;
    return mendAll(project, text, report) ? QString() : u"the working copy cannot be written"_s;
}

QString Settling::importInto(OpenedProject &project, const DescriptionText &text, SettlingReport &report) const
{
    ImportReport import;
    const QString suffix = QFileInfo(file).suffix().toLower();
    if (suffix != "eds"_L1 && suffix != "dcf"_L1)
        return u"its name has to end in .eds or .dcf"_s;
    if (!ImportDispatch::importFile(project.sharedStore(), file, line, import))
        return u"it cannot be read"_s;
    if (import.objects == 0)
        return u"nothing in it could be imported"_s;
    SettledLine imported(project.store(), line, text, report);
    Readings::tellImport(imported, import, isConfigured);
    return {};
}

bool Settling::mendAll(OpenedProject &project, const DescriptionText &text, SettlingReport &report) const
{
    SettledLine settled(project.store(), line, text, report);
    if (takesNodeId)
        takeNodeId(settled);
    mend(settled, *this, {}, {});
    ProjectFindings findings = ProjectFindings::of(project);
    // A repair may leave nothing to warn of.
    const auto mendFindings = [&](bool isWarning) {
        bool changed = false;
        for (const ProjectFinding &finding : findings.findings) {
            if (finding.finding.place.line.value_or(line) == line && (finding.severity() == "warning"_L1) == isWarning)
                changed |= mend(settled, *this, finding.finding.rule, finding.finding.place);
        }
        return changed;
    };
    for (int pass = 0; pass < mostPasses && goesOn() && (mendFindings(false) || mendFindings(true)); ++pass)
        findings = ProjectFindings::of(project);
    if (isText)
        Readings::dropDenotations(settled);
    Readings::tellDescriptions(settled);
    tellLeft(*this, findings, settled);
    return !settled.hasFailed();
}
