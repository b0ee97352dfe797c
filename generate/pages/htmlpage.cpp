#include "generate/pages/htmlpage.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString widthAttribute(int width)
{
    return width == 0 ? QString() : u" width=\"%1\""_s.arg(width);
}

} // namespace

void HtmlPage::beginTable(int width)
{
    alternate_ = true;
    out(u"  <table${width}>", {{"width", widthAttribute(width)}});
}

void HtmlPage::endTable()
{
    out(u"  </table>");
}

void HtmlPage::head(const QString &id, const QString &markup)
{
    const QString attribute = id.isEmpty() ? QString() : u" id=\"%1\""_s.arg(id);
    out(u"    <tr class=\"head\"><th${id} colspan=\"2\">${text}</th></tr>", {{"id", attribute}, {"text", markup}});
}

void HtmlPage::headRow(PrintedView word, PrintedView markup)
{
    out(u"    <tr class=\"head\"><th>${word}</th><th>${text}</th></tr>", {{"word", word}, {"text", markup}});
}

void HtmlPage::row(PrintedView word, PrintedView markup, int wordWidth)
{
    out(u"    <tr${class}><td${width}>${word}</td><td>${text}</td></tr>",
        {{"class", nextClass()}, {"width", widthAttribute(wordWidth)}, {"word", word}, {"text", markup}});
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
    const QString title = hint.isEmpty() ? QString() : u" title=\"%1\""_s.arg(hint.toHtmlEscaped());
    out(u"    <a href=\"#${id}\"${title}>${text}</a><br>", {{"id", id}, {"title", title}, {"text", markup}});
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
