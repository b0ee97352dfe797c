#include "check/rulecase.h"

#include "check/line/specialpgns.h"
#include "check/modelchecker.h"
#include "store/lineprotocols.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr auto defaultApplication = "CANopen NodeComposer"_L1;
constexpr auto defaultVersion = "4.3.3"_L1;

template <class Port>
std::vector<CheckRule<Port>> recording(std::span<const CheckRule<Port>> rules, QString &current)
{
    using Subject = typename CheckRule<Port>::Subject;
    std::vector<CheckRule<Port>> wrapped(rules.begin(), rules.end());
    for (CheckRule<Port> &rule : wrapped) {
        rule.find = [&current, find = rule.find, name = rule.name](Port &check, Subject outer, Subject inner) {
            current = name;
            find(check, outer, inner);
        };
    }
    return wrapped;
}

} // namespace

QString RuleCase::name() const
{
    const QString first = rules().isEmpty() ? u"nothing"_s : rules().first();
    return u"%1_%2_%3"_s.arg(QFileInfo(file).baseName()).arg(lineNumber).arg(first);
}

QList<RuleCase> ruleCases()
{
    QList<RuleCase> cases;
    const QDir folder(QStringLiteral(NCX_SOURCE_DIR) + u"/tests/data/check"_s);
    for (const QString &file : folder.entryList({u"*.txt"_s}, QDir::Files)) {
        QStringList clean;
        int lineNumber = 0;
        for (const QString &line : QString::fromUtf8(TestSupport::readFile(folder.filePath(file))).split(u'\n')) {
            ++lineNumber;
            if (line.startsWith("= "_L1)) {
                if (!cases.isEmpty() && cases.last().rule == "clean"_L1)
                    clean = cases.takeLast().commands;
                const QString rule = line.sliced(2);
                cases.append({file, lineNumber, rule, rule == "clean"_L1 ? QStringList() : clean, {}});
            } else if (line.startsWith("> "_L1)) {
                cases.last().messages.append(line.sliced(2).replace("\\n"_L1, "\n"_L1));
            } else if (!line.isEmpty() && !line.startsWith(u'#')) {
                cases.last().commands.append(line);
            }
        }
    }
    return cases;
}

CaseProject::CaseProject(const QStringList &commands)
{
    QStringList others;
    bool refusesWrites = false;
    for (const QString &command : commands) {
        const QString rest = command.section(u' ', 1);
        const QString file = folder_.filePath(rest.section(u" = "_s, 0, 0));
        if (command.startsWith("application "_L1)) {
            QCoreApplication::setApplicationName(rest);
        } else if (command.startsWith("version "_L1)) {
            QCoreApplication::setApplicationVersion(rest);
        } else if (command.startsWith("file "_L1)) {
            QDir().mkpath(QFileInfo(file).path());
            EXPECT_TRUE(TestSupport::writeFile(file, rest.section(u" = "_s, 1).toUtf8()));
        } else if (command == "refuse writes"_L1) {
            refusesWrites = true;
        } else {
            others.append(command);
        }
    }
    script_.run(others);
    store()->setBlocked(refusesWrites);
}

CaseProject::~CaseProject()
{
    store()->setBlocked(false);
    QCoreApplication::setApplicationName(defaultApplication);
    QCoreApplication::setApplicationVersion(defaultVersion);
}

CaseProject::Outcome CaseProject::check()
{
    Outcome outcome;
    QString rule;
    const CheckRules &builtIn = CheckRules::builtIn();
    const std::vector<ProjectRule> common = recording(builtIn.common, rule);
    const std::vector<LineRule> canOpen = recording(builtIn.canOpen, rule);
    const std::vector<LineRule> j1939 = recording(builtIn.j1939, rule);
    const std::vector<LineRule> rawCan = recording(builtIn.rawCan, rule);
    ModelChecker checker({.common = common, .canOpen = canOpen, .j1939 = j1939, .rawCan = rawCan});
    QObject::connect(&checker, &ModelChecker::newError, [&](const QString &message) {
        outcome.messages.append(message);
        outcome.rules.append(rule);
    });
    outcome.errors = checker.checkCommon(store(), folder_.path());
    for (const quint8 line : store()->getNodeList()) {
        const LineProtocols protocols = LineProtocols::ofLine(*store(), line);
        if (protocols.canOpen)
            outcome.errors += checker.checkCANopenLine(line, store(), outcome.corrected);
        if (protocols.j1939)
            outcome.errors += checker.checkJ1939Line(1, line, store(), specialPGNs(*store()));
        if (protocols.rawCan)
            outcome.errors += checker.checkRawCANLine(line, store());
    }
    outcome.messages.replaceInStrings(folder_.path(), u"${FOLDER}"_s);
    outcome.summary = checker.suppressedSummary();
    return outcome;
}
