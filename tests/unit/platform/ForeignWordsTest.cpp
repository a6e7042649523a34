#include "platform/ForeignWords.h"

#include <gmock/gmock.h>

using namespace zuvo;

TEST(ForeignWords, controlCharactersAreShownAsReplaced) {
    EXPECT_EQ(harmlessText("a\x1B[0m\nb\x7F"), "a\uFFFD[0m\uFFFDb\uFFFD");
    EXPECT_EQ(harmlessText("a\xC2\x9B"
                           "b"),
              "a\uFFFDb"); // U+009B, which terminals take for an escape
    EXPECT_EQ(harmlessText("\xFF"), "\uFFFD");
    EXPECT_EQ(harmlessText("naïve 日本 👩‍🚀 "), "naïve 日本 👩‍🚀 ");
}

TEST(ForeignWords, oneLineHasNoLineEnds) {
    EXPECT_EQ(oneLine("  a\r\n\tb  c\n"), "a b c");
    EXPECT_EQ(oneLine(" \n"), "");
    EXPECT_EQ(oneLine(std::string(500, 'x')), std::string(500, 'x'));
    EXPECT_EQ(oneLine(std::string(501, 'x')), std::string(500, 'x'));
}
