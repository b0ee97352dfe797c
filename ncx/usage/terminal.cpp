#include "ncx/usage/terminal.h"

#include "ncx/usage/progressline.h"

#include <QByteArray>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int usualWidth = 80;
constexpr int narrowest = 20;

bool isColoured(int file)
{
    return isatty(file) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR") && qEnvironmentVariable("TERM") != "dumb"_L1;
}

int widthOf(int file)
{
    winsize size = {};
    int columns = qEnvironmentVariableIntValue("COLUMNS");
    if (columns <= 0 && ioctl(file, TIOCGWINSZ, &size) == 0)
        columns = size.ws_col;
    return columns <= 0 ? usualWidth : std::max(columns, narrowest);
}

QLatin1StringView codeOf(Terminal::Style style)
{
    switch (style) {
    case Terminal::Style::Plain:
        break;
    case Terminal::Style::Strong:
        return "1"_L1;
    case Terminal::Style::Faint:
        return "2"_L1;
    case Terminal::Style::Bad:
        return "1;31"_L1;
    case Terminal::Style::Doubtful:
        return "1;33"_L1;
    case Terminal::Style::Good:
        return "32"_L1;
    }
    return "0"_L1;
}

QString coloured(Terminal::Style style, const QString &text)
{
    return u"\x1b[%1m%2\x1b[0m"_s.arg(codeOf(style), text);
}

} // namespace

Terminal::Terminal()
    : answersAreColoured_(isColoured(STDOUT_FILENO))
    , errorsAreColoured_(isColoured(STDERR_FILENO))
    , errorsAreShown_(isatty(STDERR_FILENO) == 1)
    , width_(widthOf(STDOUT_FILENO))
{
    if (errorsAreShown_)
        progress_ = std::make_unique<ProgressLine>([](const QByteArray &bytes) {
            std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
        });
}

Terminal::~Terminal() = default;

void Terminal::step(const QString &what)
{
    if (progress_)
        progress_->begin(what);
}

void Terminal::endStep()
{
    if (progress_)
        progress_->end();
}

QString Terminal::styled(Style style, const QString &text) const
{
    return answersAreColoured_ && style != Style::Plain && !text.isEmpty() ? coloured(style, text) : text;
}

void Terminal::answer(const QString &text)
{
    write(text + u'\n');
}

void Terminal::write(const QString &text)
{
    endStep();
    const QByteArray bytes = text.toUtf8();
    const size_t written = std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    if (written != static_cast<size_t>(bytes.size()) && failure_ == 0)
        failure_ = errno;
}

void Terminal::tell(const QString &text)
{
    endStep();
    std::fflush(stdout);
    const QByteArray line = u"ncx: %1\n"_s.arg(text).toUtf8();
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

void Terminal::fail(const QString &text)
{
    const QString word = u"error:"_s;
    tell(u"%1 %2"_s.arg(errorsAreColoured_ ? coloured(Style::Bad, word) : word, text));
}

bool Terminal::finish()
{
    endStep();
    if (std::fflush(stdout) != 0 && failure_ == 0)
        failure_ = errno;
    if (failure_ != 0 && failure_ != EPIPE)
        fail(u"the answer could not be written: %1"_s.arg(QString::fromLocal8Bit(std::strerror(failure_))));
    return failure_ == 0;
}
