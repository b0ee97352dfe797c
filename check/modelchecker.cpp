#include "check/modelchecker.h"

#include "check/specialpgns.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"

#include <QCoreApplication>
#include <QVariant>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

ModelChecker::ModelChecker(const CheckRules &rules, QObject *parent)
    : QObject(parent)
    , rules_(rules)
{
}

ModelChecker::~ModelChecker() = default;

qint32 ModelChecker::checkCommon(const std::shared_ptr<ObjectDataBase> &store, const QString &outputFolder)
{
    outputFolder_ = outputFolder;
    const qint32 errors = walk(rules_.common, store, {});
    store->setMiscSetting(u"PreviousToolVersion"_s, QCoreApplication::applicationVersion());
    return errors;
}

qint32 ModelChecker::checkCANopenLine(quint8 line, const std::shared_ptr<ObjectDataBase> &store, bool &corrected)
{
    corrected_ = false;
    const qint32 errors = walk(rules_.canOpen, store, line);
    corrected |= corrected_;
    return errors;
}

qint32 ModelChecker::checkJ1939Line(int /*lineCount*/, quint8 line, const std::shared_ptr<ObjectDataBase> &store,
                                    const QList<quint32> &specialPGNs)
{
    const auto setOf = [](const QList<quint32> &list) { return QSet<quint32>(list.begin(), list.end()); };
    // A diagnostic message that only other lines have switched on is an ordinary one here.
    specialPGNs_ = setOf(specialPGNs) - (setOf(::specialPGNs(*store)) - setOf(::specialPGNs(*store, line)));
    return walk(rules_.j1939, store, line);
}

qint32 ModelChecker::checkRawCANLine(quint8 line, const std::shared_ptr<ObjectDataBase> &store)
{
    return walk(rules_.rawCan, store, line);
}

qint32 ModelChecker::walk(std::span<const CheckRule> rules, const std::shared_ptr<ObjectDataBase> &store,
                          std::optional<quint8> line)
{
    database_ = store;
    line_ = line ? std::make_unique<CheckedLine>(*store, *line) : nullptr;
    errorCount_ = 0;
    autoCorrectionDisabled_ = QVariant(UserSettings::value(u"General"_s, u"disableautocorrection"_s)).toBool();
    suppressedGroups_ = parseWarningGroups(store->getMiscSetting(u"SuppressedWarningGroups"_s));
    pass(rules, &CheckRule::each, {});
    return errorCount_;
}

/// Neighbours with the same loop share one pass over its subjects.
void ModelChecker::pass(std::span<const CheckRule> rules, CheckLoop CheckRule::*loop, const CheckSubject &outer)
{
    for (auto first = rules.begin(); first != rules.end();) {
        const auto end = std::find_if(first + 1, rules.end(), [&](const CheckRule &rule) {
            return rule.*loop != (*first).*loop || (loop == &CheckRule::each && rule.opensPass);
        });
        const std::span<const CheckRule> together(first, end);
        ((*first).*loop)(*this, outer, [&](const CheckSubject &subject) {
            if (loop == &CheckRule::each)
                pass(together, &CheckRule::within, subject);
            else
                std::ranges::for_each(together, [&](const CheckRule &rule) { rule.find(*this, subject); });
        });
        first = end;
    }
}

void ModelChecker::reportError(const QString &text)
{
    ++errorCount_;
    Q_EMIT newError(text);
}

void ModelChecker::reportWarning(WarningGroup group, const QString &text)
{
    if (suppressedGroups_.contains(group))
        ++suppressedCounts_[group];
    else
        Q_EMIT newError(text);
}

void ModelChecker::reportHint(WarningGroup group, const QString &text)
{
    if (!suppressedGroups_.contains(group))
        Q_EMIT newError(text);
}

void ModelChecker::reportInfo(const QString &text)
{
    Q_EMIT newError(text);
}

bool ModelChecker::correct(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data, const QString &text)
{
    if (!database_->addSubIndex(line_->number(), index, subindex, data))
        return false;
    line_->replace(index, subindex, data);
    Q_EMIT newError(text);
    return true;
}

QString ModelChecker::suppressedSummary() const
{
    const int sum = std::accumulate(suppressedCounts_.begin(), suppressedCounts_.end(), 0);
    if (sum == 0)
        return {};
    QStringList lines{u"<strong>Note: </strong>%1 warning(s) suppressed by the project settings:"_s.arg(sum)};
    for (const WarningGroupInfo &group : warningGroups()) {
        if (const int count = suppressedCounts_.value(group.id); count > 0)
            lines.append(u"&nbsp;&nbsp;%1 (%2): %3"_s.arg(group.title, group.key).arg(count));
    }
    return lines.join(u'\n');
}
