#pragma once

#include "generate/base/filegenerator.h"
#include "generate/base/fileheader.h"

/// Writes gen_pgn.c: which parameter groups (SAE J1939-21) a device sends and receives, how their signals map onto
/// variables, the NAME by which it claims its address (SAE J1939-81), and the start-up of the stack.
///
/// For projects whose lines have no other protocol. The project holds no address claim afterwards: it is made here.
class PGNGenerator : public FileGenerator
{
    Q_OBJECT

public:
    PGNGenerator()
        : PGNGenerator(SourceForm::Classic)
    {
    }
    QString fileName() const override;

protected:
    explicit PGNGenerator(SourceForm form)
        : form_(form)
    {
    }
    void write(Utf8Sink &sink) override;

private:
    SourceForm form_;
};

/// The V4 form of gen_pgn.c.
class PGNGeneratorV4 : public PGNGenerator
{
    Q_OBJECT

public:
    PGNGeneratorV4()
        : PGNGenerator(SourceForm::V4)
    {
    }
};
