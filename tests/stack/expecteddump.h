#pragma once

#include <QMap>
#include <QStringList>

class ObjectDataBase;

namespace TestSupport {

/// What the walker must find in the compiled dictionary of a project, computed from the store alone.
QStringList expectedDump(ObjectDataBase &store, bool classic);

/// The counts that gen_define.h must have where it has them, as the walker prints them: by macro, one number for each
/// line with objects, or one for all lines.
QMap<QString, QString> expectedCounts(ObjectDataBase &store);

} // namespace TestSupport
