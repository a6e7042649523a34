#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace zuvo::tests {

/// The bytes of tests/golden/{name}. A missing file fails the running test.
inline std::string goldenText(const std::string& name) {
    const std::filesystem::path path = std::filesystem::path(ZUVO_TEST_FOLDER) / "golden" / name;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        ADD_FAILURE() << "no golden file " << path;
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

/// Compares byte for byte. A mismatch prints the difference and leaves what was made beside the golden file, as
/// {name}.actual, for the eye; golden files themselves are only ever changed by hand.
inline void expectGolden(const std::string& actual, const std::string& name) {
    const auto expected = goldenText(name);
    const std::filesystem::path beside = std::filesystem::path(ZUVO_TEST_FOLDER) / "golden" / (name + ".actual");
    EXPECT_EQ(actual, expected) << "golden file " << name;
    if (actual == expected) {
        std::error_code ignored;
        std::filesystem::remove(beside, ignored);
        return;
    }
    std::ofstream(beside, std::ios::binary) << actual;
}

} // namespace zuvo::tests
