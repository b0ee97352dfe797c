#pragma once

#include "generate/base/filegenerator.h"

/// Writes gen_indices.h: symbolic names for the objects, CAN-IDs and PGNs of all lines.
class IndicesGenerator : public FileGenerator
{
    Q_OBJECT

public:
    using FileGenerator::FileGenerator;

    /// The lines to walk, in this order.
    void setLines(const QList<quint8> &lines) { lines_ = lines; }
    QString fileName() const override;

protected:
    QString jobName() const override;
    void write(Utf8Sink &sink) override;

private:
    QList<quint8> lines_;
};
