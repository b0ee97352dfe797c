#include "check/line/versionreader.h"

#include <QDomDocument>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

bool VersionReader::setFile(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return false;
    file_ = path;
    return true;
}

void VersionReader::requiredToolVersion(QString &version) const
{
    version = u"0.0"_s;
    QFile file(file_);
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return;
    const QDomText text = document.elementsByTagName(u"required_tool_version"_s).at(0).firstChild().toText();
    if (!text.isNull())
        version = text.data();
}
