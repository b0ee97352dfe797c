#pragma once

#include "import/importreport.h"
#include "ncx/settling/settledline.h"

/// What an import has read otherwise than the file has it, and what has no place in a project.
namespace Readings {

/// Of a line that has just been imported, whose configured values are to be taken as defaults or not.
void tellImport(SettledLine &line, const ImportReport &import, bool isConfigured);
/// What descriptions that are generated from the settled line tell otherwise (generatedreadings.cpp, with the next).
void tellDescriptions(SettledLine &line);
/// What the text form of a project has no place for, which is taken out.
void dropDenotations(SettledLine &line);

} // namespace Readings
