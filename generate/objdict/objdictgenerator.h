#pragma once

#include "generate/base/filegenerator.h"

class CodeWriter;
struct Dialect;
struct DictionaryTables;

/// Writes gen_objdict.c: the object dictionary of all lines as the stack's tables, and the start-up that takes them
/// into use; with gen_user.h where a project writes string defaults. This is the classic form.
class ObjDictGenerator : public FileGenerator
{
    Q_OBJECT

public:
    /// `compactDescription`: equal subindices at the end of an object share a description row.
    explicit ObjDictGenerator(bool compactDescription, QObject *parent = nullptr);

    /// The dictionary of the SDO server beside J1939 (CAM11/CAM21): without start-up and PDO tables.
    void setServerMode(bool serverMode) { serverMode_ = serverMode; }
    QString fileName() const override;

protected:
    ObjDictGenerator(const Dialect &dialect, bool compactDescription, QObject *parent);
    void write(Utf8Sink &sink) override;

private:
    const Dialect &dialect_;
    bool compactDescription_;
    bool serverMode_ = false;
};

/// The V4 form.
class ObjDictGeneratorV4 : public ObjDictGenerator
{
    Q_OBJECT

public:
    explicit ObjDictGeneratorV4(bool compactDescription, QObject *parent = nullptr);
};
