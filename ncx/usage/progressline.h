#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// Tells in one line, which comes and goes, what a program is busy with once that takes long.
class ProgressLine
{
public:
    /// What the line is shown with: bytes for a terminal. Called from a thread of its own.
    using Show = std::function<void(const QByteArray &)>;

    explicit ProgressLine(Show show, std::chrono::milliseconds after = std::chrono::seconds(1));
    ~ProgressLine();
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    /// Begins a step, which ends the one before.
    void begin(const QString &step);
    /// Ends a step; its line is gone when this returns.
    void end();

private:
    void watch(const std::stop_token &stop);
    void hide();

    using Clock = std::chrono::steady_clock;

    Show show_;
    std::chrono::milliseconds after_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
    QString step_;       ///< empty between steps
    quint64 number_ = 0; ///< of the step
    Clock::time_point began_;
    bool isShown_ = false;
    std::jthread thread_;
};
