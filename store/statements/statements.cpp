#include "store/statements/statements.h"

#include "texttools/asciitext.h"

#include <QDebug>
#include <QDir>
#include <QMutexLocker>
#include <QSqlDriver>
#include <QSqlError>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Pieces of memory that SQLite keeps for what it needs in each step. Those of its default are used up by the
/// statements that are kept here, and each step would go to the allocator.
constexpr int lookasideBytes = 1200;
constexpr int lookasidePieces = 256;

/// More than a line has operations; with more lines than that the oldest are prepared again.
constexpr std::size_t mostKept = 512;

/// A statement that ran out of space or could not read its pages has left something out.
bool leavesDamage(int error)
{
    constexpr int withoutDetails = 0xff;
    const int code = error & withoutDetails;
    return code == SQLITE_IOERR || code == SQLITE_CORRUPT || code == SQLITE_FULL;
}

/// As the driver does it. A text and bytes must live until the statement is reset.
int bind(sqlite3_stmt *statement, int place, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return sqlite3_bind_null(statement, place);
    case QMetaType::QString: {
        const auto *text = static_cast<const QString *>(value.constData());
        // A text without characters is a text, too.
        return text->isNull() ? sqlite3_bind_text(statement, place, "", 0, SQLITE_STATIC)
                              : sqlite3_bind_text16(statement, place, text->utf16(), static_cast<int>(text->size() * 2),
                                                    SQLITE_STATIC);
    }
    case QMetaType::QByteArray: {
        const auto *bytes = static_cast<const QByteArray *>(value.constData());
        return bytes->isNull() ? sqlite3_bind_null(statement, place)
                               : sqlite3_bind_blob(statement, place, bytes->constData(),
                                                   static_cast<int>(bytes->size()), SQLITE_STATIC);
    }
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return sqlite3_bind_int64(statement, place, value.toLongLong());
    case QMetaType::Double:
        return sqlite3_bind_double(statement, place, value.toDouble());
    default: {
        const QByteArray text = value.toString().toUtf8();
        return sqlite3_bind_text(statement, place, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    }
    }
}

bool bindAll(sqlite3_stmt *statement, const QVariantList &values)
{
    Q_ASSERT_X(sqlite3_bind_parameter_count(statement) == values.size(), "Statements", "a value for each place");
    int place = 0;
    return std::ranges::all_of(values,
                               [&](const QVariant &value) { return bind(statement, ++place, value) == SQLITE_OK; });
}

/// A value of the current row. To be asked for its type and then for itself it is looked up once, and not each time;
/// SQLite guards it less than it guards a column, but the driver has switched those guards off as well.
sqlite3_value *cellOf(sqlite3_stmt *statement, int column)
{
    return sqlite3_column_value(statement, column);
}

/// Those of a text.
QByteArrayView bytesOf(sqlite3_value *cell)
{
    const unsigned char *bytes = sqlite3_value_text(cell);
    return QByteArrayView(bytes, sqlite3_value_bytes(cell));
}

/// The connection as SQLite knows it; null if the driver is another one.
sqlite3 *handleOf(const QSqlDatabase &connection)
{
    const QVariant handle = connection.driver()->handle();
    return handle.typeName() == "sqlite3*"_ba ? *static_cast<sqlite3 *const *>(handle.constData()) : nullptr;
}

} // namespace

int ResultRow::count() const
{
    return sqlite3_column_count(statement_);
}

QVariant ResultRow::value(int column) const
{
    sqlite3_value *const cell = cellOf(statement_, column);
    switch (sqlite3_value_type(cell)) {
    case SQLITE_INTEGER:
        return QVariant(qint64{sqlite3_value_int64(cell)});
    case SQLITE_FLOAT:
        return QVariant(sqlite3_value_double(cell));
    case SQLITE_BLOB: {
        const auto *bytes = static_cast<const char *>(sqlite3_value_blob(cell));
        return QVariant(QByteArray(bytes, sqlite3_value_bytes(cell)));
    }
    case SQLITE_NULL:
        return QVariant(QMetaType::fromType<QString>());
    default:
        return QVariant(text(column));
    }
}

bool ResultRow::isNull(int column) const
{
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

bool ResultRow::isInteger(int column) const
{
    return sqlite3_column_type(statement_, column) == SQLITE_INTEGER;
}

std::optional<QByteArrayView> ResultRow::utf8(int column) const
{
    sqlite3_value *const cell = cellOf(statement_, column);
    return sqlite3_value_type(cell) == SQLITE_TEXT ? std::optional(bytesOf(cell)) : std::nullopt;
}

void ResultRow::appendTexts(std::string &out, char behind) const
{
    const int columns = count();
    for (int column = 0; column < columns; ++column) {
        sqlite3_value *const cell = cellOf(statement_, column);
        const int type = sqlite3_value_type(cell);
        if (type == SQLITE_INTEGER) {
            std::array<char, 24> digits;
            char *const end = std::to_chars(digits.begin(), digits.end() - 1, sqlite3_value_int64(cell)).ptr;
            *end = behind;
            out.append(digits.data(), static_cast<std::size_t>(end + 1 - digits.data()));
            continue;
        }
        const QByteArrayView bytes = type == SQLITE_TEXT ? bytesOf(cell) : QByteArrayView();
        if (AsciiText::isAscii(bytes) && (type == SQLITE_TEXT || type == SQLITE_NULL))
            out.append(bytes.data(), static_cast<std::size_t>(bytes.size()));
        else // what is no valid UTF-8 becomes it on the way through the text
            out += text(column).toStdString();
        out += behind;
    }
}

QString ResultRow::text(int column) const
{
    const auto bytes = utf8(column);
    if (!bytes)
        return value(column).toString();
    if (AsciiText::isAscii(*bytes))
        return AsciiText::shared(*bytes);
    const void *text = sqlite3_column_text16(statement_, column);
    return QString(static_cast<const QChar *>(text), sqlite3_column_bytes16(statement_, column) / 2);
}

qint64 ResultRow::integer(int column) const
{
    sqlite3_value *const cell = cellOf(statement_, column);
    switch (sqlite3_value_type(cell)) {
    case SQLITE_INTEGER:
        return sqlite3_value_int64(cell);
    case SQLITE_NULL:
        return 0;
    default:
        return value(column).toLongLong();
    }
}

size_t Statements::TextHash::operator()(const QString &text) const
{
    constexpr qsizetype mostTaken = 32;
    const qsizetype step = text.size() / mostTaken + 1;
    auto hash = static_cast<size_t>(text.size());
    for (qsizetype at = 0; at < text.size(); at += step)
        hash = hash * 31 + text.at(at).unicode();
    return hash;
}

void Statements::Finalizer::operator()(sqlite3_stmt *statement) const
{
    sqlite3_finalize(statement);
}

Statements::Statements()
{
    static std::atomic<int> connections = 0;
    // Nobody asks how much memory SQLite has; to count that takes a lock for each piece. Too late for a second call.
    [[maybe_unused]] static const int once = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    connection_ = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"db%1"_s.arg(++connections));
    if (connection_.lastError().isValid())
        qDebug() << "Db drivers: " << QSqlDatabase::drivers() << "Db last error: " << connection_.lastError().text();
}

Statements::~Statements()
{
    close();
    const QString name = connection_.connectionName();
    // It can only be taken off the list when no handle refers to it any more.
    connection_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

bool Statements::open(const QString &path)
{
    close();
    ++generation_;
    damaged_ = false;
    connection_.setDatabaseName(QDir::toNativeSeparators(path));
    if (connection_.open()) {
        database_ = handleOf(connection_);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_LOOKASIDE, nullptr, lookasideBytes, lookasidePieces);
        listenToRows();
        return database_ != nullptr;
    }
    qDebug() << "error sqlDbFile.open()" << connection_.lastError().text();
    return false;
}

void Statements::close()
{
    constexpr int timeoutMs = 5000;
    gate_.waitUntilIdle(timeoutMs);
    {
        const QMutexLocker locker(&mutex_);
        kept_.clear();
    }
    depth_ = 0;
    database_ = nullptr;
    connection_.close();
}

bool Statements::execute(const Statement &statement, const QVariantList &values)
{
    return perform(statement, values);
}

QVariant Statements::value(const Statement &statement, const QVariantList &values)
{
    QVariant value;
    visitFirst(statement, values, [&value](const ResultRow &row) { value = row.value(0); });
    return value;
}

bool Statements::hasRow(const Statement &statement, const QVariantList &values)
{
    return visitFirst(statement, values, [](const ResultRow &) {});
}

bool Statements::visit(const Statement &statement, const QVariantList &values, const Visitor &visitor)
{
    return perform(statement, values, [&visitor](sqlite3_stmt *result, bool hasRow) {
        const ResultRow row(result);
        int step = hasRow ? SQLITE_ROW : SQLITE_DONE;
        for (; step == SQLITE_ROW; step = sqlite3_step(result))
            visitor(row);
        return step == SQLITE_DONE;
    });
}

bool Statements::visitFirst(const Statement &statement, const QVariantList &values, const Visitor &visitor)
{
    bool found = false;
    perform(statement, values, [&](sqlite3_stmt *result, bool hasRow) {
        found = hasRow;
        if (found)
            visitor(ResultRow(result));
        return true;
    });
    return found;
}

/// Runs a statement and lets `read` have its result. It is out of the kept ones meanwhile, so that a visitor may run
/// the same again.
bool Statements::perform(const Statement &statement, const QVariantList &values, const Reader &read)
{
    Prepared running;
    int step = SQLITE_ERROR;
    {
        const StoreGate::Passage passage(gate_);
        running = prepared(statement.text);
        if (running.empty())
            return fail(statement, "Unable to execute statement");
        if (!bindAll(running.mapped().get(), values))
            return fail(statement, "Unable to bind parameters");
        step = sqlite3_step(running.mapped().get());
    }
    if ((step != SQLITE_ROW && step != SQLITE_DONE) || (read && !read(running.mapped().get(), step == SQLITE_ROW)))
        return fail(statement, "Unable to fetch row");
    // One that is not at its end holds its table, and a drop or a commit would have to wait for it.
    sqlite3_reset(running.mapped().get());
    if (statement.effect != Statement::Effect::Schema)
        keep(std::move(running));
    tellWrite(statement);
    return true;
}

/// The statement that was kept, or a fresh one; empty if it cannot be prepared.
Statements::Prepared Statements::prepared(const QString &text)
{
    {
        const QMutexLocker locker(&mutex_);
        if (Prepared kept = kept_.extract(text))
            return kept;
    }
    sqlite3_stmt *fresh = nullptr;
    if (database_) {
        const QByteArray bytes = text.toUtf8();
        sqlite3_prepare_v2(database_, bytes.constData(), static_cast<int>(bytes.size()), &fresh, nullptr);
    }
    if (!fresh)
        return {};
    KeptStatements single;
    return single.extract(single.emplace(text, fresh).first);
}

void Statements::keep(Prepared statement)
{
    const QMutexLocker locker(&mutex_);
    if (kept_.size() >= mostKept)
        kept_.clear();
    kept_.insert(std::move(statement));
}

bool Statements::fail(const Statement &statement, const char *what)
{
    const int code = database_ ? sqlite3_extended_errcode(database_) : SQLITE_MISUSE;
    error_ = QString::fromUtf8(database_ ? sqlite3_errmsg(database_) : "no database") + u' ' + QLatin1StringView(what);
    damaged_ = damaged_ || leavesDamage(code);
    if (statement.operation)
        qDebug().noquote() << statement.operation << statement.text << error_;
    return false;
}

qint64 Statements::rowChanges() const
{
    return database_ ? sqlite3_total_changes64(database_) : 0;
}

void Statements::tellWrite(const Statement &statement)
{
    if (written_ && statement.effect != Statement::Effect::None)
        written_(statement.effect);
}

/// SQLite tells of rows whatever statement writes them, so that no writer has to be trusted to tell of its own.
void Statements::listenToRows()
{
    if (database_)
        sqlite3_update_hook(
            database_,
            [](void *self, int, const char *, const char *table, sqlite3_int64) {
                const auto &told = static_cast<Statements *>(self)->rowWritten_;
                if (told)
                    told(table);
            },
            this);
}

void Statements::tellRollback()
{
    if (rolledBack_)
        rolledBack_();
}

QString SqlText::identifier(QString name)
{
    return u'"' + name.replace(u'"', R"("")"_L1) + u'"';
}

QString SqlText::places(qsizetype count)
{
    return QStringList(count, u"?"_s).join(u',');
}
