#include "generate/objdict/cppcopies.h"

#include "generate/base/outputfile.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

bool copyReplacing(const QDir &folder, const QString &from, const QString &to, const QByteArray &word = {},
                   const QByteArray &replacement = {})
{
    QFile source(folder.filePath(from));
    if (!source.exists())
        return true;
    if (!source.open(QIODevice::ReadOnly))
        return false;
    QByteArray text = source.readAll();
    if (!word.isEmpty())
        text.replace(word, replacement);
    OutputFile copy(folder.filePath(to));
    return copy.open() && copy.device()->write(text) == text.size() && copy.commit();
}

} // namespace

bool writeCppCopies(const QString &folder)
{
    const QDir dir(folder);
    const bool copied = copyReplacing(dir, u"gen_objdict.c"_s, u"gen_objdict.cpp"_s);
    return copyReplacing(dir, u"gen_user.h"_s, u"gen_user.hpp"_s, "RET_T", "extern \"C\" RET_T") && copied;
}
