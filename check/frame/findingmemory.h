#pragma once

#include "check/frame/finding.h"
#include "check/line/checkedline.h"

#include <QHash>
#include <QSet>

#include <map>
#include <memory>
#include <utility>

/// What rules have found with single objects and messages of a line, from one check to the next.
///
/// It goes by what the rules see (`LocalCheck`): a subject that was not written to has the same findings as before, as
/// long as the terms of the check and, for a rule that asks for them, the users of variables are the same.
class FindingMemory
{
public:
    /// What a check is made by, beside the line itself.
    struct Terms
    {
        bool corrects = true;
        bool disablesPdos = true; ///< takes a PDO off the bus that maps nothing
        QSet<quint32> specialPGNs = {};

        friend bool operator==(const Terms &, const Terms &) = default;
    };

    /// The findings of rules that share a pass over all subjects of a kind.
    class Pass
    {
    public:
        explicit Pass(WriteLog::Kind kind)
            : kind_(kind)
        {
        }

        WriteLog::Kind kind() const { return kind_; }
        /// Starts, for rules that see who uses which variables: as counted by the line.
        void begin(quint64 variableChanges);
        /// The findings of a subject; null where it has to be asked for them.
        const QList<CheckFinding> *recall(quint64 key) const;
        void remember(quint64 key, const QList<CheckFinding> &findings);
        void forget(quint64 key);
        void forgetAll();
        /// From now on, the subjects of which nothing else is known have nothing to tell.
        void end() { knowsAll_ = true; }

    private:
        WriteLog::Kind kind_;
        bool knowsAll_ = false;
        quint64 variableChanges_ = 0;
        QSet<quint64> forgotten_;
        QHash<quint64, QList<CheckFinding>> told_; ///< not of those who have nothing to tell
    };

    void begin(const CheckedLine::Changes &changes, const Terms &terms);
    /// The pass that begins with a rule.
    Pass &passOf(const void *rule, WriteLog::Kind kind);
    /// Of one subject, in all passes.
    void forget(WriteLog::Kind kind, quint64 key);

private:
    Terms terms_;
    std::map<const void *, Pass> passes_;
};

/// What the checks of a project leave for the next one: its lines as they were read, and what was found there.
class CheckMemory
{
public:
    struct Line
    {
        CheckedLine line;
        FindingMemory findings = {};
        bool isUsed = true;
    };

    /// Forgets the lines that the check before had nothing to do with.
    void beginCheck();
    /// For the rules of one of a line's protocols, up to date with the store.
    Line &line(ObjectDataBase &store, quint8 number, const void *rules, const FindingMemory::Terms &terms);
    void clear() { lines_.clear(); }

private:
    std::map<std::pair<quint8, const void *>, Line> lines_;
};
