#include "generate/names/externdeclgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/base/outputfile.h"
#include "generate/common/sourceopening.h"

#include <QDir>

using namespace Qt::StringLiterals;

QString ExtDeclGenerator::fileName() const
{
    return u"gen_extern_decl.h"_s;
}

void ExtDeclGenerator::writeIncludes(CodeWriter &out) const
{
    out(uR"(
        #include <gen_define.h>
        #include <${TYPES}>
        )",
        {{"TYPES",
          SourceSections::dataTypeHeader(SourceOpening::of(*database(), outputFolder()), Dialect::of(form_))}});
}

void ExtDeclGenerator::write(Utf8Sink &sink)
{
    CodeWriter out(sink);
    writeFileHeader(out, SourceFile::GenExternDecl, form_, baseName());
    out(uR"(
        /* protect against multiple inclusion of the file */
        #ifndef GEN_EXTERN_DECL_H
        #define GEN_EXTERN_DECL_H 1

        )");
    writeIncludes(out);
    out(u"/* external variables */");
    declarations_ = ExternDeclarations::collect(*database(), Dialect::of(form_));
    writeVariables(out, declarations_, DeclarationForm::Declaration);
    out(uR"(

        #endif /* GEN_EXTERN_DECL_H */
        )");
}

void ExtDeclGenerator::writeCompanions()
{
    OutputFile file(QDir(outputFolder()).filePath(u"gen_var_decl.c"_s));
    if (!file.open()) {
        fail(OutputError, file.errorText());
        return;
    }
    Utf8Sink sink(file.device());
    CodeWriter out(sink);
    writeFileHeader(out, SourceFile::GenVarDecl, form_, baseName(),
                    u"(This file may be used optionally if variables are not defined yet by the application.)"_s);
    writeIncludes(out);
    out(u"#ifdef NJX_USE_GENERATED_VARIABLES");
    writeVariables(out, declarations_, DeclarationForm::Definition);
    out(u"#endif /* NJX_USE_GENERATED_VARIABLES */");
    sink.flush();
    if (!file.commit())
        fail(OutputError, file.errorText());
}
