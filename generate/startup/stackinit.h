#pragma once

#include "generate/common/startupstatements.h"
#include "generate/startup/servicecalls.h"

#include <memory>

class CodeWriter;
class CommonGeneratorHelper;
struct Dialect;

/// What the start-up of a CANopen device is written from.
struct StackInit
{
    static StackInit collect(ObjectDataBase &store, const DictionaryTables &tables);

    /// Some line decides at start-up whether it is the NMT master, so that the application passes options.
    bool takesOptions() const;

    bool multiLine = false; ///< the start-up has a function for each line
    bool fd = false;        ///< the application passes the mode of each line, classical or FD
    bool pdoRouting = false;
    /// The project counts its services in `serviceInitVars`; otherwise that comes from elsewhere.
    bool hasServiceVariables = true;
    bool storeFunction = false; ///< load parameters have an indication that is bound at compile time
    std::vector<LineServices> lines;
};

/// Writes the start-up of gen_objdict.c; its blocks also stand in gen_mp.c.
class StackInitWriter
{
public:
    StackInitWriter(CodeWriter &out, const StackInit &init, const CommonGeneratorHelper &common, const Dialect &dialect)
        : out_(out)
        , init_(init)
        , common_(common)
        , dialect_(dialect)
        , statements_(out, dialect)
    {
    }

    /// The structures that the stack is started with, and all functions.
    void writeStartUp() const;

    // The blocks.

    void writeServiceVariables() const;
    /// All services of a line. With several lines it stands in a function that has the line as `canLine` and, with FD,
    /// the modes of all lines as `pModes`.
    void writeServices(const LineServices &line) const;
    void writeLoadParameter() const;

private:
    void writeSingleLine() const;
    void writeLineTable() const;
    void writeWrapper() const;
    void writeCommonFunction() const;
    void writeLineSelection() const;
    void writeLineFunction(const LineServices &line) const;
    void writeFinish() const;

    void writeService(const LineServices &line, Service service) const;
    void writeCalls(const LineServices &line, Service service) const;
    /// `depth` counts the steps of indentation within the function.
    void writeCall(const StackCall &call, int depth = 0) const;
    void writeFirstSdoServer() const;
    void writeFirstSdoServerOfLine() const;
    void writeUsdoClient() const;
    void writeDynamicMaster(const LineServices &line) const;
    void writeFixedMaster(const LineServices &line) const;

    QString entryName() const;
    QString entryParameters() const;
    QString lineParameters() const;
    QString modesParameter() const;
    QString modesArgument() const;
    QString arguments(const QStringList &own) const;

    CodeWriter &out_;
    const StackInit &init_;
    const CommonGeneratorHelper &common_;
    const Dialect &dialect_;
    StartUpStatements statements_;
};

/// Writes what follows the tables in gen_objdict.c: the start-up and what belongs to it. The SDO server beside J1939
/// (`DictionaryOptions::serverMode`) starts nothing but its dictionary.
void writeStartUpSections(CodeWriter &out, const std::shared_ptr<ObjectDataBase> &store, const DictionaryTables &tables,
                          const Dialect &dialect);
