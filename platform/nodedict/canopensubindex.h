#pragma once

#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"

#include <QString>
#include <QVariant>

/// One sub-object as a device description (EDS or DCF, CiA 306) declares it; of a VAR or DOMAIN, its sub-index 0.
///
/// Values and limits are text. A numeric one has one of the forms that all readers of a value take: decimal, "0x" and
/// hexadecimal, octal with a leading 0, or "$NODEID+" and a number; what is none of these stays as the file has it.
struct CANopenSubindex
{
    quint32 index = 0;
    quint8 subindex = 0;
    quint32 datatype = CAN::NoType;                                  ///< CAN::NoType where the file declares none
    QString accesstype = CANopen::textOf(CANopen::Access::ReadOnly); ///< the word of an access
    QString name;
    QVariant defaultvalue;  ///< a string; invalid where the file declares none
    QString parametervalue; ///< the value of a configured device; only in a DCF
    QString denotation;     ///< the name that an application gives; only in a DCF
    QString lowlimit;
    QString highlimit;
    bool haslimits = false;   ///< at least one of the two limits is declared
    bool refuseread = false;  ///< not to be read by a tool that scans a device
    bool refusewrite = false; ///< not to be written when a configuration is downloaded
    bool pdomapping = false;
    /// Whether a description that is written anew holds the default: 0 never, 1 where it has one, 2 always. A file
    /// cannot say; it is 1.
    quint8 writedefaulttoeds = 1;
};
