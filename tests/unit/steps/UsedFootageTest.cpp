#include "steps/UsedFootage.h"

#include "support/GoldenFile.h"

#include <gmock/gmock.h>
#include <limits>

namespace zuvo {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string twoTimes(const UsedSegment& range) {
    return std::to_string(range.startTime) + " " + std::to_string(range.endTime) + " " + range.text;
}

TEST(TimelineClips, areReadFromAListOfObjects) {
    const auto clips = timelineClipsOf(
        R"([{"sourceFile": "/a/é.wav", "startFrame": 86400, "endFrame": 86448.0, "duration": 2, "more": null}])");
    ASSERT_TRUE(clips);
    ASSERT_THAT(*clips, SizeIs(1));
    EXPECT_EQ(clips->front().sourceFile, "/a/é.wav");
    EXPECT_EQ(clips->front().startFrame, 86400);
    EXPECT_EQ(clips->front().endFrame, 86448);
    EXPECT_EQ(clips->front().duration, 2.0);
}

TEST(TimelineClips, anObjectThatLacksAPartOfAClipIsDropped) {
    const char* const whole = R"({"sourceFile": "/a", "startFrame": 0, "endFrame": 1, "duration": 0.5})";
    for (const char* broken : {R"({"startFrame": 0, "endFrame": 1, "duration": 0.5})",
                               R"({"sourceFile": "/a", "endFrame": 1, "duration": 1})",
                               R"({"sourceFile": "/a", "startFrame": 0.5, "endFrame": 1, "duration": 0.5})",
                               R"({"sourceFile": "/a", "startFrame": 0, "endFrame": null, "duration": 0.5})",
                               R"({"sourceFile": "/a", "startFrame": 0, "endFrame": 1, "duration": "0.5"})",
                               R"({"sourceFile": null, "startFrame": 0, "endFrame": 1, "duration": 0.5})", "{}"}) {
        const auto clips = timelineClipsOf(std::string("[") + broken + ", " + whole + "]");
        ASSERT_TRUE(clips) << broken;
        EXPECT_THAT(*clips, SizeIs(1)) << broken;
    }
}

TEST(TimelineClips, anEmptyTimelineIsAnEmptyList) {
    const auto clips = timelineClipsOf("[]");
    ASSERT_TRUE(clips);
    EXPECT_THAT(*clips, IsEmpty());
}

TEST(TimelineClips, whatIsNoListOfObjectsIsNothing) {
    for (const char* text : {"", "[", "{}", "null", "[1]", "[{}, 2]", "[[]]", "\"[]\"", "[NaN]"})
        EXPECT_FALSE(timelineClipsOf(text)) << text;
}

TEST(UsedFootage, theFirstFileInTextOrderStartsAtZeroWhateverTheOrderGiven) {
    const auto used = mapTimelineClipsToTranscript({{"/a.wav", 24, 60, 1.5}}, {"/b.wav", "/a.wav"});
    ASSERT_THAT(used, SizeIs(1));
    EXPECT_EQ(twoTimes(used[0]), "1.000000 2.500000 ");
}

TEST(UsedFootage, theSecondFileStartsAt300WhateverTheLengthOfTheFirst) {
    const auto used = mapTimelineClipsToTranscript({{"/b.wav", 48, 72, 1.0}}, {"/a.wav", "/b.wav"});
    ASSERT_THAT(used, SizeIs(1));
    EXPECT_EQ(twoTimes(used[0]), "302.000000 303.000000 ");
}

TEST(UsedFootage, theTimelinesOwnStartIsCountedIn) {
    const auto used = mapTimelineClipsToTranscript({{"/a.wav", 86400, 86424, 1.0}}, {"/a.wav"});
    EXPECT_EQ(used.at(0).startTime, 3600.0);
    EXPECT_EQ(used.at(0).endTime, 3601.0);
}

TEST(UsedFootage, clipsOfOtherFilesAreLeftOut) {
    EXPECT_THAT(mapTimelineClipsToTranscript({{"/A.wav", 0, 24, 1.0}}, {"/a.wav"}), IsEmpty());
    EXPECT_THAT(mapTimelineClipsToTranscript({{"/a.wav", 0, 24, 1.0}}, {}), IsEmpty());
}

TEST(UsedFootage, theLargestFrameNumbersStayNumbers) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const auto used = mapTimelineClipsToTranscript({{"/a.wav", -most, most, 0.0}}, {"/a.wav"});
    EXPECT_LT(used.at(0).startTime, used.at(0).endTime);
}

TEST(CoverageOfACut, isTheUsedShareOfTheTranscript) {
    const auto coverage = coverageOf({{10.0, 20.0, {}}, {30.0, 35.0, {}}}, {{0.0, 50.0, "a", "en"}});
    EXPECT_EQ(coverage.usedSeconds, 15.0);
    EXPECT_EQ(coverage.totalSeconds, 50.0);
    EXPECT_EQ(coverage.percent, 30.0);
}

TEST(CoverageOfACut, aClipOnTwoTracksCountsTwiceAndCanExceedTheWhole) {
    EXPECT_EQ(coverageOf({{0.0, 40.0, {}}, {0.0, 40.0, {}}}, {{0.0, 50.0, "a", "en"}}).percent, 160.0);
}

TEST(CoverageOfACut, withoutTranscriptLinesOneSecondIsTheWhole) {
    EXPECT_EQ(coverageOf({{0.0, 2.0, {}}}, {}).percent, 200.0);
    EXPECT_EQ(coverageOf({}, {}).percent, 0.0);
}

TEST(MarkedTranscript, aLineIsUsedIfItLiesWhollyInsideOneRange) {
    const std::vector<TranscriptSegment> lines = {{11.0, 20.0, "whole", "en"}, {12.0, 19.95, "inside", "en"}};
    EXPECT_EQ(markedTranscript(lines, {{11.0, 20.0, {}}}),
              "[USED] [11.0s → 20.0s] whole\n[USED] [12.0s → 19.9s] inside\n");
}

TEST(MarkedTranscript, aLineThatARangeMeetsInPartIsUnused) {
    EXPECT_EQ(markedTranscript({{10.0, 12.0, "a", "en"}}, {{11.0, 20.0, {}}}), "[UNUSED] [10.0s → 12.0s] a\n");
}

TEST(MarkedTranscript, twoRangesThatOnlyTogetherHoldALineDoNotUseIt) {
    EXPECT_EQ(markedTranscript({{10.0, 12.0, " a ", "en"}}, {{9.0, 11.0, {}}, {11.0, 13.0, {}}}),
              "[UNUSED] [10.0s → 12.0s]  a \n");
}

TEST(MarkedTranscript, isEmptyWithoutLines) {
    EXPECT_EQ(markedTranscript({}, {{0.0, 1.0, {}}}), "");
}

TEST(AuditPrompt, isThisTextToTheByte) {
    const std::vector<TranscriptSegment> lines = {{0.0, 10.0, "Are we rolling? {clips}", "en"},
                                                  {10.0, 12.5, "The boat – \"our boat\".", "en"},
                                                  {50.0, 60.2, " Yes.", "en"}};
    const std::vector<UsedSegment> used = {{10.0, 20.0, {}}, {50.0, 52.5, {}}};
    tests::expectGolden(auditPrompt(3, coverageOf(used, lines), markedTranscript(lines, used)),
                        "prompts/audit_of_three_clips.txt");
}

TEST(AuditPrompt, reportsMoreThanAHundredPercentAsItIs) {
    const auto prompt = auditPrompt(2, {80.0, 50.0, 160.0}, "");
    EXPECT_THAT(prompt, HasSubstr("- They used 160% of the total footage (80.0s out of 50s)\n"));
    EXPECT_THAT(prompt, HasSubstr("\n    \"coveragePercent\": 160.0,\n"));
}

TEST(AuditPrompt, endsInTheClosingBrace) {
    EXPECT_THAT(auditPrompt(0, {}, ""), EndsWith("\n    \"summary\": \"Overall assessment...\"\n}"));
}

} // namespace
} // namespace zuvo
