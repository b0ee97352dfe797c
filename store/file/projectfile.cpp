#include "store/file/projectfile.h"

#include "store/file/filehash.h"
#include "store/file/migrations.h"
#include "store/file/workingcopies.h"
#include "store/records/schema.h"
#include "store/statements/transaction.h"
#include "store/tables/projecttables.h"
#include "texttools/clock.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cstdlib>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;
using StoreRecords::Change;

namespace {

constexpr int newProjectCachePages = 16384;
constexpr int openedProjectCachePages = 64000;

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

ProjectFile::ProjectFile(ProjectTables &tables, std::function<void()> wrongTool)
    : tables_(tables)
    , wrongTool_(std::move(wrongTool))
{
    std::srand(static_cast<unsigned>(reinterpret_cast<quintptr>(QThread::currentThreadId())));
}

ProjectFile::~ProjectFile()
{
    close();
    for (const QString &copy : std::as_const(workingCopies_))
        WorkingCopies::remove(copy);
}

void ProjectFile::close()
{
    tables_.context.strings.releaseStatements();
    tables_.context.statements.close();
}

/// Makes a new working copy, filled from `source` unless that is empty.
QString ProjectFile::makeWorkingCopy(const QString &source)
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

bool ProjectFile::connectTo(const QString &workingCopy)
{
    close();
    tables_.forgetCaches();
    if (!workingCopy.isEmpty())
        return tables_.context.statements.open(workingCopy);
    tables_.context.statements.noteDamage();
    return false;
}

void ProjectFile::applyPragmas(int cachePages)
{
    for (const QString &statement :
         {u"PRAGMA page_size = 4096"_s, u"PRAGMA cache_size = %1"_s.arg(cachePages), u"PRAGMA temp_store = MEMORY"_s,
          u"PRAGMA journal_mode = OFF"_s, u"PRAGMA locking_mode = EXCLUSIVE"_s, u"PRAGMA synchronous  = OFF"_s})
        tables_.context.statements.value({nullptr, statement});
}

bool ProjectFile::createGlobalTables()
{
    for (int i = 0; i < ProjectSchema::globalTableCount; ++i) {
        const auto table = static_cast<ProjectSchema::Table>(i);
        const QByteArray operation = "Create " + QByteArray(ProjectSchema::tableName(table).toString().toLatin1());
        if (!tables_.context.statements.execute(
                {operation.constData(), ProjectSchema::createStatement(table), Statement::Effect::Schema}))
            return false;
    }
    return true;
}

bool ProjectFile::create()
{
    if (connectTo(makeWorkingCopy({})) && fillNew())
        return true;
    close();
    return false;
}

bool ProjectFile::fillNew()
{
    applyPragmas(newProjectCachePages);
    TransactionScope step(tables_.context.statements, TransactionScope::Kind::Step);
    if (!createGlobalTables() || !tables_.addNode(0, {}, Quotes::Literal))
        return false;
    tables_.context.notify(Change::ProjectReplaced);
    // A blocked store takes no line either, and does not come here.
    SettingsTables &settings = tables_;
    return settings.setMiscSetting(u"CreateToolVersion"_s, QCoreApplication::applicationVersion()) &&
           settings.setMiscSetting(u"CreateToolName"_s, QCoreApplication::applicationName()) &&
           settings.setMiscSetting(u"DatabaseVersion"_s, QString::number(Migrations::schemaVersion)) && step.commit();
}

bool ProjectFile::open(const QString &path)
{
    path_ = path;
    if (!path.isEmpty() && openWorkingCopy(makeWorkingCopy(path)))
        return true;
    close();
    tables_.forgetCaches();
    path_.clear();
    return false;
}

/// Brings a copy of a project file to the current layout.
bool ProjectFile::openWorkingCopy(const QString &copy)
{
    if (!connectTo(copy) || !hasLines())
        return false;

    verifyFileHash();
    applyPragmas(openedProjectCachePages);
    Migrations::addMissingTablesAndColumns(tables_);
    if (!savedByMatchingTool()) {
        wrongTool_();
        lastError_ = u"File was not created with this tool."_s;
        return false;
    }
    // What cannot be put right does not stop the open; it stands in the log.
    const int fileVersion = Migrations::versionOf(tables_);
    for (const quint8 line : tables_.getNodeList())
        std::ignore = Migrations::completeLine(tables_, line);
    std::ignore = Migrations::repair(tables_, fileVersion, path_);
    if (!onlyRead_)
        std::ignore = Migrations::compact(tables_);
    tables_.context.notify(Change::ProjectReplaced);
    return true;
}

bool ProjectFile::hasLines()
{
    // A view of that name could go on for ever.
    return tables_.context.statements.hasRow(
               {nullptr, u"select 1 from sqlite_master where type = 'table' and name = 'Nodes' collate nocase"_s}) &&
           !tables_.getNodeList().isEmpty();
}

bool ProjectFile::savedByMatchingTool()
{
    const QString application = QCoreApplication::applicationName();
    const QString savedBy = tables_.getMiscSetting(u"SaveToolType"_s);
    if ((!savedBy.isEmpty() && savedBy == application) || application == "CAN NodeComposer"_L1)
        return true;

    bool hasCANopen = false;
    bool hasJ1939 = false;
    for (const quint8 line : tables_.getNodeList()) {
        const QString type = tables_.lineType(line);
        const bool both = type == "4"_L1 || type == "5"_L1;
        hasCANopen |= both || type == "1"_L1;
        hasJ1939 |= both || type == "2"_L1;
    }
    return !(application == "CANopen NodeComposer"_L1 && hasJ1939) &&
           !(application == "J1939 NodeComposer"_L1 && hasCANopen);
}

QString ProjectFile::computeFileHash()
{
    return FileHash::compute(tables_.context.statements);
}

void ProjectFile::verifyFileHash()
{
    tampered_ = false;
    if (onlyRead_)
        return;
    const QString stored = tables_.getMiscSetting(u"FileHash"_s);
    if (stored.isEmpty() || stored == computeFileHash())
        return;
    tampered_ = true;
    const QString now = TextTools::currentDateTime().toString(Qt::ISODate);
    const QString log = tables_.getMiscSetting(u"TamperLog"_s);
    // The open goes on without the note.
    std::ignore = tables_.setMiscSetting(u"TamperLog"_s, log.isEmpty() ? now : log + u';' + now);
}
