#pragma once

#include "ncx/usage/command.h"
#include "ncx/usage/terminal.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// A command as somebody has called it, with the terminal that hears the answers.
class Invocation
{
public:
    Invocation(const Program &program, const Command &command, Terminal &terminal)
        : program_(program)
        , command_(command)
        , terminal_(terminal)
    {
    }

    /// Reads what stands behind the command's name. On what the command does not know, or misses, false, and the
    /// terminal has been told.
    bool read(const QStringList &arguments);

    const Program &program() const { return program_; }
    const Command &command() const { return command_; }
    Terminal &terminal() const { return terminal_; }

    const QStringList &operands() const { return operands_; }
    QString operand(qsizetype place = 0) const { return operands_.value(place); }
    bool isSet(QLatin1StringView option) const { return values_.contains(option); }
    /// The value of an option, the last one where it stands several times; empty where it is missing.
    QString value(QLatin1StringView option) const { return values_.value(option).value(0); }
    QStringList values(QLatin1StringView option) const { return values_.value(option); }
    /// Tells the terminal what was wrong with the call, and where the help is. Returns `CouldNot`.
    int refuse(const QString &reason) const;

private:
    void refuseUnknown(const QString &name, const QStringList &arguments) const;
    QStringList optionNames() const;
    bool hasValidWords() const;
    bool hasValidOperands() const;

    const Program &program_;
    const Command &command_;
    Terminal &terminal_;
    QStringList operands_;
    QHash<QString, QStringList> values_; ///< by the long name of the option; a switch has an empty list
};

/// Calls the command that the arguments of the process, without the program's name, ask for, and returns its exit code.
int runProgram(const Program &program, const QStringList &arguments, Terminal &terminal);
