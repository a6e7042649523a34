#pragma once

#include "base/Files.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace zuvo::tests {

/// Compares a text with a file under tests/golden/ to the byte. On a mismatch the actual text is left beside the
/// expected one, with ".actual" behind its name. No switch makes a golden: each one is written by hand.
inline void expectGolden(const std::string& actual, const std::string& name) {
    const auto path = std::string(ZUVO_TEST_FOLDER) + "/golden/" + name;
    const auto expected = readFile(path);
    ASSERT_TRUE(expected.has_value()) << path;
    if (actual != *expected) {
        EXPECT_TRUE(replaceFileAtomically(path + ".actual", actual));
    } else {
        std::filesystem::remove(path + ".actual");
    }
    EXPECT_EQ(actual, *expected);
}

} // namespace zuvo::tests
