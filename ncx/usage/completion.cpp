// The completion of command lines for bash.

#include "ncx/usage/helptext.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

void appendForms(QStringList &forms, std::span<const Option> options)
{
    for (const Option &option : options) {
        forms.append("--"_L1 + option.name);
        if (option.letter != 0)
            forms.append(u"-%1"_s.arg(QLatin1Char(option.letter)));
    }
}

/// What a shell offers behind an option with a value: one of its words, or a file.
QString valueCases(const Command &command)
{
    QString cases;
    for (const Option &option : command.options) {
        if (option.value.isEmpty())
            continue;
        QStringList forms{"--"_L1 + option.name};
        if (option.letter != 0)
            forms.append(u"-%1"_s.arg(QLatin1Char(option.letter)));
        QStringList words;
        for (const QLatin1StringView word : option.words)
            words.append(word);
        QString reply;
        if (!words.isEmpty())
            reply = u"$(compgen -W '%1' -- \"$current\")"_s.arg(words.join(u' '));
        else if (option.value == "DIR"_L1)
            reply = u"$(compgen -d -- \"$current\")"_s;
        else if (option.value == "FILE"_L1)
            reply = u"$(compgen -f -- \"$current\")"_s;
        cases += u"        %1:%2) COMPREPLY=(%3); return ;;\n"_s.arg(command.name,
                                                                     forms.join(u"|%1:"_s.arg(command.name)), reply);
    }
    return cases;
}

QString operandWords(const Command &command, const QStringList &names)
{
    Offer offer = Offer::Nothing;
    for (const Operand &operand : command.operands)
        offer = std::max(offer, operand.offer);
    switch (offer) {
    case Offer::Nothing:
        return {};
    case Offer::Commands:
        return u"$(compgen -W '%1' -- \"$current\")"_s.arg(names.join(u' '));
    case Offer::Projects:
        return u"$(compgen -f -X '!*.ncx[tpe]' -- \"$current\"; compgen -d -S / -- \"$current\")"_s;
    case Offer::Files:
        return u"$(compgen -f -- \"$current\")"_s;
    }
    return {};
}

} // namespace

QString HelpText::bashCompletion(const Program &program)
{
    QStringList names;
    QString values;
    QString options;
    QString operands;
    for (const Command *command : program.commands)
        names.append(command->name);
    for (const Command *command : program.commands) {
        QStringList forms;
        appendForms(forms, command->options);
        appendForms(forms, program.options);
        values += valueCases(*command);
        options += u"        %1) words='%2' ;;\n"_s.arg(command->name, forms.join(u' '));
        operands += u"        %1) COMPREPLY=(%2) ;;\n"_s.arg(command->name, operandWords(*command, names));
    }
    return uR"(# bash completion for %1
_%1()
{
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]} words=
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W '%2 --help --version' -- "$current"))
        return
    fi
    # "--option=value" comes as three words.
    if [ "$current" = = ]; then
        current=
    elif [ "$before" = = ]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $command:$before in
%3    esac
    if [[ $current = -* ]]; then
        case $command in
%4        esac
        COMPREPLY=($(compgen -W "$words" -- "$current"))
        return
    fi
    compopt -o filenames 2>/dev/null
    case $command in
%5    esac
}
complete -F _%1 %1
)"_s.arg(QString(program.name), names.join(u' '), values, options, operands);
}
