#include "ncx/commands/outputfile.h"

#include "ncx/usage/invocation.h"
#include "texttools/wholefile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

int OutputFile::write(const Invocation &call, const QString &path, const QByteArray &content,
                      const QList<Source> &sources)
{
    const QFileInfo info(path);
    for (const Source &source : sources) {
        if (info.exists() && info.canonicalFilePath() == QFileInfo(source.path).canonicalFilePath())
            return call.refuse(u"'%1' is %2"_s.arg(path, source.text));
    }
    if (info.exists() && !info.isDir() && !call.isSet("force"_L1)) {
        call.terminal().fail(u"%1 exists; --force replaces it"_s.arg(path));
        return CouldNot;
    }
    WholeFile file(path);
    if (info.isDir() || !file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.commitWhole()) {
        call.terminal().fail(u"%1: %2"_s.arg(path, info.isDir() ? u"it is a folder"_s
                                                                : u"it cannot be written: "_s + file.errorString()));
        return CouldNot;
    }
    return Done;
}
