#pragma once

#include "generate/base/filegenerator.h"

struct LineObject;

/// What the tables of a line's object dictionary have in common: the rows stand in the order of the dictionary, from
/// 0x1000 up, and a line of one blank sets the areas of the manufacturer (from 0x2000) and of profiles (from 0x6000)
/// apart.
class TableGenerator : public FileGenerator
{
    Q_OBJECT

public:
    using FileGenerator::FileGenerator;

protected:
    void write(Utf8Sink &sink) override;
    virtual void writeHead(Utf8Sink &sink) = 0;
    virtual void writeObject(Utf8Sink &sink, const LineObject &object) = 0;
};
