#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <map>
#include <vector>

class ObjectDataBase;
struct DictionaryTables;

/// The services of a CANopen line that its start-up initialises.
enum class Service
{
    Dictionary,
    Led,
    SdoServer,
    SdoClient,
    ErrorControl,
    EmcyProducer,
    Sync,
    EmcyConsumer,
    Time,
    TransmitPdos,
    ReceivePdos,
    Srd,
    Gfc,
    Srdo,
    IsoTp,
    IdNegotiation,
    Guarding,
    LoadParameter,
    LssAndNmt
};

/// A call of the stack. A function of a line puts the line before the arguments.
struct StackCall
{
    QString function;
    QStringList arguments = {};
    QString comment = {};
};

/// How the device takes part in network management (CiA 302-2).
enum class NmtRole
{
    Slave,
    Master,
    Dynamic ///< the application decides at start-up
};

/// What one line starts, with the arguments computed from its dictionary.
struct LineServices
{
    static LineServices collect(ObjectDataBase &store, const DictionaryTables &tables, quint8 line);

    const std::vector<StackCall> &of(Service service) const;

    quint8 line = 0;
    std::map<Service, std::vector<StackCall>> calls;
    bool usdoClient = false; ///< has USDO clients (CiA 1301), which a line in FD mode starts
    NmtRole nmt = NmtRole::Slave;
    bool lss = false;
    /// NMT master or LSS master; without `nmt` being dynamic they may be told apart by any value.
    bool lssMaster = false;
};

/// The order of a device with one line.
const QList<Service> &singleLineOrder();
/// The order in the function of one line of several. Load parameters belong to the common function there.
const QList<Service> &lineFunctionOrder();
