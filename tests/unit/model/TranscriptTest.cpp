#include "model/Transcript.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(WhisperResponse, withoutALanguageItsLinesAreInAnUnknownOne) {
    const auto decoded =
        decodeRecordText<WhisperResponse>(R"({"text":"a b","segments":[{"start":0,"end":1,"text":" a"}]})");
    ASSERT_TRUE(decoded.value.has_value()) << decoded.failure;
    const auto lines = decoded.value->asTranscriptSegments();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].language, "unknown");
}

TEST(WhisperResponse, withoutSegmentsDoesNotDecode) {
    const auto decoded = decodeRecordText<WhisperResponse>(R"({"text":"a b","language":"english"})");
    EXPECT_FALSE(decoded.value.has_value());
    EXPECT_EQ(decoded.failure, "segments is missing");
}

TEST(WhisperResponse, givesItsLinesInOrderWithTimesAndTextsAsTheyStand) {
    const WhisperResponse response{"all", "german", {{5.0, 6.5, " zwei "}, {0.25, 1.0, ""}}};
    const auto lines = response.asTranscriptSegments();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].start, 5.0);
    EXPECT_EQ(lines[0].end, 6.5);
    EXPECT_EQ(lines[0].text, " zwei ");
    EXPECT_EQ(lines[0].language, "german");
    EXPECT_EQ(lines[1].start, 0.25);
    EXPECT_EQ(lines[1].text, "");
}

TEST(WhisperResponse, withoutAnyLineGivesNone) {
    EXPECT_TRUE((WhisperResponse{"", std::nullopt, {}}.asTranscriptSegments().empty()));
}

} // namespace
} // namespace zuvo
