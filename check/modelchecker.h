#pragma once

#include "check/checkrules.h"
#include "check/warninggroups.h"

#include <QMap>
#include <QObject>

#include <memory>

class ObjectDataBase;

/// Tells what is wrong with a project before anything is generated from it.
///
/// One checker serves one check: `checkCommon` once, then the line checks that a line's type calls for. Each of these
/// returns its number of errors; warnings, hints and corrections do not count. All texts go out through `newError`, in
/// the order of the rules, and no finding ends a check.
///
/// A warning belongs to a group, and a project may suppress groups; `suppressedSummary` tells afterwards what was held
/// back over all lines. The checker writes to the store only by `correct`.
class ModelChecker : public QObject
{
    Q_OBJECT

public:
    explicit ModelChecker(const CheckRules &rules = CheckRules::builtIn(), QObject *parent = nullptr);
    ~ModelChecker() override;
    Q_DISABLE_COPY_MOVE(ModelChecker)

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
    static QList<WarningGroupInfo> groupTable() { return warningGroups(); }

    // What rules see and say.

    ObjectDataBase &store() const { return *database_; }
    /// The line under check; of a line check only.
    CheckedLine &line() const { return *line_; }
    const QString &outputFolder() const { return outputFolder_; }
    bool isSpecialPGN(quint32 pgn) const { return specialPGNs_.contains(pgn); }
    bool autoCorrectionDisabled() const { return autoCorrectionDisabled_; }

    /// Sends a text and counts it as an error.
    void reportError(const QString &text);
    /// Sends a text unless its group is suppressed, in which case it is counted for the closing text.
    void reportWarning(WarningGroup group, const QString &text);
    /// The same, but a suppressed hint is not counted.
    void reportHint(WarningGroup group, const QString &text);
    /// Sends a text that neither counts nor can be suppressed.
    void reportInfo(const QString &text);
    /// Writes a corrected subindex to the store, and then sends the text. False, without a word, where the store
    /// refuses the subindex: it stays as it was.
    bool correct(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text);
    /// Has the line check report that it corrected a COB-ID.
    void noteCorrection() { corrected_ = true; }

Q_SIGNALS:
    void newError(const QString &errorText);

private:
    qint32 walk(std::span<const CheckRule> rules, const std::shared_ptr<ObjectDataBase> &store,
                std::optional<quint8> line);
    void pass(std::span<const CheckRule> rules, CheckLoop CheckRule::*loop, const CheckSubject &outer);

    const CheckRules rules_;
    std::shared_ptr<ObjectDataBase> database_;
    std::unique_ptr<CheckedLine> line_;
    qint32 errorCount_ = 0;
    bool autoCorrectionDisabled_ = false;
    bool corrected_ = false;
    QList<WarningGroup> suppressedGroups_;
    QMap<WarningGroup, int> suppressedCounts_;
    QString outputFolder_;
    QSet<quint32> specialPGNs_;
};
