// Saving a project: the user's file is replaced, the file before it stays as its backup.

#include "store/file/projectfile.h"

#include "store/file/migrations.h"
#include "store/statements/transaction.h"
#include "store/tables/projecttables.h"
#include "texttools/wholefile.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {

/// Lines of the editor's own that never reach a file.
constexpr quint8 scratchLines[] = {254, 255};

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

bool ProjectFile::refusesSave()
{
    const Statements &statements = tables_.context.statements;
    if (statements.isDamaged())
        lastError_ = u"The working copy of the project is damaged (is the disk full?); the project is not saved."_s;
    else if (!statements.isOpen())
        lastError_ = u"No project is open."_s;
    else
        return false;
    return true;
}

void ProjectFile::tellUnwritable(const QString &path)
{
    lastError_ = u"The project cannot be written to %1."_s.arg(path);
}

// A blocked store is saved as it is: what follows here writes nothing then. Other failures are those of a damaged
// working copy, which is not saved.

void ProjectFile::removeScratchLines()
{
    for (const quint8 line : scratchLines)
        std::ignore = tables_.removeNode(line);
}

void ProjectFile::writeIdentity()
{
    SettingsTables &settings = tables_;
    std::ignore = settings.setMiscSetting(u"SaveToolType"_s, QCoreApplication::applicationName());
    std::ignore = settings.setMiscSetting(u"SaveToolVersion"_s, QCoreApplication::applicationVersion());
    std::ignore = settings.setMiscSetting(u"DatabaseVersion"_s, QString::number(Migrations::schemaVersion));
    // The hash covers the rows just written, so it comes last.
    std::ignore = settings.setMiscSetting(u"FileHash"_s, computeFileHash());
}

/// Makes the subindices of a wizard profile count as coming from it.
void ProjectFile::markWizardProfile()
{
    for (const QString &statement : {u"update SubObjects0 set changedbyuser=0 where changedbyuser = 1"_s,
                                     u"update SubObjects0 set wizardsource=454 where changedbyuser = 0"_s})
        std::ignore =
            tables_.context.statements.execute({"saveDatabaseAsSql", statement, Statement::Effect::Subindices});
}

bool ProjectFile::saveAsSql(const QString &path)
{
    Statements &statements = tables_.context.statements;
    if (!statements.isOpen())
        return !refusesSave();
    // What is not committed is not in the file that is copied.
    if (statements.inTransaction()) {
        lastError_ = u"The project is being written to; it is not saved."_s;
        return false;
    }
    {
        const TransactionScope transaction(statements, TransactionScope::Kind::Batch);
        removeScratchLines();
        std::ignore = tables_.removeUnusedStrings();
    }
    const QString target = path.isEmpty() ? path_ : path;
    if (QFileInfo(target).completeSuffix().toLower() == "data"_L1)
        markWizardProfile();
    writeIdentity();
    if (refusesSave())
        return false;

    if (!copyWorkingCopyTo(target)) {
        qDebug().noquote() << "ERROR copy " << statements.path() << "to " << target;
        tellUnwritable(target);
        return false;
    }
    path_ = target;
    return true;
}

/// The new file is complete, on disk and under a name of its own before it takes the place of the old one, so that at
/// any moment the project or its backup is whole.
bool ProjectFile::copyWorkingCopyTo(const QString &path)
{
    // Behind a link, it is the file that is saved, and not the link that is lost.
    const QString behindLinks = QFileInfo(path).canonicalFilePath();
    const QString target = behindLinks.isEmpty() ? path : behindLinks;
    QFile source(tables_.context.statements.path());
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
