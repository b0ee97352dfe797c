#include "store/databasemodifier.h"

#include "store/objectdatabase.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 maxFileSize = 16 << 20;

} // namespace

bool DatabaseModifier::applyModifierFile()
{
    failedLine_.clear();
    if (!store_)
        return false;
    store_->setBlocked(false);
    qDebug().noquote() << "Applying " << path_;
    const QFileInfo info(path_);
    QFile file(path_);
    // A pipe or device would never end.
    if (!info.isFile() || info.size() > maxFileSize || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
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
