#include "nodedict/edsvalue.h"

#include "nodedict/cohelper.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

std::optional<quint64> unsignedNumber(const QString &text)
{
    bool ok = false;
    quint64 value = text.toULongLong(&ok, 0);
    if (!ok)
        value = text.toULongLong(&ok, 10);
    return ok ? std::optional(value) : std::nullopt;
}

bool isNumber(const QString &text)
{
    bool ok = false;
    text.toDouble(&ok);
    return ok || unsignedNumber(text.startsWith(u'-') || text.startsWith(u'+') ? text.mid(1) : text).has_value();
}

QString withSmallPrefix(QString text)
{
    if (text.startsWith("0X"_L1))
        text[1] = u'x';
    return text;
}

/// `text` up to a ";" that follows a blank; what is behind it is a remark only if a number is in front.
QString withoutRemark(const QString &text)
{
    const qsizetype semicolon = text.indexOf(u';');
    return semicolon > 0 && text.at(semicolon - 1).isSpace() ? text.left(semicolon).trimmed() : text;
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
        } else if (const auto value = unsignedNumber(term)) {
            numbers.append(withSmallPrefix(term));
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

std::optional<quint32> EdsValue::number(const QString &text)
{
    const auto end = std::find_if(text.begin(), text.end(), [](QChar c) { return c.isSpace() || c == u';'; });
    const auto value = unsignedNumber(text.left(end - text.begin()));
    return value && *value <= 0xffffffff ? std::optional(static_cast<quint32>(*value)) : std::nullopt;
}

QString EdsValue::normalised(const QString &text, quint32 dataType)
{
    if (text.isEmpty() || COHelper::isTextType(dataType))
        return text;
    const QString value = withoutRemark(text);
    QString relative = nodeRelative(value);
    if (!relative.isNull())
        return relative;
    return isNumber(value) ? withSmallPrefix(value) : text;
}
