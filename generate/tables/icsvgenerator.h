#pragma once

#include "generate/tables/tablegenerator.h"

/// Writes the table of a line's object dictionary that `CsvImporter` reads back: a row for each subindex and, for an
/// ARRAY or RECORD, a head row without a subindex before these.
///
/// A variable and its subindex 0 share a row, which has the variable's name and data type.
class ICSVGenerator : public TableGenerator
{
    Q_OBJECT

public:
    using TableGenerator::TableGenerator;

    /// Without it the table has no column for descriptions.
    void setDocumentation(bool on) { hasDocumentation_ = on; }
    QString fileName() const override;

protected:
    void writeHead(Utf8Sink &sink) override;
    void writeObject(Utf8Sink &sink, const LineObject &object) override;

private:
    bool hasDocumentation_ = true;
};
