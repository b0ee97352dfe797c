#include "mcp/tools/settingvalue.h"

#include "texttools/numbertext.h"

#include <QRegularExpression>
#include <QVariant>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using SettingValue::Text;

/// A whole number as JSON writes it: 7 and 7.0 are the same.
std::optional<qint64> wholeNumber(const QJsonValue &value)
{
    if (!value.isDouble() || std::floor(value.toDouble()) != value.toDouble())
        return {};
    constexpr qint64 none = std::numeric_limits<qint64>::min();
    const qint64 number = value.toInteger(none);
    return number == none ? std::nullopt : std::optional(number);
}

Text boolText(const Setting &setting, const QJsonValue &value)
{
    const QString word = value.toVariant().toString().trimmed().toLower();
    if (word == "true"_L1 || word == "1"_L1)
        return {.text = u"1"_s};
    if (word == "false"_L1 || word == "0"_L1)
        return {.text = setting.falseAsEmpty ? QString() : u"0"_s};
    return {.refusal = u"Setting %1 expects true or false."_s.arg(setting.key)};
}

Text unsignedText(const Setting &setting, const QJsonValue &value)
{
    static const QRegularExpression form(u"\\A(0|[1-9][0-9]*|0[xX][0-9a-fA-F]+)\\z"_s);
    const auto whole = wholeNumber(value);
    const QString text = whole ? QString::number(*whole) : value.toString().trimmed();
    const auto number = form.match(text).hasMatch() ? NumberText::byPrefix(text) : std::nullopt;
    if (!number)
        return {.refusal = u"Setting %1 expects an unsigned integer (decimal or 0x hex)."_s.arg(setting.key)};
    const quint32 min = setting.min.value_or(0);
    const quint32 max = setting.max.value_or(std::numeric_limits<quint32>::max());
    if (*number < min || *number > max)
        return {.refusal = u"Setting %1 expects a value from %2 to %3."_s.arg(setting.key).arg(min).arg(max)};
    return {.text = setting.decimal ? QString::number(*number) : text};
}

Text enumText(const Setting &setting, const QJsonValue &value)
{
    qint64 position = -1;
    if (const auto whole = wholeNumber(value)) {
        position = *whole;
    } else if (value.isString()) {
        const QString name = value.toString().trimmed();
        for (qsizetype item = 0; item < setting.enumValues.size(); ++item) {
            if (name.compare(setting.enumValues[item], Qt::CaseInsensitive) == 0)
                position = item;
        }
        bool isNumber = false;
        const int number = name.toInt(&isNumber);
        if (position < 0 && isNumber)
            position = number;
    }
    if (position >= 0 && position < setting.enumValues.size())
        return {.text = QString::number(position)};
    return {.refusal = u"Setting %1 expects one of: %2."_s.arg(setting.key, setting.enumValues.join(u", "))};
}

Text stringText(const Setting &setting, const QJsonValue &value)
{
    if (!value.isString())
        return {.refusal = u"Setting %1 expects a string."_s.arg(setting.key)};
    // The values of all lines share a row, with commas between them.
    if (setting.isPerLine() && value.toString().contains(u','))
        return {.refusal = u"Setting %1 must not contain a comma."_s.arg(setting.key)};
    return {.text = value.toString()};
}

bool isTrue(const Setting &setting, const QString &text)
{
    if (!setting.emptyIsTrue)
        return text == "1"_L1;
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return !isNumber || number != 0;
}

} // namespace

QJsonValue SettingValue::toJson(const Setting &setting, const QString &stored)
{
    const bool asItStands = setting.type == Setting::Type::String && !setting.isPerLine();
    const QString text = asItStands ? stored : stored.trimmed();
    if (setting.type == Setting::Type::Bool)
        return isTrue(setting, text);
    if (setting.type == Setting::Type::Enum) {
        bool isNumber = false;
        const int position = text.toInt(&isNumber);
        if (isNumber && position >= 0 && position < setting.enumValues.size())
            return setting.enumValues[position];
    }
    return text;
}

SettingValue::Text SettingValue::fromJson(const Setting &setting, const QJsonValue &value)
{
    switch (setting.type) {
    case Setting::Type::Bool:
        return boolText(setting, value);
    case Setting::Type::UInt:
        return unsignedText(setting, value);
    case Setting::Type::Enum:
        return enumText(setting, value);
    case Setting::Type::String:
        return stringText(setting, value);
    }
    return {.refusal = u"Setting %1 has an unknown type."_s.arg(setting.key)};
}
