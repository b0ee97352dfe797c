#include "nodedict/edsvalue.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "texttools/numbertext.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

/// A number in the form in which every reader of a value takes it: "0X" becomes "0x", and a leading 0 that is mere
/// padding goes. Null if the text is none.
QString plainNumber(const QString &text)
{
    const bool hasSign = text.startsWith(u'-') || text.startsWith(u'+');
    const QString digits = hasSign ? text.mid(1) : text;
    bool isReal = false;
    text.toDouble(&isReal);
    if (!isReal && !NumberText::ofDescription<quint64>(digits))
        return {};
    const auto decimal = NumberText::decimal<quint64>(digits);
    if (decimal && !NumberText::byPrefix<quint64>(digits))
        return text.first(hasSign ? 1 : 0) + QString::number(*decimal);
    return QString(text).replace("0X"_L1, "0x"_L1);
}

/// A number in two's complement of the type's width, or of a width that it was extended to; else its plain value.
QString fromTwosComplement(quint64 number, quint32 bits)
{
    const auto extended = [number](quint32 width) {
        const quint32 unused = 64 - width;
        return static_cast<qint64>(number << unused) >> unused;
    };
    const qint64 lowest = -1 - static_cast<qint64>(~quint64{0} >> (65 - bits));
    for (const quint32 width : {bits, 32U, 64U}) {
        const bool fits = width >= bits && (width == 64 || number >> width == 0);
        if (fits && (width == bits || (extended(width) < 0 && extended(width) >= lowest)))
            return QString::number(extended(width));
    }
    return QString::number(number);
}

/// What stands in front of a remark: of a ";", or of a blank and "//" or "#".
QString withoutRemark(const QString &text)
{
    qsizetype end = text.indexOf(u';');
    for (const QLatin1StringView mark : {" //"_L1, "\t//"_L1, " #"_L1, "\t#"_L1}) {
        const qsizetype position = text.indexOf(mark);
        if (position > 0 && (end < 0 || position < end))
            end = position;
    }
    return end > 0 ? text.first(end).trimmed() : text;
}

/// The sum of a node-id and numbers as "$NODEID+number"; null if the text is anything else.
QString nodeRelative(QString text)
{
    if (!text.contains("nodeid"_L1, Qt::CaseInsensitive))
        return {};
    text.removeIf([](QChar c) { return c.isSpace() || c == u'(' || c == u')'; });
    QStringList numbers;
    int nodeIds = 0;
    quint64 sum = 0;
    for (const QString &term : text.split(u'+')) {
        if (term.compare("$nodeid"_L1, Qt::CaseInsensitive) == 0 ||
            term.compare("nodeid"_L1, Qt::CaseInsensitive) == 0) {
            ++nodeIds;
        } else if (const auto value = NumberText::ofDescription<quint64>(term)) {
            numbers.append(plainNumber(term));
            sum += *value;
        } else {
            return {};
        }
    }
    if (nodeIds != 1)
        return {};
    if (numbers.isEmpty())
        return u"$NODEID+0"_s;
    return "$NODEID+"_L1 + (numbers.size() == 1 ? numbers.first() : u"0x%1"_s.arg(sum, 0, 16));
}

} // namespace

QString EdsValue::withoutQuotes(const QString &text)
{
    const bool isQuoted = text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"');
    return isQuoted ? text.sliced(1, text.size() - 2).trimmed() : text;
}

QString EdsValue::unquotedText(const QString &text)
{
    const bool isQuoted = text.size() >= 2 && text.startsWith(u'"') && text.indexOf(u'"', 1) == text.size() - 1;
    return isQuoted ? text.sliced(1, text.size() - 2) : text;
}

QString EdsValue::word(const QString &text)
{
    return withoutQuotes(withoutQuotes(text).section(u';', 0, 0).trimmed());
}

std::optional<quint32> EdsValue::number(const QString &text)
{
    const QString inner = withoutQuotes(text);
    const auto end = std::find_if(inner.begin(), inner.end(), [](QChar c) { return c.isSpace() || c == u';'; });
    return NumberText::ofDescription<quint32>(inner.left(end - inner.begin()));
}

QString EdsValue::normalised(const QString &text, quint32 dataType)
{
    if (text.isEmpty() || COHelper::isTextType(dataType))
        return text;
    // Of a type that is not known the value may be a text, in which these are no remarks.
    const QString value = dataType == CAN::NoType ? text : withoutRemark(withoutQuotes(text));
    if (QString relative = nodeRelative(value); !relative.isNull())
        return relative;
    const QString number = plainNumber(value);
    return number.isNull() ? text : number;
}

QString EdsValue::limit(const QString &text, quint32 dataType)
{
    QString value = normalised(text, dataType);
    const bool hasSign = value.startsWith(u'-') || value.startsWith(u'+');
    const QString digits = hasSign ? value.sliced(1) : value;
    const bool isDecimal = digits.size() < 2 || !digits.startsWith(u'0');
    const auto number = NumberText::ofDescription<quint64>(digits);
    if (!COHelper::isSigned(dataType) || isDecimal || !number)
        return value;
    return hasSign ? value.first(1) + QString::number(*number)
                   : fromTwosComplement(*number, COHelper::getDataLengthBits(dataType));
}
