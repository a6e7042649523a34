#include "steps/LegacyChunks.h"

#include <gtest/gtest.h>

namespace zuvo {
namespace {

TEST(LegacyChunksMatch, aChunkNameThatContainsTheMediaNameMatches) {
    EXPECT_TRUE(legacyChunksMatch({"x_Interview_01_mov_chunk_0.json"}, {"/footage/Interview_01.mov"}));
    EXPECT_FALSE(legacyChunksMatch({"x_Interview_01_mp4_chunk_0.json"}, {"/footage/Interview_01.mov"}));
}

TEST(LegacyChunksMatch, aMediaNameThatContainsTheChunkNameLessItsLastPieceMatches) {
    // "take_2_0" without its last piece is "take_2", which "take_2_long_version_mov" contains.
    EXPECT_TRUE(legacyChunksMatch({"take_2_0.json"}, {"/footage/take_2.long.version.mov"}));
}

TEST(LegacyChunksMatch, onlyTheLastPieceIsDropped) {
    EXPECT_FALSE(legacyChunksMatch({"take_2_0_1.json"}, {"/footage/take_2.mov"}));
}

TEST(LegacyChunksMatch, aChunkNameOfOnePieceMatchesEveryMedia) {
    EXPECT_TRUE(legacyChunksMatch({"chunk.json"}, {"/footage/entirely-different.mov"}));
}

TEST(LegacyChunksMatch, theBareNameMatchesWithHyphensAsUnderscores) {
    // Media "ZOOM-0001.WAV" gives "ZOOM_0001"; its dotted form "ZOOM-0001_WAV" is in no chunk name.
    EXPECT_TRUE(legacyChunksMatch({"x_ZOOM_0001_part_3.json"}, {"/footage/ZOOM-0001.WAV"}));
    EXPECT_TRUE(legacyChunksMatch({"x-ZOOM-0001-part_3.json"}, {"/footage/ZOOM-0001.wav"}));
}

TEST(LegacyChunksMatch, otherExtensionsStayInTheBareName) {
    // Bare name "ZOOM_0001.mp3" stands in no chunk name, and neither does "ZOOM-0001_mp3".
    EXPECT_FALSE(legacyChunksMatch({"x_ZOOM_0001_part_3.json"}, {"/footage/ZOOM-0001.mp3"}));
    EXPECT_FALSE(legacyChunksMatch({"x_ZOOM_0001_part_3.json"}, {"/footage/ZOOM-0001.Wav"}));
}

TEST(LegacyChunksMatch, caseCounts) {
    EXPECT_FALSE(legacyChunksMatch({"x_zoom_0001_part_3.json"}, {"/footage/ZOOM-0001.WAV"}));
}

TEST(LegacyChunksMatch, oneMatchingPairIsEnough) {
    EXPECT_TRUE(legacyChunksMatch({"other_part_0.json", "x_b_roll_part_0.json"}, {"/f/none.mov", "/f/b-roll.wav"}));
    EXPECT_FALSE(legacyChunksMatch({"other_part_0.json", "x_b_roll_part_0.json"}, {"/f/none.mov", "/f/c-roll.wav"}));
}

TEST(LegacyChunksMatch, aNameContainsAnEmptyText) {
    // ".wav" leaves an empty bare name.
    EXPECT_TRUE(legacyChunksMatch({"some_part_0.json"}, {"/footage/.wav"}));
    EXPECT_TRUE(legacyChunksMatch({"some_part_0.json"}, {""}));
}

TEST(LegacyChunksMatch, withoutChunksOrMediaThereIsNoMatch) {
    EXPECT_FALSE(legacyChunksMatch({}, {"/footage/a.wav"}));
    EXPECT_FALSE(legacyChunksMatch({"chunk.json"}, {}));
    EXPECT_FALSE(legacyChunksMatch({}, {}));
}

TEST(LegacyChunkLines, timesStandAsTheyAreAndTheLanguageIsFixed) {
    const auto lines = legacyChunkLines(
        R"({"language":"en","segments":[{"start":300.5,"end":302,"text":" Hola. ","id":1},{"start":1,"end":2,"text":""}]})");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].start, 300.5);
    EXPECT_EQ(lines[0].end, 302.0);
    EXPECT_EQ(lines[0].text, " Hola. ");
    EXPECT_EQ(lines[0].language, "es");
    EXPECT_EQ(lines[1].start, 1.0);
    EXPECT_EQ(lines[1].text, "");
    EXPECT_EQ(lines[1].language, "es");
}

TEST(LegacyChunkLines, aTimeThatIsMissingOrNoNumberIsZero) {
    const auto lines = legacyChunkLines(
        R"({"segments":[{"text":"a"},{"start":"4","end":null,"text":"b"},{"start":true,"end":[],"text":"c"}]})");
    ASSERT_EQ(lines.size(), 3U);
    for (const auto& line : lines) {
        EXPECT_EQ(line.start, 0.0) << line.text;
        EXPECT_EQ(line.end, 0.0) << line.text;
    }
}

TEST(LegacyChunkLines, anElementWithoutTextIsPassedOver) {
    const auto lines = legacyChunkLines(
        R"({"segments":[{"start":1,"end":2},{"start":1,"end":2,"text":7},{"start":3,"end":4,"text":"kept"}]})");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, "kept");
}

TEST(LegacyChunkLines, otherTextsGiveNone) {
    for (const auto* text : {"", "no json", "[]", "7", "null", "{}", R"({"segments":{}})", R"({"segments":null})",
                             R"({"segments":[]})", R"({"segments":[{"text":"a"},7]})", R"([{"text":"a"}])"})
        EXPECT_TRUE(legacyChunkLines(text).empty()) << text;
}

} // namespace
} // namespace zuvo
