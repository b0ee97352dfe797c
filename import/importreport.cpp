#include "import/importreport.h"

using namespace Qt::StringLiterals;

void ImportReport::drop(qsizetype line, const QString &what)
{
    ++droppedCount;
    if (dropped.size() < mostKept)
        dropped.append({line, what});
}

void ImportReport::note(qsizetype line, const QString &what)
{
    ++noteCount;
    if (notes.size() < mostKept)
        notes.append({line, what});
}

bool ImportReport::wrote(bool done, const QString &what, qsizetype line)
{
    if (!done)
        drop(line, what + u" could not be written"_s);
    return done;
}

QString ImportReport::text() const
{
    QString result = u"Taken: %1 objects, %2 sub-objects, %3 messages, %4 signals; dropped: %5"_s.arg(objects)
                         .arg(subObjects)
                         .arg(messages)
                         .arg(signalCount)
                         .arg(droppedCount);
    for (const auto &[line, what] : dropped)
        result += line > 0 ? u"\nline %1: %2"_s.arg(QString::number(line), what) : u'\n' + what;
    return result;
}
