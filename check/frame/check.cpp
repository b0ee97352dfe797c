#include "check/frame/check.h"

#include "store/objectdatabase.h"

#include <utility>

using namespace Qt::StringLiterals;

void CheckReport::tell(const CheckFinding &finding)
{
    if (finding.kind == CheckFinding::Kind::Error)
        ++errors;
    if (!finding.group || !suppressedGroups.contains(*finding.group))
        send(finding);
    else if (finding.kind == CheckFinding::Kind::Warning)
        ++suppressedCounts[*finding.group];
}

void ProjectCheck::error(const QString &text)
{
    tell(CheckFinding::Kind::Error, {}, "<strong>Error: </strong>"_L1 + text);
}

void ProjectCheck::redError(const QString &text)
{
    tell(CheckFinding::Kind::Error, {}, "<strong><font color='red'>Error: </font></strong>"_L1 + text);
}

void ProjectCheck::warning(WarningGroup group, const QString &text)
{
    tell(CheckFinding::Kind::Warning, group, text);
}

void ProjectCheck::hint(WarningGroup group, const QString &text)
{
    tell(CheckFinding::Kind::Hint, group, text);
}

void ProjectCheck::tell(CheckFinding::Kind kind, std::optional<WarningGroup> group, const QString &text)
{
    const CheckFinding finding{.kind = kind, .rule = asked_.rule, .group = group, .place = place(), .text = text};
    if (noted_)
        noted_->append(finding);
    report_.tell(finding);
}

FindingPlace ProjectCheck::place() const
{
    FindingPlace place{.line = line_, .index = about_};
    if (asked_.locate)
        asked_.locate(place, asked_.outer, asked_.inner);
    return place;
}

Check::Check(ObjectDataBase &store, CheckReport &report, CheckedLine &line, FindingMemory *memory, Options options)
    : ProjectCheck(store, report)
    , line_(line)
    , memory_(memory)
    , options_(std::move(options))
{
    setLineOfFindings(line.number());
}

void Check::recallOrAsk(FindingMemory::Pass &pass, quint64 key, const std::function<void()> &ask)
{
    if (const QList<CheckFinding> *known = pass.recall(key)) {
        for (const CheckFinding &finding : *known)
            report().tell(finding);
        return;
    }
    QList<CheckFinding> findings;
    hasCorrected_ = false;
    noteFindings(&findings);
    ask();
    noteFindings(nullptr);
    // What was corrected is not found again; and what could not be, may be the next time.
    if (hasCorrected_)
        pass.forget(key);
    else
        pass.remember(key, findings);
}

bool Check::correct(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
{
    hasCorrected_ = true;
    if (memory_)
        memory_->forget(WriteLog::Kind::Object, index);
    if (!store().addSubIndex(line_.number(), index, subindex, data, Quotes::Kept))
        return false;
    line_.replace(index, subindex, data);
    tell(CheckFinding::Kind::Correction, {}, "<i>Corrected: "_L1 + text);
    return true;
}

bool Check::correctCobId(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
{
    const bool done = correct(index, subindex, data, text);
    report().corrected |= done;
    return done;
}
