#pragma once

#include <QStringList>

class CodeWriter;
class ObjectDataBase;
struct Dialect;
struct DictionaryTables;

/// What the sources that hold an object dictionary say before their tables.
struct SourceOpening
{
    bool stdlib = true;                ///< no file no_stdlib_include.txt lies in the output folder
    bool uds = false;                  ///< the device is UDS server or client
    bool staticUdsIndications = false; ///< and its indications are bound at compile time
    bool coreHeaders = false;          ///< the classic form, too, takes the data types of the core
    QStringList applicationHeaders;

    static SourceOpening of(ObjectDataBase &store, const QString &outputFolder);
};

/// The sections, each with the empty lines behind it.
namespace SourceSections {

/// The header of the basic types.
QString dataTypeHeader(const SourceOpening &opening, const Dialect &dialect);
void stdlibInclude(CodeWriter &out, const SourceOpening &opening);
void udsIncludes(CodeWriter &out, const SourceOpening &opening, const Dialect &dialect);
/// Includes of gen_objdict.c up to gen_indication.h, or of its form beside J1939.
void stackIncludes(CodeWriter &out, const SourceOpening &opening, const DictionaryTables &tables,
                   const Dialect &dialect);
/// With several lines: the functions that start a part of them.
void linePrototypes(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
void applicationIncludes(CodeWriter &out, const SourceOpening &opening);
/// The memory specifier, as far as the stack's headers leave it open.
void memoryGuard(CodeWriter &out, const Dialect &dialect);
/// Memory specifier and storage classes, as far as the stack's headers leave them open.
void specifierGuards(CodeWriter &out, const Dialect &dialect);
void watchdogGuard(CodeWriter &out, const Dialect &dialect);

} // namespace SourceSections
