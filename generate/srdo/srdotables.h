#pragma once

#include <QList>
#include <QString>

class ObjectDataBase;

/// The safety-relevant data objects of a project (EN 50325-5) and the objects that they carry.
///
/// An SRDO is sent as two messages: the mapping's odd entries make up the first, its even entries, which hold the same
/// data inverted, the second.
struct SrdoTables
{
    /// With `staticData` the module owns the variables of the objects that the dictionary takes for its own.
    static SrdoTables collect(ObjectDataBase &store, bool multiLine, bool staticData);

    /// Groups of C types; the stack reaches the variables of each through a table of their own.
    static constexpr quint32 bitsPerByte = 8;

    struct TypeKind
    {
        QString tag = {}; ///< "U8"
        QString cType = {};
        quint32 bytes = 0;
    };

    /// An object that an SRDO carries.
    struct Mapped
    {
        quint8 line = 0;
        quint16 index = 0;
        quint8 subindex = 0;
        quint32 bytes = 0;     ///< in the message
        TypeKind kind = {};    ///< of a supported object
        QString variable = {}; ///< C expression
        QString shadow = {};   ///< name of its copy, which nothing else has
        bool isDummy = false;  ///< a gap in the message, told by a data type in place of an object
        bool isSupported =
            true; ///< one, two or four bytes of a type that is known, in a variable that C code can reach
    };

    struct Srdo
    {
        quint8 line = 0;
        quint16 number = 0; ///< counted from 1
        bool isTransmit = false;
        bool isReceive = false;
        QString name = {};     ///< of its data: "srdo1"
        QString mapTable = {}; ///< name of its mapping; empty for none
        QList<quint32> mapping = {};
        QString direction = {}; ///< defaults, as C expressions
        QString refreshTime = {};
        QString validationTime = {};
        QString normalCobId = {};
        QString invertedCobId = {};
        QList<Mapped> normal = {};
        QList<Mapped> inverted = {};

        quint16 index() const;
    };

    /// A variable of the application or of the module, declared once however often it is mapped.
    struct Variable
    {
        QString name = {};
        QString cType = {};
        QString comment = {};
        bool isStatic = false; ///< the module owns it
    };

    bool multiLine = false;
    qsizetype lineCount = 0;
    QString scratch = QStringLiteral("raw"); ///< local name for the bits of a REAL32; no variable has it
    QList<Srdo> srdos = {};
    QList<Variable> variables = {};
    QList<Variable> shadows = {};
    QList<Mapped> entries = {}; ///< static data: objects that the dictionary reaches through the module, each once

    static const QList<TypeKind> &typeKinds();
};
