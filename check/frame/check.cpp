#include "check/frame/check.h"

#include "store/objectdatabase.h"

#include <utility>

using namespace Qt::StringLiterals;

void ProjectCheck::error(const QString &text)
{
    ++report_.errors;
    info("<strong>Error: </strong>"_L1 + text);
}

void ProjectCheck::redError(const QString &text)
{
    ++report_.errors;
    info("<strong><font color='red'>Error: </font></strong>"_L1 + text);
}

void ProjectCheck::warning(WarningGroup group, const QString &text)
{
    if (report_.suppressedGroups.contains(group))
        ++report_.suppressedCounts[group];
    else
        info(text);
}

void ProjectCheck::hint(WarningGroup group, const QString &text)
{
    if (!report_.suppressedGroups.contains(group))
        info(text);
}

void ProjectCheck::info(const QString &text)
{
    report_.send(text);
}

Check::Check(ObjectDataBase &store, CheckReport &report, quint8 line, Options options)
    : ProjectCheck(store, report)
    , line_(store, line)
    , options_(std::move(options))
{
}

bool Check::correct(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
{
    if (!store().addSubIndex(line_.number(), index, subindex, data, Quotes::Kept))
        return false;
    line_.replace(index, subindex, data);
    info("<i>Corrected: "_L1 + text);
    return true;
}

bool Check::correctCobId(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
{
    const bool done = correct(index, subindex, data, text);
    report().corrected |= done;
    return done;
}
