#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class CodeWriter;
class ObjectDataBase;
struct Dialect;

/// The application's variables that J1939 and raw CAN mappings refer to, each once, under the message that needs it
/// first.
///
/// A variable name may lead into a structure or an array, "tank.level" or "temperature[2]". Then the whole is declared:
/// as a structure with the members that the project names, of type "struct tank_s", or as an array of as many
/// dimensions as the project uses, each up to the highest element. Where macros name elements, the size is an
/// expression of them. What is no such name (a call, a pointer, an expression) is left to the application.
struct ExternDeclarations
{
    static ExternDeclarations collect(ObjectDataBase &store, const Dialect &dialect);

    /// A dimension of an array, which has room for all elements that the project uses; open if nobody has told any.
    struct Dimension
    {
        quint64 count = 0;        ///< elements
        QStringList indices = {}; ///< of elements, as expressions
        QString senders = {};     ///< the number of elements as a macro
    };

    /// A variable, or a member of one.
    struct Variable
    {
        QString name = {};
        QString type = {}; ///< C type; none for a structure
        QList<Dimension> dimensions = {};
        QList<Variable> members = {};
        quint32 signal = 0; ///< the signal that needs the variable
    };

    struct Message
    {
        quint32 number = 0;
        bool isCanId = false;
        QList<qsizetype> variables = {}; ///< positions in `variables`
    };

    struct Line
    {
        quint8 number = 0;
        QList<Message> messages = {};
    };

    QList<Variable> variables = {};
    QList<Line> lines = {};
};

enum class DeclarationForm
{
    Declaration, ///< for the header, with "extern"
    Definition
};

/// The variables of all lines, in their order.
void writeVariables(CodeWriter &out, const ExternDeclarations &declarations, DeclarationForm form);
