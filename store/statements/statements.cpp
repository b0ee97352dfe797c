#include "store/statements/statements.h"

#include <QDebug>
#include <QDir>
#include <QMutexLocker>
#include <QSqlQuery>
#include <QSqlRecord>

#include <atomic>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// More than a line has operations; with more lines than that the oldest are prepared again.
constexpr std::size_t mostKept = 512;

/// A statement that ran out of space or could not read its pages has left something out.
bool leavesDamage(const QSqlError &error)
{
    constexpr int inputOutput = 10;
    constexpr int corrupt = 11;
    constexpr int full = 13;
    const int code = error.nativeErrorCode().toInt() & 0xff;
    return code == inputOutput || code == corrupt || code == full;
}

/// A text without characters is a text, too.
QVariant bound(const QVariant &value)
{
    return value.typeId() == QMetaType::QString && value.toString().isNull() ? QVariant(u""_s) : value;
}

} // namespace

int ResultRow::count() const
{
    return query_.record().count();
}

QVariant ResultRow::value(int column) const
{
    return query_.value(column);
}

Statements::Statements()
{
    static std::atomic<int> connections = 0;
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
    if (connection_.open())
        return true;
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
    connection_.close();
}

bool Statements::execute(const Statement &statement, const QVariantList &values)
{
    return perform(statement, values);
}

std::optional<qint64> Statements::insert(const Statement &statement, const QVariantList &values)
{
    std::optional<qint64> id;
    perform(statement, values, [&id](const QSqlQuery &query) { id = query.lastInsertId().toLongLong(); });
    return id;
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
    return perform(statement, values, [&visitor](QSqlQuery &query) {
        const ResultRow row(query);
        while (query.next())
            visitor(row);
    });
}

bool Statements::visitFirst(const Statement &statement, const QVariantList &values, const Visitor &visitor)
{
    bool found = false;
    perform(statement, values, [&](QSqlQuery &query) {
        found = query.next();
        if (found)
            visitor(ResultRow(query));
    });
    return found;
}

/// Runs a statement and lets `use` read its result. It is out of the kept ones meanwhile, so that a visitor may run
/// the same again.
bool Statements::perform(const Statement &statement, const QVariantList &values,
                         const std::function<void(QSqlQuery &)> &use)
{
    Kept::node_type kept;
    bool done = false;
    {
        const StoreGate::Passage passage(gate_);
        kept = take(statement.text);
        const bool isPrepared = !kept.empty();
        if (!isPrepared) {
            Kept fresh;
            fresh.emplace(statement.text, QSqlQuery(connection_));
            kept = fresh.extract(fresh.begin());
        }
        done = prepareAndRun(kept.mapped(), isPrepared, statement, values);
    }
    if (!done) {
        note(statement, kept.mapped().lastError());
        return false;
    }
    if (use)
        use(kept.mapped());
    // One that is not at its end holds its table, and a drop or a commit would have to wait for it.
    kept.mapped().finish();
    if (statement.effect != Statement::Effect::Schema)
        keep(std::move(kept));
    if (written_ && statement.effect != Statement::Effect::None)
        written_(statement.effect);
    return true;
}

bool Statements::prepareAndRun(QSqlQuery &query, bool isPrepared, const Statement &statement,
                               const QVariantList &values)
{
    if (!isPrepared) {
        query.setForwardOnly(true);
        if (!query.prepare(statement.text))
            return false;
    }
    int place = 0;
    for (const QVariant &value : values)
        query.bindValue(place++, bound(value));
    return query.exec();
}

Statements::Kept::node_type Statements::take(const QString &text)
{
    const QMutexLocker locker(&mutex_);
    return kept_.extract(text);
}

void Statements::keep(Kept::node_type statement)
{
    const QMutexLocker locker(&mutex_);
    if (kept_.size() >= mostKept)
        kept_.clear();
    kept_.insert(std::move(statement));
}

void Statements::note(const Statement &statement, const QSqlError &error)
{
    error_ = error;
    damaged_ = damaged_ || leavesDamage(error);
    if (statement.operation)
        qDebug().noquote() << statement.operation << statement.text << error.text();
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
