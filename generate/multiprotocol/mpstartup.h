#pragma once

#include "generate/base/runcontext.h"
#include "generate/j1939/pgntables.h"
#include "generate/model/dictionarytables.h"
#include "generate/startup/stackinit.h"

#include <vector>

class CodeWriter;
class CommonGeneratorHelper;
class ObjectDataBase;
struct Dialect;

/// Which protocols the device has, and so which of its three forms gen_mp.c takes.
struct MultiProtocols
{
    static MultiProtocols of(const RunContext &run);

    bool canOpen = false;
    bool j1939 = false;
    bool rawCan = false;
    bool udsOnly = false; ///< the bootloader of a device without CANopen and J1939

    bool rawCanOnly() const { return !udsOnly && !canOpen && !j1939; }
};

/// What the start-up of a device of several protocols is written from.
struct MpStartUp
{
    struct Line
    {
        quint8 number = 0;
        LineProtocols protocols = {};
        bool sdoServer = false;                     ///< J1939 serves the dictionary over CAM11 and CAM21
        const PgnTables::Line *messages = nullptr;  ///< null without J1939 and raw CAN
        const LineServices *services = nullptr;     ///< null without objects
        const DictionaryLine *dictionary = nullptr; ///< likewise
    };

    /// `pgns`, `dictionary` and `canOpen` have to outlive the result.
    static MpStartUp collect(ObjectDataBase &store, const MultiProtocols &protocols, const PgnTables &pgns,
                             const DictionaryTables &dictionary, const StackInit &canOpen);

    MultiProtocols protocols = {};
    bool multiLine = false;
    bool fd = false;
    bool uds = false;
    bool initialised = false; ///< variables have their values from the compiler
    bool formerServiceValues = false;
    bool safety = false;
    std::vector<Line> lines = {};
    const StackInit *canOpen = nullptr; ///< its lines are those with objects
};

/// CANopen services of lines that are to be started without options of the application: a line that could be told to
/// be NMT master is one.
void settleMasters(StackInit &init);

/// Writes the start-up functions of gen_mp.c, gen_rawcan.c and gen_uds.c, and the structures that they name.
class MpStartUpWriter
{
public:
    MpStartUpWriter(CodeWriter &out, const MpStartUp &startUp, const CommonGeneratorHelper &common,
                    const Dialect &dialect);

    /// Of the functions of a device of several lines.
    void writePrototypes() const;
    void write() const;

private:
    static constexpr QLatin1StringView indent{"    "};

    void writeStructures() const;
    void writeUdsOnly() const;
    void writeRawCanOnly() const;
    void writeSingleLine() const;
    void writeSeveralLines() const;

    using LineBlock = void (MpStartUpWriter::*)(const MpStartUp::Line &) const;
    void writeEntryHead() const;
    void writeParameterCheck() const;
    void writeRequested(const QString &name, const QString &word, LineBlock block, const MpStartUp::Line &line) const;
    void writeCommonFunction() const;
    void writeModes() const;
    void writeProtocolStart(const QString &word, const QString &call) const;
    void writeLineFunction(const MpStartUp::Line &line) const;
    void writeFinish() const;

    void writeCanOpen(const MpStartUp::Line &line) const;
    void writeJ1939(const MpStartUp::Line &line) const;
    void writeDictionaryOfJ1939(const MpStartUp::Line &line) const;
    void writeRawCan(const MpStartUp::Line &line) const;

    QString commonParameters() const;
    QStringList structuresWithModes() const;
    QString lineParameters() const;
    QString protocolType() const;

    CodeWriter &out_;
    const MpStartUp &startUp_;
    const CommonGeneratorHelper &common_;
    const Dialect &dialect_;
    StartUpStatements statements_;
    StackInitWriter canOpen_;
};
