#pragma once

#include <QList>
#include <QString>

class CodeWriter;
class ObjectDataBase;
struct Dialect;

/// The structure that the stack's common part is started with, `commonInitVars`.
struct CommonInit
{
    static CommonInit collect(ObjectDataBase &store);

    /// The protocols of a line, as the stack names them without their prefix.
    using Protocols = QList<QString>;

    QList<Protocols> lines; ///< one entry for each line below 32, ascending
    bool isoTp = false;     ///< ISO-TP connections are counted
    bool fd = false;        ///< each line has its CAN FD mode
};

void writeCommonInit(CodeWriter &out, const CommonInit &init, const Dialect &dialect);
