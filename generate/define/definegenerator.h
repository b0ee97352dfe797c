#pragma once

#include "generate/base/filegenerator.h"
#include "generate/define/definemacros.h"

#include <QByteArray>

class CodeWriter;
struct Dialect;

/// Writes gen_define.h: the compile-time configuration of the stack. Its user-specific section and its generation
/// counter are taken over from the old file; if that cannot be read, nothing is written.
class DefineHeaderGenerator : public FileGenerator
{
    Q_OBJECT

public:
    QString fileName() const override;

    /// Some line has J1939.
    void setJ1939Mode(bool j1939) { j1939_ = j1939; }
    /// The project has raw CAN, or CANopen and J1939.
    void setMultiProtocol(bool multiProtocol) { multiProtocol_ = multiProtocol; }
    /// After the job: the text between the marks of the user-specific section.
    QString userSection() const { return QString::fromUtf8(userSection_); }

protected:
    explicit DefineHeaderGenerator(const Dialect &dialect)
        : dialect_(dialect)
    {
    }

    void write(Utf8Sink &sink) override;

private:
    void writeUserSection(CodeWriter &out, Utf8Sink &sink) const;

    const Dialect &dialect_;
    bool j1939_ = false;
    bool multiProtocol_ = false;
    QByteArray userSection_;
};

/// The V4 form.
class GenDefineGenerator : public DefineHeaderGenerator
{
    Q_OBJECT

public:
    GenDefineGenerator();
};

/// The classic form.
class CoDefineGenerator : public DefineHeaderGenerator
{
    Q_OBJECT

public:
    CoDefineGenerator();
};
