#include "ncx/compare/facts.h"

#include "check/line/pdo.h"
#include "check/line/storevalue.h"
#include "ncx/device/devicemodel.h"
#include "nodedict/access.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace Index = CANopen::Index;

namespace {

/// Facts as they are collected.
class FactList
{
public:
    void text(const QString &name, const QString &value, const QString &usual = {})
    {
        facts_.append({.name = name, .value = value, .isUsual = value == usual});
    }
    void number(const QString &name, const QString &value)
    {
        facts_.append({.name = name, .value = value, .isUsual = value.isEmpty(), .isNumber = true});
    }
    void number(const QString &name, quint32 value)
    {
        facts_.append({.name = name, .value = QString::number(value), .isUsual = value == 0});
    }
    void flag(const QString &name, bool value, bool usual = false)
    {
        facts_.append({.name = name, .value = value ? u"yes"_s : u"no"_s, .isUsual = value == usual});
    }
    Facts take() { return std::move(facts_); }

private:
    Facts facts_;
};

QString attributesText(const StoreRecords::Metadata &metadata)
{
    QStringList texts;
    for (auto attribute = metadata.begin(); attribute != metadata.end(); ++attribute)
        texts.append(u"%1=%2"_s.arg(attribute.key(), attribute.value()));
    return texts.join(", "_L1);
}

QString storedText(quint8 implementation)
{
    static const QStringList words{u"managed variable"_s, u"managed const"_s, u"variable"_s, u"virtual"_s};
    return words.value(implementation, QString::number(implementation));
}

/// The PDOs that an object may be mapped into, which its access decides as well (CiA 301).
QString mappingText(const StoreRecords::SubIndexData &data)
{
    if (data.pdomapping == PDOMapping::Forbidden)
        return u"no"_s;
    if (CANopen::fitsTransmitPdo(data.accesstype) && !CANopen::fitsReceivePdo(data.accesstype))
        return u"TPDO"_s;
    if (CANopen::fitsReceivePdo(data.accesstype) && !CANopen::fitsTransmitPdo(data.accesstype))
        return u"RPDO"_s;
    return data.pdomapping == PDOMapping::RPDO   ? u"RPDO"_s
           : data.pdomapping == PDOMapping::TPDO ? u"TPDO"_s
                                                 : u"RPDO and TPDO"_s;
}

/// Subindices whose default value means more than a value. Ranges include both ends.
struct Role
{
    CANopen::IndexRange indices;
    quint8 first;
    quint8 last;
    QLatin1StringView name;
};

constexpr quint8 lastSub = 0xfe;
constexpr Role roles[] = {
    {{Index::deviceType, Index::deviceType}, 0, 0, "device type"_L1},
    {{Index::syncCobId, Index::syncCobId}, 0, 0, "COB-ID"_L1},
    {{Index::timeCobId, Index::timeCobId}, 0, 0, "COB-ID"_L1},
    {{Index::emcyCobId, Index::emcyCobId}, 0, 0, "COB-ID"_L1},
    {{Index::identity, Index::identity}, 1, 1, "vendor-ID"_L1},
    {{Index::identity, Index::identity}, 2, 2, "product code"_L1},
    {{Index::identity, Index::identity}, 3, 3, "revision number"_L1},
    {{Index::emcyConsumers, Index::emcyConsumers}, 1, lastSub, "COB-ID"_L1},
    {Index::sdoServers, 1, 2, "COB-ID"_L1},
    {Index::sdoClients, 1, 2, "COB-ID"_L1},
    {Index::srdos, 5, 6, "COB-ID"_L1},
    {Index::srdoMappings, 0, lastSub, "mapping"_L1},
    {Index::rpdos, 1, 1, "COB-ID"_L1},
    {Index::rpdoMappings, 0, lastSub, "mapping"_L1},
    {Index::tpdos, 1, 1, "COB-ID"_L1},
    {Index::tpdoMappings, 0, lastSub, "mapping"_L1},
};

QString valueName(quint16 index, quint8 subindex)
{
    if (index >= Index::firstManufacturerObject)
        return u"default"_s;
    const auto role = std::ranges::find_if(roles, [&](const Role &each) {
        return each.indices.contains(index) && subindex >= each.first && subindex <= each.last;
    });
    return role == std::end(roles) ? u"default"_s : QString(role->name);
}

QString bytesText(quint32 bits)
{
    constexpr quint32 byteBits = 8;
    return QString::number((bits + byteBits - 1) / byteBits);
}

void addSafety(FactList &list, const StoreRecords::PGN &pgn)
{
    list.flag(u"safe"_s, pgn.issafe);
    list.number(u"safety type"_s, pgn.safetytype);
    list.number(u"validation time"_s, pgn.srvt_ms);
    list.number(u"trailer format"_s, pgn.FD_TrailerFormat);
    list.number(u"assurance type"_s, pgn.FD_AssuranceType);
    list.number(u"assurance data size"_s, pgn.FD_AssuranceDataSize);
    list.number(u"data identifier"_s, pgn.FD_DataID);
}

} // namespace

bool Fact::differsFrom(const Fact &other) const
{
    if (value == other.value)
        return false;
    if (!isNumber || !other.isNumber)
        return true;
    const std::optional<StoreValue> own = StoreValue::parse(value);
    const std::optional<StoreValue> theirs = StoreValue::parse(other.value);
    return !own || !theirs || own->magnitude != theirs->magnitude || own->negative != theirs->negative ||
           own->nodeRelative != theirs->nodeRelative;
}

Facts FactsOf::object(const CheckedObject &object, Scope scope)
{
    const StoreRecords::IndexData &data = object.data;
    FactList list;
    list.text(u"name"_s, data.name);
    list.text(u"object code"_s, COHelper::objectCode2String(data.objecttype));
    if (scope == Scope::Description)
        return list.take();
    const CheckedSubindex *own = object.sub(object.isComplex() ? 1 : 0);
    const bool isTold = (own && own->data->datatype == data.datatype) || data.objecttype == CANopen::Record;
    list.text(u"data type"_s, isTold ? QString() : COHelper::index2DataTypeString(data.datatype));
    list.text(u"description"_s, data.description);
    list.number(u"category"_s, data.category);
    list.text(u"device class"_s, data.device_class);
    list.text(u"attributes"_s, attributesText(data.metadata));
    return list.take();
}

Facts FactsOf::subindex(const CheckedObject &object, const CheckedSubindex &sub, Scope scope)
{
    const StoreRecords::SubIndexData &data = *sub.data;
    const bool isText = COHelper::isTextType(data.datatype);
    FactList list;
    const auto value = [&](const QString &name, const QString &text) {
        isText ? list.text(name, text) : list.number(name, text);
    };
    // A VAR and its only subindex are one thing, and mostly of one name.
    const bool isOwnName = object.isComplex() || (scope == Scope::Project && data.name != object.data.name);
    list.text(u"name"_s, isOwnName ? data.name : QString());
    list.text(u"data type"_s, COHelper::index2DataTypeString(data.datatype));
    list.text(u"access"_s, data.accesstype);
    list.text(u"PDO mapping"_s, mappingText(data), u"no"_s);
    value(valueName(sub.index, sub.subindex), data.defaultvalue);
    value(u"low limit"_s, data.limitineds ? data.lowlimit : QString());
    value(u"high limit"_s, data.limitineds ? data.uplimit : QString());
    list.flag(u"read refused"_s, data.refuseread);
    list.flag(u"write refused"_s, data.refusewrite);
    if (scope == Scope::Description)
        return list.take();
    value(u"configured value"_s, data.currentvalue);
    list.number(u"size"_s, data.size);
    list.text(u"stored as"_s, storedText(data.implementation), storedText(0));
    list.text(u"variable"_s, data.varname);
    list.text(u"description"_s, data.description);
    list.text(u"denotation"_s, data.denotation);
    list.number(u"category"_s, data.category);
    list.flag(u"default in the description"_s, data.defaultineds && data.writedefaulttoeds != 0, true);
    list.flag(u"configured"_s, data.dcfcomponent);
    list.flag(u"non-volatile"_s, data.nvstorage);
    list.flag(u"shared by lines"_s, data.sharedlines);
    list.text(u"attributes"_s, attributesText(data.metadata));
    return list.take();
}

Facts FactsOf::pgn(const CheckedPGN &pgn)
{
    FactList list;
    list.text(u"name"_s, pgn.data.name);
    list.text(u"description"_s, pgn.data.desc);
    list.text(u"length"_s, bytesText(pgn.bits));
    list.text(u"priority"_s, QString::number(pgn.data.priority));
    list.number(u"cycle time"_s, pgn.data.cycletime_ms);
    list.number(u"inhibit time"_s, pgn.data.inhibittime_ms);
    list.flag(u"several source addresses"_s, pgn.data.multisourceaddress);
    addSafety(list, pgn.data);
    return list.take();
}

Facts FactsOf::canId(const CheckedCanId &canId)
{
    FactList list;
    list.text(u"name"_s, canId.data.name);
    list.text(u"description"_s, canId.data.desc);
    list.text(u"length"_s, bytesText(frameOf(canId).bits));
    list.number(u"cycle time"_s, canId.data.cycletime_ms);
    list.number(u"inhibit time"_s, canId.data.inhibittime_ms);
    return list.take();
}

Facts FactsOf::signal(const CheckedSignal &signal)
{
    const StoreRecords::SPN &data = signal.data;
    FactList list;
    list.text(u"name"_s, data.name);
    list.text(u"description"_s, data.desc);
    list.text(u"data type"_s, COHelper::index2DataTypeString(data.datatype));
    list.text(u"first bit"_s, QString::number(data.bitposition));
    list.text(u"bits"_s, QString::number(signal.bits));
    list.number(u"default"_s, data.defaultvalue);
    list.text(u"stored as"_s, storedText(data.implementation), storedText(0));
    list.text(u"variable"_s, data.varname);
    list.number(u"SLOT"_s, data.slot_df);
    return list.take();
}
