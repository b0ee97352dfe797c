#include "check/frame/checkloops.h"
#include "check/line/specialpgns.h"
#include "check/modelchecker.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

/// Runs rules as those of a CANopen line and returns what they reported.
QStringList reported(const ProjectBuilder &project, std::span<const LineRule> rules)
{
    ModelChecker checker({.common = {}, .canOpen = rules, .j1939 = {}, .rawCan = {}});
    QStringList texts;
    QObject::connect(&checker, &ModelChecker::newError, [&texts](const QString &text) { texts.append(text); });
    bool corrected = false;
    checker.checkCANopenLine(0, project.store(), corrected);
    return texts;
}

QStringList reported(const ProjectBuilder &project, const LineRule &rule)
{
    return reported(project, std::span(&rule, 1));
}

template <class T>
QString nameOf(const T &subject)
{
    if constexpr (std::is_same_v<T, CheckedSubindex>)
        return subject.data->name;
    else
        return subject.data.name;
}

template <class T>
void describe(Check &check, const T &subject)
{
    check.hint(WG_CONFIG, nameOf(subject));
}

template <class T, class U>
void describeBoth(Check &check, const T &outer, const U &inner)
{
    check.hint(WG_CONFIG, nameOf(outer) + u'.' + nameOf(inner));
}

TEST(CheckRules, LoopsGoThroughTheLineInOrder)
{
    using namespace CANopen;
    ProjectBuilder project;
    project.object(0x1801, u"B"_s).sub(0, u"b0"_s).sub(2, u"b2"_s).object(0x1400, u"A"_s).sub(1, u"a1"_s);
    project.pgn(5, ObjectDataBase::transmit, u"P"_s)
        .spn(9, u"p9"_s)
        .spn(1, u"p1"_s)
        .pgn(6, ObjectDataBase::receive, u"Q"_s);
    project.canId(7, ObjectDataBase::transmit, u"C"_s).element(1, u"c1"_s).element(0, u"c0"_s);
    const std::pair<LineRule, QString> rows[] = {
        {rule<Check>("once"_L1, [](Check &check) { check.hint(WG_CONFIG, u"once"_s); }), u"once"_s},
        {rule("objects"_L1, eachObject, describe<CheckedObject>), u"A B"_s},
        {rule("tpdos"_L1, eachObjectOf<Index::tpdos>, describe<CheckedObject>), u"B"_s},
        {rule("one"_L1, theObject<0x1400>, describe<CheckedObject>), u"A"_s},
        {rule("none"_L1, theObject<0x1401>, describe<CheckedObject>), u""_s},
        {rule("subs"_L1, eachObject, itsSubindices, describeBoth<CheckedObject, CheckedSubindex>), u"A.a1 B.b0 B.b2"_s},
        {rule("inner"_L1, eachObject, itsSubindices, describe<CheckedSubindex>), u"a1 b0 b2"_s},
        {rule("pgns"_L1, eachPGN, describe<CheckedPGN>), u"Q P"_s},
        {rule("spns"_L1, eachPGN, itsSPNs, describeBoth<CheckedPGN, CheckedSignal>), u"P.p9 P.p1"_s},
        {rule("canIds"_L1, eachCanId, describe<CheckedCanId>), u"C"_s},
        {rule("signals"_L1, eachCanId, itsSignals, describeBoth<CheckedCanId, CheckedSignal>), u"C.c0 C.c1"_s},
    };
    for (const auto &[row, expected] : rows)
        EXPECT_EQ(reported(project, row).join(u' '), expected) << row.name.data();
}

template <class... Arguments>
concept IsRow = requires(Arguments... arguments)
{
    rule("row"_L1, arguments...);
};

// A row is held against what its function takes.
static_assert(IsRow<Each<Check, CheckedObject>, void (*)(Check &, const CheckedObject &)>);
static_assert(!IsRow<Each<Check, CheckedObject>, void (*)(Check &, const CheckedPGN &)>);
static_assert(!IsRow<Each<Check, CheckedObject>, void (*)(ProjectCheck &, const CheckedObject &)>);
static_assert(!IsRow<Each<Check, CheckedObject>, Within<Check, CheckedPGN, CheckedSignal>,
                     void (*)(Check &, const CheckedSignal &)>);
static_assert(!IsRow<Each<Check, CheckedPGN>, Within<Check, CheckedPGN, CheckedSignal>,
                     void (*)(Check &, const CheckedObject &, const CheckedSignal &)>);

template <char mark, class T>
void marked(Check &check, const T &subject)
{
    check.hint(WG_CONFIG, QChar::fromLatin1(mark) + nameOf(subject));
}

TEST(CheckRules, NeighboursShareAPass)
{
    ProjectBuilder project;
    project.object(0x2000, u"A"_s).sub(0, u"0"_s).sub(1, u"1"_s).object(0x2001, u"B"_s).sub(0, u"2"_s);
    const LineRule rules[] = {
        rule("a"_L1, eachObject, marked<'a', CheckedObject>),
        rule("b"_L1, eachObject, itsSubindices, marked<'b', CheckedSubindex>),
        rule("c"_L1, eachObject, itsSubindices, marked<'c', CheckedSubindex>),
        rule("d"_L1, eachObject, marked<'d', CheckedObject>),
        rule("e"_L1, eachObject, marked<'e', CheckedObject>).inNewPass(),
    };
    EXPECT_EQ(reported(project, rules).join(u' '), u"aA b0 c0 b1 c1 dA aB b2 c2 dB eA eB");
}

TEST(CheckRules, SeeWhatAnotherHasCorrected)
{
    ProjectBuilder project;
    const auto cobId = [](StoreRecords::SubIndexData &data) {
        data.defaultvalue = u"0x201"_s;
        data.implementation = 2;
        data.varname = u"v"_s;
    };
    for (const quint16 pdo : {quint16{0x1400}, quint16{0x1401}})
        project.object(pdo, u"PDO"_s).sub(1, u"COB-ID"_s, cobId);
    const LineRule correcting = rule<Check>("correcting"_L1, [](Check &check) {
        CheckedLine &line = check.line();
        EXPECT_EQ(line.firstPdoLike(*line.object(0x1401)), 0x1400);
        EXPECT_EQ(line.firstUserOf(u"v"_s), line.sub(0x1400, 1));
        StoreRecords::SubIndexData data = *line.sub(0x1400, 1)->data;
        data.defaultvalue = u"0x80000201"_s;
        data.varname = u"w"_s;
        EXPECT_TRUE(check.correct(0x1400, 1, data, {}));
        EXPECT_EQ(line.firstPdoLike(*line.object(0x1401)), 0x1401);
        EXPECT_EQ(line.firstUserOf(u"v"_s), line.sub(0x1401, 1));
    });
    EXPECT_EQ(reported(project, correcting), QStringList{u"<i>Corrected: "_s});
}

TEST(ModelChecker, CountsErrorsAnewAndSuppressedWarningsOverAllLines)
{
    const LineRule row = rule<Check>("row"_L1, [](Check &check) {
        check.error(u"this"_s);
        check.redError(u"that"_s);
        check.warning(WG_NAMING, u"naming"_s);
        check.warning(WG_LAYOUT, u"layout"_s);
        check.hint(WG_NAMING, u"naming hint"_s);
        check.hint(WG_CONFIG, u"config hint"_s);
    });
    const CheckRules rules{.common = {}, .canOpen = {}, .j1939 = {&row, 1}, .rawCan = {&row, 1}};
    ProjectBuilder project;
    project.misc(u"SuppressedWarningGroups"_s, u"wg_layout, nonsense ,WG_NAMING"_s);
    ModelChecker checker(rules);
    QStringList texts;
    QObject::connect(&checker, &ModelChecker::newError, [&texts](const QString &text) { texts.append(text); });
    EXPECT_EQ(checker.checkJ1939Line(1, 0, project.store(), {}), 2);
    EXPECT_EQ(checker.checkRawCANLine(0, project.store()), 2);
    const QStringList once{u"<strong>Error: </strong>this"_s,
                           u"<strong><font color='red'>Error: </font></strong>that"_s, u"config hint"_s};
    EXPECT_EQ(texts, once + once);
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
        project.j1939((it.key() % 2 ? u"diagsupport_dm%1"_s : u"diagsupport_dmtool%1"_s).arg(it.key()), u"0,2"_s);
    project.j1939(u"diagsupport_dm6"_s, u"0,1"_s)
        .j1939(u"diagsupport_dm9"_s, u"1"_s)
        .j1939(u"diagsupport_dm2"_s, u"0,0"_s);
    QList<quint32> list = specialPGNs(*project.store()).mid(9);
    EXPECT_EQ(list, pgns.values());
    EXPECT_EQ(specialPGNs(*project.store(), quint8(0)).size(), 9);
}

} // namespace
