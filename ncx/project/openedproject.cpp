#include "ncx/project/openedproject.h"

#include "check/frame/checkrules.h"
#include "ncx/project/identity.h"
#include "store/file/migrations.h"
#include "store/file/workingcopies.h"
#include "store/objectdatabase.h"
#include "texttools/textfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView databaseSignature("SQLite format 3");

QByteArray headOf(const QString &path)
{
    constexpr qint64 enough = 4096;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(enough) : QByteArray();
}

/// What tells one content of a file from another.
QByteArray stampOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

/// What a file is that is no project, and what can be done with it.
QString reasonOfForeign(const QString &path, const QByteArray &head)
{
    static const QRegularExpression description(uR"(^\s*\[(FileInfo|DeviceInfo|Comments|DummyUsage)\])"_s,
                                                QRegularExpression::CaseInsensitiveOption |
                                                    QRegularExpression::MultilineOption);
    static const QRegularExpression project(uR"(^\s*\[(Nodes|GeneralSettings|Objects\d+|PGNs\d+)\])"_s,
                                            QRegularExpression::MultilineOption);
    const QString text = QString::fromUtf8(head);
    if (head.startsWith(databaseSignature))
        return u"it is a database, but no text; projects in text form end in .ncxt, the others in .ncxp"_s;
    if (description.match(text).hasMatch())
        return u"it is a device description and no project; 'ncx new --from' makes one of it, 'ncx import' takes it into one"_s;
    if (project.match(text).hasMatch() && !OpenedProject::isTextPath(path))
        return u"it is a project in text form, whose name has to end in .ncxt"_s;
    return u"it is no project"_s;
}

/// The size that a database has by its own header; 0 for none.
qint64 sizeByHeader(const QByteArray &head)
{
    constexpr qsizetype headerSize = 100;
    if (head.size() < headerSize)
        return 0;
    const auto number = [&head](qsizetype place, int bytes) {
        qint64 value = 0;
        for (int i = 0; i < bytes; ++i)
            value = value << 8 | static_cast<quint8>(head.at(place + i));
        return value;
    };
    const qint64 pageSize = number(16, 2) == 1 ? 65536 : number(16, 2);
    return pageSize * number(28, 4);
}

/// True if a working copy of a file of this size can be written to a folder.
bool hasRoom(const QString &folder, qint64 size)
{
    constexpr qint64 emptyDatabase = 256 << 10;
    constexpr qint64 chunk = 64 << 10;
    QTemporaryFile probe(folder + "/probe_XXXXXX"_L1);
    if (!probe.open())
        return false;
    const QByteArray zeros(chunk, '\0');
    for (qint64 left = std::max(size, emptyDatabase); left > 0; left -= chunk) {
        if (probe.write(zeros) != chunk)
            return false;
    }
    return probe.flush();
}

/// The rules of the check, but for the reminder that names no stack: here its folder is an option of one command.
const CheckRules &rulesHere()
{
    static const std::vector<LineRule> canOpen = [] {
        const auto all = CheckRules::builtIn().canOpen;
        std::vector<LineRule> rules(all.begin(), all.end());
        std::erase_if(rules, [](const LineRule &rule) { return rule.name == "stackPathUnset"_L1; });
        return rules;
    }();
    static const CheckRules rules{.common = CheckRules::builtIn().common,
                                  .canOpen = canOpen,
                                  .j1939 = CheckRules::builtIn().j1939,
                                  .rawCan = CheckRules::builtIn().rawCan};
    return rules;
}

} // namespace

void TextSink::message(const QVariant &value)
{
    const QString text = plain(value.toString());
    collected_ += text + u'\n';
    if (hear_)
        hear_(text);
}

QString TextSink::plain(QString text)
{
    static const QRegularExpression tags(u"</?(?:strong|font|b|i)(?: [^>]*)?>"_s);
    return text.remove(tags).replace("&nbsp;"_L1, " "_L1);
}

OpenedProject::OpenedProject()
    : handler_(&sink_)
{
    handler_.setCheckRules(rulesHere());
    // The identity is known once the lines are, and before anything else is done with them.
    QObject::connect(handler_.database().get(), &ObjectDataBase::updateNotify, &handler_,
                     [this](const ObjectDataBase::ChangeSet &change) {
                         // A new project, which a text comes into, has none yet.
                         const bool isReplaced =
                             change.type == static_cast<quint32>(StoreRecords::Change::ProjectReplaced);
                         if (isReplaced && !isBesideOthers_ && Identity::hasTypes(store()))
                             takeIdentity(Identity::leastFor(store(), path_));
                     });
}

OpenedProject::~OpenedProject() = default;

QString OpenedProject::reasonNotToRead(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return info.isSymLink() ? u"the link leads to no file"_s : u"there is no such file"_s;
    if (info.isDir())
        return u"it is a folder"_s;
    if (!info.isFile())
        return u"it is no regular file"_s;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return u"it cannot be read: %1"_s.arg(file.errorString());
    if (info.size() == 0)
        return u"it is empty"_s;
    return {};
}

QString OpenedProject::reasonAgainst(const QString &path)
{
    if (QString reason = reasonNotToRead(path); !reason.isEmpty())
        return reason;
    const QByteArray head = headOf(path);
    // A huge file that is something else is not read to find that out.
    if (head.startsWith(databaseSignature) == isTextPath(path) || (isTextPath(path) && head.contains('\0')))
        return reasonOfForeign(path, head);
    const qint64 size = QFileInfo(path).size();
    if (isTextPath(path) && size > TextFile::maxFileSize)
        return tooLargeText();
    if (!isTextPath(path) && sizeByHeader(head) > size)
        return u"it is broken: %1 of its %2 bytes are there"_s.arg(size).arg(sizeByHeader(head));
    return {};
}

QString OpenedProject::tooLargeText()
{
    return u"it is too large: of a text %1 MB are read"_s.arg(TextFile::maxFileSize >> 20);
}

QString OpenedProject::reasonWithoutLine(ObjectDataBase &store, const QString &path, const QString &line)
{
    QStringList lines;
    for (const quint8 number : store.getNodeList())
        lines.append(QString::number(number));
    return u"%1 has no line %2; it has %3"_s.arg(path, line, lines.isEmpty() ? u"none"_s : lines.join(", "_L1));
}

QString OpenedProject::reasonWithoutCopy(qint64 size)
{
    const QFileInfo folder(WorkingCopies::folder());
    const bool isClosed = !folder.isDir() || !folder.isWritable();
    if (!isClosed && hasRoom(folder.filePath(), size))
        return {};
    return u"there is no %1 for a working copy in %2; XDG_DATA_HOME names another folder"_s.arg(
        isClosed ? u"place"_s : u"room"_s, folder.filePath());
}

void OpenedProject::takeIdentity(const QString &application) const
{
    if (!isBesideOthers_)
        Identity::take(application);
}

bool OpenedProject::refuse(const QString &reason)
{
    reason_ = reason;
    return false;
}

bool OpenedProject::open(const QString &path, Purpose purpose)
{
    path_ = path;
    if (const QString reason = reasonAgainst(path); !reason.isEmpty())
        return refuse(reason);
    if (purpose == Purpose::Editing)
        stamp_ = stampOf(path);
    isBesideOthers_ = purpose == Purpose::Comparing;
    takeIdentity(Identity::widest());
    // An open may change the current folder, which the other operands of a command are relative to.
    const QString folder = QDir::currentPath();
    store().setOnlyRead(purpose != Purpose::Serving && purpose != Purpose::Copying && purpose != Purpose::Editing);
    const bool isForRun = purpose == Purpose::Running || purpose == Purpose::Serving;
    const bool opened = isForRun ? handler_.openProject(path) : openAsItIs(path);
    if (!isBesideOthers_)
        QDir::setCurrent(folder);
    if (!opened || handler_.isUnreadText()) {
        // A project may take its identity before the page of its file comes that cannot be read. The working copy was
        // made in the folder of this one.
        takeIdentity(Identity::widest());
        return refuse(reasonOfFailure());
    }
    takeIdentity(Identity::leastFor(store(), path));
    bool isNumber = false;
    const int version = store().getMiscSetting(u"DatabaseVersion"_s).toInt(&isNumber);
    if (isNumber && version > Migrations::schemaVersion)
        return refuse(
            u"a later version of this program wrote it (its layout is %1, this one knows %2)"_s.arg(version).arg(
                Migrations::schemaVersion));
    reason_.clear();
    return true;
}

bool OpenedProject::openAsItIs(const QString &path)
{
    const bool opened = isText() ? store().openTextDatabase(path) : store().openDataBase(path);
    // A text that says nothing of its origin is not of the edition that was only taken to open it.
    const QString origin = u"CreateToolName"_s;
    if (opened && isText() && store().getMiscSetting(origin) == Identity::widest() &&
        !store().setMiscSetting(origin, Identity::leastFor(store(), path)))
        return false;
    return opened && store().isOpen() && !store().isDamaged();
}

QString OpenedProject::save(ObjectDataBase &store, const QString &path)
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.isDir())
        return u"there is no such folder"_s;
    if (store.saveDatabase(path) && store.lastError().isEmpty())
        return {};
    if (store.isDamaged())
        return store.lastError().chopped(1);
    if (!folder.isWritable())
        return u"its folder takes no files"_s;
    // A text needs about as much as the working copy that it is written from.
    if (!hasRoom(folder.filePath(), 2 * QFileInfo(store.statements().path()).size()))
        return u"there is no room for it in %1; nothing is written"_s.arg(folder.filePath());
    return u"it cannot be written"_s;
}

QString OpenedProject::reasonOfFailure() const
{
    if (QString reason = reasonWithoutCopy(QFileInfo(path_).size()); !reason.isEmpty())
        return reason;
    if (isText())
        return reasonOfForeign(path_, headOf(path_));
    if (store().isDamaged())
        return u"it is broken, or the disk of %1 is full"_s.arg(WorkingCopies::folder());
    return u"it is a database, but holds no project"_s;
}

void OpenedProject::noteFile()
{
    stamp_ = stampOf(path_);
}

bool OpenedProject::hasChangedOnDisk() const
{
    return stampOf(path_) != stamp_;
}
