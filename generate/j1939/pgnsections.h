#pragma once

#include "generate/j1939/pgntables.h"

class CodeWriter;
struct Dialect;

/// The sections of gen_pgn.c, which gen_mp.c has too: each prints its part of the collected tables.
namespace PgnSections {

void writeManagedVariables(CodeWriter &out, const PgnTables &tables);
/// The mappings of the groups and CAN-IDs of all lines.
void writeMappings(CodeWriter &out, const PgnTables &tables, const Dialect &dialect);
void writeTransmitConfigs(CodeWriter &out, const PgnTables &tables, const Dialect &dialect);
void writeReceiveConfigs(CodeWriter &out, const PgnTables &tables, const Dialect &dialect);
/// The address claim of each line, with its mapping.
void writeIdentities(CodeWriter &out, const PgnTables &tables, const Dialect &dialect);
void writeConfigs(CodeWriter &out, const PgnTables &tables);

/// The counts of the J1939 services, as the variable `name`.
struct ServiceValues
{
    QString name = {};
    bool former = false; ///< the structure of stacks that have no common one
    bool safety = false;
    bool fd = false;
};
void writeServiceValues(CodeWriter &out, const ServiceValues &values, const Dialect &dialect);

/// Statements that give the fields of the NAMEs of all lines, or of one, their values.
void writeNameFields(CodeWriter &out, const PgnTables &tables);
void writeNameFields(CodeWriter &out, const PgnTables::Line &line);

} // namespace PgnSections
