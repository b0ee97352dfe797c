#include "ncx_cli/app/clioutputhandler.h"

using namespace Qt::StringLiterals;

CLIOutputHandler::CLIOutputHandler(QObject *parent)
    : OutputHandlerBase(parent)
{
}

void CLIOutputHandler::message(const QVariant &value)
{
    write(withoutMarkup(value.toString()) + u'\n');
}

CLIOutputHandler &CLIOutputHandler::printValue(const QVariant &value)
{
    write(value.toString());
    return *this;
}

CLIOutputHandler &CLIOutputHandler::printValueAndBlank(const QVariant &value)
{
    write(value.toString() + u' ');
    return *this;
}

void CLIOutputHandler::printOption(const QString &option, const QString &text)
{
    stream_ << u"\t%1\t\t%2\n"_s.arg(option, text) << Qt::flush;
}

void CLIOutputHandler::write(const QString &text)
{
    stream_ << text << Qt::flush;
    log_.append(text);
}
