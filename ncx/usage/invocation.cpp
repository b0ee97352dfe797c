#include "ncx/usage/invocation.h"

#include "ncx/usage/helptext.h"
#include "ncx/usage/nearestword.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QStringList namesOf(const Option &option)
{
    QStringList names{option.name};
    if (option.letter != 0)
        names.append(QString(QLatin1Char(option.letter)));
    return names;
}

template <class Visit>
void eachOption(const Program &program, const Command &command, const Visit &visit)
{
    std::ranges::for_each(command.options, visit);
    std::ranges::for_each(program.options, visit);
}

const Command *commandOf(const Program &program, const QString &name)
{
    const auto found =
        std::ranges::find_if(program.commands, [&name](const Command *row) { return row->name == name; });
    return found == program.commands.end() ? nullptr : *found;
}

QStringList commandNames(const Program &program)
{
    QStringList names;
    for (const Command *command : program.commands)
        names.append(command->name);
    return names;
}

QString joined(std::span<const QLatin1StringView> words)
{
    QStringList list;
    for (const QLatin1StringView word : words)
        list.append(word);
    return list.join(", "_L1);
}

} // namespace

bool Invocation::read(const QStringList &arguments)
{
    QCommandLineParser parser;
    eachOption(program_, command_, [&parser](const Option &option) {
        parser.addOption({namesOf(option), {}, option.value});
    });
    if (!parser.parse(QStringList{program_.name} + arguments)) {
        const QStringList unknown = parser.unknownOptionNames();
        if (unknown.isEmpty())
            refuse(parser.errorText().chopped(1));
        else
            refuseUnknown(unknown.first(), arguments);
        return false;
    }
    operands_ = parser.positionalArguments();
    eachOption(program_, command_, [&](const Option &option) {
        if (parser.isSet(option.name))
            values_.insert(option.name, parser.values(option.name));
    });
    return isSet("help"_L1) || (hasValidWords() && hasValidOperands());
}

/// A word with one dash is read as the letters of several options, which says little to who has left a dash out.
void Invocation::refuseUnknown(const QString &name, const QStringList &arguments) const
{
    const auto isLongWithOneDash = [this](const QString &word) {
        return word.size() > 2 && word.startsWith(u'-') && optionNames().contains(word.sliced(1).section(u'=', 0, 0));
    };
    const auto word = std::ranges::find_if(arguments, isLongWithOneDash);
    if (word != arguments.end())
        refuse(u"there is no option '%1'; did you mean '-%1'?"_s.arg(*word));
    else if (name.size() == 1)
        refuse(u"there is no option '-%1'"_s.arg(name));
    else
        refuse(u"there is no option '--%1'%2"_s.arg(name, didYouMean(name, optionNames(), u"--"_s)));
}

QStringList Invocation::optionNames() const
{
    QStringList names;
    eachOption(program_, command_, [&names](const Option &option) { names.append(option.name); });
    return names;
}

bool Invocation::hasValidWords() const
{
    bool valid = true;
    eachOption(program_, command_, [&](const Option &option) {
        for (const QString &value : values(option.name)) {
            const auto fits = [&value](QLatin1StringView word) {
                return value.compare(word, Qt::CaseInsensitive) == 0;
            };
            if (!valid || option.words.empty() || std::ranges::any_of(option.words, fits))
                continue;
            QStringList known;
            for (const QLatin1StringView word : option.words)
                known.append(word);
            refuse(u"'%1' is no value of --%2 (%3)%4"_s.arg(value, option.name, joined(option.words),
                                                            didYouMean(value, known)));
            valid = false;
        }
    });
    return valid;
}

bool Invocation::hasValidOperands() const
{
    qsizetype left = operands_.size();
    for (const Operand &operand : command_.operands) {
        if (left < operand.least) {
            refuse(u"%1 is missing"_s.arg(operand.name));
            return false;
        }
        left -= std::min<qsizetype>(left, operand.most);
    }
    if (left > 0)
        refuse(u"'%1' is one operand too many"_s.arg(operands_.at(operands_.size() - left)));
    return left == 0;
}

int Invocation::refuse(const QString &reason) const
{
    terminal_.fail(u"%1: %2"_s.arg(command_.name, reason));
    terminal_.tell(u"'%1 %2 --help' tells how it is called"_s.arg(program_.name, command_.name));
    return CouldNot;
}

int runProgram(const Program &program, const QStringList &arguments, Terminal &terminal)
{
    const QString first = arguments.value(0);
    if (first.isEmpty() || first == "--help"_L1 || first == "-h"_L1) {
        const QString text = HelpText::ofProgram(program, terminal);
        if (!first.isEmpty()) {
            terminal.write(text);
            return Done;
        }
        terminal.fail(u"which command?"_s);
        terminal.tell(u"'%1 --help' lists them: %2"_s.arg(program.name, commandNames(program).join(", "_L1)));
        return CouldNot;
    }
    if (first == "--version"_L1) {
        terminal.answer(u"%1 %2"_s.arg(program.name, QCoreApplication::applicationVersion()));
        return Done;
    }
    const Command *command = commandOf(program, first);
    if (!command) {
        const bool isOption = first.startsWith(u'-');
        const QStringList words{u"--help"_s, u"--version"_s};
        const bool lacksDashes = words.contains(u"--"_s + first);
        const QStringList known = isOption || lacksDashes ? words : commandNames(program);
        terminal.fail(u"there is no %1 '%2'%3"_s.arg(isOption ? u"option"_s : u"command"_s, first,
                                                     didYouMean(lacksDashes ? u"--"_s + first : first, known)));
        terminal.tell(u"'%1 --help' lists the commands"_s.arg(program.name));
        return CouldNot;
    }
    Invocation invocation(program, *command, terminal);
    if (!invocation.read(arguments.sliced(1)))
        return CouldNot;
    if (invocation.isSet("help"_L1)) {
        terminal.write(HelpText::ofCommand(program, *command, terminal));
        return Done;
    }
    return command->run(invocation);
}
