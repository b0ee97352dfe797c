#pragma once

#include "ncx/usage/command.h"

/// The commands of the program, a file each.
namespace Commands {

extern const Command check;
extern const Command convert;
extern const Command diff;
extern const Command generate;
extern const Command help;
extern const Command importFiles;
extern const Command mcp;
extern const Command newProject;
extern const Command show;

/// All of them, in the order in which they are listed.
const Program &program();

} // namespace Commands
