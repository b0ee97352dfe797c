#pragma once

#include "ncx/usage/command.h"

#include <QString>

class Terminal;

/// What is told of the program and its commands, all of it written from their tables.
namespace HelpText {

QString ofProgram(const Program &program, const Terminal &terminal);
QString ofCommand(const Program &program, const Command &command, const Terminal &terminal);

/// "ncx check [OPTION]... PROJECT..."
QString call(const Program &program, const Command &command);
/// "-o, --out=DIR"
QString forms(const Option &option);
/// The text of an option, with the values that there are.
QString textOf(const Option &option);

/// The manual of the program in the form of man(7).
QString manual(const Program &program, const QString &version);
/// The completion of the program's command lines for bash.
QString bashCompletion(const Program &program);

} // namespace HelpText
