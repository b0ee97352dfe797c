#pragma once

#include "generate/base/filegenerator.h"
#include "generate/base/utf8sink.h"

/// Base of the documents that people read about one line of a project.
class DocumentGenerator : public FileGenerator
{
    Q_OBJECT

public:
    using FileGenerator::FileGenerator;

protected:
    /// `ending` behind the base name, the line's number where there are several, and the suffix.
    QString nameWith(QLatin1StringView ending) const;

    /// To be asked before each object: lets other threads work. False once the job was cancelled; nothing is kept of
    /// the document then, since half of one looks like a whole one.
    bool goesOn();
};

/// Words that several documents share.
namespace DocumentWords {

/// "Managed Variable", "Managed Const", "Variable", "Virtual Object"; the number for another code.
PrintedValue implementation(quint8 code);
/// Frame format of ISO 11898-1: "Standard" with 11 bits of identifier, "Extended" with 29.
QLatin1StringView frameFormat(bool isExtended);

} // namespace DocumentWords
