#include "ncx/commands/commands.h"

using namespace Qt::StringLiterals;

namespace {

constexpr const Command *all[] = {
    &Commands::newProject, &Commands::importFiles, &Commands::check, &Commands::show, &Commands::diff,
    &Commands::generate,   &Commands::convert,     &Commands::mcp,   &Commands::help,
};

constexpr Option common[] = {
    {.name = "help"_L1, .letter = 'h', .text = "tell about this command and end"_L1},
};

constexpr QLatin1StringView programDetails[] = {
    "Answers go to standard output, everything else to standard error. A command ends with 0 if it is done, with 1 if "
    "there are findings or differences, and with 2 if it could not be done."_L1,
    "A project is a database (.ncxp) or a text (.ncxt). No command changes one but those whose purpose that is."_L1,
};

constexpr Program ncx{
    .name = "ncx"_L1,
    .summary = "make, check, show, compare and build projects of CAN devices"_L1,
    .commands = all,
    .options = common,
    .details = programDetails,
};

} // namespace

const Program &Commands::program()
{
    return ncx;
}
