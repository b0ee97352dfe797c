// The manual, in the form of man(7).

#include "ncx/usage/helptext.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

QString escaped(QString text)
{
    text.replace(u'\\', "\\e"_L1).replace(u'-', "\\-"_L1);
    return text.startsWith(u'.') || text.startsWith(u'\'') ? "\\&"_L1 + text : text;
}

QString options(std::span<const Option> rows)
{
    QString text;
    for (const Option &option : rows)
        text += u".TP\n.B %1\n%2\n"_s.arg(escaped(HelpText::forms(option).trimmed()),
                                          escaped(HelpText::textOf(option)) + u'.');
    return text;
}

QString paragraphs(std::span<const QLatin1StringView> texts)
{
    QString all;
    for (const QLatin1StringView text : texts)
        all += u".PP\n%1\n"_s.arg(escaped(text));
    return all;
}

QString section(const Program &program, const Command &command)
{
    QString text = u".SS %1\n.B %2\n.PP\n"_s.arg(escaped(command.name), escaped(HelpText::call(program, command)));
    const QString summary = command.summary;
    text += escaped(summary.first(1).toUpper() + summary.sliced(1)) + ".\n"_L1;
    for (const Operand &operand : command.operands)
        text += u".TP\n.I %1\n%2.\n"_s.arg(escaped(operand.name), escaped(operand.text));
    text += options(command.options) + paragraphs(command.details);
    for (const Example &example : command.examples)
        text += u".PP\n%1:\n.PP\n.EX\n    %2\n.EE\n"_s.arg(escaped(example.text), escaped(example.call));
    return text;
}

} // namespace

QString HelpText::manual(const Program &program, const QString &version)
{
    const QString name = program.name;
    QString text = u".TH %1 1 \"\" \"%2 %3\" \"User Commands\"\n"_s.arg(name.toUpper(), name, version);
    text += u".SH NAME\n%1 \\- %2\n"_s.arg(name, escaped(program.summary));
    text += u".SH SYNOPSIS\n.B %1\n.I COMMAND\n[\\fIOPTION\\fR]... [\\fIOPERAND\\fR]...\n"_s.arg(name);
    text += ".SH DESCRIPTION\n"_L1 + paragraphs(program.details);
    text += ".SH OPTIONS\n"_L1 + options(program.options) + ".TP\n.B \\-\\-version\ntell the version and end.\n"_L1;
    text += ".SH COMMANDS\n"_L1;
    for (const Command *command : program.commands)
        text += section(program, *command);
    text += ".SH EXIT STATUS\n.TP\n.B 0\nDone.\n.TP\n.B 1\nThere are findings or differences.\n.TP\n.B 2\n"
            "It could not be done; standard error tells why.\n"_L1;
    text += ".SH ENVIRONMENT\n.TP\n.B NO_COLOR\nIf it is not empty, nothing is coloured.\n.TP\n.B NCX_MCP_TOKEN\n"
            "What clients show to \\fBncx mcp \\-\\-http\\fR.\n.TP\n.B SOURCE_DATE_EPOCH\n"
            "The time that generated files carry, in seconds since 1970.\n"_L1;
    return text + u".SH SEE ALSO\n.BR ncx_cli (1)\n"_s;
}
