#include "store/operations.h"

#include "support/recordfields.h"

#include <QHash>
#include <QRegularExpression>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace StoreTests;
using TestSupport::RecordFields::assign;
using TestSupport::RecordFields::described;
using Store = ObjectDataBase;

Arguments::Arguments(const QString &text)
{
    static const QRegularExpression token(u"\"[^\"]*\"|\\{[^}]*\\}|\\S+"_s);
    for (const auto &match : token.globalMatch(text))
        tokens_.append(match.captured());
}

QString Arguments::take()
{
    const QString token = tokens_.value(next_++);
    return token.startsWith(u'"') || token.startsWith(u'{') ? token.sliced(1).chopped(1) : token;
}

quint32 Arguments::takeNumber()
{
    const QString token = take();
    return token.isEmpty() ? 0 : TestSupport::RecordFields::number(token);
}

namespace {

template <class Value>
Value argument(Arguments &arguments)
{
    Value value{};
    if constexpr (std::is_integral_v<Value>)
        value = static_cast<Value>(arguments.takeNumber());
    else if constexpr (std::is_same_v<Value, Quotes>)
        value = arguments.take() == "kept"_L1 ? Quotes::Kept : Quotes::Literal;
    else if constexpr (std::is_same_v<Value, QString> || std::is_same_v<Value, QVariant>)
        value = arguments.take();
    else
        assign(value, arguments.take());
    return value;
}

QString shown(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

QString shown(std::integral auto value)
{
    return QString::number(value);
}

QString shown(const QString &value)
{
    return u'"' + value + u'"';
}

QString shown(const Store::SubKey &key)
{
    return u"0x%1:%2"_s.arg(QString::number(key.index, 16), QString::number(key.subindex));
}

QString shown(const Store::UDSService &service)
{
    return u"0x%1=%2"_s.arg(QString::number(service.sid, 16), QString::number(service.active));
}

/// A record that is there, with all that it holds.
template <class Record>
QString shown(const std::optional<Record> &record)
{
    return record ? u"true {"_s + described(*record) + u'}' : u"false"_s;
}

template <class Value>
QString shown(const QList<Value> &list)
{
    QStringList parts;
    for (const Value &value : list)
        parts.append(shown(value));
    return parts.join(u' ');
}

template <class Member, class Result, class... Parameters>
Operation bound(Member member)
{
    return [member](Store &store, Arguments &arguments) {
        std::tuple<std::remove_cvref_t<Parameters>...> values{argument<std::remove_cvref_t<Parameters>>(arguments)...};
        return std::apply(
            [&](auto &...value) {
                if constexpr (std::is_void_v<Result>) {
                    (store.*member)(value...);
                    return QString();
                } else {
                    return shown((store.*member)(value...));
                }
            },
            values);
    };
}

template <class Family, class Result, class... Parameters>
Operation op(Result (Family::*member)(Parameters...))
{
    return bound<decltype(member), Result, Parameters...>(member);
}

template <class Family, class Result, class... Parameters>
Operation op(Result (Family::*member)(Parameters...) const)
{
    return bound<decltype(member), Result, Parameters...>(member);
}

using TextSetter = bool (ProjectTables::*)(const QString &, const QString &, Quotes);
using PartSetter = bool (ProjectTables::*)(const QString &, const QString &, quint8, Quotes);
using TextGetter = QString (ProjectTables::*)(const QString &);
using PartGetter = QString (ProjectTables::*)(const QString &, quint8);

const QHash<QString, Operation> operations{
    {u"addCANID"_s, op(&Store::addCANID)},
    {u"addDataElement"_s, op(&Store::addDataElement)},
    {u"addIndex"_s, op(&Store::addIndex)},
    {u"addNode"_s, op(&Store::addNode)},
    {u"addPGN"_s, op(&Store::addPGN)},
    {u"addSPN"_s, op(&Store::addSPN)},
    {u"addSubIndex"_s, op(&Store::addSubIndex)},
    {u"anySafePGN"_s, op(&Store::anySafePGN)},
    {u"cacheAllSubs"_s, op(&Store::cacheAllSubs)},
    {u"cacheSPNs"_s, op(&Store::cacheSPNs)},
    {u"canidExists"_s, op(&Store::canidExists)},
    {u"clearSPNCache"_s, op(&Store::clearSPNCache)},
    {u"clearSubCache"_s, op(&Store::clearSubCache)},
    {u"copyIndex"_s, op(&Store::copyIndex)},
    {u"currentLine"_s, op(&Store::currentLine)},
    {u"dataElementExists"_s, op(&Store::dataElementExists)},
    {u"descriptionSettingExists"_s, op(&Store::descriptionSettingExists)},
    {u"findSubIndices"_s, op(&Store::findSubIndices)},
    {u"generalSettingExists"_s, op(&Store::generalSettingExists)},
    {u"getCANID"_s, op(&Store::getCANID)},
    {u"getCANIDList"_s, op(&Store::getCANIDList)},
    {u"getCANIDName"_s, op(&Store::getCANIDName)},
    {u"getDataElement"_s, op(&Store::getDataElement)},
    {u"getDataElementList"_s, op(&Store::getDataElementList)},
    {u"getDataElementName"_s, op(&Store::getDataElementName)},
    {u"getDescriptionSetting"_s, op(&Store::getDescriptionSetting)},
    {u"getEnergyBusSetting"_s, op(&Store::getEnergyBusSetting)},
    {u"getEnergyBusSettingKeys"_s, op(&Store::getEnergyBusSettingKeys)},
    {u"getGeneralSetting"_s, op(TextGetter(&Store::getGeneralSetting))},
    {u"getGeneralSettingOf"_s, op(PartGetter(&Store::getGeneralSetting))},
    {u"getIndex"_s, op(&Store::getIndex)},
    {u"getIndexList"_s, op(&Store::getIndexList)},
    {u"getIndexName"_s, op(&Store::getIndexName)},
    {u"getJ1939Setting"_s, op(TextGetter(&Store::getJ1939Setting))},
    {u"getJ1939SettingOf"_s, op(PartGetter(&Store::getJ1939Setting))},
    {u"getMiscSetting"_s, op(&Store::getMiscSetting)},
    {u"getNode"_s, op(&Store::getNode)},
    {u"getNodeList"_s, op(&Store::getNodeList)},
    {u"getPGN"_s, op(&Store::getPGN)},
    {u"getPGNList"_s, op(&Store::getPGNList)},
    {u"getPGNMappingCount"_s, op(&Store::getPGNMappingCount)},
    {u"getPGNName"_s, op(&Store::getPGNName)},
    {u"getSPN"_s, op(&Store::getSPN)},
    {u"getSPNDataType"_s, op(&Store::getSPNDataType)},
    {u"getSPNList"_s, op(&Store::getSPNList)},
    {u"getSPNName"_s, op(&Store::getSPNName)},
    {u"getString"_s, op(&Store::getString)},
    {u"getStringId"_s, op(&Store::getStringId)},
    {u"getSubIndex"_s, op(&Store::getSubIndex)},
    {u"getSubIndexDataType"_s, op(&Store::getSubIndexDataType)},
    {u"getSubIndexDefaultValue"_s, op(&Store::getSubIndexDefaultValue)},
    {u"getSubIndexList"_s, op(&Store::getSubIndexList)},
    {u"getUDSServiceActive"_s, op(&Store::getUDSServiceActive)},
    {u"getUDSServiceAuthentication"_s, op(&Store::getUDSServiceAuthentication)},
    {u"getUDSServiceSessions"_s, op(&Store::getUDSServiceSessions)},
    {u"getUDSServiceUserLevels"_s, op(&Store::getUDSServiceUserLevels)},
    {u"getUDSServices"_s, op(&Store::getUDSServices)},
    {u"isTampered"_s, op(&Store::isTampered)},
    {u"lastError"_s, op(&Store::lastError)},
    {u"miscSettingExists"_s, op(&Store::miscSettingExists)},
    {u"pgnExists"_s, op(&Store::pgnExists)},
    {u"removeCANID"_s, op(&Store::removeCANID)},
    {u"removeConsumerConnection"_s, op(&Store::removeConsumerConnection)},
    {u"removeDataElement"_s, op(&Store::removeDataElement)},
    {u"removeEnergyBusSetting"_s, op(&Store::removeEnergyBusSetting)},
    {u"removeIndex"_s, op(&Store::removeIndex)},
    {u"removeNode"_s, op(&Store::removeNode)},
    {u"removePGN"_s, op(&Store::removePGN)},
    {u"removeSPN"_s, op(&Store::removeSPN)},
    {u"removeSubIndex"_s, op(&Store::removeSubIndex)},
    {u"removeUnusedStrings"_s, op(&Store::removeUnusedStrings)},
    {u"setBlocked"_s, op(&Store::setBlocked)},
    {u"setCurrentLine"_s, op(&Store::setCurrentLine)},
    {u"setDescriptionSetting"_s, op(&Store::setDescriptionSetting)},
    {u"setEnergyBusSetting"_s, op(&Store::setEnergyBusSetting)},
    {u"setGeneralSetting"_s, op(TextSetter(&Store::setGeneralSetting))},
    {u"setGeneralSettingOf"_s, op(PartSetter(&Store::setGeneralSetting))},
    {u"setIndexName"_s, op(&Store::setIndexName)},
    {u"setJ1939Setting"_s, op(&Store::setJ1939Setting)},
    {u"setMiscSetting"_s, op(&Store::setMiscSetting)},
    {u"setNodeSqlValue"_s, op(&Store::setNodeSqlValue)},
    {u"setOnlyRead"_s, op(&Store::setOnlyRead)},
    {u"setObjectIndexSqlValue"_s, op(&Store::setObjectIndexSqlValue)},
    {u"setSubIndexDefaultValue"_s, op(&Store::setSubIndexDefaultValue)},
    {u"setSubindexSqlValue"_s, op(&Store::setSubindexSqlValue)},
    {u"setUDSServiceActive"_s, op(&Store::setUDSServiceActive)},
    {u"setUDSServiceAuthentication"_s, op(&Store::setUDSServiceAuthentication)},
    {u"setUDSServiceSessions"_s, op(&Store::setUDSServiceSessions)},
    {u"setUDSServiceUserLevels"_s, op(&Store::setUDSServiceUserLevels)},
    {u"spnExists"_s, op(&Store::spnExists)},
};

} // namespace

Operation StoreTests::operation(const QString &name)
{
    return operations.value(name);
}
