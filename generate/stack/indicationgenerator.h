#pragma once

#include "generate/filegenerator.h"

struct Dialect;

/// Writes gen_indication.h: the prototypes of the functions that the project names for events of the stack. A setting
/// `note_<key>` beside such a name gives the comment ahead of its prototype.
class IndicationHeaderGenerator : public FileGenerator
{
    Q_OBJECT

public:
    QString fileName() const override;

protected:
    explicit IndicationHeaderGenerator(const Dialect &dialect)
        : dialect_(dialect)
    {
    }

    void write(QTextStream &stream) override;

private:
    const Dialect &dialect_;
};

/// The classic form.
class indicationgenerator : public IndicationHeaderGenerator
{
    Q_OBJECT

public:
    indicationgenerator();
};

/// The V4 form, and the only one with the functions of the UDS server.
class indicationgeneratorv4 : public IndicationHeaderGenerator
{
    Q_OBJECT

public:
    indicationgeneratorv4();
};
