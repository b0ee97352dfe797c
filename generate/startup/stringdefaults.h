#pragma once

class CodeWriter;
struct DictionaryTables;

/// Writes the function that copies the string defaults to the application's variables.
void writeStringDefaultFunction(CodeWriter &out, const DictionaryTables &tables);
