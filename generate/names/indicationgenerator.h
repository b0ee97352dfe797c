#pragma once

#include "generate/base/filegenerator.h"

struct Dialect;

/// Writes gen_indication.h: the prototypes of the functions that the project names for events of the stack. A setting
/// `note_<key>` beside such a name gives the comment ahead of its prototype.
class IndicationHeaderGenerator : public FileGenerator
{
    Q_OBJECT

public:
    QString fileName() const override;

protected:
    /// The form of the file, and that of the sources which the stack's functions are for.
    IndicationHeaderGenerator(const Dialect &dialect, const Dialect &sources)
        : dialect_(dialect)
        , sources_(sources)
    {
    }

    void write(Utf8Sink &sink) override;

private:
    const Dialect &dialect_;
    const Dialect &sources_;
};

/// The classic form.
class indicationgenerator : public IndicationHeaderGenerator
{
    Q_OBJECT

public:
    indicationgenerator();
};

/// The V4 form, and the only one with the functions of the UDS server. Beside classic sources the functions of CANopen
/// keep their classic parameters, which is what the pointers in these sources have.
class indicationgeneratorv4 : public IndicationHeaderGenerator
{
    Q_OBJECT

public:
    indicationgeneratorv4();
    explicit indicationgeneratorv4(const Dialect &sources);
};
