#pragma once

#include <QList>
#include <QString>

class ObjectDataBase;
struct Dialect;

/// What the J1939 and raw CAN lines of a project come to in C: the tables of gen_pgn.c, and the messages of gen_mp.c.
///
/// Each J1939 line has the address claim beside its own groups. It is made here from the J1939 settings and never
/// part of the project.
struct PgnTables
{
    enum class Scope
    {
        J1939Only, ///< the lines with J1939, and nothing of raw CAN
        AllMessages
    };

    /// The lines below 32. With `multiLine` the symbols carry the line's number.
    static PgnTables collect(ObjectDataBase &store, const Dialect &dialect, bool multiLine, Scope scope);

    /// One of the arrays of variables that the generated file owns.
    struct ManagedArray
    {
        struct Element
        {
            QString value = {};
            QString comment = {};
        };

        QString name = {};  ///< "mv_u8"
        QString cType = {}; ///< "UNSIGNED8"
        QString cast = {};  ///< in front of each value; none where the value is of the type already
        QList<Element> elements = {};
    };

    /// A signal of a message, as a row of its mapping.
    struct Signal
    {
        quint32 number = 0;
        quint32 bitPosition = 0;
        quint32 bits = 0;
        QString type = {}; ///< as the stack names it, without a prefix: "U8", "STRING_NULL"
        bool isNumeric = true;
        QString pointer = {}; ///< to the variable that it stands in, or "NULL"
        QString comment = {};
    };

    struct Message
    {
        quint32 number = 0;
        QString name = {}; ///< safe within a comment
        bool isCanId = false;
        bool isTransmit = false;
        quint8 priority = 0;
        quint16 cycleMs = 0; ///< of a received CAN-ID: the time within which the next one has to come
        quint16 inhibitMs = 0;
        QLatin1StringView trailerFormat = {}; ///< of the assurance data (SAE J1939-22), as the stack names it
        QLatin1StringView assuranceType = {};
        quint8 assuranceSize = 0;
        QString mapping = {}; ///< name of the table; that of its pointers is the same with "_data" behind it
        QList<Signal> items = {};
    };

    /// A field of the NAME (SAE J1939-81) and the element of a managed array that holds it.
    struct NameField
    {
        QString array = {};
        qsizetype position = 0;
        QString value = {};
    };

    struct Line
    {
        quint8 number = 0;
        bool hasJ1939 = false;
        bool hasRawCan = false;
        QString prefix = {}; ///< "l%1_", or empty
        QString suffix = {}; ///< "_l%1", or empty
        QList<Message> receivedPgns = {};
        QList<Message> transmittedPgns = {};
        QList<Message> receivedCanIds = {};
        QList<Message> transmittedCanIds = {};
        Message addressClaim = {};
        QList<NameField> nameFields = {};
        quint8 sourceAddress = 0;
    };

    bool multiLine = false;
    bool dynamic = false;            ///< groups change at run time: their tables are not constant
    bool safety = false;             ///< the device takes part in the exchange of safety data groups
    bool initialised = false;        ///< variables have their values from the compiler, and not from the start-up code
    QList<ManagedArray> arrays = {}; ///< those that have elements
    QList<Line> lines = {};
    bool usesApplicationVariables = false; ///< some mapping points to a variable of the application
};
