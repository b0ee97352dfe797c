#include "generate/objdict/userheader.h"

#include "generate/base/codewriter.h"
#include "generate/base/fileheader.h"
#include "generate/base/outputfile.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

void writeUserHeader(CodeWriter &out, const QString &baseName, bool multiLine)
{
    out(uR"(
        /*
         * ${TITLE}
         */

        /* protect against multiple inclusion of the file */
        #ifndef GEN_USER_H
        #define GEN_USER_H 1

        #include <gen_define.h>
        #include <co_canopen.h>
        /* prototype for function to overwrite predefined connection set */
        RET_T userOverwriteCobIdSettings(void);
        )",
        {{"TITLE", sourceTitle(SourceFile::GenUser, SourceForm::V4, baseName)}});
    if (multiLine)
        out(u"RET_T userOverwriteCobIdSettingsLine(UNSIGNED8 canLine);");
    out(uR"(

        /* prototype for function to set default values of strings */
        RET_T userOverwriteStringDefaultvalues(void);

        #endif /* GEN_USER */
        )");
}

QString updateUserHeader(const QString &folder, const QString &baseName, bool wanted, bool multiLine)
{
    const QString path = QDir(folder).filePath(u"gen_user.h"_s);
    if (!wanted) {
        if (QFile::exists(path) && !QFile::remove(path))
            return u"Cannot remove %1."_s.arg(path);
        return {};
    }
    OutputFile file(path);
    if (!file.open())
        return file.errorText();
    Utf8Sink sink(file.device());
    CodeWriter out(sink);
    writeUserHeader(out, baseName, multiLine);
    sink.flush();
    return file.commit() ? QString() : file.errorText();
}
