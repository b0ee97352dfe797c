#include "store/statements/boundstatement.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

BoundStatement::BoundStatement(Statements &statements, Statement statement)
    : statements_(statements)
    , statement_(std::move(statement))
{
}

BoundStatement::~BoundStatement()
{
    if (prepared_)
        statements_.keep(std::move(prepared_));
}

sqlite3_stmt *BoundStatement::prepared()
{
    if (!prepared_) {
        const StoreGate::Passage passage(statements_.gate());
        prepared_ = statements_.prepared(statement_.text);
    }
    return prepared_ ? prepared_.mapped().get() : nullptr;
}

void BoundStatement::note(int result)
{
    isBound_ = isBound_ && result == SQLITE_OK;
}

void BoundStatement::bind(qint64 number)
{
    note(sqlite3_bind_int64(prepared(), ++place_, number));
}

void BoundStatement::bindNull()
{
    note(sqlite3_bind_null(prepared(), ++place_));
}

void BoundStatement::bind(const QString &text)
{
    // Of these bytes SQLite needs no copy; of a text in UTF-16 it would make two.
    char *const bytes = texts_.data() + textsSize_;
    const auto size = static_cast<std::size_t>(text.size());
    const bool hasRoom = size <= texts_.size() - textsSize_;
    char16_t all = 0;
    if (hasRoom) {
        std::ranges::transform(text, bytes, [&all](QChar ch) {
            all |= ch.unicode();
            return static_cast<char>(ch.unicode());
        });
    }
    if (hasRoom && all < 0x80) {
        textsSize_ += size;
        bindUtf8({bytes, text.size()});
        return;
    }
    note(sqlite3_bind_text16(prepared(), ++place_, text.utf16(), static_cast<int>(text.size() * 2), SQLITE_TRANSIENT));
}

void BoundStatement::bindUtf8(QByteArrayView text)
{
    note(sqlite3_bind_text(prepared(), ++place_, text.isEmpty() ? "" : text.data(), static_cast<int>(text.size()),
                           SQLITE_STATIC));
}

bool BoundStatement::execute()
{
    [[maybe_unused]] const int places = std::exchange(place_, 0);
    const bool isBound = std::exchange(isBound_, true);
    textsSize_ = 0;
    sqlite3_stmt *statement = prepared();
    if (!statement)
        return statements_.fail(statement_, "Unable to execute statement");
    Q_ASSERT_X(sqlite3_bind_parameter_count(statement) == places, "BoundStatement", "a value for each place");
    if (!isBound)
        return statements_.fail(statement_, "Unable to bind parameters");
    int step = SQLITE_ERROR;
    {
        const StoreGate::Passage passage(statements_.gate());
        step = sqlite3_step(statement);
    }
    const bool done = step == SQLITE_DONE || step == SQLITE_ROW || statements_.fail(statement_, "Unable to fetch row");
    sqlite3_reset(statement);
    if (done)
        statements_.tellWrite(statement_);
    return done;
}

int BoundStatement::changedRows() const
{
    return sqlite3_changes(statements_.database_);
}

qint64 BoundStatement::insertedRow() const
{
    return sqlite3_last_insert_rowid(statements_.database_);
}
