#pragma once

#include "generate/srdo/srdotables.h"

class CodeWriter;

/// The parts of gen_srdo.c that are written from the SRDOs.
namespace SrdoSections {

/// Definitions of the module's state; one value for each line in a project of several.
void writeConfigurationValid(CodeWriter &out, const SrdoTables &tables);
void writeNmtState(CodeWriter &out, const SrdoTables &tables);
void writeConfigurationReady(CodeWriter &out, const SrdoTables &tables);
/// Without a line break behind it, unlike the others.
QString timer(const SrdoTables &tables);

void writeDataDefinitions(CodeWriter &out, const SrdoTables &tables);
/// The mapped variables and their copies.
void writeVariables(CodeWriter &out, const SrdoTables &tables);
/// The tables through which the dictionary reaches variables of the module.
void writeEntries(CodeWriter &out, const SrdoTables &tables);

/// Bodies of functions: from `index` (and `canLine`) to `pSrdo`; the defaults for `ownNodeId`; and, for the SRDO
/// `srdoNr` (and `canLine`), the copies between the variables and the bytes of `pData` (received), or of `pNormal` and
/// `pInvers` (transmitted).
void writeDataPointers(CodeWriter &out, const SrdoTables &tables);
void writeDefaults(CodeWriter &out, const SrdoTables &tables);
void writeReceiveNormal(CodeWriter &out, const SrdoTables &tables);
void writeReceiveInverted(CodeWriter &out, const SrdoTables &tables);
void writeTransmit(CodeWriter &out, const SrdoTables &tables);

} // namespace SrdoSections
