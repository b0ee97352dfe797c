#include "generate/startup/servicecalls.h"

#include "generate/base/codewriter.h"
#include "generate/model/dictionarytables.h"
#include "store/settings.h"
#include "texttools/numbertext.h"

using namespace Qt::StringLiterals;
namespace Index = CANopen::Index;

namespace {

constexpr quint32 timeProducerBit = 0x40000000;
constexpr quint32 timeConsumerBit = 0x80000000;

QString unsignedText(std::size_t value)
{
    return Code::dec(value) + u'u';
}

/// The number of the service that an object of a range belongs to, from 1.
QString numberIn(CANopen::IndexRange range, const LineObject &object)
{
    return unsignedText(object.index - range.first + 1U);
}

QString boolText(bool value)
{
    return value ? u"CO_TRUE"_s : u"CO_FALSE"_s;
}

/// Arrays of values that C takes as arguments; the others hold bytes.
bool isArithmetic(ValueType type)
{
    switch (type) {
    case ValueType::U24:
    case ValueType::U40:
    case ValueType::U48:
    case ValueType::U64:
    case ValueType::I24:
        return false;
    default:
        return true;
    }
}

class Collector
{
public:
    Collector(ObjectDataBase &store, const DictionaryTables &tables, LineServices &services)
        : settings_(store)
        , tables_(tables)
        , dictionary_(tables.line(services.line))
        , services_(services)
    {
    }

    void collect()
    {
        addSettings();
        addDictionary();
        addErrorControl();
        addSync();
        addSmallServices();
        addSdos();
        addPdos();
        addSrdos();
    }

private:
    bool has(quint16 index) const { return dictionary_ != nullptr && dictionary_->has(index); }

    /// Subindices of an object apart from the one that counts them.
    quint32 entryCount(quint16 index) const
    {
        const quint32 count = dictionary_ == nullptr ? 0 : dictionary_->subCount(index);
        return count == 0 ? 0 : count - 1;
    }

    std::span<const LineObject> range(CANopen::IndexRange indices) const
    {
        return dictionary_ == nullptr ? std::span<const LineObject>() : dictionary_->range(indices);
    }

    /// The constant that holds the default value of a subindex; `missing` where there is none.
    QString constant(quint16 index, quint8 subindex, const QString &missing) const
    {
        const StoreRecords::SubEntry *sub = tables_.sub(services_.line, index, subindex);
        const auto type = sub == nullptr ? std::nullopt : valueTypeOf(sub->data.datatype);
        if (!type || !isArithmetic(*type))
            return missing;
        return u"od_const_%1[%2]"_s.arg(valueTypeName(*type),
                                        Code::dec(tables_.defaultPosition(services_.line, index, subindex)));
    }

    void add(Service service, const QString &function, const QStringList &arguments = {}, const QString &comment = {})
    {
        services_.calls[service].push_back({function, arguments, comment});
    }

    void addSettings()
    {
        const quint32 master = settings_.number(u"nmtmaster"_s, services_.line);
        services_.nmt = master == 2 ? NmtRole::Dynamic : master == 0 ? NmtRole::Slave : NmtRole::Master;
        services_.lssMaster = master == 1;
        services_.lss = settings_.isOn(u"lss_supported"_s);
        services_.usdoClient = tables_.canFd && settings_.isOn(u"usdo_client_cnt"_s, services_.line) &&
                               settings_.isOn(u"usdo_client_enabled"_s, services_.line);
    }

    /// Without any object there is no table of assignments.
    void addDictionary()
    {
        const QString variables = u"&od_data_variables"_s;
        const bool empty = tables_.lines.empty();
        if (!tables_.multiLine) {
            add(Service::Dictionary, u"coOdInitOdPtr"_s,
                {empty ? u"NULL"_s : u"&od_assign[0]"_s, u"CO_OD_ASSIGN_CNT"_s, u"&od_description[0]"_s,
                 u"CO_OBJ_DESC_CNT"_s, u"NULL"_s, variables});
            return;
        }
        const DictionaryLine none;
        const DictionaryLine &line = dictionary_ == nullptr ? none : *dictionary_;
        add(Service::Dictionary, u"coOdInitOdPtr"_s,
            {empty ? u"NULL"_s : u"&od_assign[%1]"_s.arg(line.assignStart), Code::dec(line.assignCount),
             u"od_description"_s, Code::dec(line.descriptionCount), u"NULL"_s, variables});
    }

    void addErrorControl()
    {
        const QString consumers = unsignedText(entryCount(Index::heartbeatConsumers));
        if (has(Index::heartbeatProducer))
            add(Service::ErrorControl, u"coErrorCtrlInit"_s,
                {constant(Index::heartbeatProducer, 0, u"0"_s), consumers});
        else if (has(Index::guardTime))
            add(Service::ErrorControl, u"coErrorCtrlInit"_s, {u"0"_s, consumers},
                u"initialize error control (Node Guarding)"_s);
    }

    void addSync()
    {
        if (has(Index::syncCobId))
            add(Service::Sync, u"coSyncInit"_s,
                {constant(Index::syncCobId, 0, u"0"_s), constant(Index::syncPeriod, 0, u"0"_s),
                 constant(Index::syncOverflow, 0, u"0"_s)});
    }

    void addTime()
    {
        const StoreRecords::SubEntry *sub = tables_.sub(services_.line, Index::timeCobId, 0);
        QString text = sub == nullptr ? QString() : sub->data.defaultvalue;
        const quint32 cobId = NumberText::byPrefix(text.remove(u"$nodeid+"_s, Qt::CaseInsensitive)).value_or(0);
        add(Service::Time, u"coTimeInit"_s,
            {boolText((cobId & timeProducerBit) != 0), boolText((cobId & timeConsumerBit) != 0)});
    }

    void addSmallServices()
    {
        if (settings_.isOn(u"event_led"_s))
            add(Service::Led, u"coLedInit"_s);
        if (has(Index::emcyCobId))
            add(Service::EmcyProducer, u"coEmcyProducerInit"_s);
        if (has(Index::emcyConsumers))
            add(Service::EmcyConsumer, u"coEmcyConsumerInit"_s, {unsignedText(entryCount(Index::emcyConsumers))});
        if (has(Index::timeCobId))
            addTime();
        if (has(Index::slaveReset))
            add(Service::Srd, u"coSrdInit"_s);
        if (has(Index::globalFailSafe))
            add(Service::Gfc, u"coGfcInit"_s, {u"CO_TRUE"_s, u"CO_TRUE"_s});
        if (settings_.isOn(u"isotp_connection_cnt"_s))
            add(Service::IsoTp, u"isoTpInit"_s);
        if (settings_.isOn(u"idnego_supported"_s))
            add(Service::IdNegotiation, u"coIdNegoInit"_s);
        if (!settings_.isOn(u"bootup_manager"_s) && has(Index::slaveAssignment))
            add(Service::Guarding, u"coGuardingInit"_s);
    }

    /// The first server is not among them: it is always started, and how depends on CAN FD.
    void addSdos()
    {
        for (const LineObject &object : range(Index::sdoServers)) {
            if (object.index != Index::sdoServers.first)
                add(Service::SdoServer, u"coSdoServerInit"_s, {numberIn(Index::sdoServers, object)});
        }
        if (!has(Index::sdoClients.first) && !services_.usdoClient)
            return;
        for (const LineObject &object : range(Index::sdoClients))
            add(Service::SdoClient, u"coSdoClientInit"_s, {numberIn(Index::sdoClients, object)});
    }

    QString tableArgument(PdoDirection direction, const PdoMapping &pdo) const
    {
        return pdo.table ? u'&' + mapTableName(direction, tables_.lineSuffix(services_.line), *pdo.table) : u"NULL"_s;
    }

    void addPdos()
    {
        if (dictionary_ == nullptr)
            return;
        const QString none = u"0u"_s;
        for (const PdoMapping &pdo : dictionary_->pdos.tpdos)
            add(Service::TransmitPdos, u"coPdoTransmitInit"_s,
                {unsignedText(pdo.number), constant(pdo.index, 2, none), constant(pdo.index, 3, none),
                 constant(pdo.index, 5, none), constant(pdo.index, 6, none),
                 tableArgument(PdoDirection::Transmit, pdo)},
                u"initialize TPDO %1"_s.arg(pdo.number));
        for (const PdoMapping &pdo : dictionary_->pdos.rpdos)
            add(Service::ReceivePdos, u"coPdoReceiveInit"_s,
                {unsignedText(pdo.number), constant(pdo.index, 2, none), constant(pdo.index, 3, none),
                 constant(pdo.index, 5, none), tableArgument(PdoDirection::Receive, pdo)},
                u"initialize RPDO %1"_s.arg(pdo.number));
    }

    /// Direction, refresh time or cycle, validation time, transmission type and both COB-IDs (EN 50325-5).
    void addSrdos()
    {
        for (const LineObject &object : range(Index::deviceSrdos)) {
            QStringList arguments{numberIn(Index::deviceSrdos, object)};
            for (quint8 subindex = 1; subindex <= 6; ++subindex)
                arguments.append(constant(object.index, subindex, u"0u"_s));
            add(Service::Srdo, u"coSrdoInit"_s, arguments);
        }
    }

    Settings settings_;
    const DictionaryTables &tables_;
    const DictionaryLine *dictionary_;
    LineServices &services_;
};

} // namespace

LineServices LineServices::collect(ObjectDataBase &store, const DictionaryTables &tables, quint8 line)
{
    LineServices services;
    services.line = line;
    Collector(store, tables, services).collect();
    return services;
}

const std::vector<StackCall> &LineServices::of(Service service) const
{
    static const std::vector<StackCall> none;
    const auto it = calls.find(service);
    return it == calls.end() ? none : it->second;
}

const QList<Service> &singleLineOrder()
{
    static const QList<Service> order{
        Service::Dictionary,    Service::Led,      Service::SdoServer,     Service::SdoClient, Service::ErrorControl,
        Service::EmcyProducer,  Service::Sync,     Service::EmcyConsumer,  Service::Time,      Service::TransmitPdos,
        Service::ReceivePdos,   Service::Srd,      Service::Gfc,           Service::Srdo,      Service::IsoTp,
        Service::IdNegotiation, Service::Guarding, Service::LoadParameter, Service::LssAndNmt,
    };
    return order;
}

const QList<Service> &lineFunctionOrder()
{
    static const QList<Service> order{
        Service::Dictionary,    Service::SdoServer,   Service::SdoClient,    Service::ErrorControl,
        Service::EmcyProducer,  Service::Sync,        Service::EmcyConsumer, Service::Time,
        Service::TransmitPdos,  Service::ReceivePdos, Service::Srd,          Service::IsoTp,
        Service::IdNegotiation, Service::Guarding,    Service::Gfc,          Service::Srdo,
        Service::Led,           Service::LssAndNmt,
    };
    return order;
}
