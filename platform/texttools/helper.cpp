#include "texttools/helper.h"

#include "texttools/numbertext.h"
#include "texttools/wholefile.h"

#include <QFile>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

struct Variable
{
    QLatin1StringView name;
    quint32 value;
    int hexDigits;
};

/// The value of the word between the braces, in the base that the word asks for; null for an unknown word.
QString valueOf(QStringView word, std::initializer_list<Variable> variables)
{
    const bool hex = word.endsWith(":x"_L1);
    const QStringView name = hex ? word.chopped(2) : word;
    for (const Variable &variable : variables) {
        if (name == variable.name)
            return hex ? u"%1"_s.arg(variable.value, variable.hexDigits, 16, QLatin1Char('0'))
                       : QString::number(variable.value);
    }
    return {};
}

} // namespace

Helper::Helper(int /*formatVersion*/) {}

QString Helper::substituteVariables(const QString &text, quint32 index, quint32 subindex, quint32 line)
{
    if (!text.contains(u'$'))
        return text;
    const QStringView view(text);
    QString result;
    qsizetype done = 0;
    for (qsizetype open = text.indexOf("${"_L1); open >= 0; open = text.indexOf("${"_L1, open)) {
        const qsizetype close = text.indexOf(u'}', open);
        if (close < 0)
            break;
        open = text.lastIndexOf("${"_L1, close); // no word holds another beginning
        const QString value = valueOf(view.mid(open + 2, close - open - 2),
                                      {{"index"_L1, index, 4}, {"subindex"_L1, subindex, 2}, {"line"_L1, line, 1}});
        if (value.isNull()) {
            open += 2;
            continue;
        }
        result += view.mid(done, open - done);
        result += value;
        done = open = close + 1;
    }
    result += view.mid(done);
    return result;
}

QString Helper::addLowerCaseUtoNumberLists(const QString &list)
{
    QStringList parts = list.split(u',');
    for (QString &part : parts) {
        const QString word = part.trimmed();
        if (NumberText::decimalOrHexadecimal<quint64>(word))
            part.insert(part.indexOf(word) + word.size(), u'u');
    }
    return parts.join(u',');
}

QByteArray Helper::hexPairs(QStringView digits)
{
    QByteArray bytes;
    for (qsizetype i = 0; i < digits.size(); i += 2)
        bytes.append(static_cast<char>(NumberText::hexadecimal<quint8>(digits.mid(i, 2)).value_or(0)));
    return bytes;
}

QString Helper::UTF8String2ArrayString(const QString &text)
{
    const QByteArray bytes = text.startsWith("|x"_L1) ? hexPairs(QStringView(text).sliced(2)) : text.toUtf8();
    QString literal = u"\""_s;
    for (const char byte : bytes) {
        // Two question marks begin a trigraph.
        if (byte == '"' || byte == '\\' || (byte == '?' && literal.endsWith(u'?')))
            literal += u'\\';
        if (byte >= ' ' && byte <= '~')
            literal += QLatin1Char(byte);
        else
            literal += u"\\%1"_s.arg(static_cast<quint8>(byte), 3, 8, '0'_L1);
    }
    return literal + u'"';
}

bool Helper::modifyLineEnding(const QString &path, const QString &ending)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QByteArray content = file.readAll();
    file.close();
    content.replace("\r\n", "\n");
    content.replace('\r', '\n');
    if (ending != "\n"_L1)
        content.replace("\n", ending.toUtf8());

    WholeFile target(path);
    return target.open(QIODevice::WriteOnly) && target.write(content) == content.size() && target.commitWhole();
}
