#include "check/frame/check.h"

#include "store/objectdatabase.h"

#include <utility>

using namespace Qt::StringLiterals;

void ProjectCheck::error(const QString &text)
{
    ++report_.errors;
    send(CheckFinding::Kind::Error, {}, "<strong>Error: </strong>"_L1 + text);
}

void ProjectCheck::redError(const QString &text)
{
    ++report_.errors;
    send(CheckFinding::Kind::Error, {}, "<strong><font color='red'>Error: </font></strong>"_L1 + text);
}

void ProjectCheck::warning(WarningGroup group, const QString &text)
{
    if (report_.suppressedGroups.contains(group))
        ++report_.suppressedCounts[group];
    else
        send(CheckFinding::Kind::Warning, group, text);
}

void ProjectCheck::hint(WarningGroup group, const QString &text)
{
    if (!report_.suppressedGroups.contains(group))
        send(CheckFinding::Kind::Hint, group, text);
}

void ProjectCheck::send(CheckFinding::Kind kind, std::optional<WarningGroup> group, const QString &text)
{
    report_.send({.kind = kind, .rule = asked_.rule, .group = group, .place = place(), .text = text});
}

FindingPlace ProjectCheck::place() const
{
    FindingPlace place{.line = line_, .index = about_};
    if (asked_.locate)
        asked_.locate(place, asked_.outer, asked_.inner);
    return place;
}

Check::Check(ObjectDataBase &store, CheckReport &report, quint8 line, Options options)
    : ProjectCheck(store, report)
    , line_(store, line)
    , options_(std::move(options))
{
    setLineOfFindings(line);
}

bool Check::correct(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
{
    if (!store().addSubIndex(line_.number(), index, subindex, data, Quotes::Kept))
        return false;
    line_.replace(index, subindex, data);
    send(CheckFinding::Kind::Correction, {}, "<i>Corrected: "_L1 + text);
    return true;
}

bool Check::correctCobId(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
{
    const bool done = correct(index, subindex, data, text);
    report().corrected |= done;
    return done;
}
