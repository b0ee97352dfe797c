#include "store/databasemodifier.h"

#include "store/objectdatabase.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <filesystem>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 maxFileSize = 16 << 20;

/// The whole of a file or a pipe; none if it cannot be read or is too large to be meant. A device may never end.
std::optional<QByteArray> contentOf(const QString &path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(QFileInfo(path).filesystemFilePath(), error);
    QFile file(path);
    if ((!is_regular_file(status) && !is_fifo(status)) || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray content;
    // A pipe gives what it has at the moment.
    for (QByteArray part = file.read(maxFileSize); !part.isEmpty(); part = file.read(maxFileSize)) {
        content += part;
        if (content.size() > maxFileSize)
            return std::nullopt;
    }
    return content;
}

} // namespace

bool DatabaseModifier::applyModifierFile()
{
    failedLine_.clear();
    if (!store_)
        return false;
    store_->setBlocked(false);
    qDebug().noquote() << "Applying " << path_;
    const std::optional<QByteArray> content = contentOf(path_);
    if (!content)
        return false;
    QTextStream stream(*content);
    QString line;
    while (stream.readLineInto(&line)) {
        qDebug().noquote() << line;
        if (!applyLine(line)) {
            failedLine_ = line;
            return false;
        }
    }
    return true;
}

bool DatabaseModifier::applyLine(const QString &line)
{
    constexpr qsizetype fieldCount = 3;
    if (line.startsWith(u'#') || line.count(u':') != fieldCount - 1)
        return true;
    const QStringList fields = line.split(u':');
    const QString &table = fields.at(0);
    if (table == "GeneralSettings"_L1)
        return store_->setGeneralSetting(fields.at(1), fields.at(2));
    if (table == "J1939Settings"_L1)
        return store_->setJ1939Setting(fields.at(1), fields.at(2));
    return true;
}
