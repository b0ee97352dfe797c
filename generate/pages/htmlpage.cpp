#include "generate/pages/htmlpage.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

void HtmlPage::beginTable(quint32 width)
{
    alternate_ = true;
    if (width == 0)
        out(u"  <table>");
    else
        out(u"  <table width=\"${width}\">", {{"width", Code::dec(width)}});
}

void HtmlPage::endTable()
{
    out(u"  </table>");
}

void HtmlPage::head(const QString &id, const QString &markup)
{
    out(u"    <tr class=\"head\"><th id=\"${id}\" colspan=\"2\">${text}</th></tr>", {{"id", id}, {"text", markup}});
}

void HtmlPage::headRow(PrintedView word, PrintedView markup)
{
    out(u"    <tr class=\"head\"><th>${word}</th><th>${text}</th></tr>", {{"word", word}, {"text", markup}});
}

void HtmlPage::row(PrintedView word, PrintedView markup)
{
    out(u"    <tr${class}><td>${word}</td><td>${text}</td></tr>",
        {{"class", nextClass()}, {"word", word}, {"text", markup}});
}

void HtmlPage::rowOfWidth(quint32 wordWidth, PrintedView word, PrintedView markup)
{
    out(u"    <tr${class}><td width=\"${width}\">${word}</td><td>${text}</td></tr>",
        {{"class", nextClass()}, {"width", Code::dec(wordWidth)}, {"word", word}, {"text", markup}});
}

void HtmlPage::description(const QString &text)
{
    if (!text.isEmpty())
        row("Description"_L1, escaped(text));
}

void HtmlPage::line(const QString &markup)
{
    out(u"    <tr${class}><td colspan=\"2\">${text}</td></tr>", {{"class", nextClass()}, {"text", markup}});
}

void HtmlPage::link(const QString &id, const QString &markup, const QString &hint)
{
    if (hint.isEmpty())
        out(u"    <a href=\"#${id}\">${text}</a><br>", {{"id", id}, {"text", markup}});
    else
        out(u"    <a href=\"#${id}\" title=\"${title}\">${text}</a><br>",
            {{"id", id}, {"title", hint.toHtmlEscaped()}, {"text", markup}});
}

QLatin1StringView HtmlPage::nextClass()
{
    return std::exchange(alternate_, !alternate_) ? " class=\"alt\""_L1 : ""_L1;
}

QString HtmlPage::escaped(QString text)
{
    constexpr std::pair<QChar, QLatin1StringView> replacements[] = {
        {u'&', "&amp;"_L1},  {u'<', "&lt;"_L1},    {u'>', "&gt;"_L1},   {u'ä', "&auml;"_L1},
        {u'Ä', "&Auml;"_L1}, {u'ö', "&ouml;"_L1},  {u'Ö', "&Ouml;"_L1}, {u'ü', "&uuml;"_L1},
        {u'Ü', "&Uuml;"_L1}, {u'ß', "&szlig;"_L1}, {u'\n', "<br>"_L1},
    };
    // Nearly every text is plain.
    if (std::ranges::all_of(text,
                            [](QChar c) { return c >= u' ' && c < u'\x7f' && c != u'&' && c != u'<' && c != u'>'; }))
        return text;
    for (const auto &[character, markup] : replacements)
        text.replace(character, markup);
    return text;
}
