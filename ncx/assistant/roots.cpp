#include "ncx/assistant/roots.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

/// A path without links and dots, as far as it exists. A link that leads nowhere yet is followed as well, since a file
/// that is written through it comes into being there.
QString resolved(const QString &path)
{
    std::error_code error;
    const auto whole = std::filesystem::weakly_canonical(QDir(path).absolutePath().toStdString(), error);
    if (error)
        return {};
    if (!std::filesystem::is_symlink(whole, error))
        return QString::fromStdString(whole.string());
    return resolved(QFileInfo(QString::fromStdString(whole.string())).symLinkTarget());
}

} // namespace

Roots::Roots(const QStringList &folders)
{
    for (const QString &folder : folders.isEmpty() ? QStringList{QDir::currentPath()} : folders)
        folders_.append(resolved(folder));
}

QString Roots::refusal(const QString &path) const
{
    const QString place = resolved(path);
    const bool isInside = std::ranges::any_of(folders_, [&place](const QString &root) {
        return !place.isEmpty() && (place == root || place.startsWith(root == "/"_L1 ? root : root + u'/'));
    });
    if (isInside)
        return {};
    return u"The path %1 is outside of the folders that this server works in (%2). Choose a path inside, or have the "
           "server started with --root."_s.arg(path, folders_.join(", "_L1));
}
