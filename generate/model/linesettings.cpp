#include "generate/model/linesettings.h"

#include "store/lineprotocols.h"
#include "store/objectdatabase.h"
#include "texttools/numbertext.h"

#include <algorithm>

QList<quint8> LineSettings::stackLines(ObjectDataBase &store)
{
    QList<quint8> lines = store.getNodeList();
    lines.removeIf([](quint8 line) { return line >= firstLineBeyondStack; });
    std::ranges::sort(lines);
    return lines;
}

quint32 LineSettings::number(const QString &text)
{
    return NumberText::byPrefix(text).value_or(0);
}

QStringList LineSettings::repeatedList(ObjectDataBase &store, const QString &key, qsizetype count)
{
    const QStringList parts = store.getGeneralSetting(key).split(u',');
    QStringList texts;
    for (qsizetype i = 0; i < count; ++i)
        texts.append(parts.at(i % parts.size()).trimmed());
    return texts;
}
