#include "generate/base/templates.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

std::optional<QString> PlainTemplateSource::text(const QString &path) const
{
    QFile file(path);
    // A folder opens on some systems, and gives nothing; a pipe or device would never end.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {};
    return QString::fromUtf8(bytes);
}

std::optional<QString> Templates::fill(const QString &text, const TemplateValues &values)
{
    static const QRegularExpression placeholder(u"__GEN_([A-Z0-9_]+?)__"_s);
    QString result;
    qsizetype end = 0;
    for (auto it = placeholder.globalMatch(text); it.hasNext();) {
        const auto match = it.next();
        result += QStringView(text).sliced(end, match.capturedStart() - end);
        result += values.value(match.captured(1), match.captured());
        end = match.capturedEnd();
    }
    if (end == 0)
        return {};
    return result.append(QStringView(text).sliced(end));
}

QString Templates::pathInStack(const QString &stackPath, const QString &outputFolder, const QString &file)
{
    QString path = stackPath + file;
    if (stackPath.isEmpty() || QDir::isAbsolutePath(path))
        return path;
    return QDir::cleanPath(QDir(outputFolder).absoluteFilePath(path));
}

QString Templates::pathBesideProgram(const QString &file)
{
    return QCoreApplication::applicationDirPath() + u"/data/"_s + file;
}
