#include "steps/ExportTexts.h"

#include "support/GoldenFile.h"

#include <gtest/gtest.h>

namespace zuvo {
namespace {

StorySegment segment(std::int64_t index, double start, double end, const std::string& text) {
    return {index, start, end, "A.wav", "lo que se dijo", text, std::nullopt};
}

/// `count` words of half a second each, without pauses, the first at `start`.
std::vector<WordTimestamp> steadyWords(std::size_t count, double start = 0.0) {
    std::vector<WordTimestamp> words;
    for (std::size_t i = 0; i < count; ++i) {
        const double begin = start + 0.5 * static_cast<double>(i);
        words.push_back({"palabra", begin, begin + 0.5});
    }
    return words;
}

std::string card(int number, const std::string& times, const std::string& words) {
    return std::to_string(number) + "\n" + times + "\n" + words + "\n\n";
}

TEST(SubtitlesByWords, tenDisplayWordsOnFiveSpokenWordsCloseACardAtSix) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "a b c d e f g h i j")}, {{1, steadyWords(5)}}),
              card(1, "00:00:00,000 --> 00:00:01,500", "a b c d e f") +
                  card(2, "00:00:01,500 --> 00:00:02,500", "g h i j"));
}

TEST(SubtitlesByWords, threeDisplayWordsOnNineSpokenWordsCloseAtTheFirstPauseFromTheThirdWordOn) {
    auto words = steadyWords(9);
    for (std::size_t i = 5; i < words.size(); ++i) {
        words[i].start += 0.5;
        words[i].end += 0.5;
    }
    // The pause stands behind the fifth word, which ends at 2.5 s; the words behind it make no further card.
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "a b c")}, {{1, words}}),
              card(1, "00:00:00,000 --> 00:00:02,500", "a b c"));
}

TEST(SubtitlesByWords, threeDisplayWordsOnNineSpokenWordsWithoutAPauseCloseAtTheLast) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "a b c")}, {{1, steadyWords(9)}}),
              card(1, "00:00:00,000 --> 00:00:04,500", "a b c"));
}

TEST(SubtitlesByWords, wordsThatAllLieBeyondTheMomentGiveOneCardFromTheStartOfTheCut) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 4, ""), segment(2, 50, 53, "a b c d e f g h")},
                            {{2, {{"x", 3.0, 4.25}, {"y", 4.25, 5.0}}}}),
              card(1, "00:00:00,300 --> 00:00:04,000", "lo que se dijo") +
                  card(2, "00:00:00,000 --> 00:00:07,000", "a b c d e f g h"));
}

TEST(SubtitlesByWords, aWordThatEndsAtExactlyOneSecondBeyondStillCounts) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 2, "a b c")}, {{1, {{"x", 0.5, 3.0}}}}),
              card(1, "00:00:00,500 --> 00:00:02,000", "a b c"));
    EXPECT_EQ(subtitlesText({segment(1, 0, 2, "a b c")}, {{1, {{"x", 0.5, 3.0625}}}}),
              card(1, "00:00:00,000 --> 00:00:02,000", "a b c"));
}

TEST(SubtitlesByWords, aPauseOfExactlyTheLimitClosesNoCard) {
    // 0.3 - 0.0 is exactly the limit; the word in front of the pause is the third.
    const std::vector<WordTimestamp> atTheLimit = {
        {"x", -3.0, -2.0}, {"y", -2.0, -1.0}, {"z", -1.0, 0.0}, {"w", 0.3, 1.0}};
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "a b c d")}, {{1, atTheLimit}}),
              card(1, "00:00:-3,000 --> 00:00:01,000", "a b c d"));
    auto above = atTheLimit;
    above[3].start = 0.3125;
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "a b c d")}, {{1, above}}),
              card(1, "00:00:-3,000 --> 00:00:00,000", "a b c") + card(2, "00:00:00,312 --> 00:00:01,000", "d"));
}

TEST(SubtitlesByWords, twoWordsWaitThroughAPause) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "a b c")}, {{1, {{"x", 0, 0.5}, {"y", 0.5, 1}, {"z", 5, 6}}}}),
              card(1, "00:00:00,000 --> 00:00:06,000", "a b c"));
}

TEST(SubtitlesByWords, aFullCardClosesWithoutAPause) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "a b c d e f g")}, {{1, steadyWords(7)}}),
              card(1, "00:00:00,000 --> 00:00:02,500", "a b c d e") + card(2, "00:00:02,500 --> 00:00:03,500", "f g"));
}

TEST(SubtitlesByWords, roundingCanKeepTheLastWordBackForACardOfItsOwn) {
    // 11 display words on 10 spoken ones: ten steps of 1.1 add up to a little under 11.
    EXPECT_EQ(subtitlesText({segment(1, 0, 6, "a b c d e f g h i j k")}, {{1, steadyWords(10)}}),
              card(1, "00:00:00,000 --> 00:00:02,500", "a b c d e") +
                  card(2, "00:00:02,500 --> 00:00:05,000", "f g h i j") +
                  card(3, "00:00:05,000 --> 00:00:06,000", "k"));
}

TEST(SubtitlesByWords, aCardEndsNoLaterThanItsMoment) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 2, "a b")}, {{1, {{"x", 0.5, 1.0}, {"y", 1.25, 2.75}}}}),
              card(1, "00:00:00,500 --> 00:00:02,000", "a b"));
}

TEST(SubtitlesByWords, aBlankDisplayTextGivesNoCard) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 5, "   ")}, {{1, steadyWords(5)}}), "");
}

TEST(SubtitlesByWords, theFirstEntryOfAnIndexIsTaken) {
    EXPECT_EQ(
        subtitlesText({segment(1, 0, 5, "a")}, {{2, steadyWords(1)}, {1, steadyWords(1, 1.0)}, {1, steadyWords(1)}}),
        card(1, "00:00:01,000 --> 00:00:01,500", "a"));
}

TEST(SubtitlesEvenly, aShortMomentOfTenWordsIsOneCardThatEndsWithIt) {
    EXPECT_EQ(subtitlesText({segment(1, 100, 102, "a b c d e f g h i j")}, {}),
              card(1, "00:00:00,300 --> 00:00:02,000", "a b c d e f g h i j"));
}

TEST(SubtitlesEvenly, sevenSecondsAndFourWordsAreTwoCards) {
    // Shares of 3.5 s: 0.3 to 3.6, and 3.8 to the end at 7, since 7.1 lies behind it. In doubles 3.6 and 3.8 come out a
    // hair lower, and milliseconds are truncated.
    EXPECT_EQ(subtitlesText({segment(1, 0, 7, "a b c d")}, {}),
              card(1, "00:00:00,300 --> 00:00:03,599", "a b c") + card(2, "00:00:03,799 --> 00:00:07,000", "d"));
}

TEST(SubtitlesEvenly, aMomentWithAnEmptyWordListIsCutEvenly) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 2, "a")}, {{1, {}}, {1, steadyWords(1)}}),
              card(1, "00:00:00,300 --> 00:00:02,000", "a"));
}

TEST(SubtitlesEvenly, noWordsGiveNoCardButKeepTheirPlaceOnTheCut) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 10, "  "), segment(2, 50, 52, "a")}, {}),
              card(1, "00:00:10,300 --> 00:00:12,000", "a"));
}

TEST(Subtitles, aMomentWithAnEmptyTranslationShowsItsTranscript) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 5, "")}, {{1, steadyWords(4)}}),
              card(1, "00:00:00,000 --> 00:00:02,000", "lo que se dijo"));
}

TEST(Subtitles, aTranslationOfBlanksIsNotEmpty) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 5, " ")}, {}), "");
}

TEST(Subtitles, onlyBlanksSeparateWords) {
    EXPECT_EQ(subtitlesText({segment(1, 0, 2, "  a\tb   c\nd\u00A0e ")}, {}),
              card(1, "00:00:00,300 --> 00:00:02,000", "a\tb c\nd\u00A0e"));
}

TEST(Subtitles, noMomentsGiveAnEmptyText) {
    EXPECT_EQ(subtitlesText({}, {{1, steadyWords(3)}}), "");
}

TEST(Subtitles, aWholeStory) {
    const std::vector<StorySegment> story = {
        segment(7, 100, 110, "We never planned to stay here for the whole summer"),
        {3, 40, 47, "B.wav", "Eso fue todo amigos", "", "Two"},
        segment(9, 200, 203, "Nobody heard it"),
        segment(4, 300, 302, "one two three four five six seven eight nine ten"),
        segment(12, 10, 16, "The rain stopped"),
        segment(13, 3600, 3602, "It ends here now"),
    };
    const std::vector<WordSegment> words = {
        {9, {{"x", 3.5, 4.5}, {"y", 4.5, 5.0}}},
        {7,
         {{"Nunca", 0.5, 1.0}, {"pensamos", 1.0, 1.5}, {"quedarnos", 1.5, 2.0}, {"todo", 2.5, 3.0}, {"x", 3.0, 3.5}}},
        {4, {}},
        {12,
         {{"a", 0.25, 0.5},
          {"b", 0.5, 1.0},
          {"c", 1.0, 1.5},
          {"d", 1.5, 2.0},
          {"e", 2.5, 3.0},
          {"f", 3.0, 3.5},
          {"g", 3.5, 4.0},
          {"h", 4.0, 4.5},
          {"i", 4.5, 5.0}}},
        {13, {{"a", 0.5, 1.0}, {"b", 1.25, 2.75}}},
    };
    tests::expectGolden(subtitlesText(story, words), "export/subtitles.srt");
}

} // namespace
} // namespace zuvo
