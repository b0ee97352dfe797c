#include "check/frame/findingmemory.h"

void FindingMemory::Pass::begin(quint64 variableChanges)
{
    if (std::exchange(variableChanges_, variableChanges) != variableChanges)
        forgetAll();
}

const QList<CheckFinding> *FindingMemory::Pass::recall(quint64 key) const
{
    if (!knowsAll_ || forgotten_.contains(key))
        return nullptr;
    static const QList<CheckFinding> nothing;
    const auto told = told_.constFind(key);
    return told != told_.cend() ? &*told : &nothing;
}

void FindingMemory::Pass::remember(quint64 key, const QList<CheckFinding> &findings)
{
    forgotten_.remove(key);
    if (findings.isEmpty())
        told_.remove(key);
    else
        told_.insert(key, findings);
}

void FindingMemory::Pass::forget(quint64 key)
{
    told_.remove(key);
    forgotten_.insert(key);
}

void FindingMemory::Pass::forgetAll()
{
    knowsAll_ = false;
    forgotten_.clear();
    told_.clear();
}

void FindingMemory::begin(const CheckedLine::Changes &changes, const Terms &terms)
{
    const bool areTermsNew = terms != terms_ || changes.settings;
    terms_ = terms;
    for (auto &[rule, pass] : passes_) {
        const WriteLog::Changes &written = changes.of(pass.kind());
        if (areTermsNew || written.all)
            pass.forgetAll();
        for (const quint64 key : written.keys)
            pass.forget(key);
    }
}

FindingMemory::Pass &FindingMemory::passOf(const void *rule, WriteLog::Kind kind)
{
    return passes_.try_emplace(rule, kind).first->second;
}

void FindingMemory::forget(WriteLog::Kind kind, quint64 key)
{
    for (auto &[rule, pass] : passes_) {
        if (pass.kind() == kind)
            pass.forget(key);
    }
}

void CheckMemory::beginCheck()
{
    std::erase_if(lines_, [](const auto &entry) { return !entry.second.isUsed; });
    for (auto &[key, line] : lines_)
        line.isUsed = false;
}

CheckMemory::Line &CheckMemory::line(ObjectDataBase &store, quint8 number, const void *rules,
                                     const FindingMemory::Terms &terms)
{
    const std::pair key(number, rules);
    auto entry = lines_.find(key);
    const bool isKnown = entry != lines_.end();
    if (!isKnown)
        entry = lines_.try_emplace(key, Line{CheckedLine(store, number)}).first;
    Line &line = entry->second;
    line.isUsed = true;
    line.findings.begin(isKnown ? line.line.update() : CheckedLine::Changes(), terms);
    return line;
}
