#pragma once

#include "nodedict/access.h"
#include "nodedict/pdomapping.h"

#include <QList>
#include <QMap>
#include <QMetaType>
#include <QString>

/// What goes in and out of a project; `ObjectDataBase` gives these records their public names.
namespace StoreRecords {

/// Attributes that a user attaches to an object or subindex, by name.
using Metadata = QMap<QString, QString>;

/// Directions of messages and signals.
inline constexpr quint8 transmit = 0x55;
inline constexpr quint8 receive = 0x77;

/// One object of a dictionary (CiA 301).
struct IndexData
{
    QString name = QStringLiteral("unnamed object");
    quint32 datatype = 5;   ///< CAN::CANopenDataType; an ARRAY takes the type of its subindex 1
    quint32 objecttype = 7; ///< CANopen::ObjectCode
    QString description = {};
    quint32 category = 0; ///< CANopen::ObjectCategory
    QString device_class = {};
    bool fwsupported = false;
    Metadata metadata = {};

    friend bool operator==(const IndexData &, const IndexData &) = default;
};

/// One subindex of an object. Values and limits are text: decimal, "0x" hexadecimal, or "$NODEID+" and a number
/// (CiA 306); literal text for string types; empty for none.
struct SubIndexData
{
    QString name = QStringLiteral("unnamed subindex");
    quint16 datatype = 5;
    QString accesstype = CANopen::textOf(CANopen::Access::ReadOnly); ///< the word of an access, or any other
    QString defaultvalue = {};
    QString currentvalue = {}; ///< the value of a configured device (DCF)
    PDOMapping pdomapping = {};
    QString lowlimit = QStringLiteral("0");
    QString uplimit = QStringLiteral("0");
    quint32 size = 0; ///< bytes of a string or domain; 0 for a type of fixed width
    bool defaultineds = true;
    bool limitineds = false;
    bool refuseread = false;
    bool refusewrite = false;
    bool dcfcomponent = false;
    bool cyclicread = false;
    QString allowedaccesstypes = QStringLiteral("const,ro,rw,wo,rww,rwr"); ///< empty for no restriction
    quint8 implementation = 0; ///< 0 Managed Variable, 1 Managed Const, 2 Variable, 3 Virtual Object
    QString description = {};
    QString varname = {}; ///< C variable of a Variable
    quint32 category = 1;
    quint8 writedefaulttoeds = 1;
    bool changedbyuser = false;
    quint16 wizardsource = 0; ///< 454 for a subindex of a wizard profile
    bool sharedlines = false;
    QString denotation = {}; ///< display name; empty falls back to `name`
    bool managedbyqlk = false;
    quint32 signalid = 0;
    bool nvstorage = false;
    Metadata metadata = {};

    friend bool operator==(const SubIndexData &, const SubIndexData &) = default;
};

/// An object and its address.
struct IndexEntry
{
    quint16 index = 0;
    IndexData data = {};
};

/// One entry of a batch.
struct SubEntry
{
    quint8 line = 0;
    quint16 index = 0;
    quint8 subindex = 0;
    SubIndexData data = {};
};

/// Address of a subindex.
struct SubKey
{
    quint16 index = 0;
    quint8 subindex = 0;
    quint8 line = 0;

    friend bool operator==(const SubKey &, const SubKey &) = default;
};

/// One CAN line of the device.
struct NodeData
{
    QString name = {};
    QString iconpath = {};
    QString edspath = {};
    QString dcfpath = {};
    QString xddpath = {};
    quint16 tpdocnt = 0;
    quint16 rpdocnt = 0;
    QString prefix = QStringLiteral("_");       ///< prefix of generated symbols
    QString outputpath = QStringLiteral("C:/"); ///< folder of generated files
    bool ismaster = false;
    bool issyncproducer = false;
    bool issyncconsumer = false;
    bool ishbconsumer = false;
    bool isemergencyproducer = false;
    bool isemergencyconsumer = false;
    bool ismpdosupported = false;
    bool iscanopengateway = false;
    bool allpdosstatic = false;
    bool excludegeneration = false;
    bool generatedcf = true;
    bool isbootupmanager = false;
    bool isconfigmanager = false;
    bool excludepdolinking = false;
    qint32 multilinedata = 0;
    bool lssslave = false;

    friend bool operator==(const NodeData &, const NodeData &) = default;
};

/// A parameter group (SAE J1939-21), identified by number and direction.
struct PGN
{
    QString name = {};
    QString desc = {};
    quint32 number = 0;
    quint8 edp_dp_key = 0; ///< extended data page and data page bits
    quint8 priority = 0;
    quint16 cycletime_ms = 0;
    quint16 inhibittime_ms = 0;
    quint16 mappingcount = 0; ///< number of SPNs
    quint8 direction = 0;
    quint16 srvt_ms = 0; ///< safety related validation time (SAE J1939-76)
    bool issafe = false;
    quint8 FD_TrailerFormat = 0;
    quint8 FD_AssuranceType = 0;
    quint8 FD_AssuranceDataSize = 0;
    bool multisourceaddress = false;
    quint8 safetytype = 0;
    quint32 FD_DataID = 0;

    friend bool operator==(const PGN &, const PGN &) = default;
};

/// A signal in a message: an SPN of a PGN, or a data element of a raw CAN-ID.
struct SPN
{
    quint32 pos = 0; ///< place of the signal in the message
    QString name = {};
    QString desc = {};
    QString defaultvalue = QStringLiteral("0");
    quint32 datatype = 0;
    quint32 pgnnumber = 0; ///< owner of an SPN, filled by a read
    quint8 direction = 0;
    quint32 spnnumber = 0;
    quint8 implementation = 2;
    QString varname = {};
    quint16 bitsize = 0;
    quint16 slot_df = 0; ///< scaling of an SPN (SLOT, SAE J1939-71); a data element has none
    quint16 bitposition = 0;

    friend bool operator==(const SPN &, const SPN &) = default;
};

using DataElement = SPN;

/// A raw CAN identifier, identified by id and direction; 0x80000000 marks an extended one.
struct CANID
{
    QString name = {};
    QString desc = {};
    quint32 id = 0;
    quint16 cycletime_ms = 0;
    quint16 inhibittime_ms = 0;
    quint16 mappingcount = 0;
    quint8 direction = 0;

    friend bool operator==(const CANID &, const CANID &) = default;
};

/// A service of a line's UDS server (ISO 14229-1).
struct UDSService
{
    quint8 sid = 0;
    bool active = false;
};

/// What a change notification tells.
enum class Change : quint32
{
    ObjectWritten = 1,
    SubObjectWritten = 2,
    ObjectRemoved = 3,
    SubObjectRemoved = 4,
    LineWritten = 6,
    LineRemoved = 7,
    GeneralSetting = 9,
    DescriptionSetting = 10,
    EnergyBusSetting = 11,
    MiscSetting = 12,
    J1939Setting = 13,
    ProjectReplaced = 14,
    PGNWritten = 15,
    PGNRemoved = 16,
    CANIDWritten = 17,
    CANIDRemoved = 18,
    SPNWritten = 19,
    SignalRemoved = 20, ///< an SPN, and equally a data element
    DataElementWritten = 21
};

/// A change notification; what it does not fill is zero.
struct ChangeSet
{
    quint32 type = 0; ///< Change
    quint16 index = 0;
    quint8 subindex = 0;
    quint8 line = 0;
    quint32 pgn = 0;
    quint32 spn = 0;
    quint32 canid = 0;
    quint32 number = 0; ///< of a data element
    quint8 direction = 0;
};

} // namespace StoreRecords

// A list of a line's subindices grows in place.
Q_DECLARE_TYPEINFO(StoreRecords::SubIndexData, Q_RELOCATABLE_TYPE);
Q_DECLARE_TYPEINFO(StoreRecords::SubEntry, Q_RELOCATABLE_TYPE);
