#include "generate/objdict/objdictgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/base/fileheader.h"
#include "generate/common/sourceopening.h"
#include "generate/model/dictionarytables.h"
#include "generate/names/indicationpointers.h"
#include "generate/objdict/objdictsections.h"
#include "generate/objdict/userheader.h"
#include "generate/startup/stackinit.h"
#include "store/edition.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

namespace {

void writeOpening(CodeWriter &out, ObjectDataBase &store, const SourceOpening &opening, const DictionaryTables &tables,
                  const Dialect &dialect)
{
    SourceSections::stackIncludes(out, opening, tables, dialect);
    if (tables.stringDefaults)
        out(u"#include <gen_user.h>");
    out(u"");
    SourceSections::linePrototypes(out, tables, dialect);
    if (currentEdition() == Edition::EnergyBus)
        out(u"/* EnergyBus header files */\n#include <eb_energybus.h>\n");
    SourceSections::applicationIncludes(out, opening);
    SourceSections::specifierGuards(out, dialect);
    SourceSections::watchdogGuard(out, dialect);
    // The SDO server of a J1939 device includes no header that declares the functions.
    if (tables.options.serverMode) {
        out(u"/* definition of static indication function pointers */");
    } else {
        writeIndicationPointers(out, store, dialect);
        writeUdsIndicationPointers(out, store, dialect);
    }
    ObjDictSections::objectCounts(out, tables);
}

} // namespace

ObjDictGenerator::ObjDictGenerator(bool compactDescription, QObject *parent)
    : ObjDictGenerator(Dialect::classic(), compactDescription, parent)
{
}

ObjDictGenerator::ObjDictGenerator(const Dialect &dialect, bool compactDescription, QObject *parent)
    : FileGenerator(parent)
    , dialect_(dialect)
    , compactDescription_(compactDescription)
{
}

ObjDictGeneratorV4::ObjDictGeneratorV4(bool compactDescription, QObject *parent)
    : ObjDictGenerator(Dialect::v4(), compactDescription, parent)
{
}

QString ObjDictGenerator::fileName() const
{
    return u"gen_objdict.c"_s;
}

void ObjDictGenerator::write(Utf8Sink &sink)
{
    const DictionaryTables tables =
        collectDictionaryTables(*database(), {.compactDescription = compactDescription_, .serverMode = serverMode_});
    if (!tables.error.isEmpty()) {
        fail(OutputError, tables.error);
        return;
    }
    const QString userHeaderError =
        updateUserHeader(outputFolder(), baseName(), tables.stringDefaults, tables.multiLine);
    if (!userHeaderError.isEmpty()) {
        fail(OutputError, userHeaderError);
        return;
    }
    warn(mappingWarnings(tables));

    CodeWriter out(sink);
    writeFileHeader(out, SourceFile::GenObjdict, dialect_.form, baseName());
    writeOpening(out, *database(), SourceOpening::of(*database(), outputFolder()), tables, dialect_);
    ObjDictSections::managedVariables(out, tables, dialect_);
    ObjDictSections::constants(out, tables, dialect_);
    ObjDictSections::stringDefaults(out, tables, dialect_);
    ObjDictSections::applicationVariables(out, tables, dialect_);
    Q_EMIT progress(25);
    ObjDictSections::description(out, tables, dialect_);
    Q_EMIT progress(50);
    ObjDictSections::assign(out, tables, dialect_);
    Q_EMIT progress(75);
    if (!serverMode_)
        ObjDictSections::mappingTables(out, tables, dialect_);
    ObjDictSections::dataVariables(out, tables, dialect_);
    writeStartUpSections(out, database(), tables, dialect_);
}
