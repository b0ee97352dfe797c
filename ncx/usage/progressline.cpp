#include "ncx/usage/progressline.h"

#include <utility>

using namespace Qt::StringLiterals;

ProgressLine::ProgressLine(Show show, std::chrono::milliseconds after)
    : show_(std::move(show))
    , after_(after)
    , thread_([this](const std::stop_token &stop) { watch(stop); })
{
}

ProgressLine::~ProgressLine()
{
    end();
    thread_.request_stop();
    thread_.join();
}

void ProgressLine::begin(const QString &step)
{
    const std::scoped_lock lock(mutex_);
    hide();
    step_ = step;
    ++number_;
    began_ = Clock::now();
    changed_.notify_all();
}

void ProgressLine::end()
{
    begin({});
}

/// With the lock held.
void ProgressLine::hide()
{
    if (std::exchange(isShown_, false))
        show_("\r\x1b[K");
}

void ProgressLine::watch(const std::stop_token &stop)
{
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        if (!changed_.wait(lock, stop, [this] { return !step_.isEmpty(); }))
            return;
        const quint64 number = number_;
        const auto isOver = [this, number] { return number_ != number; };
        for (auto next = began_ + after_; !changed_.wait_until(lock, stop, next, isOver) && !stop.stop_requested();
             next += std::chrono::seconds(1)) {
            const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - began_).count();
            show_(u"\rncx: %1 (%2 s)\x1b[K"_s.arg(step_).arg(seconds).toUtf8());
            isShown_ = true;
        }
    }
}
