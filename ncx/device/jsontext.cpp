#include "ncx/device/jsontext.h"

#include <QJsonArray>

#include <algorithm>

namespace {

/// True for a text that JSON has as it stands.
bool isPlain(const QString &text)
{
    return std::ranges::all_of(
        text, [](QChar letter) { return letter >= u' ' && letter <= u'~' && letter != u'"' && letter != u'\\'; });
}

} // namespace

void JsonText::beginLine()
{
    constexpr int step = 4;
    if (isIndented_)
        text_.append(qsizetype{step} * depth_, ' ');
}

void JsonText::beginElement()
{
    if (isValue_) {
        isValue_ = false;
        return;
    }
    if (!isFirst_)
        text_.append(isIndented_ ? ",\n" : ",");
    isFirst_ = false;
    beginLine();
}

void JsonText::begin(char bracket)
{
    beginElement();
    text_.append(bracket);
    if (isIndented_)
        text_.append('\n');
    ++depth_;
    isFirst_ = true;
}

void JsonText::end(char bracket)
{
    --depth_;
    if (isIndented_ && !isFirst_)
        text_.append('\n');
    beginLine();
    text_.append(bracket);
    isFirst_ = false;
}

void JsonText::key(QLatin1StringView key)
{
    beginElement();
    text_.append('"').append(key.data(), key.size()).append(isIndented_ ? "\": " : "\":");
    isValue_ = true;
}

void JsonText::value(const QString &text)
{
    beginElement();
    if (isPlain(text)) {
        text_.append('"').append(text.toLatin1()).append('"');
        return;
    }
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    text_.append(QByteArrayView(list).sliced(1).chopped(1));
}

void JsonText::value(qint64 number)
{
    beginElement();
    text_.append(QByteArray::number(number));
}

void JsonText::add(QLatin1StringView name, const QString &text)
{
    if (text.isEmpty())
        return;
    key(name);
    value(text);
}
