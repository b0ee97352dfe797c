#pragma once

#include "generate/base/filegenerator.h"
#include "generate/base/templates.h"

#include <memory>

/// Writes gen_srdo.c, the module of the safety-relevant data objects (EN 50325-5), from template data beside the
/// program (docs/templates.md): the module, and behind it the functions that the application is to fill in.
///
/// A template that is missing or has no placeholder ends the job with `TemplateError`.
class SrdoGenerator : public FileGenerator
{
    Q_OBJECT

public:
    using FileGenerator::FileGenerator;

    QString fileName() const override;
    /// The module owns the mapped variables.
    void setStaticData(bool on) { staticData_ = on; }
    /// Replaces where templates are read from.
    void setTemplateSource(std::unique_ptr<TemplateSource> source) { source_ = std::move(source); }

protected:
    void write(Utf8Sink &sink) override;
    virtual QString templatePath(bool multiLine) const;
    /// The path of the functions for the application; empty for none.
    virtual QString prototypePath(bool multiLine) const;

private:
    std::unique_ptr<TemplateSource> source_ = std::make_unique<PlainTemplateSource>();
    bool staticData_ = false;
};

/// The same from a template under the stack's folder.
class SrdoGeneratorStatic : public SrdoGenerator
{
    Q_OBJECT

public:
    using SrdoGenerator::SrdoGenerator;

protected:
    QString templatePath(bool multiLine) const override;
    QString prototypePath(bool multiLine) const override;
};
