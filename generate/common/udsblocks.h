#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class CodeWriter;
class ObjectDataBase;
struct Dialect;

/// What the stack's diagnostic part (ISO 14229-1 over ISO 15765-2) is started with, on the lines below 32.
struct UdsBlocks
{
    struct Service
    {
        quint8 sid = 0;
        QString name;               ///< as the standard has it; the identifier where it has none
        QStringList sessions;       ///< the sessions that serve it, as the stack names them
        QList<quint32> userLevels;  ///< the security levels that serve it
        bool authenticated = false; ///< it asks for an authentication
    };

    struct Line
    {
        quint8 line = 0;
        quint32 clients = 0;
        quint32 physicalRequest = 0; ///< CAN-IDs
        quint32 physicalResponse = 0;
        quint32 functionalRequest = 0;
        quint32 periodicData = 0;
        quint32 physicalRequestAddress = 0; ///< addresses within a message of the extended format
        quint32 physicalResponseAddress = 0;
        quint32 functionalRequestAddress = 0;
        quint32 addressing = 0; ///< 0 normal, 1 normal fixed, 2 extended
        bool serverActive = false;
        QList<Service> services; ///< the active ones, by ascending identifier
    };

    /// Nothing where neither server nor client is part of the project.
    static std::optional<UdsBlocks> collect(ObjectDataBase &store);

    quint8 version = 1;      ///< of the structures
    bool bootloader = false; ///< the CAN-IDs are known when the bootloader runs, and not before
    bool multiLine = false;  ///< calls carry the line: there are several, or one is to be written like one of several
    QList<Line> lines;
};

/// The tables and structures, which stand before the functions.
void writeUdsBlocks(CodeWriter &out, const UdsBlocks &uds, const Dialect &dialect);
/// The calls within a function that has a variable `retVal`.
void writeUdsInitCalls(CodeWriter &out, const UdsBlocks &uds);
