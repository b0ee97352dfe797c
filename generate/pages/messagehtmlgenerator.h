#pragma once

#include "generate/model/linemessages.h"
#include "generate/pages/htmlgenerator.h"

/// The PGNs and SPNs of a line as an HTML page.
class J1939HTMLGenerator : public HTMLDocumentGenerator
{
    Q_OBJECT

public:
    using HTMLDocumentGenerator::HTMLDocumentGenerator;

protected:
    Titles titles() const override;
    QString styles() const override;
    void collect() override;
    void writeLinks(HtmlPage &page) override;
    void writeContents(HtmlPage &page) override;

private:
    QList<LineMessage> pgns_;
};

/// The raw CAN-IDs and data elements of a line as an HTML page.
class RawCANHTMLGenerator : public HTMLDocumentGenerator
{
    Q_OBJECT

public:
    using HTMLDocumentGenerator::HTMLDocumentGenerator;

protected:
    Titles titles() const override;
    QString styles() const override;
    void collect() override;
    void writeLinks(HtmlPage &page) override;
    void writeContents(HtmlPage &page) override;

private:
    QList<LineMessage> messages_;
};
