// Saving a project: the user's file is replaced, the file before it stays as its backup.

#include "store/objectdatabase.h"

#include "store/databasetextconverter.h"
#include "texttools/wholefile.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

/// Lines of the editor's own that never reach a file.
constexpr quint8 scratchLines[] = {254, 255};

QString cannotWrite(const QString &path)
{
    return u"The project cannot be written to %1."_s.arg(path);
}

/// Makes the file that a save is going to replace its own backup, too, so that the place is never empty; without one, a
/// backup that is there stays. False where the file system knows no links.
bool backUp(const QString &target, const QString &backup)
{
    if (!QFile::exists(target))
        return true;
    std::error_code error;
    QFile::remove(backup);
    std::filesystem::create_hard_link(QFileInfo(target).filesystemFilePath(), QFileInfo(backup).filesystemFilePath(),
                                      error);
    return !error;
}

bool replaceFile(const QString &target, const QString &fresh)
{
    if (QFile::exists(target))
        QFile::setPermissions(fresh, QFile::permissions(target));
    std::error_code error;
    std::filesystem::rename(QFileInfo(fresh).filesystemFilePath(), QFileInfo(target).filesystemFilePath(), error);
    if (error)
        QFile::remove(fresh);
    return !error;
}

} // namespace

bool ObjectDataBase::saveDatabase(const QString &path)
{
    lastError_.clear();
    keptSubs_.reset();
    const QString target = path.isEmpty() ? projectPath_ : path;
    return target.endsWith("ncxt"_L1) ? saveDatabaseAsText(target) : saveDatabaseAsSql(target);
}

/// True, with the reason told, if there is nothing to save or saving would replace a good file by a broken one.
bool ObjectDataBase::refusesSave()
{
    if (statements_.isDamaged())
        lastError_ = u"The working copy of the project is damaged (is the disk full?); the project is not saved."_s;
    else if (!isOpen())
        lastError_ = u"No project is open."_s;
    else
        return false;
    return true;
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
    if (!isOpen())
        return !refusesSave();
    {
        const Transaction transaction(*this);
        for (const quint8 line : scratchLines)
            removeNode(line);
        removeUnusedStrings();
    }
    const QString target = path.isEmpty() ? projectPath_ : path;
    if (QFileInfo(target).completeSuffix().toLower() == "data"_L1) {
        runSubs("saveDatabaseAsSql", u"update SubObjects0 set changedbyuser=0 where changedbyuser = 1"_s);
        runSubs("saveDatabaseAsSql", u"update SubObjects0 set wizardsource=454 where changedbyuser = 0"_s);
    }
    writeIdentity();
    if (refusesSave())
        return false;

    if (!copyWorkingCopyTo(target)) {
        qDebug().noquote() << "ERROR copy " << statements_.path() << "to " << target;
        lastError_ = cannotWrite(target);
        return false;
    }
    projectPath_ = target;
    return true;
}

/// The new file is complete, on disk and under a name of its own before it takes the place of the old one, so that at
/// any moment the project or its backup is whole.
bool ObjectDataBase::copyWorkingCopyTo(const QString &path)
{
    // Behind a link, it is the file that is saved, and not the link that is lost.
    const QString behindLinks = QFileInfo(path).canonicalFilePath();
    const QString target = behindLinks.isEmpty() ? path : behindLinks;
    QFile source(statements_.path());
    if (target.isEmpty() || !source.open(QIODevice::ReadOnly))
        return false;
    const QByteArray content = source.readAll();
    if (content.size() != source.size())
        return false;

    const QString backup = path + ".bak"_L1;
    const bool isBackedUp = backUp(target, backup);
    const QString folder = QFileInfo(target).path();
    WholeFile file(u"%1/.ncxsave%2"_s.arg(folder, QString::number(QCoreApplication::applicationPid())));
    if (!file.open(QIODevice::WriteOnly))
        return WholeFile::overwriteInClosedFolder(target, content);
    if (file.write(content) != content.size() || !file.commitWhole())
        return false;
    if (!isBackedUp) {
        const QFile::Permissions permissions = QFile::permissions(target);
        QFile::rename(target, backup);
        QFile::setPermissions(file.fileName(), permissions);
    }
    return replaceFile(target, file.fileName());
}

bool ObjectDataBase::saveDatabaseAsText(const QString &path)
{
    if (!isOpen())
        return !refusesSave();
    DatabaseTextConverter converter;
    converter.setStore(this);
    converter.setOutputFile(path);
    const Transaction transaction(*this);
    for (const quint8 line : scratchLines)
        removeNode(line);
    // The hash is that of the text's own values, so that a second save writes the same one.
    converter.replaceNulls();
    writeIdentity();
    projectPath_ = path;
    if (refusesSave())
        return true;
    converter.convertSqlToText();
    if (converter.writeFailed())
        lastError_ = cannotWrite(path);
    return true;
}
