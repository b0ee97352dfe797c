#pragma once

#include "check/frame/checkrules.h"
#include "check/frame/warninggroups.h"

#include <QObject>

#include <memory>

class CheckMemory;
class ObjectDataBase;

/// Tells what is wrong with a project before anything is generated from it.
///
/// One checker serves one check: `checkCommon` once, then the line checks that a line's type calls for. Each of these
/// returns its number of errors; warnings, hints and corrections do not count. All texts go out through `newError`, in
/// the order of the rules, and no finding ends a check.
///
/// A warning belongs to a group, and a project may suppress groups; `suppressedSummary` tells afterwards what was held
/// back over all lines. The checker writes to the store only what a rule corrects (`Check::correct`), and the version
/// of this tool.
class ModelChecker : public QObject
{
    Q_OBJECT

public:
    explicit ModelChecker(const CheckRules &rules = CheckRules::builtIn(), QObject *parent = nullptr);
    ~ModelChecker() override;
    Q_DISABLE_COPY_MOVE(ModelChecker)

    /// Has the line checks go by what is remembered of those before, with the same findings in the same order. Null has
    /// them ask about everything.
    void setMemory(CheckMemory *memory) { memory_ = memory; }
    /// Has a PDO that maps nothing told as an error, and not taken off the bus.
    void setKeepsPdos(bool keeps) { keepsPdos_ = keeps; }
    /// The rules of the project as a whole. `outputFolder` is the base of a relative stack path.
    qint32 checkCommon(const std::shared_ptr<ObjectDataBase> &store, const QString &outputFolder);
    /// Sets `corrected` if a COB-ID was corrected in the store.
    qint32 checkCANopenLine(quint8 line, const std::shared_ptr<ObjectDataBase> &store, bool &corrected);
    /// `specialPGNs` are those of `specialPGNs`.
    qint32 checkJ1939Line(int lineCount, quint8 line, const std::shared_ptr<ObjectDataBase> &store,
                          const QList<quint32> &specialPGNs);
    qint32 checkRawCANLine(quint8 line, const std::shared_ptr<ObjectDataBase> &store);
    /// The closing text of a check, with the number of suppressed warnings of each group; empty if there are none.
    QString suppressedSummary() const;
    /// How many warnings of which group were suppressed so far.
    const QMap<WarningGroup, int> &suppressedCounts() const { return report_.suppressedCounts; }
    static QList<WarningGroupInfo> groupTable() { return warningGroups(); }

Q_SIGNALS:
    void newError(const QString &errorText);
    /// The same, as a value.
    void found(const CheckFinding &finding);

private:
    /// Counts anew for each check, but what is suppressed over all of them.
    CheckReport &beginReport(ObjectDataBase &store);
    qint32 checkLine(quint8 line, ObjectDataBase &store, std::span<const LineRule> rules,
                     const QSet<quint32> &specialPGNs = {});

    const CheckRules rules_;
    CheckReport report_;
    QString outputFolder_;
    CheckMemory *memory_ = nullptr;
    bool keepsPdos_ = false;
};
