#include "store/objectdatabase.h"

#include "store/recordcolumns.h"
#include "store/schema.h"
#include "store/workingcopies.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

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

} // namespace

ObjectDataBase::ObjectDataBase(QObject *parent)
    : QObject(parent)
{
    std::srand(static_cast<unsigned>(reinterpret_cast<quintptr>(QThread::currentThreadId())));
    qRegisterMetaType<ObjectDataBase::ChangeSet>();
    statements_.setWriteListener([this](Statement::Effect effect) { noteWrite(effect); });
    statements_.setRollbackListener([this] {
        forgetCaches();
        cacheStrings();
    });
}

ObjectDataBase::~ObjectDataBase()
{
    closeDatabase();
    for (const QString &copy : std::as_const(workingCopies_))
        WorkingCopies::remove(copy);
}

void ObjectDataBase::closeDatabase()
{
    statements_.close();
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
    if (!workingCopy.isEmpty())
        return statements_.open(workingCopy);
    statements_.noteDamage();
    return false;
}

void ObjectDataBase::forgetCaches()
{
    strings_.clear();
    clearSubCache();
    keptSubs_.reset();
    spnCache_.clear();
}

void ObjectDataBase::applyPragmas(int cachePages)
{
    for (const QString &statement :
         {u"PRAGMA page_size = 4096"_s, u"PRAGMA cache_size = %1"_s.arg(cachePages), u"PRAGMA temp_store = MEMORY"_s,
          u"PRAGMA journal_mode = OFF"_s, u"PRAGMA locking_mode = EXCLUSIVE"_s, u"PRAGMA synchronous  = OFF"_s})
        statements_.value({nullptr, statement});
}

bool ObjectDataBase::createGlobalTables()
{
    for (int i = 0; i < ProjectSchema::globalTableCount; ++i) {
        const auto table = static_cast<ProjectSchema::Table>(i);
        const QByteArray operation = "Create " + QByteArray(ProjectSchema::tableName(table).toString().toLatin1());
        if (!runSchema(operation.constData(), ProjectSchema::createStatement(table)))
            return false;
    }
    return true;
}

bool ObjectDataBase::createNewDataBase()
{
    if (connectTo(makeWorkingCopy({})) && fillNewDataBase())
        return true;
    closeDatabase();
    return false;
}

bool ObjectDataBase::fillNewDataBase()
{
    applyPragmas(newProjectCachePages);
    Step step(*this);
    if (!createGlobalTables() || !addNode(0, NODE_DATA_T()))
        return false;
    notify(Change::ProjectReplaced);
    setMiscSetting(u"CreateToolVersion"_s, QCoreApplication::applicationVersion());
    setMiscSetting(u"CreateToolName"_s, QCoreApplication::applicationName());
    setMiscSetting(u"DatabaseVersion"_s, QString::number(schemaVersion));
    return step.commit();
}

void ObjectDataBase::setBlocked(bool blocked)
{
    blocked_ = blocked;
    if (blocked)
        statements_.gate().close();
    else
        statements_.gate().open();
    Q_EMIT blockStateChanged(blocked);
}

void ObjectDataBase::noteWrite(Statement::Effect effect)
{
    // A change of tables may be one of any of them.
    if (effect != Statement::Effect::Rows)
        keptSubs_.reset();
    if (writeTracking_)
        Q_EMIT databaseWriteExecuted();
}

bool ObjectDataBase::run(const char *operation, const QString &text, const QVariantList &values)
{
    return statements_.execute({operation, text, Statement::Effect::Rows}, values);
}

bool ObjectDataBase::runSchema(const char *operation, const QString &text)
{
    return statements_.execute({operation, text, Statement::Effect::Schema});
}

/// A write to the subindices of a line, of which not even a failure leaves them as they were known.
bool ObjectDataBase::runSubs(const char *operation, const QString &text, const QVariantList &values)
{
    keptSubs_.reset();
    return statements_.execute({operation, text, Statement::Effect::Subindices}, values);
}

/// Executes `update` if the row exists, else `insert`; the values are those of the columns.
bool ObjectDataBase::writeRow(const char *operation, const RecordColumns::Row &row, const QString &insert,
                              const QString &update, QVariantList values)
{
    const QVariant exists = statements_.value({operation, u"select exists(%1)"_s.arg(row.select(u"1"_s))}, row.key());
    if (!exists.isValid())
        return false;
    values.append(row.key());
    return run(operation, exists.toBool() ? update : insert, values);
}

/// Hands a record's values on, and tells of a record that has none as one of its texts breaks the statement.
std::optional<QVariantList> ObjectDataBase::textsOf(const char *operation, std::optional<QVariantList> values)
{
    if (!values)
        qDebug().noquote() << operation << "failed: a single quote in a text";
    return values;
}

/// The text of the pool that the row's column "name" refers to.
QString ObjectDataBase::selectText(const RecordColumns::Row &row)
{
    const QVariant id = statements_.value({nullptr, row.select(u"name"_s)}, row.key());
    return id.isNull() ? QString() : strings_.textOf(id.toInt());
}

QList<quint32> ObjectDataBase::selectNumbers(const QString &text, const QVariantList &values)
{
    QList<quint32> numbers;
    statements_.visit({nullptr, text}, values, [&](const ResultRow &row) { numbers.append(row.number<quint32>(0)); });
    return numbers;
}

/// The pool's texts of a statement that selects numbers and text ids.
QHash<quint32, QString> ObjectDataBase::selectNames(const QString &text, const QVariantList &values)
{
    QHash<quint32, QString> names;
    statements_.visit({nullptr, text}, values, [&](const ResultRow &row) {
        names.insert(row.number<quint32>(0), strings_.textOf(row.number<int>(1)));
    });
    return names;
}

void ObjectDataBase::notify(Change type, ChangeSet change)
{
    change.type = static_cast<quint32>(type);
    Q_EMIT updateNotify(change);
}
