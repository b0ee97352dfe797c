#pragma once

#include "generate/base/abstractgenerator.h"

class Utf8Sink;

/// A generator of one text file: opens it, holds the store while it is written, and closes it.
///
/// A concrete generator supplies the file's name and its text, in UTF-8 with "\n" at the line ends. A file that cannot
/// be written whole sets `errorCode` to `OutputError`, a store that was refused to `StoreError`; either leaves a former
/// file of that name as it was.
class FileGenerator : public AbstractGenerator
{
    Q_OBJECT

public:
    using AbstractGenerator::AbstractGenerator;

    /// Name of the output file, without its folder.
    virtual QString fileName() const = 0;

    bool checkWritable() override;
    Status startJob() override;
    Status cancelJob() override;
    void doJob() override;

protected:
    /// What messages call the job.
    virtual QString jobName() const { return fileName(); }
    /// Collects what the file tells and prints it. A failure is reported with `fail`, and then nothing is kept of the
    /// file.
    virtual void write(Utf8Sink &sink) = 0;
    /// Writes what belongs beside the file, once that is in place. A failure is reported with `fail`; the file stays.
    virtual void writeCompanions() {}

    /// Makes the file; here out of the text that `write` prints. A failure is reported with `fail`.
    virtual void writeFile();

    QString filePath() const;
};
