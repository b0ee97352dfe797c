#include "ncx/commands/outputfile.h"

#include "ncx/usage/invocation.h"
#include "texttools/wholefile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

bool OutputFile::isTaken(const Invocation &call, const QString &path)
{
    if (QFileInfo(path).isDir())
        call.terminal().fail(u"%1: it is a folder"_s.arg(path));
    else if (QFileInfo::exists(path) && !call.isSet("force"_L1))
        call.terminal().fail(u"%1 exists; --force replaces it"_s.arg(path));
    else
        return false;
    return true;
}

int OutputFile::write(const Invocation &call, const QString &path, const QByteArray &content,
                      const QList<Source> &sources)
{
    const QFileInfo info(path);
    for (const Source &source : sources) {
        if (info.exists() && info.canonicalFilePath() == QFileInfo(source.path).canonicalFilePath())
            return call.refuse(u"'%1' is %2"_s.arg(path, source.text));
    }
    if (isTaken(call, path))
        return CouldNot;
    WholeFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commitWhole())
        return Done;
    call.terminal().fail(u"%1: it cannot be written: %2"_s.arg(path, file.errorString()));
    return CouldNot;
}
