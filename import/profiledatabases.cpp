#include "import/profiledatabases.h"

#include "import/codbimporter.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

// The linker would leave out of a static library what nothing refers to.
static void keepBuiltInProfiles()
{
    Q_INIT_RESOURCE(codb);
}

namespace {

constexpr qsizetype endingLength = 5; // ".codb"
constexpr int bannerLines = 15;

QString idOfName(const QString &name)
{
    return name.startsWith(u'v', Qt::CaseInsensitive) ? name.sliced(1) : name;
}

/// The text of a comment line that says something; empty for any other line.
QString remarkIn(const QByteArray &line)
{
    const QString text = QString::fromLatin1(line).trimmed();
    if (!text.startsWith(u'#'))
        return {};
    const QString remark = text.sliced(1).trimmed();
    const bool ruler = remark.count(u'-') * 2 > remark.size();
    return ruler || remark.contains("pragma"_L1, Qt::CaseInsensitive) ? QString() : remark;
}

std::shared_ptr<ObjectDataBase> newScratchStore()
{
    auto store = std::make_shared<ObjectDataBase>();
    if (!store->createNewDataBase() || !store->addNode(0, ObjectDataBase::NODE_DATA_T()))
        return nullptr;
    return store;
}

/// The objects of a profile's file; null if the file or the place of the scratch store fails.
std::shared_ptr<ObjectDataBase> readProfile(const QString &path)
{
    auto store = newScratchStore();
    CODBImporter importer;
    if (!store || !importer.setDatabase(store) || !importer.setFile(path))
        return nullptr;
    importer.setLine(0);
    importer.startImport();
    importer.waitForEnd();
    return store->isDamaged() ? nullptr : store;
}

} // namespace

ProfileDatabases::ProfileDatabases(QString folder)
    : folder_(std::move(folder))
{
    keepBuiltInProfiles();
}

ProfileDatabases::~ProfileDatabases() = default;

QStringList ProfileDatabases::names() const
{
    if (folder_.isEmpty())
        return {};
    QStringList names = QDir(folder_).entryList({u"*.codb"_s}, QDir::Files, QDir::Name);
    for (QString &name : names)
        name.chop(endingLength);
    return names;
}

QStringList ProfileDatabases::ids() const
{
    QStringList ids = names();
    std::transform(ids.cbegin(), ids.cend(), ids.begin(), idOfName);
    return ids;
}

QString ProfileDatabases::filePath(const QString &id) const
{
    if (folder_.isEmpty())
        return {};
    const QDir folder(folder_);
    const QStringList files = folder.entryList({u"*.codb"_s}, QDir::Files, QDir::Name);
    const auto fileThat = [&](const auto &matches) {
        const auto found = std::find_if(files.cbegin(), files.cend(),
                                        [&](const QString &file) { return matches(file.chopped(endingLength)); });
        return found == files.cend() ? QString() : folder.filePath(*found);
    };
    const auto isId = [&id](const QString &name) { return idOfName(name).compare(id, Qt::CaseInsensitive) == 0; };
    const auto isName = [&id](const QString &name) { return name.compare(id, Qt::CaseInsensitive) == 0; };
    const QString path = fileThat(isName);
    return path.isEmpty() ? fileThat(isId) : path;
}

QString ProfileDatabases::description(const QString &id) const
{
    QFile file(filePath(id));
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    for (int i = 0; i < bannerLines && !file.atEnd(); ++i) {
        QString remark = remarkIn(file.readLine());
        if (!remark.isEmpty())
            return remark;
    }
    return {};
}

std::shared_ptr<ObjectDataBase> ProfileDatabases::load(const QString &id)
{
    lastError_.clear();
    if (loaded_ && id == loadedId_)
        return loaded_;
    const QString path = filePath(id);
    if (path.isEmpty()) {
        lastError_ = u"Unknown profile \"%1\" - call list_profiles for the available ids."_s.arg(id);
        return nullptr;
    }
    auto store = readProfile(path);
    if (!store) {
        lastError_ = u"Profile \"%1\" cannot be loaded (is the disk full?)."_s.arg(id);
        return nullptr;
    }
    loaded_ = std::move(store);
    loadedId_ = id;
    return loaded_;
}
