#include "generate/base/codewriter.h"

#include <QBuffer>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

void CodeWriter::operator()(Text text, std::initializer_list<Hole> holes)
{
    Form &form = forms_[text.place()];
    if (!form.hasNames(holes))
        form.parse(text.view(), holes);
    for (const Form::Part &part : form.parts) {
        sink_.putBytes(part.text);
        sink_.put(holes.begin()[part.value].value);
    }
    sink_.putBytes(form.end);
}

QString CodeWriter::textOf(const std::function<void(CodeWriter &)> &write)
{
    QBuffer text;
    text.open(QIODevice::WriteOnly);
    Utf8Sink sink(&text);
    CodeWriter out(sink);
    write(out);
    sink.flush();
    return QString::fromUtf8(text.data());
}

/// Equal literals may share a place, but not the order of their values. Names are literals too.
bool CodeWriter::Form::hasNames(std::span<const Hole> holes) const
{
    return !end.isEmpty() && std::ranges::equal(names, holes, [](std::string_view name, const Hole &hole) {
        return name.data() == hole.name.data();
    });
}

void CodeWriter::Form::parse(QStringView text, std::span<const Hole> holes)
{
    *this = {};
    for (const Hole &hole : holes)
        names.push_back(hole.name);
    if (text.startsWith(u'\n')) {
        parseBlock(text.sliced(1));
    } else {
        parseLine(text);
    }
    for (size_t i = 0; i < names.size(); ++i)
        Q_ASSERT_X(std::ranges::find(parts, i, &Part::value) != parts.end(), "CodeWriter", "a value without a hole");
}

void CodeWriter::Form::parseBlock(QStringView text)
{
    const qsizetype lastBreak = text.lastIndexOf(u'\n');
    Q_ASSERT_X(lastBreak >= 0, "CodeWriter", "a block has at least one line");
    const QStringView margin = text.sliced(lastBreak + 1);
    Q_ASSERT_X(margin.trimmed().isEmpty(), "CodeWriter", "a block ends with its margin");
    for (const QStringView line : text.first(lastBreak).split(u'\n')) {
        Q_ASSERT_X(line.isEmpty() || line.startsWith(margin), "CodeWriter", "a line begins inside the margin");
        parseLine(line.sliced(std::min(line.size(), margin.size())));
    }
}

void CodeWriter::Form::parseLine(QStringView text)
{
    for (qsizetype start = text.indexOf(u'$'); start >= 0; start = text.indexOf(u'$')) {
        const QStringView word = text.sliced(start + 1);
        const qsizetype close = word.indexOf(u'}');
        if (!word.startsWith(u'{') || close < 0) {
            end += text.first(start + 1).toUtf8();
            text = word;
            continue;
        }
        const QByteArray name = word.sliced(1, close - 1).toUtf8();
        const auto known = std::ranges::find(names, std::string_view(name));
        Q_ASSERT_X(known != names.end(), "CodeWriter", "a hole without a value");
        end += text.first(start).toUtf8();
        if (known != names.end())
            parts.push_back({std::exchange(end, {}), static_cast<size_t>(known - names.begin())});
        text = word.sliced(close + 1);
    }
    end += text.toUtf8() + '\n';
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
    // Nearly every text is plain.
    if (std::ranges::none_of(std::as_const(text), [](QChar c) { return c == u'\n' || c == u'\r' || c == u'*'; }))
        return text;
    text.replace(u'\n', u' ').replace(u'\r', u' ');
    // "/*/" holds both marks at once.
    return text.replace("*/"_L1, "* /"_L1).replace("/*"_L1, "/ *"_L1);
}
