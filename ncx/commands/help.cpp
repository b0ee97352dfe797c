// Tells about the program, also for a manual and a shell.

#include "ncx/commands/commands.h"
#include "ncx/usage/helptext.h"
#include "ncx/usage/invocation.h"
#include "ncx/usage/nearestword.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr Operand helpOperands[] = {{.name = "COMMAND"_L1,
                                     .text = "the command to tell about; all of them without it"_L1,
                                     .least = 0,
                                     .offer = Offer::Commands}};

constexpr Option helpOptions[] = {
    {.name = "man"_L1, .text = "write the manual, for man(1)"_L1},
    {.name = "bash"_L1, .text = "write the completion of command lines, for bash"_L1},
};

constexpr Example helpExamples[] = {
    {"ncx help check"_L1, "tells what 'ncx check --help' tells"_L1},
    {"source <(ncx help --bash)"_L1, "completes commands, options and names of projects in this shell"_L1},
};

int runHelp(const Invocation &call)
{
    const Program &program = call.program();
    Terminal &terminal = call.terminal();
    if (call.isSet("man"_L1)) {
        terminal.write(HelpText::manual(program, QCoreApplication::applicationVersion()));
    } else if (call.isSet("bash"_L1)) {
        terminal.write(HelpText::bashCompletion(program));
    } else if (call.operands().isEmpty()) {
        terminal.write(HelpText::ofProgram(program, terminal));
    } else {
        QStringList names;
        for (const Command *command : program.commands) {
            if (command->name == call.operand()) {
                terminal.write(HelpText::ofCommand(program, *command, terminal));
                return Done;
            }
            names.append(command->name);
        }
        return call.refuse(u"there is no command '%1'%2"_s.arg(call.operand(), didYouMean(call.operand(), names)));
    }
    return Done;
}

} // namespace

constexpr Command Commands::help{
    .name = "help"_L1,
    .summary = "tell about the program or one of its commands"_L1,
    .operands = helpOperands,
    .options = helpOptions,
    .details = {},
    .examples = helpExamples,
    .run = runHelp,
};
