#pragma once

#include "generate/common/documentgenerator.h"

class CANdbDBC;

/// The raw CAN frames of a line as a DBC file.
class RawCANDBCGenerator : public DocumentGenerator
{
    Q_OBJECT

public:
    using DocumentGenerator::DocumentGenerator;

    QString fileName() const override;

protected:
    void write(Utf8Sink &sink) override;
};

/// The J1939 frames of a line as a DBC file, those among them that the stack sends by itself. On a line that is also a
/// raw CAN line the file has its name in common with that of the raw CAN frames, and takes these in as well.
class DBCGenerator : public DocumentGenerator
{
    Q_OBJECT

public:
    using DocumentGenerator::DocumentGenerator;

    QString fileName() const override;

protected:
    void writeFile() override;
    void write(Utf8Sink &sink) override;

private:
    void build(CANdbDBC &dbc);
};
