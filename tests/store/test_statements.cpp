// The statements of a project and what holds them together.

#include "store/storetest.h"

using namespace Qt::StringLiterals;

namespace {

using Batch = ObjectDataBase::Transaction;
using Step = ObjectDataBase::Step;

class StatementLayer : public StoreTest
{
protected:
    void set(const QString &key) { EXPECT_TRUE(store.setGeneralSetting(key, u"1"_s)); }
    QStringList keys() { return rows(u"select item from GeneralSettings order by rowid"_s); }
};

TEST_F(StatementLayer, StepIsTakenBackUnlessCommitted)
{
    {
        const Batch batch(store);
        set(u"a"_s);
        {
            const Step step(store);
            set(u"b"_s);
            Step inner(store);
            set(u"c"_s);
            EXPECT_TRUE(inner.commit());
            EXPECT_FALSE(inner.commit());
        }
        Step step(store);
        set(u"d"_s);
        {
            const Step inner(store);
            set(u"e"_s);
        }
        EXPECT_TRUE(step.commit());
    }
    EXPECT_EQ(keys(), (QStringList{u"a"_s, u"d"_s}));
    {
        const Step step(store);
        set(u"f"_s);
        exec(u"drop table Objects0"_s);
        EXPECT_EQ(store.getStringId(u"gone"_s), 1);
    }
    EXPECT_EQ(keys(), (QStringList{u"a"_s, u"d"_s}));
    EXPECT_TRUE(store.addIndex(0, 0x2000, {.name = u"gone"_s}));
    EXPECT_EQ(store.getIndexName(0, 0x2000), u"gone"_s);
}

TEST_F(StatementLayer, CommitThatFailsIsAFailure)
{
    exec(u"PRAGMA foreign_keys = ON"_s);
    exec(u"create table parents (id integer primary key)"_s);
    exec(u"create table children (id references parents deferrable initially deferred)"_s);
    for (const bool isStep : {true, false}) {
        TransactionScope scope(store.statements(),
                               isStep ? TransactionScope::Kind::Step : TransactionScope::Kind::Batch);
        set(u"a"_s);
        EXPECT_TRUE(exec(u"insert into children values(7)"_s));
        EXPECT_FALSE(scope.commit());
        EXPECT_EQ(keys(), QStringList());
    }
    {
        Step step(store);
        set(u"b"_s);
        EXPECT_TRUE(step.commit());
    }
    EXPECT_FALSE(store.isDamaged());
    {
        const Batch batch(store);
        EXPECT_TRUE(exec(u"insert into children values(7)"_s));
    }
    EXPECT_TRUE(store.isDamaged());
}

TEST_F(StatementLayer, ScopeAroundAnotherFileDoesNothing)
{
    {
        const Batch batch(store);
        Step step(store);
        set(u"a"_s);
        EXPECT_TRUE(store.createNewDataBase());
        EXPECT_FALSE(step.commit());
        set(u"b"_s);
    }
    {
        const Batch batch(store);
        set(u"c"_s);
    }
    const Step step(store);
    set(u"d"_s);
    EXPECT_TRUE(store.saveDatabase(path(u"a.ncxt"_s)));
    EXPECT_EQ(keys(), (QStringList{u"b"_s, u"c"_s, u"d"_s}));
}

TEST_F(StatementLayer, RowThatCannotBeReadIsAFailure)
{
    const Statement select = {"test", u"select abs(column1) from (values (1), (-9223372036854775808), (2))"_s};
    QList<int> seen;
    EXPECT_FALSE(store.statements().visit(select, {}, [&](const ResultRow &row) { seen.append(row.number<int>(0)); }));
    EXPECT_EQ(seen, QList<int>{1});
    EXPECT_TRUE(store.statements().errorText().contains("overflow"_L1));
}

TEST_F(StatementLayer, VisitorMayRunTheSameStatement)
{
    for (const QString &key : {u"a"_s, u"b"_s, u"c"_s})
        set(key);
    const Statement select = {"test", u"select item from GeneralSettings where item > ? order by item"_s};
    QStringList seen;
    const Statements::Visitor visit = [&](const ResultRow &row) {
        seen.append(row.text(0));
        EXPECT_TRUE(store.statements().visit(select, {row.text(0)},
                                             [&](const ResultRow &inner) { seen.append(inner.text(0)); }));
    };
    EXPECT_TRUE(store.statements().visit(select, {QString()}, visit));
    EXPECT_EQ(seen.join(u""_s), u"abcbcc"_s);
    // A statement that was left in its first row holds no table.
    EXPECT_TRUE(store.statements().hasRow(select, {QString()}));
    EXPECT_TRUE(exec(u"drop table GeneralSettings"_s));
    EXPECT_FALSE(store.statements().visit(select, {QString()}, visit));
    EXPECT_TRUE(store.statements().errorText().contains("GeneralSettings"_L1));
}

TEST_F(StatementLayer, LiteralTexts)
{
    for (const QString &text : {u"'"_s, u"a'"_s, u"'''"_s, u"a' || 'b"_s, u"' '"_s, QString(QChar(u'\0'))})
        EXPECT_FALSE(LiteralText::stored(text, Quotes::Literal)) << text.toStdString();
    for (const auto &[text, stored] : {std::pair{u""_s, u""_s},
                                       {u"''"_s, u"'"_s},
                                       {u"''''"_s, u"''"_s},
                                       {u"it''s"_s, u"it's"_s},
                                       {u"a -- b\n"_s, u"a -- b\n"_s}})
        EXPECT_EQ(LiteralText::stored(text, Quotes::Literal), stored);
}

} // namespace
