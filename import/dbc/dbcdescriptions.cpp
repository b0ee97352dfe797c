#include "import/dbc/dbcdescriptions.h"

#include <QLocale>
#include <QStringList>

using namespace Qt::StringLiterals;

QString DbcDescriptions::of(const CANdb::Signal &signal)
{
    QStringList parts;
    if (!signal.comment.isEmpty())
        parts.append(signal.comment);
    QStringList scale;
    if (signal.factor != 1 || signal.offset != 0)
        scale += {u"scale %1"_s.arg(numberText(signal.factor)), u"offset %1"_s.arg(numberText(signal.offset))};
    if (!signal.unit.isEmpty())
        scale.append(u"unit %1"_s.arg(signal.unit));
    if (signal.minimum != 0 || signal.maximum != 0)
        scale.append(u"range %1 to %2"_s.arg(numberText(signal.minimum), numberText(signal.maximum)));
    if (!scale.isEmpty())
        parts.append(scale.join(", "_L1));
    QStringList names;
    for (const CANdb::ValueName &named : signal.values)
        names.append(u"%1 %2"_s.arg(numberText(named.value), named.name));
    if (!names.isEmpty())
        parts.append(u"values "_s + names.join(", "_L1));
    QString multiplexing = signal.multiplexing;
    if (!signal.multiplexer.isEmpty())
        multiplexing += u" by %1 %2"_s.arg(signal.multiplexer, signal.multiplexRanges.join(", "_L1));
    if (!multiplexing.isEmpty())
        parts.append(u"multiplexing "_s + multiplexing);
    scales_ += scale.isEmpty() ? 0 : 1;
    valueNames_ += names.isEmpty() ? 0 : 1;
    multiplexed_ += multiplexing.isEmpty() ? 0 : 1;
    return parts.join(" - "_L1);
}

QString DbcDescriptions::summary() const
{
    QStringList parts;
    const auto add = [&parts](int count, const QString &what) {
        if (count > 0)
            parts.append(u"%1 of %2 %3"_s.arg(what).arg(count).arg(count == 1 ? u"signal"_s : u"signals"_s));
    };
    add(scales_, u"scale, unit or range"_s);
    add(valueNames_, u"names of values"_s);
    add(multiplexed_, u"multiplexing"_s);
    return parts.isEmpty() ? QString()
                           : u"in the descriptions, since a project has no other place: "_s + parts.join(", "_L1);
}

QString DbcDescriptions::numberText(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}
