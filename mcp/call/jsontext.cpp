#include "mcp/call/jsontext.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

bool isPlain(char16_t unit)
{
    return unit >= u' ' && unit < 0x7f && unit != u'"' && unit != u'\\';
}

/// What stands in the place of a plain character, or of one that is most common beside those; 0 for any other.
char escapeOf(char16_t unit)
{
    switch (unit) {
    case u'\n':
        return 'n';
    case u'"':
    case u'\\':
        return static_cast<char>(unit);
    default:
        return 0;
    }
}

QByteArray quotedByFramework(QStringView text)
{
    const QByteArray list = QJsonDocument(QJsonArray{text.toString()}).toJson(QJsonDocument::Compact);
    return list.sliced(1, list.size() - 2);
}

/// Writes the string behind `out`, where there are two places for each character and two more; null for a text with
/// characters that the framework has its own ways with.
template <class Unit>
Unit *write(Unit *out, QStringView text)
{
    *out++ = Unit('"');
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (!isPlain(unit)) {
            const char escape = escapeOf(unit);
            if (escape == 0)
                return nullptr;
            *out++ = Unit('\\');
            *out++ = Unit(escape);
        } else {
            *out++ = static_cast<Unit>(unit);
        }
    }
    *out++ = Unit('"');
    return out;
}

template <class Unit, class Text>
bool append(Text &out, QStringView text)
{
    const qsizetype before = out.size();
    out.resize(before + 2 * text.size() + 2);
    Unit *const begin = reinterpret_cast<Unit *>(out.data());
    const Unit *const end = write(begin + before, text);
    out.resize(end ? end - begin : before);
    return end != nullptr;
}

} // namespace

void JsonText::appendQuoted(QString &out, QStringView text)
{
    if (!append<char16_t>(out, text))
        out += QString::fromUtf8(quotedByFramework(text));
}

void JsonText::appendQuoted(QByteArray &out, QStringView text)
{
    if (!append<char>(out, text))
        out += quotedByFramework(text);
}
