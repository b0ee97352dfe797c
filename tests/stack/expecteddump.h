#pragma once

#include <QStringList>

class ObjectDataBase;

namespace TestSupport {

/// What the walker must find in the compiled dictionary of a project, computed from the store alone.
QStringList expectedDump(ObjectDataBase &store, bool classic);

} // namespace TestSupport
