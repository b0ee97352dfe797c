#include "generate/names/indicationpointers.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/names/indications.h"

using namespace Qt::StringLiterals;

namespace {

void writePointers(CodeWriter &out, ObjectDataBase &store, const Dialect &dialect,
                   std::span<const Indications::Event> events)
{
    for (const Indications::Event &event : events) {
        const QString function = Indications::functionOf(store, event.key);
        if (event.existsIn(dialect.form) && !function.isEmpty())
            out(u"${CORE}CONST ${TYPE} ${NAME} = ${FUNCTION};",
                {{"CORE", dialect.core},
                 {"TYPE", Indications::inForm(event.pointerType, dialect)},
                 {"NAME", event.pointerName},
                 {"FUNCTION", function}});
    }
}

} // namespace

void writeIndicationPointers(CodeWriter &out, ObjectDataBase &store, const Dialect &dialect)
{
    out(u"/* definition of static indication function pointers */");
    writePointers(out, store, dialect, Indications::canOpenEvents());
    if (Indications::hasUsdoServer(store))
        writePointers(out, store, dialect, Indications::usdoServerEvents());
    if (Indications::hasUsdoClient(store))
        writePointers(out, store, dialect, Indications::usdoClientEvents());
}

void writeUdsIndicationPointers(CodeWriter &out, ObjectDataBase &store, const Dialect &dialect)
{
    if (!dialect.has(Point::UdsIndications) || !Indications::hasUdsEvents(store))
        return;
    for (const Indications::UdsEvent &event : Indications::udsEvents()) {
        const QString function = Indications::functionOf(store, event.key);
        if (!function.isEmpty())
            out(uR"(
                #if ${GUARD}
                CORE_CONST ${TYPE} ${NAME} = ${FUNCTION};
                #endif
                )",
                {{"GUARD", event.guard},
                 {"TYPE", event.pointerType},
                 {"NAME", event.pointerName},
                 {"FUNCTION", function}});
    }
}
