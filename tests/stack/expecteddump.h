#pragma once

#include <QMap>
#include <QSet>
#include <QStringList>

class ObjectDataBase;

namespace TestSupport {

/// Line, index and subindex of the objects whose data belong to the safety module, as one number.
QSet<quint32> staticSafetyData(ObjectDataBase &store);

/// What the walker must find in the compiled dictionary of a project, computed from the store alone.
QStringList expectedDump(ObjectDataBase &store, bool classic);

/// The counts that gen_define.h must have where it has them, by macro: one number for each line that takes part, with
/// commas between them, or one for all lines.
QMap<QString, QString> expectedCounts(ObjectDataBase &store);

} // namespace TestSupport
