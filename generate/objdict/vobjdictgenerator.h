#pragma once

#include "generate/base/filegenerator.h"

struct Dialect;

/// Writes gen_vobjdict.c: the description of the objects whose data the application serves through access functions of
/// its own, because it lies in no memory that a pointer could reach. This is the classic form.
class VobjDictGenerator : public FileGenerator
{
    Q_OBJECT

public:
    /// `compactDescription`: equal subindices at the end of an object share a description row.
    explicit VobjDictGenerator(bool compactDescription, QObject *parent = nullptr);

    QString fileName() const override;

protected:
    VobjDictGenerator(const Dialect &dialect, bool compactDescription, QObject *parent);
    void write(Utf8Sink &sink) override;

private:
    const Dialect &dialect_;
    bool compactDescription_;
};

/// The V4 form.
class VobjDictGeneratorV4 : public VobjDictGenerator
{
    Q_OBJECT

public:
    explicit VobjDictGeneratorV4(bool compactDescription, QObject *parent = nullptr);
};
