#include "check/modelchecker.h"
#include "check/specialpgns.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

/// Runs rules as those of a CANopen line and returns what they reported.
QStringList reported(const ProjectBuilder &project, std::span<const CheckRule> rules)
{
    ModelChecker checker({.common = {}, .canOpen = rules, .j1939 = {}, .rawCan = {}});
    QStringList texts;
    QObject::connect(&checker, &ModelChecker::newError, [&texts](const QString &text) { texts.append(text); });
    bool corrected = false;
    checker.checkCANopenLine(0, project.store(), corrected);
    return texts;
}

QStringList reported(const ProjectBuilder &project, const CheckRule &rule)
{
    return reported(project, std::span(&rule, 1));
}

/// Names whatever its subject holds.
void describe(ModelChecker &checker, const CheckSubject &subject)
{
    QStringList parts;
    if (subject.object)
        parts.append(subject.object->data.name);
    if (subject.sub)
        parts.append(subject.sub->data.name);
    if (subject.pgn)
        parts.append(subject.pgn->data.name);
    if (subject.canId)
        parts.append(subject.canId->data.name);
    if (subject.signal)
        parts.append(subject.signal->data.name);
    checker.reportInfo(parts.join(u'.'));
}

TEST(CheckRules, LoopsGoThroughTheLineInOrder)
{
    ProjectBuilder project;
    project.object(0x1801, u"B"_s).sub(0, u"b0"_s).sub(2, u"b2"_s).object(0x1400, u"A"_s).sub(1, u"a1"_s);
    project.pgn(5, ObjectDataBase::transmit, u"P"_s)
        .spn(9, u"p9"_s)
        .spn(1, u"p1"_s)
        .pgn(6, ObjectDataBase::receive, u"Q"_s);
    project.canId(7, ObjectDataBase::transmit, u"C"_s).element(1, u"c1"_s).element(0, u"c0"_s);
    const std::tuple<CheckLoop, CheckLoop, QString> rows[] = {
        {once, once, u""_s},
        {eachObject, once, u"A B"_s},
        {eachObjectOf<0x1800, 0x19FF>, once, u"B"_s},
        {eachObject, itsSubindices, u"A.a1 B.b0 B.b2"_s},
        {eachPGN, once, u"Q P"_s},
        {eachPGN, itsSPNs, u"P.p9 P.p1"_s},
        {eachCanId, once, u"C"_s},
        {eachCanId, itsSignals, u"C.c0 C.c1"_s},
    };
    for (const auto &[each, within, expected] : rows)
        EXPECT_EQ(reported(project, {"describe"_L1, describe, each, within}).join(u' '), expected);
}

TEST(CheckRules, NeighboursShareAPass)
{
    ProjectBuilder project;
    project.object(0x2000, u"A"_s).sub(0, u"0"_s).sub(1, u"1"_s).object(0x2001, u"B"_s).sub(0, u"2"_s);
    const auto marked = [](const QString &mark) {
        return [mark](ModelChecker &checker, const CheckSubject &subject) {
            checker.reportInfo(mark + (subject.sub ? subject.sub->data.name : subject.object->data.name));
        };
    };
    const CheckRule rules[] = {
        {"a"_L1, marked(u"a"_s), eachObject},
        {"b"_L1, marked(u"b"_s), eachObject, itsSubindices},
        {"c"_L1, marked(u"c"_s), eachObject, itsSubindices},
        {"d"_L1, marked(u"d"_s), eachObject},
        {"e"_L1, marked(u"e"_s), eachObject, once, true},
    };
    EXPECT_EQ(reported(project, rules).join(u' '), u"aA b0 c0 b1 c1 dA aB b2 c2 dB eA eB");
}

TEST(ModelChecker, CountsErrorsAnewAndSuppressedWarningsOverAllLines)
{
    const CheckRule rule{"rule"_L1, [](ModelChecker &checker, const CheckSubject &) {
                             checker.reportError(u"error"_s);
                             checker.reportWarning(WG_NAMING, u"naming"_s);
                             checker.reportWarning(WG_LAYOUT, u"layout"_s);
                             checker.reportHint(WG_NAMING, u"naming hint"_s);
                             checker.reportHint(WG_CONFIG, u"config hint"_s);
                         }};
    const CheckRules rules{.common = {}, .canOpen = {}, .j1939 = {&rule, 1}, .rawCan = {&rule, 1}};
    ProjectBuilder project;
    project.misc(u"SuppressedWarningGroups"_s, u"wg_layout, nonsense ,WG_NAMING"_s);
    ModelChecker checker(rules);
    QStringList texts;
    QObject::connect(&checker, &ModelChecker::newError, [&texts](const QString &text) { texts.append(text); });
    EXPECT_EQ(checker.checkJ1939Line(1, 0, project.store(), {}), 1);
    EXPECT_EQ(checker.checkRawCANLine(0, project.store()), 1);
    EXPECT_EQ(texts, (QStringList{u"error"_s, u"config hint"_s, u"error"_s, u"config hint"_s}));
    EXPECT_EQ(checker.suppressedSummary(), u"<strong>Note: </strong>4 warning(s) suppressed by the project settings:\n"
                                           "&nbsp;&nbsp;Names and identifiers (WG_NAMING): 2\n"
                                           "&nbsp;&nbsp;Mapping and signal layout (WG_LAYOUT): 2"_s);
    EXPECT_EQ(ModelChecker().suppressedSummary(), QString());
}

TEST(SpecialPGNs, FollowTheDiagnosticMessagesThatAreOn)
{
    ProjectBuilder project;
    EXPECT_EQ(specialPGNs(*project.store()).size(), 9);
    const QMap<int, quint32> pgns{{1, 65226},  {6, 65231},  {8, 65232},  {12, 65236}, {17, 54784},
                                  {19, 54016}, {21, 49408}, {26, 64952}, {31, 41728}, {35, 40704},
                                  {36, 64868}, {52, 64852}, {55, 64723}, {57, 64710}};
    for (auto it = pgns.cbegin(); it != pgns.cend(); ++it)
        project.j1939((it.key() % 2 ? u"diagsupport_dm%1"_s : u"diagsupport_dmtool%1"_s).arg(it.key()), u"0,1"_s);
    project.j1939(u"diagsupport_dm9"_s, u"1"_s).j1939(u"diagsupport_dm2"_s, u"0,0"_s);
    QList<quint32> list = specialPGNs(*project.store()).mid(9);
    EXPECT_EQ(list, pgns.values());
    EXPECT_EQ(specialPGNs(*project.store(), quint8(0)).size(), 9);
}

} // namespace
