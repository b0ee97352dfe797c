#pragma once

#include <QMap>
#include <QString>

namespace UDS {

/// Service identifiers of a request (ISO 14229-1:2020).
enum class SID : quint8
{
    DiagnosticSessionControl = 0x10,
    ECUReset = 0x11,
    ClearDiagnosticInformation = 0x14,
    ReadDTCInformation = 0x19,
    ReadDataByIdentifier = 0x22,
    ReadMemoryByAddress = 0x23,
    ReadScalingDataByIdentifier = 0x24,
    SecurityAccess = 0x27,
    CommunicationControl = 0x28,
    Authentication = 0x29,
    ReadDataByPeriodicIdentifier = 0x2a,
    DynamicallyDefineDataIdentifier = 0x2c,
    WriteDataByIdentifier = 0x2e,
    InputOutputControlByIdentifier = 0x2f,
    RoutineControl = 0x31,
    RequestDownload = 0x34,
    RequestUpload = 0x35,
    TransferData = 0x36,
    RequestTransferExit = 0x37,
    RequestFileTransfer = 0x38,
    WriteMemoryByAddress = 0x3d,
    TesterPresent = 0x3e,
    AccessTimingParameter = 0x83, ///< of the editions up to 2013
    SecuredDataTransmission = 0x84,
    ControlDTCSetting = 0x85,
    ResponseOnEvent = 0x86,
    LinkControl = 0x87
};

} // namespace UDS

/// The services of a diagnostic server (ISO 14229-1).
class UDSSIDDefinitions
{
public:
    /// The name of each service as the standard writes it, by ascending identifier. A request of an identifier that is
    /// not here has no name.
    static const QMap<UDS::SID, QString> &getSIDNames();
};
