#pragma once

#include "generate/base/filegenerator.h"

class ObjectDataBase;
struct RunContext;

/// Writes the device description of a CANopen FD line in XML, an ISO 15745 profile container.
///
/// What XML cannot hold of a text, control characters above all, becomes U+FFFD: the file is well-formed whatever the
/// names are.
class XDDGenerator : public FileGenerator
{
    Q_OBJECT

public:
    using FileGenerator::FileGenerator;

    QString fileName() const override;
    /// What the name of a line's file has before ".xdd": the vendor-ID of object 0x1018, eight digits, and the name of
    /// the project and line.
    static QString nameOf(ObjectDataBase &store, const QString &baseName, quint8 line, bool multiLine);

protected:
    void write(Utf8Sink &sink) override;
};
