#pragma once

#include "generate/tables/tablegenerator.h"

/// Writes the older table of a line's object dictionary, one subindex a row. ICSVGenerator writes the one to prefer.
class CSVGenerator : public TableGenerator
{
    Q_OBJECT

public:
    using TableGenerator::TableGenerator;

    QString fileName() const override;

protected:
    void writeHead(Utf8Sink &sink) override;
    void writeObject(Utf8Sink &sink, const LineObject &object) override;
};
