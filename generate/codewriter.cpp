#include "generate/codewriter.h"

#include <QList>
#include <QVarLengthArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Place of the first "${"; -1 if there is none. Every line of the output passes here, and a search for two
/// characters costs several times one for a single character.
qsizetype nextHole(QStringView text)
{
    qsizetype at = text.indexOf(u'$');
    while (at >= 0 && !text.sliced(at + 1).startsWith(u'{'))
        at = text.indexOf(u'$', at + 1);
    return at;
}

} // namespace

void CodeWriter::operator()(QStringView text, std::initializer_list<Hole> holes)
{
    quint64 used = 0;
    if (text.startsWith(u'\n')) {
        writeBlock(text.sliced(1), holes, used);
    } else {
        writeFilled(text, holes, used);
        stream_ << '\n';
    }
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
        stream_ << '\n';
    }
}

void CodeWriter::writeFilled(QStringView text, std::initializer_list<Hole> holes, quint64 &used)
{
    for (;;) {
        const qsizetype start = nextHole(text);
        const qsizetype end = start < 0 ? -1 : text.indexOf(u'}', start);
        if (end < 0)
            break;
        const QStringView name = text.sliced(start + 2, end - start - 2);
        const auto hole = std::ranges::find_if(holes, [name](const Hole &candidate) {
            return name == QLatin1StringView(candidate.name.data(), static_cast<qsizetype>(candidate.name.size()));
        });
        Q_ASSERT_X(hole != holes.end(), "CodeWriter", "a hole without a value");
        stream_ << text.first(start);
        if (hole != holes.end()) {
            stream_ << hole->value;
            used |= quint64{1} << (hole - holes.begin());
        }
        text = text.sliced(end + 1);
    }
    stream_ << text;
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

QString Code::commentText(QString text)
{
    text.replace(u'\n', u' ').replace(u'\r', u' ');
    // "/*/" holds both marks at once.
    return text.replace("*/"_L1, "* /"_L1).replace("/*"_L1, "/ *"_L1);
}
