#include "base/Secrets.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace zuvo;

namespace {

struct MaskingCase {
    const char* name;
    std::string text;
    std::vector<std::string> keys;
    std::string expected;
};

} // namespace

TEST(Secrets, aKeyIsMaskedWhereverItOccurs) {
    const std::string key = "made-up-key-12345";
    const std::vector<MaskingCase> cases = {
        {"alone", key, {key}, "***"},
        {"in a sentence", "Incorrect API key provided: " + key + ".", {key}, "Incorrect API key provided: ***."},
        {"within other letters", "x" + key + "y", {key}, "x***y"},
        {"twice in a row", key + key, {key}, "******"},
        {"at both ends", key + " is not " + key, {key}, "*** is not ***"},
        {"two keys", "a-first-key and a-second-key", {"a-first-key", "a-second-key"}, "*** and ***"},
        {"with the key's line end dropped", "key " + key + " refused", {" " + key + "\r\n"}, "key *** refused"},
        {"as JSON writes a slash", R"({"key":"made\/up\/key"})", {"made/up/key"}, R"({"key":"***"})"},
        {"in bytes that are no text", "\xFF" + key + "\xFE", {key}, "\xFF***\xFE"},
        {"a short key as a word", "The key abc is wrong", {"abc"}, "The key *** is wrong"},
        {"a short key in quotes", R"({"key":"k"})", {"k"}, R"({"key":"***"})"},
        {"a short key beside a part of a word", "abcd abc", {"abc"}, "abcd ***"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(withMaskedKeys(row.text, row.keys), row.expected) << row.name;
}

TEST(Secrets, aTextWithoutAKeyComesBackByteForByte) {
    const std::vector<MaskingCase> cases = {
        {"no keys", "some words", {}, ""},
        {"an empty key", "some words", {""}, ""},
        {"a blank key", "some words ", {" \n"}, ""},
        {"an empty text", "", {"made-up-key-12345"}, ""},
        {"a part of the key alone", "made-up-key-1234", {"made-up-key-12345"}, ""},
        {"a short key within words", "Testing the attests of a protest", {"test"}, ""},
        {"a short key within a word of another script", "éabcé", {"abc"}, ""},
        {"bytes that are no text", std::string("\x00\xFF\r\n\t", 5), {"made-up-key-12345"}, ""},
    };
    for (const auto& row : cases)
        EXPECT_EQ(withMaskedKeys(row.text, row.keys), row.text) << row.name;
}

TEST(Secrets, ofAKeyTwelveCharactersAreShownAtMostAndNeverAll) {
    EXPECT_EQ(shownBeginning("made-up-anthropic-key"), "made-up-anth");
    EXPECT_EQ(shownBeginning("1234567890123"), "123456789012");
    EXPECT_EQ(shownBeginning("123456789012"), "123456");
    EXPECT_EQ(shownBeginning("12345"), "12");
    EXPECT_EQ(shownBeginning("12"), "1");
    EXPECT_EQ(shownBeginning("1"), "");
    EXPECT_EQ(shownBeginning(""), "");
    EXPECT_EQ(shownBeginning("éééééééééééééé"), "éééééééééééé");
}
