#pragma once

#include "generate/base/fileheader.h"

#include <QString>

#include <vector>

/// The closed list of places where the classic and the V4 form of the C sources differ in more than words.
///
/// One writer prints both forms; it asks `Dialect::has` at these points and nowhere else looks at the form.
enum class Point
{
    SplitTypeColumns,    ///< a description row has its data type and its specifier in columns of their own
    MappedTypeColumn,    ///< a mapping row tells the data type, not whether it is a number
    UdsIndicationHeader, ///< static UDS indications have a header
    VirtualGuards,       ///< gen_vobjdict.c has guards for the memory specifier and storage classes
    CoreCommonInit,      ///< the common initialisation structure has a heading, and a comma behind its last ISO-TP row
    LinePrototypesOnly,  ///< of the start-up of several lines only the functions of a line are declared ahead
    LoadIndication,    ///< the predefined connection set is overwritten by a load indication, not by functions for one
    PointerTables,     ///< the pointers of a message's mapping are a table of their own, and a row tells its data type
    ReservedNameField, ///< the NAME of a J1939 device is told with its reserved bit
    ReceiveConfigs,    ///< configured and received J1939 groups are counted apart
    SafetySenders,     ///< gen_define.h counts the senders of safety data groups
    FixedUnpacking,    ///< whole bytes and parts of one byte of a safety data group are read in one form each
    FormerServiceValues, ///< there is an older structure of the J1939 services' counts
    BootloaderBuffers,   ///< gen_define.h of a bootloader has the buffer counts in place of its raw CAN section
    UdsIndications,      ///< functions of the UDS server can be named at compile time
};

/// The words of one form of the C sources, and its points.
struct Dialect
{
    SourceForm form;
    QString core;           ///< prefix of the macro family: "CORE_" or "CO_"
    QString dataType;       ///< prefix of the data type words: "CORE_DTYPE_" or "CO_DTYPE_"
    QString unmapped;       ///< what the type column of a mapping row has where no data is mapped
    QString isoTpHeader;    ///< header of the transport protocol
    QString line;           ///< prefix of the words for one of several lines: "CAN_" or "CO_"
    QString lineParameter;  ///< what an indication's parameters begin with in a project of several lines
    QString protocol;       ///< prefix of the protocol words: "CORE_PROT_TYPE_" or "MP_PROT_TYPE_"
    QString protocolType;   ///< type of a mask of protocols
    QString commonInitType; ///< type of `commonInitVars`, with the blanks behind it
    QString stackInit;      ///< name of the stack's common initialisation
    QString dataTypeHeader; ///< the header of the basic types
    QString safetyBuffer;   ///< what the data of a safety data group are written into
    QString parameterError; ///< return code for an argument that may not be given
    std::vector<Point> points;

    bool has(Point point) const;

    static const Dialect &classic();
    static const Dialect &v4();
    static const Dialect &of(SourceForm form);
};
