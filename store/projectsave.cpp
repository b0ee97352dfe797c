// Saving a project: the user's file is replaced, the file before it stays as its backup.

#include "store/objectdatabase.h"

#include "store/databasetextconverter.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/// Lines of the editor's own that never reach a file.
constexpr quint8 scratchLines[] = {254, 255};

QString cannotWrite(const QString &path)
{
    return u"The project cannot be written to %1."_s.arg(path);
}

} // namespace

bool ObjectDataBase::saveDatabase(const QString &path)
{
    lastError_.clear();
    keptSubs_.reset();
    const QString target = path.isEmpty() ? projectPath_ : path;
    return target.endsWith("ncxt"_L1) ? saveDatabaseAsText(target) : saveDatabaseAsSql(target);
}

/// True, with the reason told, if saving would replace a good file by a broken one.
bool ObjectDataBase::refusesDamaged()
{
    if (damaged_)
        lastError_ = u"The working copy of the project is damaged (is the disk full?); the project is not saved."_s;
    return damaged_;
}

void ObjectDataBase::writeIdentity()
{
    setMiscSetting(u"SaveToolType"_s, QCoreApplication::applicationName());
    setMiscSetting(u"SaveToolVersion"_s, QCoreApplication::applicationVersion());
    setMiscSetting(u"DatabaseVersion"_s, QString::number(schemaVersion));
    // The hash covers the rows just written, so it comes last.
    setMiscSetting(u"FileHash"_s, computeFileHash());
}

bool ObjectDataBase::saveDatabaseAsSql(const QString &path)
{
    {
        const Transaction transaction(*this);
        for (const quint8 line : scratchLines)
            removeNode(line);
        removeUnusedStrings();
    }
    const QString target = path.isEmpty() ? projectPath_ : path;
    if (QFileInfo(target).completeSuffix().toLower() == "data"_L1) {
        run("saveDatabaseAsSql", u"update SubObjects0 set changedbyuser=0 where changedbyuser = 1"_s);
        run("saveDatabaseAsSql", u"update SubObjects0 set wizardsource=454 where changedbyuser = 0"_s);
    }
    writeIdentity();
    if (refusesDamaged())
        return false;

    // A backup without its project is all that a failed save left, and stays until there is something to replace it.
    const QString backup = target + ".bak"_L1;
    const bool replaces = QFile::exists(target);
    if (replaces) {
        QFile::remove(backup);
        QFile::rename(target, backup);
    }
    if (!copyWorkingCopyTo(target)) {
        qDebug().noquote() << "ERROR copy " << database_.databaseName() << "to " << target;
        lastError_ = cannotWrite(target);
        return false;
    }
    if (replaces)
        QFile::setPermissions(target, QFile::permissions(backup));
    projectPath_ = target;
    return true;
}

bool ObjectDataBase::copyWorkingCopyTo(const QString &target)
{
    QFile source(database_.databaseName());
    QFile file(target);
    if (target.isEmpty() || !source.open(QIODevice::ReadOnly) || !file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray content = source.readAll();
    if (content.size() == source.size() && file.write(content) == content.size() && file.flush())
        return true;
    // Part of a database might open as a whole one; without the file, the next save leaves the backup alone.
    file.remove();
    return false;
}

bool ObjectDataBase::saveDatabaseAsText(const QString &path)
{
    {
        const Transaction transaction(*this);
        for (const quint8 line : scratchLines)
            removeNode(line);
    }
    writeIdentity();
    projectPath_ = path;
    DatabaseTextConverter converter;
    converter.setStore(this);
    converter.setDatabase(database_);
    converter.setOutputFile(path);
    const Transaction transaction(*this);
    if (refusesDamaged())
        return true;
    converter.convertSqlToText();
    if (converter.writeFailed())
        lastError_ = cannotWrite(path);
    return true;
}
