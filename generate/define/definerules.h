#pragma once

#include "generate/define/definemacros.h"

#include "generate/base/codewriter.h"
#include "texttools/helper.h"
#include "texttools/numbertext.h"

#include <array>
#include <functional>

/// Where the macros of gen_define.h have their values from. Each rule gives the text behind the name, or nothing if the
/// macro is left out.
namespace DefineRules {

using Key = QLatin1StringView;

inline QString flag(bool on)
{
    return on ? QStringLiteral("1u") : QString();
}

inline QString decimal(quint32 value)
{
    return Code::dec(value) + u'u';
}

/// A count: nothing where there is nothing to count, since the stack asks whether the macro is defined.
inline QString countOf(quint32 value)
{
    return value > 0 ? decimal(value) : QString();
}

/// A setting's value as a macro's: a number gets its "u", anything else (the name of another macro) stays.
inline QString valueText(const QString &setting)
{
    const QString text = setting.simplified();
    return text.isEmpty() ? QStringLiteral("0u") : Helper::addLowerCaseUtoNumberLists(text);
}

inline QString always(const DefineModel & /*model*/, Key /*key*/)
{
    return flag(true);
}

/// A switch; of a list, some line has it on.
inline QString isSet(const DefineModel &model, Key key)
{
    return flag(model.isSet(key));
}

/// A switch: the setting names a function.
inline QString isFunction(const DefineModel &model, Key key)
{
    return flag(!model.general(key).trimmed().isEmpty());
}

/// The setting, if it is a number above 0.
inline QString count(const DefineModel &model, Key key)
{
    return model.isSet(key) ? valueText(model.general(key)) : QString();
}

/// The setting, 0 if it is missing.
inline QString value(const DefineModel &model, Key key)
{
    return valueText(model.general(key));
}

/// The setting, if it is not empty.
inline QString optionalValue(const DefineModel &model, Key key)
{
    return model.general(key).trimmed().isEmpty() ? QString() : value(model, key);
}

/// The same rule where a further setting is above 0.
template <const char *condition, QString (*rule)(const DefineModel &, Key)>
QString given(const DefineModel &model, Key key)
{
    return model.isSet(QLatin1StringView(condition)) ? rule(model, key) : QString();
}

/// What `entry` gives for each line.
QString listOf(const DefineModel &model, const std::function<QString(const LineCounts &)> &entry,
               QLatin1StringView comma);

/// One number for each line.
template <quint32 LineCounts::*member>
QString perLine(const DefineModel &model, Key /*key*/)
{
    return listOf(
        model, [](const LineCounts &line) { return decimal(line.*member); }, QLatin1StringView(", "));
}

/// The sum of the lines, 0 included.
template <quint32 LineCounts::*member>
QString total(const DefineModel &model, Key /*key*/)
{
    return decimal(model.total(member));
}

/// The sum of the lines, if it is above 0.
template <quint32 LineCounts::*member>
QString totalIfAny(const DefineModel &model, Key /*key*/)
{
    return countOf(model.total(member));
}

/// One number for each line, if their sum is above 0.
template <quint32 LineCounts::*member>
QString perLineIfAny(const DefineModel &model, Key key)
{
    return model.total(member) > 0 ? perLine<member>(model, key) : QString();
}

template <quint32 LineCounts::*member>
QString isCounted(const DefineModel &model, Key /*key*/)
{
    return flag(model.total(member) > 0);
}

/// The project has several lines, or one that is to be written like one of several.
inline QString severalLines(const DefineModel &model, Key /*key*/)
{
    return flag(model.severalLines);
}

inline QString lineCount(const DefineModel &model, Key /*key*/)
{
    return model.severalLines ? decimal(static_cast<quint32>(model.lines.size())) : QString();
}

/// Sizes of the queues of received and transmitted messages where the project has none.
inline constexpr quint32 defaultReceiveBuffer = 10;
inline constexpr quint32 defaultTransmitBuffer = 5;

template <QString LineCounts::*member, quint32 standard>
QString bufferOf(const LineCounts &line)
{
    return (line.*member).trimmed().isEmpty() ? decimal(standard) : valueText(line.*member);
}

template <QString LineCounts::*member, quint32 standard>
QString buffersPerLine(const DefineModel &model, Key /*key*/)
{
    return listOf(model, bufferOf<member, standard>, QLatin1StringView(", "));
}

/// The size of all queues together.
template <QString LineCounts::*member, quint32 standard>
QString allBuffers(const DefineModel &model, Key /*key*/)
{
    if (model.lines.size() == 1)
        return bufferOf<member, standard>(model.lines.front());
    quint32 sum = 0;
    for (const LineCounts &line : model.lines)
        sum += (line.*member).trimmed().isEmpty() ? standard : NumberText::byPrefix(line.*member).value_or(0);
    return decimal(sum);
}

/// Every section that comes first with them writes these.
inline constexpr std::array bufferMacros{
    DefineMacros::Macro{QLatin1StringView("CORE_REC_BUFFER_COUNTS"),
                        buffersPerLine<&LineCounts::receiveBuffer, defaultReceiveBuffer>},
    DefineMacros::Macro{QLatin1StringView("CORE_TR_BUFFER_COUNTS"),
                        buffersPerLine<&LineCounts::transmitBuffer, defaultTransmitBuffer>},
};

/// Some line has one of the objects.
template <quint16... indices>
QString hasObject(const DefineModel &model, Key /*key*/)
{
    return flag((model.hasObject(indices) || ...));
}

template <bool DefineModel::Dictionary::*member>
QString dictionaryHas(const DefineModel &model, Key /*key*/)
{
    return flag(model.dictionary.*member);
}

template <quint32 DefineModel::Dictionary::*member>
QString dictionaryCount(const DefineModel &model, Key /*key*/)
{
    return countOf(model.dictionary.*member);
}

template <QMap<quint16, quint32> DefineModel::Dictionary::*member, quint16 dataType>
QString ofType(const DefineModel &model, Key /*key*/)
{
    return countOf((model.dictionary.*member).value(dataType));
}

inline QString j1939IsSet(const DefineModel &model, Key key)
{
    return flag(model.isJ1939Set(key));
}

inline QString j1939Count(const DefineModel &model, Key key)
{
    return countOf(model.j1939Number(key));
}

inline QString j1939Value(const DefineModel &model, Key key)
{
    return decimal(model.j1939Number(key));
}

template <const char *condition, QString (*rule)(const DefineModel &, Key)>
QString j1939Given(const DefineModel &model, Key key)
{
    return model.isJ1939Set(QLatin1StringView(condition)) ? rule(model, key) : QString();
}

} // namespace DefineRules
