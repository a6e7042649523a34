#pragma once

#include <cstddef>
#include <filesystem>
#include <malloc.h>
#include <string>

#ifdef __SANITIZE_ADDRESS__
/// Of the sanitizers' own interface, whose header GCC does not bring.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(); // NOLINT(bugprone-reserved-identifier)
#endif

namespace zuvo::tests {

/// Bytes that this process has asked for and not given back.
inline std::size_t heldBytes() {
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    const auto memory = mallinfo2();
    return memory.uordblks + memory.hblkhd;
#endif
}

/// Files, sockets and pipes that a process has open; this one's own if none is named.
inline std::size_t openFileCount(const std::string& process = "self") {
    std::size_t count = 0;
    std::error_code gone;
    for (std::filesystem::directory_iterator file("/proc/" + process + "/fd", gone), end; !gone && file != end;
         file.increment(gone))
        ++count;
    return count;
}

} // namespace zuvo::tests
