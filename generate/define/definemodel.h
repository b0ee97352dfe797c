#pragma once

#include "generate/base/fileheader.h"
#include "generate/base/runcontext.h"
#include "store/settings.h"

#include <QHash>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <vector>

class ObjectDataBase;

/// What gen_define.h counts on one line. A number of subindices includes subindex 0, as the tables of gen_objdict.c
/// count them.
struct LineCounts
{
    quint8 number = 0;
    LineProtocols protocols = {};
    bool hasDeviceType = false; ///< object 0x1000 exists: the line is a CANopen device (CiA 301)

    quint32 objects = 0; ///< from 0x1000 up
    quint32 cobs = 0;    ///< messages that the stack sends and receives
    quint32 txPdos = 0;  ///< communication objects of PDOs
    quint32 rxPdos = 0;
    quint32 txMappings = 0; ///< mapping objects of PDOs
    quint32 rxMappings = 0;
    quint32 sdoServers = 0;
    quint32 sdoClients = 0;
    quint32 usdoServers = 0; ///< connections (CiA 1301)
    quint32 usdoClients = 0;
    quint32 srdos = 0;
    quint32 assignedSlaves = 0; ///< subindices of 0x1F81 (CiA 302-2)
    quint32 maxAssignedSlaves = 0;
    quint32 errorControls = 0;      ///< subindices of 0x1016
    quint32 storeEntries = 0;       ///< subindices of 0x1010
    quint32 errorHistory = 0;       ///< subindices of 0x1003
    quint32 activeErrors = 0;       ///< subindices of 0x1032
    quint32 emergencyConsumers = 0; ///< subindices of 0x1028
    quint32 networkRoutes = 0;      ///< subindices of 0x1F2C (CiA 302-7)

    quint32 receivedPgns = 0; ///< without the safety data groups where these are supported
    quint32 transmittedPgns = 0;
    quint32 receivedSafetyGroups = 0;
    quint32 transmittedSafetyGroups = 0;
    quint32 destinationBuffers = 0;
    quint32 receivedCanIds = 0;
    quint32 transmittedCanIds = 0;
    quint32 isoTpClients = 0; ///< connections, those of UDS among them
    quint32 isoTpServers = 0;
    quint32 udsClients = 0;

    QString receiveBuffer = {}; ///< as the project has it
    QString transmitBuffer = {};
    QString nodeIdFunction = {};
};

/// Everything that gen_define.h tells, and the settings of the project as they are.
class DefineModel
{
public:
    struct Options
    {
        SourceForm form = SourceForm::V4;
        bool j1939 = false; ///< some line has J1939
        bool multiProtocol = false;
        bool generateMultiLine = false; ///< a single line is to be written like one of several
        quint32 formerGenerations = 0;
    };

    /// Objects by what their subindices hold.
    struct Dictionary
    {
        /// Number of the first line's device profile, if some line's device type is 401 or above.
        std::optional<quint16> profile = {};
        QList<quint32> vehicleGroups = {}; ///< of CiA 447, object 0x6000
        bool flyingMaster = false;         ///< a master line has 0x1F80
        bool selfStarting = false;         ///< a line that is no master has 0x1F80
        bool receiveTimer = false;         ///< a receive PDO has an event timer
        bool inhibit = false;              ///< some message has an inhibit time
        bool multiplexReceive = false;     ///< a mapping is that of a multiplexed PDO
        bool multiplexTransmit = false;
        bool multiplexSource = false; ///< one of source address mode
        bool multiplexDestination = false;
        quint32 maxMapEntries = 0;
        quint32 dynamicTxMappings = 0; ///< PDOs whose mapping can be changed
        quint32 dynamicRxMappings = 0;
        bool wideTypes = false; ///< integers of more than four or an odd number of bytes
        bool utf8 = false;
        QMap<quint16, quint32> staticSrdo = {}; ///< objects that SRDOs map, by data type
        quint32 virtualObjects = 0;
        quint32 virtualSubs = 0;
        QMap<quint16, quint32> virtualTypes = {}; ///< virtual subindices by data type
    };

    static DefineModel collect(ObjectDataBase &store, const Options &options);

    QString general(const QString &key) const { return general_.text(key); }
    quint32 number(const QString &key) const { return general_.number(key); }
    quint32 number(const QString &key, const LineCounts &line) const { return general_.number(key, line.number); }
    /// A switch of the device; where lines differ in it, it is set on some line.
    bool isSet(const QString &key) const { return general_.isOn(key); }
    bool isJ1939Set(const QString &key) const { return j1939_.onAnyLine(key); }
    /// The highest value on the J1939 lines.
    quint32 j1939Number(const QString &key) const { return j1939_.number(key); }
    QString energyBus(const QString &key) const { return energyBus_.value(key); }

    /// Some line has the object.
    bool hasObject(quint16 index) const { return objects_.contains(index); }
    bool hasLine(bool LineProtocols::*protocol) const;
    quint32 total(quint32 LineCounts::*count) const;

    Options options = {};
    bool canFd = false;
    bool severalLines = false;     ///< or one that is to be written like one of several
    std::vector<LineCounts> lines; ///< that take part, ascending; at least one
    Dictionary dictionary = {};
    bool multiSourceGroups = false; ///< a received PGN is kept apart by its source
    bool inhibitedGroups = false;
    bool inhibitedCanIds = false;
    bool authentication = false;                 ///< an active UDS service asks for an authentication
    std::map<QString, quint32> energyBusDevices; ///< virtual devices (CiA 454) by the text of their kind

private:
    explicit DefineModel(ObjectDataBase &store)
        : general_(Settings::valuesOf(store))
        , j1939_(Settings::valuesOf(store, Settings::Table::J1939))
    {
    }

    friend class DefineCollector;

    Settings general_;
    Settings j1939_;
    QHash<QString, QString> energyBus_;
    QSet<quint16> objects_; ///< of all lines
};
