#include "mcp/tools/globpattern.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

/// Copies the set that begins at `place` with "[" as the framework's wildcard conversion does: a leading "!" negates, a
/// "]" right after that is a member, and a set that nothing closes leaves an invalid expression. Returns the last
/// place.
qsizetype convertSet(const QString &pattern, qsizetype place, QString &expression)
{
    expression += u'[';
    if (pattern.mid(place + 1, 1) == u'!') {
        expression += u'^';
        ++place;
    }
    bool first = true;
    while (++place < pattern.size() && (first || pattern.at(place) != u']')) {
        if (pattern.at(place) == u'\\')
            expression += u'\\';
        expression += pattern.at(place);
        first = false;
    }
    if (place < pattern.size())
        expression += u']';
    return place;
}

/// The expressions of what stands between the stars of a pattern.
QStringList partsBetweenStars(const QString &pattern)
{
    static const QString special = u"\\$()+.^{|}"_s;
    QStringList parts{QString()};
    for (qsizetype place = 0; place < pattern.size(); ++place) {
        const QChar c = pattern.at(place);
        if (c == u'*')
            parts.append(QString());
        else if (c == u'?')
            parts.last() += u'.';
        else if (c == u'[')
            place = convertSet(pattern, place, parts.last());
        else
            parts.last() += special.contains(c) ? QString(u'\\') + c : QString(c);
    }
    return parts;
}

} // namespace

/// The framework's own conversion is made for file paths: its "*" and "?" stop at a "/", which in a name is a character
/// like any other. Each part between two stars is matched at its first place and not tried again, which finds the same
/// names and keeps the time of a match from growing with the number of stars.
QRegularExpression globExpression(const QString &pattern)
{
    const QStringList parts = partsBetweenStars(pattern);
    QString expression = parts.first();
    for (const QString &part : parts.mid(1, parts.size() - 2))
        expression += u"(?>.*?%1)"_s.arg(part);
    if (parts.size() > 1)
        expression += u".*"_s + parts.last();
    return QRegularExpression(QRegularExpression::anchoredPattern(expression),
                              QRegularExpression::CaseInsensitiveOption |
                                  QRegularExpression::DotMatchesEverythingOption);
}
