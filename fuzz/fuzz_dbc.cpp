// The reader of DBC files, and the writer on what it accepts.

#include "candb/dbcreader.h"
#include "fuzz/scratch.h"
#include "generate/base/utf8sink.h"
#include "generate/bus/dbcwriter.h"

#include <QBuffer>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    DbcReader reader;
    const auto database =
        reader.read(QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    Fuzz::require(database.has_value() == reader.errorText().isEmpty());
    if (!database)
        return 0;
    QBuffer text;
    text.open(QIODevice::WriteOnly);
    Utf8Sink sink(&text);
    writeDbc(sink, *database);
    sink.flush();
    DbcReader().read(QString::fromUtf8(text.data()));
    return 0;
}
