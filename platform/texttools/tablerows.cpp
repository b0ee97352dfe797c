#include "texttools/tablerows.h"

#include <algorithm>

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
    *this = TableRows();
    const bool loaded = text_.load(path);
    lines_ = TextLines(text_.bytes());
    return loaded;
}

/// Reads a line; what lies between a CR and its LF is none.
bool TableRows::readLine(Line &line)
{
    const qsizetype before = lines_.number();
    QByteArrayView found;
    while (lines_.next(found)) {
        if (lines_.number() == before)
            continue;
        line = {text_.decode(found), lines_.number()};
        return true;
    }
    return false;
}

bool TableRows::next(QString &line)
{
    Line taken;
    if (!ahead_.isEmpty())
        taken = ahead_.takeFirst();
    else if (!readLine(taken))
        return false;
    line = taken.text;
    number_ = taken.number;
    leftOpen_ = std::max<qsizetype>(0, leftOpen_ - 1);
    if (line.startsWith(u'#') || !line.contains(u'"'))
        return true;
    QuotedRow row(separator_);
    row.add(line);
    if (row.isOpen())
        joinRow(line);
    return true;
}

/// Adds to a line whose last quote is open those up to the end of the quote, if that comes soon enough. A line that
/// leaves one open quote open does the same to any other, so none is looked at twice.
void TableRows::joinRow(QString &line)
{
    for (; leftOpen_ < maxLinesOfRow - 1; ++leftOpen_) {
        if (leftOpen_ == ahead_.size()) {
            Line more;
            if (!readLine(more))
                return;
            ahead_.append(more);
        }
        QuotedRow rest(separator_);
        rest.add(u'"' + ahead_[leftOpen_].text);
        if (rest.isOpen())
            continue;
        for (; leftOpen_ >= 0; --leftOpen_)
            line += u'\n' + ahead_.takeFirst().text;
        leftOpen_ = 0;
        return;
    }
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
