#include "import/tablerows.h"

namespace {

/// More lines than a person writes into one field; a quote that is open for longer was not meant as one.
constexpr int maxLinesOfRow = 100;

/// Takes a row with quotes apart, piece by piece.
class QuotedRow
{
public:
    explicit QuotedRow(QChar separator)
        : separator_(separator)
    {
    }

    void add(QStringView text)
    {
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text[i];
            if (quoted_ && c == u'"' && i + 1 < text.size() && text[i + 1] == u'"') {
                field_ += c;
                ++i;
            } else if (c == u'"' && (quoted_ || atStart_)) {
                quoted_ = !quoted_;
            } else if (c == separator_ && !quoted_) {
                fields_.append(field_);
                field_.clear();
                atStart_ = true;
                continue;
            } else {
                field_ += c;
            }
            atStart_ = false;
        }
    }

    /// Whether the last quote is open.
    bool isOpen() const { return quoted_; }
    QStringList fields() const { return fields_ + QStringList{field_}; }

private:
    QChar separator_;
    QStringList fields_;
    QString field_;
    bool atStart_ = true;
    bool quoted_ = false;
};

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
    if (line.startsWith(u'#') || !line.contains(u'"'))
        return true;
    QuotedRow row(separator_);
    row.add(line);
    EdsLines ahead = lines_;
    QString joined = line;
    QString more;
    for (int count = 1; row.isOpen() && count < maxLinesOfRow && nextLine(ahead, more); ++count) {
        more.prepend(u'\n');
        joined += more;
        row.add(more);
        if (!row.isOpen()) {
            line = joined;
            lines_ = ahead;
        }
    }
    return true;
}

QStringList TableRows::fieldsOf(const QString &line) const
{
    if (line.contains(u'"')) {
        QuotedRow row(separator_);
        row.add(line);
        if (!row.isOpen())
            return row.fields();
    }
    return line.split(separator_);
}
