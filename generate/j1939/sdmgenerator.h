#pragma once

#include "generate/base/filegenerator.h"
#include "generate/base/fileheader.h"
#include "generate/base/templates.h"

#include <memory>

class ObjectDataBase;
struct SafetyGroups;

/// Writes gen_sdg.c, the module of the safety data groups (SAE J1939-76), from a template of the stack.
///
/// The classic form reads template data beside the program (docs/templates.md), and writes around them what V4
/// templates hold themselves.
class SDMGenerator : public FileGenerator
{
    Q_OBJECT

public:
    SDMGenerator()
        : SDMGenerator(SourceForm::Classic)
    {
    }
    QString fileName() const override;
    /// How many groups the file has.
    QString infoText() const override { return infoText_; }
    /// Replaces where templates are read from.
    void setTemplateSource(std::unique_ptr<TemplateSource> source) { source_ = std::move(source); }

protected:
    explicit SDMGenerator(SourceForm form)
        : form_(form)
    {
    }
    void write(Utf8Sink &sink) override;

private:
    QString templatePath(bool multiLine, bool fd) const;
    void failWithout(const QString &path);
    void writeClassicTail(Utf8Sink &sink, const SafetyGroups &groups, const TemplateValues &values);

    SourceForm form_;
    std::unique_ptr<TemplateSource> source_ = std::make_unique<PlainTemplateSource>();
    QString infoText_;
};

/// The V4 form of gen_sdg.c, from a template under the stack's folder.
class SDMGeneratorV4 : public SDMGenerator
{
    Q_OBJECT

public:
    SDMGeneratorV4()
        : SDMGenerator(SourceForm::V4)
    {
    }
};
