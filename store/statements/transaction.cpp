#include "store/statements/transaction.h"

#include "store/statements/statements.h"

using namespace Qt::StringLiterals;

namespace {

bool run(Statements &statements, const QString &text)
{
    return statements.execute({"Transaction", text});
}

/// The file has no journal, but what may be taken back needs one.
void keepJournal(Statements &statements, bool on)
{
    statements.value({"Transaction", on ? u"PRAGMA journal_mode = MEMORY"_s : u"PRAGMA journal_mode = OFF"_s});
}

} // namespace

TransactionScope::TransactionScope(Statements &statements, Kind kind)
    : statements_(statements)
    , generation_(statements.generation())
    , kind_(kind)
    , isOuter_(statements.depth_++ == 0)
{
    if (isOuter_) {
        keepJournal(statements_, true);
        begun_ = run(statements_, u"begin transaction"_s);
    } else {
        begun_ = kind_ == Kind::Batch || run(statements_, u"savepoint step"_s);
    }
}

TransactionScope::~TransactionScope()
{
    if (ended_ || isOver())
        return;
    if (kind_ == Kind::Step)
        takeBack();
    else if (!end()) // what was reported as done is not
        statements_.damaged_ = true;
}

bool TransactionScope::commit()
{
    return !ended_ && !isOver() && end();
}

bool TransactionScope::isOver() const
{
    return generation_ != statements_.generation() || statements_.depth_ == 0;
}

bool TransactionScope::end()
{
    bool done = begun_;
    if (begun_ && isOuter_)
        done = run(statements_, u"commit"_s);
    else if (begun_ && kind_ == Kind::Step)
        done = run(statements_, u"release step"_s);
    if (!done) {
        takeBack();
        return false;
    }
    ended_ = true;
    --statements_.depth_;
    if (isOuter_)
        keepJournal(statements_, false);
    return true;
}

void TransactionScope::takeBack()
{
    ended_ = true;
    --statements_.depth_;
    if (begun_ && isOuter_) {
        run(statements_, u"rollback"_s);
    } else if (begun_ && kind_ == Kind::Step) {
        run(statements_, u"rollback to step"_s);
        run(statements_, u"release step"_s);
    }
    if (isOuter_)
        keepJournal(statements_, false);
    statements_.tellRollback();
}
