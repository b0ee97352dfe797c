// A foreign file of the kind that NCX_FUZZ_IMPORT names, imported into a project of all protocols: the project must be
// one that can be checked and written afterwards.

#include "fuzz/scratch.h"
#include "generate/run/generatormainhandler.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Fuzz::Session session;
    GeneratorMainHandler &handler = session.handler();
    ObjectDataBase &store = *handler.database();
    Fuzz::require(store.setGeneralSetting(u"line0type"_s, u"5"_s));
    const QString path = Fuzz::write(QStringLiteral(NCX_FUZZ_IMPORT),
                                     QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    handler.importFile(path);
    QStringList messages;
    handler.checkModel(messages);
    Fuzz::require(store.saveDatabase(Fuzz::scratch().filePath(u"saved.ncxt"_s)));
    Fuzz::require(store.lastError().isEmpty());
    return 0;
}
