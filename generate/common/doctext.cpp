#include "generate/common/doctext.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString withLineFeeds(QString text)
{
    return text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
}

bool breaksLine(QChar c)
{
    const QChar::Category category = c.category();
    return (category == QChar::Other_Control && c != u'\t') || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

bool isXmlCharacter(QChar c)
{
    return c >= u' ' ? c < u'\xfffe' : c == u'\t' || c == u'\n' || c == u'\r';
}

} // namespace

QString DocText::oneLine(const QString &text)
{
    // Nearly every text is plain, and goes out without a copy.
    if (std::ranges::all_of(text, [](QChar c) { return c >= u' ' && c < u'\x7f'; }))
        return text;
    QString line = withLineFeeds(text);
    for (QChar &c : line) {
        if (breaksLine(c))
            c = u' ';
    }
    return line;
}

QStringList DocText::lines(const QString &text)
{
    return withLineFeeds(text).split(u'\n');
}

QString DocText::forXml(const QString &text)
{
    QString result = text;
    for (qsizetype i = 0; i < result.size(); ++i) {
        const QChar c = result.at(i);
        if (c.isHighSurrogate() && i + 1 < result.size() && result.at(i + 1).isLowSurrogate())
            ++i;
        else if (c.isSurrogate() || !isXmlCharacter(c))
            result[i] = QChar::ReplacementCharacter;
    }
    return result;
}
