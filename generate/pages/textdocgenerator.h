#pragma once

#include "generate/common/documentgenerator.h"

/// The object dictionary of a line as text: each object, and indented below it its subindices.
class TextDocGenerator : public DocumentGenerator
{
    Q_OBJECT

public:
    using DocumentGenerator::DocumentGenerator;

    QString fileName() const override;

protected:
    void write(Utf8Sink &sink) override;
};

/// PGNs and SPNs of a line as text with tabs between the fields, which `DOCTXTImporter` reads back. A tab or line break
/// inside a text becomes a blank, as it would end the field.
class J1939TextDocGenerator : public DocumentGenerator
{
    Q_OBJECT

public:
    using DocumentGenerator::DocumentGenerator;

    QString fileName() const override;

protected:
    void write(Utf8Sink &sink) override;
};

/// CAN-IDs and data elements of a line as text, in a block for each direction.
class RawCANTextDocGenerator : public DocumentGenerator
{
    Q_OBJECT

public:
    using DocumentGenerator::DocumentGenerator;

    QString fileName() const override;

protected:
    void write(Utf8Sink &sink) override;
};
