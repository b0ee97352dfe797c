#pragma once

#include <QSet>
#include <QStringList>

class ObjectDataBase;

namespace TestSupport {

/// Line, index and subindex of the objects whose data belong to the safety module, as one number.
QSet<quint32> staticSafetyData(ObjectDataBase &store);

/// What the walker must find in the compiled dictionary of a project, computed from the store alone.
QStringList expectedDump(ObjectDataBase &store, bool classic);

} // namespace TestSupport
