#include "check/modelchecker.h"

#include "check/line/specialpgns.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"

#include <QCoreApplication>
#include <QVariant>

#include <numeric>

using namespace Qt::StringLiterals;

ModelChecker::ModelChecker(const CheckRules &rules, QObject *parent)
    : QObject(parent)
    , rules_(rules)
{
    report_.send = [this](const CheckFinding &finding) {
        Q_EMIT newError(finding.text);
        Q_EMIT found(finding);
    };
}

ModelChecker::~ModelChecker() = default;

qint32 ModelChecker::checkCommon(const std::shared_ptr<ObjectDataBase> &store, const QString &outputFolder)
{
    outputFolder_ = outputFolder;
    if (memory_)
        memory_->beginCheck();
    ProjectCheck check(*store, beginReport(*store));
    askRules(check, rules_.common);
    std::ignore = store->setMiscSetting(u"PreviousToolVersion"_s, QCoreApplication::applicationVersion());
    return report_.errors;
}

qint32 ModelChecker::checkCANopenLine(quint8 line, const std::shared_ptr<ObjectDataBase> &store, bool &corrected)
{
    const qint32 errors = checkLine(line, *store, rules_.canOpen);
    corrected |= report_.corrected;
    return errors;
}

qint32 ModelChecker::checkJ1939Line(int /*lineCount*/, quint8 line, const std::shared_ptr<ObjectDataBase> &store,
                                    const QList<quint32> &specialPGNs)
{
    const auto setOf = [](const QList<quint32> &list) { return QSet<quint32>(list.begin(), list.end()); };
    // A diagnostic message that only other lines have switched on is an ordinary one here.
    const QSet<quint32> ofOtherLines = setOf(::specialPGNs(*store)) - setOf(::specialPGNs(*store, line));
    return checkLine(line, *store, rules_.j1939, setOf(specialPGNs) - ofOtherLines);
}

qint32 ModelChecker::checkRawCANLine(quint8 line, const std::shared_ptr<ObjectDataBase> &store)
{
    return checkLine(line, *store, rules_.rawCan);
}

CheckReport &ModelChecker::beginReport(ObjectDataBase &store)
{
    report_.errors = 0;
    report_.corrected = false;
    report_.suppressedGroups = parseWarningGroups(store.getMiscSetting(u"SuppressedWarningGroups"_s));
    return report_;
}

qint32 ModelChecker::checkLine(quint8 line, ObjectDataBase &store, std::span<const LineRule> rules,
                               const QSet<quint32> &specialPGNs)
{
    const QVariant disabled = UserSettings::value(u"General"_s, u"disableautocorrection"_s);
    const FindingMemory::Terms terms{
        .corrects = !disabled.toBool(), .disablesPdos = !keepsPdos_, .specialPGNs = specialPGNs};
    const Check::Options options{.outputFolder = outputFolder_, .terms = terms};
    CheckReport &report = beginReport(store);
    if (memory_) {
        CheckMemory::Line &known = memory_->line(store, line, rules.data(), terms);
        Check check(store, report, known.line, &known.findings, options);
        askRules(check, rules);
    } else {
        CheckedLine read(store, line);
        Check check(store, report, read, nullptr, options);
        askRules(check, rules);
    }
    return report_.errors;
}

QString ModelChecker::suppressedSummary() const
{
    const int sum = std::accumulate(report_.suppressedCounts.begin(), report_.suppressedCounts.end(), 0);
    if (sum == 0)
        return {};
    QStringList lines{u"<strong>Note: </strong>%1 warning(s) suppressed by the project settings:"_s.arg(sum)};
    for (const WarningGroupInfo &group : warningGroups()) {
        if (const int count = report_.suppressedCounts.value(group.id); count > 0)
            lines.append(u"&nbsp;&nbsp;%1 (%2): %3"_s.arg(group.title, group.key).arg(count));
    }
    return lines.join(u'\n');
}
