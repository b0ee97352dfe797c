#include "ncx/usage/endsignals.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

struct Handled
{
    int signal;
    struct sigaction before = {};
};

std::array handled{Handled{SIGHUP}, Handled{SIGINT}, Handled{SIGTERM}};
std::array<int, 2> pipeEnds{-1, -1};

void tell(int /*signal*/)
{
    for (const Handled &one : handled)
        sigaction(one.signal, &one.before, nullptr);
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &byte, 1);
}

} // namespace

EndSignals::EndSignals()
{
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
        notifier_->setEnabled(false);
        Q_EMIT raised();
    });
    for (Handled &one : handled) {
        sigaction(one.signal, nullptr, &one.before);
        // What the caller has chosen to ignore stays ignored.
        if (one.before.sa_handler == SIG_IGN)
            continue;
        struct sigaction action = one.before;
        action.sa_handler = tell;
        action.sa_flags = static_cast<int>(SA_RESTART);
        sigaction(one.signal, &action, nullptr);
    }
}

EndSignals::~EndSignals()
{
    for (const Handled &one : handled)
        sigaction(one.signal, &one.before, nullptr);
    notifier_.reset();
    for (int &end : pipeEnds)
        ::close(std::exchange(end, -1));
}
