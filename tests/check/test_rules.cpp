#include "check/line/storevalue.h"
#include "check/modelchecker.h"
#include "check/rulecase.h"
#include "support/printing.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

QStringList deduplicated(QStringList names)
{
    names.removeDuplicates();
    names.sort();
    return names;
}

/// Names of all rules in their order.
QStringList ruleNames()
{
    QStringList names;
    const CheckRules &all = CheckRules::builtIn();
    const auto add = [&names](const auto &rules) {
        for (const auto &rule : rules)
            names.append(rule.name);
    };
    add(all.common);
    add(all.canOpen);
    add(all.j1939);
    add(all.rawCan);
    return names;
}

QString documentation()
{
    return QString::fromUtf8(TestSupport::readFile(QStringLiteral(NCX_SOURCE_DIR "/docs/checks.md")));
}

/// A row of it.
struct DocumentedRule
{
    QString rule;
    QString message; ///< without markup and line breaks, its places as "%1"
    QString cause;
    QString remedy;
    QString group; ///< "error", "corrected", a group's key, or that and ", hint"
};

QList<DocumentedRule> documentedRules()
{
    QList<DocumentedRule> rows;
    for (const QString &line : documentation().split(u'\n')) {
        const QStringList cells = line.split(u" | "_s);
        if (line.startsWith("| "_L1) && cells.size() == 5 && cells.first() != "| rule"_L1)
            rows.append({cells.at(0).sliced(2), cells.at(1).sliced(1).chopped(1), cells.at(2), cells.at(3),
                         cells.at(4).chopped(2)});
    }
    return rows;
}

/// The row whose message a text is.
DocumentedRule rowOf(const QList<DocumentedRule> &rows, QString text)
{
    static const QRegularExpression markup(u"<[^>]*>|\n"_s);
    text = text.remove(markup).trimmed();
    for (const DocumentedRule &row : rows) {
        const QString pattern =
            QRegularExpression::escape(row.message).replace(QRegularExpression(uR"(\\%\d)"_s), u".*"_s);
        if (QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch())
            return row;
    }
    return {};
}

QStringList allGroups()
{
    QStringList keys;
    for (const WarningGroupInfo &group : ModelChecker::groupTable())
        keys.append(group.key);
    return keys;
}

/// The row of one of the rules whose message a text is.
DocumentedRule documentedAs(const QString &text, const QStringList &rules)
{
    static const QList<DocumentedRule> documented = documentedRules();
    QList<DocumentedRule> rows;
    std::ranges::copy_if(documented, std::back_inserter(rows),
                         [&rules](const DocumentedRule &row) { return rules.contains(row.rule); });
    return rowOf(rows, text);
}

/// Holds what the check says against the groups that the documentation tells, and what is left of it with all of them
/// suppressed.
void expectDocumentedGroups(const RuleCase &ruleCase, const CaseProject::Outcome &outcome)
{
    int warnings = 0;
    QStringList left;
    for (qsizetype i = 0; i < outcome.messages.size(); ++i) {
        const QString &text = outcome.messages.at(i);
        const DocumentedRule row = documentedAs(text, {outcome.rules.at(i)});
        EXPECT_FALSE(row.rule.isEmpty()) << "not documented: " << qPrintable(text);
        EXPECT_EQ(row.group == "error"_L1, text.contains("Error: "_L1));
        EXPECT_EQ(row.group == "corrected"_L1, text.contains("Corrected: "_L1));
        warnings += row.group.startsWith("WG_"_L1) && !row.group.endsWith(", hint"_L1) ? 1 : 0;
        if (!row.group.startsWith("WG_"_L1))
            left.append(text);
    }
    const QString suppressed = u"misc SuppressedWarningGroups ="_s + allGroups().join(u',');
    const CaseProject::Outcome quiet = CaseProject(ruleCase.commands + QStringList{suppressed}).check();
    EXPECT_EQ(quiet.messages, left);
    EXPECT_EQ(quiet.errors, outcome.errors);
    EXPECT_EQ(quiet.summary.section(u"</strong>"_s, 1).section(u" warning"_s, 0, 0).toInt(), warnings);
}

/// Sets the application that the cases expect.
class Rules : public testing::Test
{
protected:
    Rules()
    {
        QCoreApplication::setApplicationName(u"CANopen NodeComposer"_s);
        QCoreApplication::setApplicationVersion(u"4.3.3"_s);
    }
};

class RuleCases : public Rules, public testing::WithParamInterface<RuleCase>
{
};

TEST_P(RuleCases, SaysWhatIsExpected)
{
    SCOPED_TRACE(qPrintable(GetParam().place()));
    CaseProject project(GetParam().commands);
    const quint8 currentLine = project.store()->currentLine();
    const CaseProject::Outcome outcome = project.check();
    EXPECT_EQ(project.store()->currentLine(), currentLine);
    EXPECT_EQ(outcome.messages, GetParam().messages);
    EXPECT_EQ(deduplicated(outcome.rules), deduplicated(GetParam().rules()));
    const auto isError = [](const QString &text) { return text.contains(u"Error: "_s); };
    EXPECT_EQ(outcome.errors, std::count_if(outcome.messages.begin(), outcome.messages.end(), isError));
    expectDocumentedGroups(GetParam(), outcome);

    // What is corrected stays so, and news of a version are told once.
    const CaseProject::Outcome second = project.check();
    EXPECT_EQ(outcome.corrected, outcome.messages.join(u' ').contains("PDO has been disabled"_L1));
    EXPECT_FALSE(second.corrected);
    EXPECT_EQ(second.messages.filter(QRegularExpression(u"Corrected|project or Makefile"_s)), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Check, RuleCases, testing::ValuesIn(ruleCases()),
                         [](const auto &row) { return row.param.name().toStdString(); });

TEST_F(Rules, AreDocumentedAndHaveCasesForAllThatTheySay)
{
    QStringList names;
    for (const DocumentedRule &row : documentedRules()) {
        names.append(row.rule);
        EXPECT_FALSE(row.cause.isEmpty() || row.remedy.isEmpty()) << qPrintable(row.rule);
    }
    names.removeDuplicates();
    EXPECT_EQ(names, ruleNames());

    QSet<QString> rules;
    QSet<QString> messages;
    for (const RuleCase &ruleCase : ruleCases()) {
        for (const QString &rule : ruleCase.rules())
            rules.insert(rule);
        for (const QString &message : ruleCase.messages)
            messages.insert(documentedAs(message, ruleCase.rules()).message);
    }
    for (const DocumentedRule &row : documentedRules()) {
        EXPECT_TRUE(rules.contains(row.rule)) << "no case provokes " << qPrintable(row.rule);
        EXPECT_TRUE(messages.contains(row.message)) << "nobody says " << qPrintable(row.message);
    }
}

TEST_F(Rules, HaveTheirGroupsInTheDocuments)
{
    QStringList rows;
    for (const WarningGroupInfo &group : ModelChecker::groupTable())
        rows.append(u"| %1 | %2 | %3 |"_s.arg(group.key, group.title, group.description));
    EXPECT_TRUE(documentation().contains(u"|---|---|---|\n"_s + rows.join(u'\n') + u"\n\n"_s))
        << qPrintable(rows.join(u'\n'));
}

TEST_F(Rules, CorrectNothingForAUserWhoDoesNotWantIt)
{
    QCoreApplication::setOrganizationName(u"norvane"_s);
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, u"norvane"_s, u"CANopen NodeComposer"_s);
    settings.setValue(u"General/disableautocorrection"_s, true);
    settings.sync();
    CaseProject project({u"line 0 = 1"_s, u"object 0x1800 objecttype=9"_s,
                         u"sub 0x1800:1 datatype=7; accesstype=rw; defaultvalue=$NodeID+0x181"_s,
                         u"object 0x1A00 objecttype=9"_s, u"sub 0x1A00:0 accesstype=rw; defaultvalue=0"_s,
                         u"object 0x2000 objecttype=8"_s, u"sub 0x2000:0 defaultvalue=7"_s, u"sub 0x2000:3"_s});
    const CaseProject::Outcome outcome = project.check();
    settings.remove(u"General/disableautocorrection"_s);
    EXPECT_FALSE(outcome.corrected);
    EXPECT_EQ(outcome.messages.filter(u"Corrected"_s), QStringList());
    EXPECT_EQ(outcome.messages.filter(u"0x2000"_s), QStringList());
    EXPECT_EQ(outcome.messages.filter(u"0x1800: PDO is enabled but"_s).size(), 1);
    EXPECT_EQ(project.store()->getSubIndexDefaultValue(0, 0x2000, 0), u"7");
}

TEST(StoreValues, ReadEveryFormOfANumber)
{
    const QList<std::tuple<QString, qint64, bool>> rows{
        {u"10"_s, 10, false},    {u" 0X1f "_s, 31, false},          {u"017"_s, 15, false},        {u"-3"_s, -3, false},
        {u"$NODEID"_s, 0, true}, {u"$nodeid+0x180"_s, 0x180, true}, {u"$NODEID + 7 "_s, 7, true},
    };
    for (const auto &[text, number, nodeRelative] : rows) {
        const auto value = StoreValue::parse(text);
        ASSERT_TRUE(value) << qPrintable(text);
        EXPECT_EQ(static_cast<qint64>(value->magnitude), value->negative ? -number : number) << qPrintable(text);
        EXPECT_EQ(value->nodeRelative, nodeRelative);
    }
    for (const QString &text : {u""_s, u"x"_s, u"0x"_s, u"08"_s, u"1.5"_s, u"--1"_s, u"$NODEID-1"_s, u"$NODEIDs"_s,
                                u"18446744073709551616"_s, u"+5"_s, u"$NODEID++5"_s})
        EXPECT_FALSE(StoreValue::parse(text)) << qPrintable(text);
    EXPECT_FALSE(plainValue(u"-3"_s) || plainValue(u"$NODEID+3"_s));
}

} // namespace
