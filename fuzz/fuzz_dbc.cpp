// The reader of DBC files, and the writer on what it accepts.

#include "fuzz/scratch.h"
#include "candb/dbcreader.h"
#include "generate/bus/dbcwriter.h"

#include <QTextStream>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    DbcReader reader;
    const auto database =
        reader.read(QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    Fuzz::require(database.has_value() == reader.errorText().isEmpty());
    if (!database)
        return 0;
    QString text;
    QTextStream stream(&text);
    writeDbc(stream, *database);
    stream.flush();
    DbcReader().read(text);
    return 0;
}
