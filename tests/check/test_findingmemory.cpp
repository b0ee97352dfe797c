// Checks that remember what the one before has found, held against checks that ask everything, over random edits.

#include "check/frame/checkloops.h"
#include "check/frame/findingmemory.h"
#include "check/line/specialpgns.h"
#include "check/modelchecker.h"
#include "check/randomedits.h"
#include "store/lineprotocols.h"
#include "support/projectbuilder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

QString textOf(const CheckFinding &finding)
{
    const FindingPlace &place = finding.place;
    const auto number = [](const auto &value) { return value ? QString::number(*value) : u"-"_s; };
    return QStringList{QString::number(static_cast<int>(finding.kind)),
                       finding.rule,
                       number(finding.group),
                       number(place.line),
                       number(place.index),
                       number(place.subindex),
                       number(place.pgn),
                       number(place.spn),
                       number(place.canId),
                       number(place.direction),
                       number(place.signal),
                       finding.text}
        .join(u' ');
}

/// All that a check tells: its findings, its errors, whether it has corrected a COB-ID, and what it held back.
QStringList told(const std::shared_ptr<ObjectDataBase> &store, CheckMemory *memory)
{
    QStringList told;
    ModelChecker checker;
    checker.setMemory(memory);
    QObject::connect(&checker, &ModelChecker::found,
                     [&told](const CheckFinding &finding) { told.append(textOf(finding)); });
    qint32 errors = checker.checkCommon(store, {});
    bool corrected = false;
    for (const quint8 line : store->getNodeList()) {
        const LineProtocols protocols = LineProtocols::ofLine(*store, line);
        if (protocols.canOpen)
            errors += checker.checkCANopenLine(line, store, corrected);
        if (protocols.j1939)
            errors += checker.checkJ1939Line(1, line, store, specialPGNs(*store));
        if (protocols.rawCan)
            errors += checker.checkRawCANLine(line, store);
    }
    return told + QStringList{QString::number(errors), QString::number(corrected), checker.suppressedSummary()};
}

struct LineTypes
{
    const char *name;
    QList<int> types; ///< of the lines
    bool safety = false;
};

class RandomEdits : public testing::TestWithParam<LineTypes>
{
};

/// A few edits; NCX_EDITS=10000 makes that many.
TEST_P(RandomEdits, LeaveTheSameFindings)
{
    const int count = std::max(qEnvironmentVariableIntValue("NCX_EDITS"), 30);
    ProjectBuilder whole;
    ProjectBuilder remembering;
    QList<quint8> lines;
    for (const int type : GetParam().types) {
        const auto line = static_cast<quint8>(lines.size());
        lines.append(line);
        for (ProjectBuilder *project : {&whole, &remembering})
            project->line(line, type).checked();
    }
    if (GetParam().safety)
        for (ProjectBuilder *project : {&whole, &remembering})
            project->j1939(u"safetysupport"_s, u"1"_s);
    const auto next = randomEdits(static_cast<unsigned>(GetParam().types.first()) + 16 * GetParam().safety, lines);
    CheckMemory memory;
    for (int i = 0; i < count; ++i) {
        const Edit edit = next();
        for (const ProjectBuilder *project : {&whole, &remembering}) {
            project->store()->setBlocked(false);
            edit(*project->store());
        }
        const QStringList remembered = told(remembering.store(), &memory);
        const QStringList asked = told(whole.store(), nullptr);
        if (remembered == asked)
            continue;
        const auto differs = std::ranges::mismatch(remembered, asked);
        FAIL() << "after edit " << i
               << "\n  remembered: " << qPrintable(remembered.value(differs.in1 - remembered.begin()))
               << "\n  asked:      " << qPrintable(asked.value(differs.in2 - asked.begin()));
    }
    whole.store()->setBlocked(false);
    remembering.store()->setBlocked(false);
    EXPECT_EQ(remembering.store()->computeFileHash(), whole.store()->computeFileHash());
}

// Random edits seldom switch one that the rules of a small project ask for.
TEST(FindingMemory, HearsOfEachSetting)
{
    ProjectBuilder project;
    const std::shared_ptr<ObjectDataBase> store = project.line(0, 1).checked().store();
    CheckMemory memory;
    const QStringList before = told(store, &memory);
    QStringList all;
    for (const QString &key : {u"canfd_supported"_s, u"nmtmaster"_s, u"limit_check"_s, u"bitwise_mapping"_s}) {
        for (const QString &value : {u"1"_s, u"0"_s}) {
            store->setBlocked(false);
            EXPECT_TRUE(store->setGeneralSetting(key, value));
            const QStringList remembered = told(store, &memory);
            EXPECT_EQ(remembered, told(store, nullptr)) << qPrintable(key) << ' ' << qPrintable(value);
            all += remembered;
        }
    }
    EXPECT_GT(QSet<QString>(all.begin(), all.end()).size(), before.size()) << "no rule asks for any of them";
}

// The database names the table alone, the number of its line behind the name.
TEST(FindingMemory, HearsOfARowThatNobodyAnnounces)
{
    const QList<quint8> lines = {0, 9, 10, 100};
    ProjectBuilder project;
    for (const quint8 line : lines)
        project.line(line, 1).checked().object(0x2000, u"A"_s).sub(0, u"a"_s);
    const std::shared_ptr<ObjectDataBase> store = project.store();
    CheckMemory memory;
    QStringList before = told(store, &memory);
    for (const quint8 line : lines) {
        EXPECT_TRUE(store->statements().execute(
            {"test", u"update SubObjects%1 set datatype = 99"_s.arg(line), Statement::Effect::Rows}));
        const QStringList after = told(store, &memory);
        EXPECT_NE(after, before) << +line;
        EXPECT_EQ(after, told(store, nullptr)) << +line;
        before = after;
    }
}

/// What these rules tell of a CANopen line in a check that remembers.
QStringList remembered(const std::shared_ptr<ObjectDataBase> &store, std::span<const LineRule> rules,
                       CheckMemory &memory)
{
    ModelChecker checker({.common = {}, .canOpen = rules, .j1939 = {}, .rawCan = {}});
    checker.setMemory(&memory);
    QStringList texts;
    QObject::connect(&checker, &ModelChecker::newError, [&texts](const QString &text) { texts.append(text); });
    bool corrected = false;
    checker.checkCANopenLine(0, store, corrected);
    return texts;
}

/// The value of an object's subindex 0, as a rule sees it.
QString valueOf(CheckedLine &line, quint16 index)
{
    return line.sub(index, 0)->data->defaultvalue;
}

/// A rule of the line that gives 0x2000 the value of 0x2001, and behind it one that tells the value of each object.
TEST(FindingMemory, ForgetsWhatACorrectionHasReached)
{
    ProjectBuilder project;
    const auto one = [](StoreRecords::SubIndexData &data) { data.defaultvalue = u"1"_s; };
    project.line(0, 1).object(0x2000, u"A"_s).sub(0, u"a"_s, one).object(0x2001, u"B"_s).sub(0, u"b"_s, one);
    const std::shared_ptr<ObjectDataBase> store = project.store();
    const LineRule rules[] = {
        rule<Check>("follow"_L1,
                    [](Check &check) {
                        StoreRecords::SubIndexData data = *check.line().sub(0x2000, 0)->data;
                        if (data.defaultvalue == valueOf(check.line(), 0x2001))
                            return;
                        data.defaultvalue = valueOf(check.line(), 0x2001);
                        std::ignore = check.correct(0x2000, 0, data, {});
                    }),
        rule(
            "tell"_L1, eachObject,
            +[](LocalCheck &check, const CheckedObject &object) {
                check.hint(WG_CONFIG, object.sub(0)->data->defaultvalue);
            }),
    };
    CheckMemory memory;
    EXPECT_EQ(remembered(store, rules, memory), (QStringList{u"1"_s, u"1"_s}));
    EXPECT_TRUE(store->setSubIndexDefaultValue(0, 0x2001, 0, u"2"_s, Quotes::Kept));
    EXPECT_EQ(remembered(store, rules, memory), (QStringList{u"<i>Corrected: "_s, u"2"_s, u"2"_s}));
}

/// Nothing is written where a correction fails, and yet the next check has to try it again.
TEST(FindingMemory, AsksAgainWhereACorrectionHasFailed)
{
    ProjectBuilder project;
    project.line(0, 1).object(0x2000, u"A"_s).sub(0, u"a"_s);
    const LineRule rules[] = {rule(
        "correct"_L1, eachObject, +[](LocalCheck &check, const CheckedObject &object) {
            std::ignore = check.correct(object.index, 0, *object.sub(0)->data, {});
        })};
    CheckMemory memory;
    QStringList told;
    for (const bool blocked : {true, false}) {
        project.store()->setBlocked(blocked);
        told += remembered(project.store(), rules, memory);
    }
    EXPECT_EQ(told, QStringList{u"<i>Corrected: "_s});
}

INSTANTIATE_TEST_SUITE_P(Check, RandomEdits,
                         testing::Values(LineTypes{"CANopen", {1}}, LineTypes{"J1939", {2}}, LineTypes{"RawCAN", {4}},
                                         LineTypes{"CANopenAndJ1939", {5, 2}}, LineTypes{"CANopenAndRawCAN", {6}},
                                         LineTypes{"J1939AndRawCAN", {7, 1}}, LineTypes{"Safety", {5}, true}),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
