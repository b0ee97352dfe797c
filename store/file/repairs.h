#pragma once

#include <QtGlobal>

class ProjectTables;

/// What an open puts right in files that older programs wrote: counts, directions and bit positions of signals.
/// Nobody is notified of it but by the writes of bit positions. False if something could not be written.
namespace Repairs {

/// Counts the SPNs of all PGNs anew.
[[nodiscard]] bool mappingCounts(ProjectTables &tables);
/// Gives the SPNs of a line the direction of their PGN.
[[nodiscard]] bool spnDirections(ProjectTables &tables, quint8 line);
/// Sets the bit positions of a line's signals one behind the other, of data elements only where nobody has set them.
[[nodiscard]] bool bitPositions(ProjectTables &tables, quint8 line);

} // namespace Repairs
