#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace zuvo::fuzzing {

/// Ends the process where something that must always hold does not, so that libFuzzer keeps the input.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace zuvo::fuzzing

/// Defines the entry point of a target: the body that follows reads the input as `text`.
#define ZUVO_FUZZ_TARGET                                                                                               \
    static void fuzzOne(std::string_view text);                                                                        \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {                                \
        fuzzOne({reinterpret_cast<const char*>(data), size});                                                          \
        return 0;                                                                                                      \
    }                                                                                                                  \
    static void fuzzOne(std::string_view text)
