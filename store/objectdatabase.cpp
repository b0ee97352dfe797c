#include "store/objectdatabase.h"

#include "store/recordcolumns.h"
#include "store/schema.h"
#include "store/workingcopies.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr int closeTimeoutMs = 5000;
constexpr int newProjectCachePages = 16384;

/// Fills a file that has just been made with the contents of a database; false if that cannot be read.
bool fill(QFile &target, const QString &source)
{
    constexpr QByteArrayView signature("SQLite format 3");
    QFile file(source);
    // A pipe or device would never end, and what is no database may be larger than the disk.
    if (!QFileInfo(source).isFile() || !file.open(QIODevice::ReadOnly) || file.peek(signature.size()) != signature)
        return false;
    constexpr qint64 block = 1 << 20;
    while (!file.atEnd()) {
        const QByteArray part = file.read(block);
        if (part.isEmpty() || target.write(part) != part.size())
            return false;
    }
    return target.flush();
}

bool isWriting(const QString &statement)
{
    static constexpr std::array words = {"insert"_L1, "update"_L1, "delete"_L1, "replace"_L1,
                                         "create"_L1, "drop"_L1,   "alter"_L1};
    const QString trimmed = statement.trimmed();
    return std::any_of(words.begin(), words.end(),
                       [&](QLatin1StringView word) { return trimmed.startsWith(word, Qt::CaseInsensitive); });
}

/// Without a journal, a statement that ran out of space or could not read its pages leaves the file half changed.
bool leavesDamage(const QSqlError &error)
{
    constexpr int inputOutput = 10;
    constexpr int corrupt = 11;
    constexpr int full = 13;
    const int code = error.nativeErrorCode().toInt() & 0xff;
    return code == inputOutput || code == corrupt || code == full;
}

} // namespace

ObjectDataBase::ObjectDataBase(QObject *parent)
    : QObject(parent)
{
    static std::atomic<int> connections = 0;

    std::srand(static_cast<unsigned>(reinterpret_cast<quintptr>(QThread::currentThreadId())));
    qRegisterMetaType<ObjectDataBase::ChangeSet>();
    connectionName_ = u"db%1"_s.arg(++connections);
    database_ = QSqlDatabase::addDatabase(u"QSQLITE"_s, connectionName_);
    if (database_.lastError().isValid())
        qDebug() << "Db drivers: " << QSqlDatabase::drivers() << "Db last error: " << database_.lastError().text();
}

ObjectDataBase::~ObjectDataBase()
{
    closeDatabase();
    // The connection can only be taken off the list when no handle refers to it any more.
    database_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(connectionName_);
    for (const QString &copy : std::as_const(workingCopies_))
        WorkingCopies::remove(copy);
}

void ObjectDataBase::closeDatabase()
{
    gate_.waitUntilIdle(closeTimeoutMs);
    indexStatements_.reset();
    database_.close();
}

/// Makes a new working copy, filled from `source` unless that is empty.
QString ObjectDataBase::makeWorkingCopy(const QString &source)
{
    QFile file;
    if (!WorkingCopies::create(file))
        return {};
    workingCopies_.append(file.fileName());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    if (source.isEmpty() || fill(file, source))
        return file.fileName();
    // What is no database leaves an empty one; a copy that the disk does not take is none.
    const bool isNoCopy = file.error() != QFile::NoError;
    file.resize(0);
    return isNoCopy ? QString() : file.fileName();
}

bool ObjectDataBase::connectTo(const QString &workingCopy)
{
    closeDatabase();
    forgetCaches();
    damaged_ = workingCopy.isEmpty();
    if (damaged_)
        return false;
    database_.setDatabaseName(QDir::toNativeSeparators(workingCopy));
    if (database_.open())
        return true;
    qDebug() << "error sqlDbFile.open()" << database_.lastError().text();
    return false;
}

void ObjectDataBase::forgetCaches()
{
    strings_.clear();
    subCache_.clear();
    keptSubs_.reset();
    denotations_.clear();
    spnCache_.clear();
    indexStatements_.reset();
    transactionDepth_ = 0;
}

void ObjectDataBase::applyPragmas(int cachePages)
{
    QSqlQuery query = newQuery();
    for (const QString &statement :
         {u"PRAGMA page_size = 4096"_s, u"PRAGMA cache_size = %1"_s.arg(cachePages), u"PRAGMA temp_store = MEMORY"_s,
          u"PRAGMA journal_mode = OFF"_s, u"PRAGMA locking_mode = EXCLUSIVE"_s, u"PRAGMA synchronous  = OFF"_s})
        execQuery(query, statement);
}

bool ObjectDataBase::createGlobalTables()
{
    QSqlQuery query = newQuery();
    for (int i = 0; i < ProjectSchema::globalTableCount; ++i) {
        const auto table = static_cast<ProjectSchema::Table>(i);
        const QString operation = "Create "_L1 + ProjectSchema::tableName(table);
        if (!run(operation.toLatin1().constData(), query, ProjectSchema::createStatement(table)))
            return false;
    }
    return true;
}

bool ObjectDataBase::createNewDataBase()
{
    if (!connectTo(makeWorkingCopy({})))
        return false;
    applyPragmas(newProjectCachePages);
    const Transaction transaction(*this);
    if (!createGlobalTables())
        return false;
    addNode(0, NODE_DATA_T());
    notify(Change::ProjectReplaced);
    setMiscSetting(u"CreateToolVersion"_s, QCoreApplication::applicationVersion());
    setMiscSetting(u"CreateToolName"_s, QCoreApplication::applicationName());
    setMiscSetting(u"DatabaseVersion"_s, QString::number(schemaVersion));
    return true;
}

void ObjectDataBase::setBlocked(bool blocked)
{
    blocked_ = blocked;
    if (blocked)
        gate_.close();
    else
        gate_.open();
    Q_EMIT blockStateChanged(blocked);
}

QSqlQuery ObjectDataBase::newQuery() const
{
    return QSqlQuery(database_);
}

bool ObjectDataBase::execQuery(QSqlQuery &query, const QString &statement)
{
    return execute(query, &statement);
}

bool ObjectDataBase::execPrepared(QSqlQuery &query)
{
    return execute(query, nullptr);
}

/// Executes a statement, or a prepared query where that is null.
bool ObjectDataBase::execute(QSqlQuery &query, const QString *statement)
{
    bool done = false;
    {
        const StoreGate::Passage passage(gate_);
        done = statement ? query.exec(*statement) : query.exec();
    }
    if (done && (writeTracking_ || keptSubs_))
        tellWrite(statement ? *statement : query.lastQuery());
    if (!done) {
        keptSubs_.reset();
        damaged_ = damaged_ || leavesDamage(query.lastError());
    }
    return done;
}

void ObjectDataBase::tellWrite(const QString &statement)
{
    if (!isWriting(statement))
        return;
    if (statement.contains("SubObjects"_L1, Qt::CaseInsensitive))
        keptSubs_.reset();
    if (writeTracking_)
        Q_EMIT databaseWriteExecuted();
}

void ObjectDataBase::migrationExec(QSqlQuery &query, const QString &statement)
{
    if (execQuery(query, statement))
        return;
    const QString error = query.lastError().text();
    if (!error.contains("duplicate column name"_L1, Qt::CaseInsensitive))
        qDebug().noquote() << "migration statement failed:" << statement << error;
}

bool ObjectDataBase::run(const char *operation, QSqlQuery &query, const QString &statement)
{
    if (execQuery(query, statement))
        return true;
    qDebug().noquote() << operation << statement << query.lastError().text();
    return false;
}

bool ObjectDataBase::run(const char *operation, const QString &statement)
{
    QSqlQuery query = newQuery();
    return run(operation, query, statement);
}

bool ObjectDataBase::prepare(const char *operation, QSqlQuery &query, const QString &statement)
{
    const StoreGate::Passage passage(gate_);
    if (query.prepare(statement))
        return true;
    damaged_ = damaged_ || leavesDamage(query.lastError());
    qDebug().noquote() << operation << statement << query.lastError().text();
    return false;
}

/// Executes a prepared query whose values are bound.
bool ObjectDataBase::runPrepared(const char *operation, QSqlQuery &query)
{
    if (execPrepared(query))
        return true;
    qDebug().noquote() << operation << query.lastQuery() << query.lastError().text();
    return false;
}

QVariant ObjectDataBase::selectValue(const QString &statement)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    return execQuery(query, statement) && query.next() ? query.value(0) : QVariant();
}

bool ObjectDataBase::selectsRow(const QString &statement)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    return execQuery(query, statement) && query.next();
}

/// Executes `update` if the row exists, else `insert`.
bool ObjectDataBase::writeRow(const char *operation, const RecordColumns::Row &row, const QString &insert,
                              const QString &update)
{
    QSqlQuery query = newQuery();
    if (!run(operation, query, row.select(u"1"_s)))
        return false;
    const bool exists = query.next();
    query.finish();
    return run(operation, query, exists ? update : insert);
}

/// The text of the pool that the row's column "name" refers to.
QString ObjectDataBase::selectText(const RecordColumns::Row &row)
{
    const QVariant id = selectValue(row.select(u"name"_s));
    return id.isNull() ? QString() : strings_.textOf(id.toInt());
}

QList<quint32> ObjectDataBase::selectNumbers(const QString &statement)
{
    QList<quint32> numbers;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (execQuery(query, statement)) {
        while (query.next())
            numbers.append(static_cast<quint32>(query.value(0).toLongLong()));
    }
    return numbers;
}

/// The pool's texts of a statement that selects numbers and text ids.
QHash<quint32, QString> ObjectDataBase::selectNames(const QString &statement)
{
    QHash<quint32, QString> names;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (execQuery(query, statement)) {
        while (query.next())
            names.insert(static_cast<quint32>(query.value(0).toLongLong()), strings_.textOf(query.value(1).toInt()));
    }
    return names;
}

void ObjectDataBase::notify(Change type, ChangeSet change)
{
    change.type = static_cast<quint32>(type);
    Q_EMIT updateNotify(change);
}

ObjectDataBase::Transaction::Transaction(ObjectDataBase &store)
    : store_(store)
{
    if (store_.transactionDepth_++ == 0)
        store_.run("Transaction", u"begin transaction"_s);
}

ObjectDataBase::Transaction::~Transaction()
{
    if (--store_.transactionDepth_ != 0)
        return;
    store_.indexStatements_.reset();
    store_.run("Transaction", u"commit"_s);
}
