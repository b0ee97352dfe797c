#pragma once

#include "generate/base/filegenerator.h"
#include "generate/base/fileheader.h"
#include "generate/j1939/externdecl.h"

class CodeWriter;

/// Writes gen_extern_decl.h, which declares the application's variables of J1939 and raw CAN mappings, and beside it
/// gen_var_decl.c, which defines them for an application that does not.
class ExtDeclGenerator : public FileGenerator
{
    Q_OBJECT

public:
    ExtDeclGenerator()
        : ExtDeclGenerator(SourceForm::Classic)
    {
    }
    QString fileName() const override;

protected:
    explicit ExtDeclGenerator(SourceForm form)
        : form_(form)
    {
    }
    void write(Utf8Sink &sink) override;
    void writeCompanions() override;

private:
    void writeIncludes(CodeWriter &out) const;

    SourceForm form_;
    ExternDeclarations declarations_; ///< of the header, for the file beside it
};

/// The V4 form of both files.
class ExtDeclGeneratorV4 : public ExtDeclGenerator
{
    Q_OBJECT

public:
    ExtDeclGeneratorV4()
        : ExtDeclGenerator(SourceForm::V4)
    {
    }
};
