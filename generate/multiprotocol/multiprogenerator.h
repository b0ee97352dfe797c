#pragma once

#include "generate/base/filegenerator.h"
#include "generate/base/fileheader.h"
#include "generate/multiprotocol/mpstartup.h"

struct Dialect;

/// Writes the tables and the start-up of a device of several protocols, gen_mp.c; of a device of raw CAN alone,
/// gen_rawcan.c; of a bootloader that has neither CANopen nor J1939, gen_uds.c.
///
/// The tables are those of gen_objdict.c and gen_pgn.c, printed by the same writers.
class MultiProGenerator : public FileGenerator
{
    Q_OBJECT

public:
    MultiProGenerator(const MultiProtocols &protocols, bool compactDescription)
        : MultiProGenerator(protocols, compactDescription, SourceForm::Classic)
    {
    }
    QString fileName() const override;

protected:
    MultiProGenerator(const MultiProtocols &protocols, bool compactDescription, SourceForm form)
        : protocols_(protocols)
        , compactDescription_(compactDescription)
        , form_(form)
    {
    }
    void write(Utf8Sink &sink) override;
    void writeCompanions() override;

private:
    SourceFile sourceFile() const;

    MultiProtocols protocols_;
    bool compactDescription_;
    SourceForm form_;
};

/// The V4 form of these files.
class MultiProGeneratorV4 : public MultiProGenerator
{
    Q_OBJECT

public:
    MultiProGeneratorV4(const MultiProtocols &protocols, bool compactDescription)
        : MultiProGenerator(protocols, compactDescription, SourceForm::V4)
    {
    }
};
