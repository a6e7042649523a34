#include "platform/ForeignWords.h"

#include <gmock/gmock.h>

using namespace zuvo;

TEST(ForeignWords, oneLineHasNoLineEnds) {
    EXPECT_EQ(oneLine("  a\r\n\tb  c\n"), "a b c");
    EXPECT_EQ(oneLine(" \n"), "");
    EXPECT_EQ(oneLine(std::string(500, 'x')), std::string(500, 'x'));
    EXPECT_EQ(oneLine(std::string(501, 'x')), std::string(500, 'x'));
}

TEST(ForeignWords, aPageShowsFiveHundredCharactersAtMost) {
    EXPECT_EQ(pageText(""), "");
    EXPECT_EQ(pageText("two\nlines"), "two\nlines");
    EXPECT_EQ(pageText(std::string(500, 'x')), std::string(500, 'x'));
    EXPECT_EQ(pageText(std::string(501, 'x')), std::string(499, 'x') + "…");
    EXPECT_EQ(pageText(std::string(20'000'000, 'x')), std::string(499, 'x') + "…");
}

TEST(ForeignWords, charactersOfSeveralCodePointsCountAsOneOnAPage) {
    const auto times = [](int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    EXPECT_EQ(pageText(times(500, "👩‍🚀")), times(500, "👩‍🚀"));
    EXPECT_EQ(pageText(times(501, "é")), times(499, "é") + "…");
}

TEST(ForeignWords, aCharacterPiledUpOutOfAMillionAccentsIsCut) {
    std::string pile = "a";
    for (int i = 0; i < 1'000'000; ++i)
        pile += "\u0301";
    const auto shown = pageText(pile);
    EXPECT_LE(shown.size(), 10'000U);
    EXPECT_TRUE(shown.ends_with("…"));
}
