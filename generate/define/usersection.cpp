#include "generate/define/usersection.h"

#include "texttools/numbertext.h"

#include <QFile>
#include <QFileInfo>
#include <QList>

#include <algorithm>

namespace {

constexpr char counterName[] = "GEN_GENERATION_COUNT";
constexpr qsizetype suffixLength = 2; // "ul"

/// The lines with their ends, whichever of the line ends that a project can ask for the file has.
QList<QByteArray> linesOf(const QByteArray &content)
{
    QList<QByteArray> lines;
    for (qsizetype start = 0; start < content.size();) {
        qsizetype end = start;
        while (end < content.size() && content.at(end) != '\n' && content.at(end) != '\r')
            ++end;
        if (QByteArrayView(content).sliced(end).startsWith("\r\n"))
            ++end;
        const qsizetype next = std::min(end + 1, content.size());
        lines.append(content.sliced(start, next - start));
        start = next;
    }
    return lines;
}

/// The number in the last field of the counter's line.
std::optional<quint32> generationsOf(const QByteArray &line)
{
    QByteArray number = line.trimmed().split('\t').last();
    number.chop(suffixLength);
    return NumberText::byPrefix(QString::fromLatin1(number));
}

/// Without its end mark the section would take the end of the file with it.
QByteArray withoutEndOfFile(QByteArray section)
{
    const qsizetype end = section.lastIndexOf("#endif /* GEN_DEFINE_H */");
    if (end >= 0)
        section.truncate(end);
    return section;
}

} // namespace

std::optional<FormerDefines> FormerDefines::read(const QString &path)
{
    // A pipe or device in the place of the file has no former content.
    if (!QFileInfo(path).isFile())
        return FormerDefines();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return parse(content);
}

FormerDefines FormerDefines::parse(const QByteArray &content)
{
    enum class Place
    {
        Before,
        Inside,
        Behind
    };
    FormerDefines former;
    Place place = Place::Before;
    std::optional<quint32> generations;
    for (const QByteArray &line : linesOf(content)) {
        if (place == Place::Before && line.contains(startMark))
            place = Place::Inside;
        else if (place == Place::Inside && line.contains(endMark))
            place = Place::Behind;
        else if (place == Place::Inside)
            former.userSection += line;
        else if (!generations && line.contains(counterName))
            generations = generationsOf(line);
    }
    former.generations = generations.value_or(0);
    if (place == Place::Inside)
        former.userSection = withoutEndOfFile(former.userSection);
    return former;
}
