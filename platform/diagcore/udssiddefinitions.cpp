#include "diagcore/udssiddefinitions.h"

using namespace Qt::StringLiterals;
using UDS::SID;

const QMap<SID, QString> &UDSSIDDefinitions::getSIDNames()
{
    static const QMap<SID, QString> names = {
        {SID::DiagnosticSessionControl, u"DiagnosticSessionControl"_s},
        {SID::ECUReset, u"ECUReset"_s},
        {SID::ClearDiagnosticInformation, u"ClearDiagnosticInformation"_s},
        {SID::ReadDTCInformation, u"ReadDTCInformation"_s},
        {SID::ReadDataByIdentifier, u"ReadDataByIdentifier"_s},
        {SID::ReadMemoryByAddress, u"ReadMemoryByAddress"_s},
        {SID::ReadScalingDataByIdentifier, u"ReadScalingDataByIdentifier"_s},
        {SID::SecurityAccess, u"SecurityAccess"_s},
        {SID::CommunicationControl, u"CommunicationControl"_s},
        {SID::Authentication, u"Authentication"_s},
        {SID::ReadDataByPeriodicIdentifier, u"ReadDataByPeriodicIdentifier"_s},
        {SID::DynamicallyDefineDataIdentifier, u"DynamicallyDefineDataIdentifier"_s},
        {SID::WriteDataByIdentifier, u"WriteDataByIdentifier"_s},
        {SID::InputOutputControlByIdentifier, u"InputOutputControlByIdentifier"_s},
        {SID::RoutineControl, u"RoutineControl"_s},
        {SID::RequestDownload, u"RequestDownload"_s},
        {SID::RequestUpload, u"RequestUpload"_s},
        {SID::TransferData, u"TransferData"_s},
        {SID::RequestTransferExit, u"RequestTransferExit"_s},
        {SID::RequestFileTransfer, u"RequestFileTransfer"_s},
        {SID::WriteMemoryByAddress, u"WriteMemoryByAddress"_s},
        {SID::TesterPresent, u"TesterPresent"_s},
        {SID::AccessTimingParameter, u"AccessTimingParameter"_s},
        {SID::SecuredDataTransmission, u"SecuredDataTransmission"_s},
        {SID::ControlDTCSetting, u"ControlDTCSetting"_s},
        {SID::ResponseOnEvent, u"ResponseOnEvent"_s},
        {SID::LinkControl, u"LinkControl"_s},
    };
    return names;
}
