#pragma once

#include "generate/j1939/safetygroups.h"

class CodeWriter;
struct Dialect;

/// The parts of gen_sdg.c that are written from the safety data groups.
///
/// `sdgNr` counts the groups of a line and a direction from 0, by ascending PGN. A project of one line calls it line 0.
namespace SafetySections {

/// Configurations and records, and in a project of several lines the tables that lead from a line to its own.
void writeDataDefinitions(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect);
/// Declarations of the application's variables. Parts of structures and arrays are declared elsewhere.
void writeVariables(CodeWriter &out, const SafetyGroups &groups);
/// The body of the function that fills `pData` (classic: `pBuffer`) and sets `pgLen`.
void writeTransmitMapping(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect);
/// The body of the function that reads `pBuffer` and sets `retVal`; `addrIdx` chooses the variables of a sender.
void writeReceiveMapping(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect);
/// The functions around them, which V4 projects have in their template.
void writeFunctions(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect);

} // namespace SafetySections
