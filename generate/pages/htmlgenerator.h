#pragma once

#include "generate/common/documentgenerator.h"
#include "generate/model/linedictionary.h"
#include "generate/pages/htmlpage.h"

/// Base of the HTML documents: one self-contained page with what is known about the project, a table of contents and
/// the contents.
///
/// Descriptions, values and settings are shown as they are. Names go into the page as markup.
class HTMLDocumentGenerator : public DocumentGenerator
{
    Q_OBJECT

public:
    using DocumentGenerator::DocumentGenerator;

    QString fileName() const override;

protected:
    /// What a kind of page is called, before the project's name.
    struct Titles
    {
        QString page;
        QString heading;
    };

    virtual Titles titles() const = 0;
    /// Rules of the page that come after those of all pages.
    virtual QString styles() const { return {}; }
    virtual void collect() = 0;
    virtual void writeLinks(HtmlPage &page) = 0;
    virtual void writeContents(HtmlPage &page) = 0;

    void write(Utf8Sink &sink) override;

private:
    void writeHead(HtmlPage &page, const QString &project) const;
    void writeProject(HtmlPage &page, const QString &project);
};

/// The object dictionary of a line.
class HTMLGenerator : public HTMLDocumentGenerator
{
    Q_OBJECT

public:
    using HTMLDocumentGenerator::HTMLDocumentGenerator;

protected:
    Titles titles() const override;
    void collect() override;
    void writeLinks(HtmlPage &page) override;
    void writeContents(HtmlPage &page) override;

private:
    LineDictionary dictionary_;
};
