#pragma once

struct Dialect;
struct PgnTables;
class CodeWriter;

/// The sections of gen_mp.c and gen_rawcan.c that tell raw CAN-IDs.
namespace RawCanSections {

/// What each line with raw CAN sends and receives, behind the mappings of the messages.
void writeConfigs(CodeWriter &out, const PgnTables &tables, const Dialect &dialect);
/// The counts of the raw CAN services, `rawcanInitVars`.
void writeServiceValues(CodeWriter &out, const Dialect &dialect);

} // namespace RawCanSections
