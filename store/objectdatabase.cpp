#include "store/objectdatabase.h"

#include "store/text/objectrowwriter.h"
#include "store/text/textproject.h"

using namespace Qt::StringLiterals;

namespace {

bool isTextPath(const QString &path)
{
    return path.endsWith("ncxt"_L1);
}

} // namespace

ObjectDataBase::ObjectDataBase(QObject *parent)
    : QObject(parent)
    , file_(*this, [this] { Q_EMIT wrongTool(); })
{
    qRegisterMetaType<ObjectDataBase::ChangeSet>();
    context.setListener([this](const ChangeSet &change) { Q_EMIT updateNotify(change); });
    statements().setWriteListener([this](Statement::Effect effect) { noteWrite(effect); });
    statements().setRollbackListener([this] {
        forgetCaches();
        cacheStrings();
    });
}

bool ObjectDataBase::openDataBase(const QString &path, bool /*unused*/)
{
    file_.clearError();
    if (!isTextPath(path))
        return file_.open(path);
    // A text that is no project has always been opened as an empty one.
    std::ignore = openTextDatabase(path);
    return true;
}

bool ObjectDataBase::saveDatabase(const QString &path)
{
    file_.clearError();
    dropKept();
    const QString target = path.isEmpty() ? projectPath() : path;
    return isTextPath(target) ? saveDatabaseAsText(target) : saveDatabaseAsSql(target);
}

bool ObjectDataBase::openTextDatabase(const QString &path)
{
    return TextProject::open(file_, *this, path);
}

bool ObjectDataBase::saveDatabaseAsText(const QString &path)
{
    return TextProject::save(file_, *this, path);
}

void ObjectDataBase::setBlocked(bool blocked)
{
    context.blocked = blocked;
    if (blocked)
        closeGate();
    else
        openGate();
    Q_EMIT blockStateChanged(blocked);
}

void ObjectDataBase::setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                            const QVariant &value, Quotes quotes)
{
    if (!isBlocked())
        ObjectRowWriter(*this, table).writeValue({index}, column, value, quotes);
}

void ObjectDataBase::setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex,
                                         const QString &column, const QVariant &value, Quotes quotes)
{
    if (!isBlocked())
        ObjectRowWriter(*this, table).writeValue({index, subindex}, column, value, quotes);
}

void ObjectDataBase::noteWrite(Statement::Effect effect)
{
    // A change of tables may be one of any of them.
    if (effect != Statement::Effect::Rows)
        dropKept();
    dropKeptIndices();
    if (effect == Statement::Effect::Schema)
        context.writes.anythingWritten();
    if (writeTracking_ && !context.isSilent())
        Q_EMIT databaseWriteExecuted();
}
