#pragma once

#include "check/frame/finding.h"
#include "check/frame/findingmemory.h"
#include "check/frame/warninggroups.h"
#include "check/line/checkedline.h"
#include "store/settings.h"

#include <QMap>
#include <QSet>

#include <functional>

class ObjectDataBase;

/// What a check has said so far, and what it holds back.
struct CheckReport
{
    std::function<void(const CheckFinding &)> send; ///< in the order of the rules
    qint32 errors = 0;
    bool corrected = false; ///< a COB-ID was corrected in the store
    QList<WarningGroup> suppressedGroups;
    QMap<WarningGroup, int> suppressedCounts;

    /// Sends a finding unless its group is suppressed; an error is counted, and so is a warning that is not sent.
    void tell(const CheckFinding &finding);
};

/// What a rule of the whole project sees and says.
class ProjectCheck
{
public:
    ProjectCheck(ObjectDataBase &store, CheckReport &report)
        : store_(store)
        , general_(store)
        , j1939_(store, Settings::Table::J1939)
        , report_(report)
    {
    }

    ObjectDataBase &store() const { return store_; }
    const Settings &general() const { return general_; }
    const Settings &j1939() const { return j1939_; }

    /// What the following findings belong to: a rule, and what tells of the place of its subjects, if anything does.
    using Subject = const void *;
    using Locate = void (*)(FindingPlace &, Subject outer, Subject inner);
    void ask(QLatin1StringView rule, Locate locate, Subject outer, Subject inner)
    {
        asked_ = {rule, locate, outer, inner};
        about_.reset();
    }
    /// Names the object of the finding of a rule that has no subject.
    void about(quint16 index) { about_ = index; }

    /// Sends a text as an error, and counts it.
    void error(const QString &text);
    /// The same, with the word "Error" in red.
    void redError(const QString &text);
    /// Sends a text unless its group is suppressed, in which case it is counted for the closing text.
    void warning(WarningGroup group, const QString &text);
    /// The same, but a suppressed hint is not counted.
    void hint(WarningGroup group, const QString &text);

protected:
    CheckReport &report() { return report_; }
    void setLineOfFindings(quint8 line) { line_ = line; }
    void tell(CheckFinding::Kind kind, std::optional<WarningGroup> group, const QString &text);
    /// Has what is told from now on noted, too; nothing for null.
    void noteFindings(QList<CheckFinding> *findings) { noted_ = findings; }

private:
    struct Asked
    {
        QLatin1StringView rule;
        Locate locate = nullptr;
        Subject outer = nullptr;
        Subject inner = nullptr;
    };
    FindingPlace place() const;

    ObjectDataBase &store_;
    Settings general_;
    Settings j1939_;
    CheckReport &report_;
    Asked asked_;
    std::optional<quint8> line_;
    std::optional<quint16> about_;
    QList<CheckFinding> *noted_ = nullptr;
};

/// What a rule of a line sees and says.
class Check : public ProjectCheck
{
public:
    struct Options
    {
        QString outputFolder; ///< base of a relative stack path
        FindingMemory::Terms terms = {};
    };

    /// Without a memory, the check asks its rules about everything.
    Check(ObjectDataBase &store, CheckReport &report, CheckedLine &line, FindingMemory *memory, Options options);

    CheckedLine &line() { return line_; }
    const QString &outputFolder() const { return options_.outputFolder; }
    /// True for a PGN that the stack handles by itself on this line.
    bool isSpecialPGN(quint32 pgn) const { return options_.terms.specialPGNs.contains(pgn); }
    /// False for a user who does not want corrections.
    bool corrects() const { return options_.terms.corrects; }

    /// False while a project is being built: a PDO may come before its mapping.
    bool disablesPdos() const { return options_.terms.disablesPdos; }

    FindingMemory *memory() { return memory_; }
    /// Tells what a pass remembers of a subject, or what `ask` finds.
    void recallOrAsk(FindingMemory::Pass &pass, quint64 key, const std::function<void()> &ask);

    /// Writes a corrected subindex to the store, and then sends the text. False, without a word, where the store
    /// refuses the subindex: it stays as it was.
    bool correct(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text);
    /// The same for a COB-ID, of which the line check reports that it was corrected.
    bool correctCobId(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text);

private:
    CheckedLine &line_;
    FindingMemory *memory_;
    Options options_;
    bool hasCorrected_ = false;
};
