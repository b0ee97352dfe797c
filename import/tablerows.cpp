#include "import/tablerows.h"

#include <optional>

namespace {

/// More lines than a person writes into one field; a quote that is open for longer was not meant as one.
constexpr int maxLinesOfRow = 100;

/// The fields of a line with quotes; none if the last quote is open.
std::optional<QStringList> quotedFields(const QString &line, QChar separator)
{
    QStringList fields;
    QString field;
    bool atStart = true;
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (quoted && c == u'"' && i + 1 < line.size() && line[i + 1] == u'"') {
            field += c;
            ++i;
        } else if (c == u'"' && (quoted || atStart)) {
            quoted = !quoted;
        } else if (c == separator && !quoted) {
            fields.append(field);
            field.clear();
            atStart = true;
            continue;
        } else {
            field += c;
        }
        atStart = false;
    }
    fields.append(field);
    return quoted ? std::nullopt : std::optional(fields);
}

} // namespace

bool TableRows::load(const QString &path)
{
    const bool loaded = text_.load(path);
    lines_ = EdsLines(text_.bytes());
    return loaded;
}

/// Takes a line; the empty one between a CR and its LF is none.
bool TableRows::nextLine(EdsLines &lines, QString &line) const
{
    const QByteArrayView bytes = text_.bytes();
    QByteArrayView found;
    while (lines.next(found)) {
        const qsizetype start = lines.lineStart();
        if (found.isEmpty() && start > 0 && start < bytes.size() && bytes[start - 1] == '\r' && bytes[start] == '\n')
            continue;
        line = text_.decode(found);
        return true;
    }
    return false;
}

bool TableRows::next(QString &line)
{
    if (!nextLine(lines_, line))
        return false;
    if (line.startsWith(u'#') || !line.contains(u'"') || quotedFields(line, separator_))
        return true;
    EdsLines ahead = lines_;
    QString joined = line;
    QString more;
    for (int count = 1; count < maxLinesOfRow && nextLine(ahead, more); ++count) {
        joined += u'\n' + more;
        // Only a quote can end what a quote began.
        if (more.contains(u'"') && quotedFields(joined, separator_)) {
            line = joined;
            lines_ = ahead;
            break;
        }
    }
    return true;
}

QStringList TableRows::fieldsOf(const QString &line) const
{
    if (line.contains(u'"')) {
        if (const auto fields = quotedFields(line, separator_))
            return *fields;
    }
    return line.split(separator_);
}
