#include "check/line/storevalue.h"

#include "texttools/numbertext.h"

using namespace Qt::StringLiterals;

std::optional<StoreValue> StoreValue::parse(const QString &text)
{
    constexpr auto nodeId = "$NODEID"_L1;
    StoreValue value;
    QString number = text.trimmed();
    if (number.startsWith(nodeId, Qt::CaseInsensitive)) {
        value.nodeRelative = true;
        number = number.sliced(nodeId.size()).trimmed();
        if (number.isEmpty())
            return value;
        if (!number.startsWith(u'+'))
            return {};
        number = number.sliced(1).trimmed();
    }
    value.negative = number.startsWith(u'-');
    if (value.negative)
        number = number.sliced(1);
    if (number.isEmpty() || !number.front().isDigit())
        return {};
    const auto magnitude = NumberText::byPrefix<quint64>(number);
    if (!magnitude)
        return {};
    value.magnitude = *magnitude;
    return value;
}

std::optional<quint64> plainValue(const QString &text)
{
    const auto value = StoreValue::parse(text);
    return value && !value->nodeRelative && !value->negative ? std::optional(value->magnitude) : std::nullopt;
}
