#pragma once

#include <csignal>
#include <cstddef>
#include <sys/resource.h>

namespace zuvo::tests {

/// While it lives, no file of this process grows beyond so many bytes: a full disk, for root too.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::size_t bytes) {
        (void)std::signal(SIGXFSZ, SIG_IGN); // as the programs do
        getrlimit(RLIMIT_FSIZE, &m_before);
        auto limited = m_before;
        limited.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        (void)std::signal(SIGXFSZ, SIG_DFL);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
};

} // namespace zuvo::tests
