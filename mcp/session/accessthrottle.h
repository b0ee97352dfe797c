#pragma once

#include <QtGlobal>

#include <optional>

/// Slows down a listing that is not meant for bulk reading: it is served once a minute, and each call that comes too
/// early moves the end of the wait ten seconds on.
class AccessThrottle
{
public:
    /// True if a call at this moment, in milliseconds of a clock that never goes back, may be served.
    bool admits(qint64 now)
    {
        if (served_ && now - *served_ < penalty_ + waitMs) {
            penalty_ += penaltyMs;
            return false;
        }
        served_ = now;
        penalty_ = 0;
        return true;
    }

private:
    static constexpr qint64 waitMs = 60000;
    static constexpr qint64 penaltyMs = 10000;

    std::optional<qint64> served_;
    qint64 penalty_ = 0;
};
