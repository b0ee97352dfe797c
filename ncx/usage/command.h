#pragma once

#include <QLatin1StringView>

#include <span>

class Invocation;

/// An option of a command. The tables of options are the one source of the help, the manual, the completion of a shell
/// and the reading of a command line.
struct Option
{
    QLatin1StringView name;                        ///< the long form, without its dashes
    char letter = 0;                               ///< the short form; 0 for none
    QLatin1StringView value = {};                  ///< what its value is called; empty for a switch
    QLatin1StringView text = {};                   ///< a sentence part without a full stop
    std::span<const QLatin1StringView> words = {}; ///< the values that there are; empty for any
    bool isRepeatable = false;
};

/// What a shell offers for an operand.
enum class Offer
{
    Nothing,
    Commands,
    Projects,
    Files
};

/// The operands of a command.
struct Operand
{
    QLatin1StringView name;
    QLatin1StringView text;
    int least = 1;
    int most = 1; ///< more than any command line has for any number
    Offer offer = Offer::Nothing;
};
inline constexpr int anyNumber = 1 << 20;

/// A call that a reader can copy, with what it does.
struct Example
{
    QLatin1StringView call;
    QLatin1StringView text;
};

/// How a program ends.
enum ExitCode : int
{
    Done = 0,
    Findings = 1, ///< or differences
    CouldNot = 2
};

/// A command of the program.
struct Command
{
    QLatin1StringView name;
    QLatin1StringView summary; ///< a sentence part without a full stop
    std::span<const Operand> operands;
    std::span<const Option> options;
    std::span<const QLatin1StringView> details; ///< paragraphs
    std::span<const Example> examples;
    int (*run)(const Invocation &) = nullptr;
};

/// All that is told of the program as a whole.
struct Program
{
    QLatin1StringView name;
    QLatin1StringView summary;
    std::span<const Command *const> commands;
    std::span<const Option> options; ///< those that every command takes
    std::span<const QLatin1StringView> details;
};
