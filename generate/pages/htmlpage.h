#pragma once

#include "generate/base/codewriter.h"

#include <QString>

/// Prints the tables that the HTML documents are made of: a head, and rows of a word and its value whose colours take
/// turns in each table.
///
/// What is given as markup stands as it is; a text is escaped on its way.
class HtmlPage
{
public:
    explicit HtmlPage(Utf8Sink &sink)
        : out(sink)
    {
    }

    /// `width` in pixels, 0 for that of the style sheet.
    void beginTable(quint32 width = 0);
    void endTable();
    /// A head across the table; links find it under the id.
    void head(const QString &id, const QString &markup);
    /// A head that is a row with a word and a value.
    void headRow(PrintedView word, PrintedView markup);
    void row(PrintedView word, PrintedView markup);
    /// A row whose word has a width of its own, in pixels.
    void rowOfWidth(quint32 wordWidth, PrintedView word, PrintedView markup);
    /// Nothing for an empty text.
    void description(const QString &text);
    /// A row without words.
    void line(const QString &markup);
    /// An entry of the table of contents. A hint is a text that shows while somebody points at the entry.
    void link(const QString &id, const QString &markup, const QString &hint = {});

    /// The text with the characters that HTML reads as markup, the German letters and line feeds written out.
    static QString escaped(QString text);

    CodeWriter out;

private:
    QLatin1StringView nextClass();

    bool alternate_ = true;
};
