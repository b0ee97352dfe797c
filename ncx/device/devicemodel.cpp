#include "ncx/device/devicemodel.h"

#include "check/line/pdo.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 extendedFlag = 0x80000000;

Frame frameOf(CheckedLine &line, const CheckedObject &mapping)
{
    Frame frame;
    for (const PDO::MappingEntry &entry : PDO::entriesOf(line, mapping)) {
        FrameField field{.first = frame.bits, .bits = entry.bits()};
        if (!entry.isDummy()) {
            const CheckedObject *object = line.object(entry.index());
            const bool isOwnName = object && object->isComplex() && entry.target;
            field.address = u"0x%1:%2"_s.arg(entry.index(), 4, 16, QLatin1Char('0')).arg(entry.subindex());
            if (object)
                field.name = isOwnName ? entry.target->data->name : object->data.name;
        }
        frame.bits += entry.bits();
        frame.fields.append(field);
    }
    return frame;
}

Frame frameOf(const std::vector<CheckedSignal> &parts, bool areSpns)
{
    Frame frame;
    for (const CheckedSignal &part : parts) {
        const QString address = areSpns ? u"SPN %1"_s.arg(part.data.spnnumber) : u"#%1"_s.arg(part.position);
        frame.fields.append(
            {.first = part.data.bitposition, .bits = part.bits, .name = part.data.name, .address = address});
        frame.bits = std::max(frame.bits, part.data.bitposition + part.bits);
    }
    return frame;
}

/// Transmission types of CiA 301.
QString transmissionText(const CheckedObject &communication)
{
    const std::optional<quint64> type = communication.value(2);
    if (!type)
        return {};
    if (*type == 0)
        return u"at a SYNC after an event"_s;
    if (*type == 1)
        return u"at each SYNC"_s;
    if (*type <= 240)
        return u"at every %1 SYNCs"_s.arg(*type);
    switch (*type) {
    case 252:
        return u"on request, sampled at SYNC"_s;
    case 253:
        return u"on request"_s;
    case 254:
        return u"event-driven (manufacturer)"_s;
    case 255:
        return u"event-driven (profile)"_s;
    default:
        return u"reserved type %1"_s.arg(*type);
    }
}

QString storage(quint8 implementation, const QString &variable)
{
    switch (static_cast<CANopen::Implementation>(implementation)) {
    case CANopen::Implementation::ManagedVariable:
        return u"managed"_s;
    case CANopen::Implementation::ManagedConst:
        return u"const"_s;
    case CANopen::Implementation::Variable:
        return variable;
    case CANopen::Implementation::VirtualObject:
        return u"virtual"_s;
    }
    return QString::number(implementation);
}

} // namespace

DeviceLine::DeviceLine(ObjectDataBase &store, quint8 line)
    : line_(store, line)
    , protocols_(LineProtocols::ofLine(store, line))
    , nodeId_(store.getGeneralSetting(u"co_node_id"_s, line).trimmed())
{
    if (const auto node = store.getNode(line))
        name_ = node->name;
    if (nodeId_.isEmpty())
        nodeId_ = store.getGeneralSetting(u"co_node_id_fct"_s, line).trimmed();
}

QString DeviceLine::typeName() const
{
    QStringList names;
    if (protocols_.canOpen)
        names.append(u"CANopen"_s);
    if (protocols_.j1939)
        names.append(u"J1939"_s);
    if (protocols_.rawCan)
        names.append(u"RawCAN"_s);
    return names.join(u'+');
}

const std::vector<Pdo> &DeviceLine::pdos()
{
    if (pdos_)
        return *pdos_;
    pdos_.emplace();
    for (const CANopen::IndexRange range : {CANopen::Index::rpdos, CANopen::Index::tpdos}) {
        for (const CheckedObject &object : line_.objects()) {
            if (range.contains(object.index))
                pdos_->push_back(pdoOf(object));
        }
    }
    return *pdos_;
}

const Pdo *DeviceLine::pdoOf(quint16 index)
{
    for (const Pdo &pdo : pdos()) {
        if (pdo.communication->index == index || pdo.communication->index + CANopen::Index::pdoMappingOffset == index)
            return &pdo;
    }
    return nullptr;
}

Pdo DeviceLine::pdoOf(const CheckedObject &communication)
{
    const bool isTransmit = CANopen::Index::tpdos.contains(communication.index);
    const quint16 first = isTransmit ? CANopen::Index::tpdos.first : CANopen::Index::rpdos.first;
    Pdo pdo{.communication = &communication,
            .mapping = line_.object(communication.index + CANopen::Index::pdoMappingOffset),
            .isTransmit = isTransmit,
            .number = communication.index - first + 1,
            .isEnabled = PDO::isEnabled(&communication),
            .cobId = PDO::cobIdText(communication),
            .transmission = transmissionText(communication),
            .inhibitTime = communication.value(3).value_or(0),
            .eventTimer = communication.value(5).value_or(0)};
    if (pdo.mapping)
        pdo.frame = frameOf(line_, *pdo.mapping);
    return pdo;
}

Frame frameOf(const CheckedPGN &pgn)
{
    return frameOf(pgn.spns, true);
}

Frame frameOf(const CheckedCanId &canId)
{
    return frameOf(canId.signalList, false);
}

QString canIdText(quint32 id)
{
    const QString number = u"0x%1"_s.arg(id & ~extendedFlag, 3, 16, QLatin1Char('0'));
    return (id & extendedFlag) != 0 ? number + u'x' : number;
}

QString directionText(quint8 direction)
{
    return direction == StoreRecords::transmit ? u"transmit"_s : u"receive"_s;
}

QString storageText(const StoreRecords::SubIndexData &data)
{
    return storage(data.implementation, data.varname);
}

QString storageText(const StoreRecords::SPN &data)
{
    return storage(data.implementation, data.varname);
}
