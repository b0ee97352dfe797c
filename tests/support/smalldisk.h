#pragma once

#include <csignal>

#include <sys/resource.h>

namespace TestSupport {

/// A limit on the size of files in place of a full disk, as long as it lives.
class SmallDisk
{
public:
    explicit SmallDisk(rlim_t bytes)
        : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &former_);
        const rlimit small{bytes, former_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &former_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

private:
    void (*handler_)(int);
    rlimit former_{};
};

} // namespace TestSupport
