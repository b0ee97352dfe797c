// Any bytes as the project of the name that NCX_FUZZ_PROJECT gives: where it opens, all that can be done with a project
// is done, and what is saved must open again.

#include "fuzz/scratch.h"
#include "generate/run/generatormainhandler.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Fuzz::emptyFolder(u"project"_s);
    const QString path = Fuzz::write(QStringLiteral("project/" NCX_FUZZ_PROJECT),
                                     QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    Fuzz::Session session;
    if (session.handler().openProject(path))
        session.live();
    return 0;
}
