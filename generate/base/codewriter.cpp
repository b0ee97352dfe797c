#include "generate/base/codewriter.h"

#include <QList>
#include <QVarLengthArray>

#include <algorithm>

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

/// Every line of every output passes here, so that what it searches and compares does so without a call.
qsizetype placeOf(char16_t ch, QStringView text)
{
    return std::ranges::find(text.utf16(), text.utf16() + text.size(), ch) - text.utf16();
}

bool equal(QStringView text, std::string_view name)
{
    return std::equal(text.utf16(), text.utf16() + text.size(), name.begin(), name.end(),
                      [](char16_t left, char right) { return left == static_cast<uchar>(right); });
}

} // namespace

void CodeWriter::operator()(QStringView text, std::initializer_list<Hole> holes)
{
    quint64 used = 0;
    text_.resize(0);
    if (text.startsWith(u'\n')) {
        writeBlock(text.sliced(1), holes, used);
    } else {
        writeFilled(text, holes, used);
        text_ += u'\n';
    }
    stream_ << text_;
    Q_ASSERT_X(used == (quint64{1} << holes.size()) - 1, "CodeWriter", "a value without a hole");
}

QString CodeWriter::textOf(const std::function<void(CodeWriter &)> &write)
{
    QString text;
    QTextStream stream(&text);
    CodeWriter out(stream);
    write(out);
    stream.flush();
    return text;
}

void CodeWriter::writeBlock(QStringView text, std::initializer_list<Hole> holes, quint64 &used)
{
    const qsizetype lastBreak = text.lastIndexOf(u'\n');
    Q_ASSERT_X(lastBreak >= 0, "CodeWriter", "a block has at least one line");
    const QStringView margin = text.sliced(lastBreak + 1);
    Q_ASSERT_X(margin.trimmed().isEmpty(), "CodeWriter", "a block ends with its margin");
    for (const QStringView line : text.first(lastBreak).split(u'\n')) {
        Q_ASSERT_X(line.isEmpty() || line.startsWith(margin), "CodeWriter", "a line begins inside the margin");
        writeFilled(line.sliced(std::min(line.size(), margin.size())), holes, used);
        text_ += u'\n';
    }
}

void CodeWriter::writeFilled(QStringView text, std::initializer_list<Hole> holes, quint64 &used)
{
    for (qsizetype start = placeOf(u'$', text); start < text.size(); start = placeOf(u'$', text)) {
        const QStringView word = text.sliced(start + 1);
        const qsizetype end = placeOf(u'}', word);
        if (!word.startsWith(u'{') || end == word.size()) {
            text_ += text.first(start + 1);
            text = word;
            continue;
        }
        const QStringView name = word.sliced(1, end - 1);
        const auto hole =
            std::ranges::find_if(holes, [name](const Hole &candidate) { return equal(name, candidate.name); });
        Q_ASSERT_X(hole != holes.end(), "CodeWriter", "a hole without a value");
        text_ += text.first(start);
        if (hole != holes.end()) {
            text_ += hole->value;
            used |= quint64{1} << (hole - holes.begin());
        }
        text = word.sliced(end + 1);
    }
    text_ += text;
}

QString Code::hex(quint64 value, int digits)
{
    QVarLengthArray<QChar, 16> reversed;
    do {
        reversed.append(QLatin1Char("0123456789abcdef"[value & 0xf]));
        value >>= 4;
    } while (value != 0 || reversed.size() < digits);
    std::ranges::reverse(reversed);
    return QString(reversed.constData(), reversed.size());
}

QString Code::dec(quint64 value)
{
    return QString::number(value);
}

namespace {

/// The length of the escape of C that begins here, without its digits; 0 if there is none.
qsizetype escapeLength(QStringView text)
{
    static const QRegularExpression escape(u"^\\\\(?:[abfnrtv?'\"\\\\0-7]|x[0-9A-Fa-f])"_s);
    return escape.match(text).capturedLength();
}

bool isTrigraph(QStringView text)
{
    return text.size() > 2 && text.startsWith("??"_L1) && u"=/'()!<>-"_s.contains(text.at(2));
}

} // namespace

QString Code::literalText(const QString &text)
{
    QString literal;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringView rest = QStringView(text).sliced(i);
        if (const qsizetype length = escapeLength(rest); length > 0) {
            literal += rest.first(length);
            i += length - 1;
        } else if (isTrigraph(rest)) {
            literal += "?\\?"_L1;
            ++i;
        } else if (rest.front() == u'"' || rest.front() == u'\\') {
            literal += u'\\' + QString(rest.front());
        } else if (rest.front() == u'\n' || rest.front() == u'\r') {
            literal += rest.front() == u'\n' ? "\\n"_L1 : "\\r"_L1;
        } else {
            literal += rest.front();
        }
    }
    return literal;
}

QString Code::commentText(QString text)
{
    text.replace(u'\n', u' ').replace(u'\r', u' ');
    // "/*/" holds both marks at once.
    return text.replace("*/"_L1, "* /"_L1).replace("/*"_L1, "/ *"_L1);
}
