#pragma once

class CodeWriter;
class ObjectDataBase;
struct Dialect;

/// The constant pointers by which the stack reaches the application's static indication functions, with their heading.
/// gen_indication.h, which must be included before, declares the functions.
void writeIndicationPointers(CodeWriter &out, ObjectDataBase &store, const Dialect &dialect);

/// The same for the functions of the UDS server, each in the guard of its macro; nothing unless the setting
/// `uds_static_indication` is 1, and nothing in the classic form.
void writeUdsIndicationPointers(CodeWriter &out, ObjectDataBase &store, const Dialect &dialect);
