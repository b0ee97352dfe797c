#include "generate/objdict/cppcopies.h"

#include "generate/base/outputfile.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/// Bytes of a large source that are copied at a time.
constexpr qint64 pieceSize = 0x10000;

bool copyReplacing(const QDir &folder, const QString &from, const QString &to, const QByteArray &word = {},
                   const QByteArray &replacement = {})
{
    QFile source(folder.filePath(from));
    if (!source.exists())
        return true;
    if (!source.open(QIODevice::ReadOnly))
        return false;
    OutputFile copy(folder.filePath(to));
    if (!copy.open())
        return false;
    while (!source.atEnd()) {
        QByteArray text = source.read(pieceSize);
        text += source.readLine(); // so that no word is cut
        if (text.isEmpty())
            return false;
        if (!word.isEmpty())
            text.replace(word, replacement);
        if (copy.device()->write(text) != text.size())
            return false;
    }
    return copy.commit();
}

} // namespace

bool writeCppCopies(const QString &folder)
{
    const QDir dir(folder);
    const bool copied = copyReplacing(dir, u"gen_objdict.c"_s, u"gen_objdict.cpp"_s);
    return copyReplacing(dir, u"gen_user.h"_s, u"gen_user.hpp"_s, "RET_T", "extern \"C\" RET_T") && copied;
}
