#include "check/modelchecker.h"
#include "check/rulecase.h"
#include "support/printing.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QStringList deduplicated(QStringList names)
{
    names.removeDuplicates();
    names.sort();
    return names;
}

class Rules : public testing::Test
{
protected:
    Rules()
    {
        QCoreApplication::setApplicationName(u"CANopen NodeComposer"_s);
        QCoreApplication::setApplicationVersion(u"4.3.3"_s);
    }
};

TEST_F(Rules, SayWhatTheCasesExpect)
{
    QSet<QString> seen;
    for (const RuleCase &rules : ruleCases()) {
        SCOPED_TRACE(qPrintable(rules.place()));
        CaseProject project(rules.commands);
        const CaseProject::Outcome outcome = project.check();
        EXPECT_EQ(outcome.messages, rules.messages);
        const QStringList expected = rules.rule == "-"_L1 ? QStringList() : rules.rule.split(u", "_s);
        EXPECT_EQ(deduplicated(outcome.rules), deduplicated(expected));
        const auto isError = [](const QString &text) { return text.contains(u"Error: "_s); };
        EXPECT_EQ(outcome.errors, std::count_if(outcome.messages.begin(), outcome.messages.end(), isError));
        seen.unite(QSet<QString>(expected.begin(), expected.end()));
    }
    const CheckRules &all = CheckRules::builtIn();
    for (const auto part : {all.common, all.canOpen, all.j1939, all.rawCan}) {
        for (const CheckRule &rule : part)
            EXPECT_TRUE(seen.contains(rule.name)) << "no case provokes " << rule.name.data();
    }
}

} // namespace
