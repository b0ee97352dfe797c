#include "ncx/usage/helptext.h"

#include "ncx/usage/terminal.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype indent = 2;
constexpr qsizetype column = 26; ///< where the texts of a list begin

/// Breaks a text at blanks, so that its lines end before the width; all but the first are indented.
QString wrapped(const QString &text, qsizetype indentation, int width)
{
    QString lines;
    qsizetype used = indentation;
    for (const QString &word : text.split(u' ')) {
        if (!lines.isEmpty() && used + 1 + word.size() > width) {
            lines += u'\n' + QString(indentation, u' ');
            used = indentation;
        } else if (!lines.isEmpty()) {
            lines += u' ';
            ++used;
        }
        lines += word;
        used += word.size();
    }
    return lines;
}

/// A row of a list: a term, and what it is.
QString row(const QString &term, const QString &text, const Terminal &terminal)
{
    const bool fits = indent + term.size() + 1 < column;
    const QString gap = fits ? QString(column - indent - term.size(), u' ') : u'\n' + QString(column, u' ');
    return QString(indent, u' ') + terminal.styled(Terminal::Style::Strong, term) + gap +
           wrapped(text, column, terminal.width()) + u'\n';
}

QString heading(const QString &text, const Terminal &terminal)
{
    return u'\n' + terminal.styled(Terminal::Style::Strong, text) + u'\n';
}

QString paragraphs(std::span<const QLatin1StringView> texts, const Terminal &terminal)
{
    QString all;
    for (const QLatin1StringView text : texts)
        all += u'\n' + wrapped(text, 0, terminal.width()) + u'\n';
    return all;
}

QString optionRows(std::span<const Option> options, const Terminal &terminal)
{
    QString rows;
    for (const Option &option : options)
        rows += row(HelpText::forms(option), HelpText::textOf(option), terminal);
    return rows;
}

} // namespace

QString HelpText::call(const Program &program, const Command &command)
{
    QStringList words{program.name, command.name};
    if (!command.options.empty())
        words.append(u"[OPTION]..."_s);
    for (const Operand &operand : command.operands) {
        const QString word = operand.most > 1 ? operand.name + "..."_L1 : QString(operand.name);
        words.append(operand.least > 0 ? word : u"[%1]"_s.arg(word));
    }
    return words.join(u' ');
}

QString HelpText::forms(const Option &option)
{
    const QString shortForm = option.letter != 0 ? u"-%1, "_s.arg(QLatin1Char(option.letter)) : u"    "_s;
    return shortForm + "--"_L1 + option.name + (option.value.isEmpty() ? QString() : u'=' + option.value);
}

QString HelpText::textOf(const Option &option)
{
    QString text = option.text;
    if (!option.words.empty()) {
        QStringList words;
        for (const QLatin1StringView word : option.words)
            words.append(word);
        text += u" (%1)"_s.arg(words.join(", "_L1));
    }
    return option.isRepeatable ? text + "; may be repeated"_L1 : text;
}

QString HelpText::ofProgram(const Program &program, const Terminal &terminal)
{
    QString text = u"%1 COMMAND [OPTION]... [OPERAND]...\n"_s.arg(program.name);
    text += wrapped(program.summary, 0, terminal.width()) + u'\n';
    text += heading(u"Commands"_s, terminal);
    for (const Command *command : program.commands)
        text += row(command->name, command->summary, terminal);
    text += heading(u"Options"_s, terminal) + optionRows(program.options, terminal);
    text += row(u"    --version"_s, u"tell the version and end"_s, terminal);
    text += paragraphs(program.details, terminal);
    return text + u"\n'%1 COMMAND --help' tells more, with examples.\n"_s.arg(program.name);
}

QString HelpText::ofCommand(const Program &program, const Command &command, const Terminal &terminal)
{
    const QString summary = command.summary;
    QString text = call(program, command) + u'\n';
    text += wrapped(summary.first(1).toUpper() + summary.sliced(1) + u'.', 0, terminal.width()) + u'\n';
    text += u'\n';
    for (const Operand &operand : command.operands)
        text += row(operand.name, operand.text, terminal);
    text +=
        heading(u"Options"_s, terminal) + optionRows(command.options, terminal) + optionRows(program.options, terminal);
    text += paragraphs(command.details, terminal);
    if (!command.examples.empty())
        text += heading(u"Examples"_s, terminal);
    for (const Example &example : command.examples)
        text += u"  %1\n      %2\n"_s.arg(example.call, wrapped(example.text, 6, terminal.width()));
    return text;
}
