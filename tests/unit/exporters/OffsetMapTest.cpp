#include "exporters/OffsetMap.h"

#include "support/SpecialNumbers.h"
#include "support/StoryRecords.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace zuvo::exporters {
namespace {

using tests::footage;
using tests::Streams;

MediaFileInfo file(const std::string& name, double duration, std::optional<std::string> startTimecode = std::nullopt) {
    return footage(name, duration, Streams::sound, std::move(startTimecode));
}

std::vector<std::string> namesInOrder(const OffsetMap& map) {
    std::vector<std::string> names;
    for (const auto& entry : map)
        names.push_back(entry.filename);
    return names;
}

struct ReadTimecode {
    const char* text;
    double seconds;
};

class TimecodeReader : public testing::TestWithParam<ReadTimecode> {};

TEST_P(TimecodeReader, givesSecondsAt24) {
    EXPECT_EQ(timecodeToSeconds(GetParam().text), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(Texts, TimecodeReader,
                         testing::Values(ReadTimecode{"00:00:00:00", 0.0}, ReadTimecode{"01:02:03:12", 3723.5},
                                         ReadTimecode{"01:02:03", 3723.0}, ReadTimecode{"1:2:3:6", 3723.25},
                                         ReadTimecode{"24:00:00:00", 86400.0}, ReadTimecode{"00:00:00:48", 2.0},
                                         // Empty pieces are none, and pieces that are no integer are dropped.
                                         ReadTimecode{":01::02:03:", 3723.0}, ReadTimecode{"01:x:02:03", 3723.0},
                                         ReadTimecode{"01:02:03;12:06", 3726.0}, ReadTimecode{"01:02:03:3.5", 3723.0},
                                         ReadTimecode{"01:02:03: 6", 3723.0},
                                         // Only four count.
                                         ReadTimecode{"01:02:03:12:99", 3723.5}, ReadTimecode{"-01:00:00:00", -3600.0},
                                         ReadTimecode{"+1:0:0:0", 3600.0}));

TEST(TimecodeReader, countsFramesAtTheRate) {
    EXPECT_EQ(timecodeToSeconds("00:00:01:15", 30.0), 1.5);
    EXPECT_EQ(timecodeToSeconds("00:00:01:15", 29.97), 1.0 + 15.0 / 29.97);
}

TEST(TimecodeReader, givesNothingForNothing) {
    EXPECT_EQ(timecodeToSeconds(std::nullopt), std::nullopt);
}

TEST(TimecodeReader, givesNothingForFewerThanThreeNumbers) {
    for (const char* text : {"", ":::", "01:02", "12", "a:b:c:d", "01:02:", "1e1:02:03", "٠١:٠٢:٠٣:٠٤"})
        EXPECT_EQ(timecodeToSeconds(text), std::nullopt) << text;
}

TEST(TimecodeReader, aDropFrameTimecodeLosesItsLastPieceAndGivesNothing) {
    EXPECT_EQ(timecodeToSeconds("01:00:00;12"), std::nullopt);
    EXPECT_EQ(timecodeToSeconds("01;00;00;12"), std::nullopt);
}

TEST(TimecodeReader, survivesHugeNumbersAndAnImpossibleRate) {
    EXPECT_EQ(timecodeToSeconds("9223372036854775807:0:0"), 9223372036854775807.0 * 3600.0);
    EXPECT_EQ(timecodeToSeconds("9223372036854775808:0:0"), std::nullopt);
    EXPECT_TRUE(std::isnan(timecodeToSeconds("00:00:00:00", 0.0).value()));
    EXPECT_TRUE(std::isinf(timecodeToSeconds("00:00:00:01", 0.0).value()));
}

TEST(BuildOffsetMap, anEmptyListGivesAnEmptyMap) {
    EXPECT_TRUE(buildOffsetMap({}).empty());
}

TEST(BuildOffsetMap, laysFilesEndToEndByStartTimecode) {
    const auto map = buildOffsetMap(
        {file("late", 30.5, "02:00:00:00"), file("early", 20.25, "01:59:00:12"), file("middle", 1.0, "01:59:59:00")});
    ASSERT_EQ(map.size(), 3U);
    EXPECT_EQ(namesInOrder(map), (std::vector<std::string>{"early", "middle", "late"}));
    EXPECT_EQ(map[0].seqStart, 0.0);
    EXPECT_EQ(map[0].seqEnd, 20.25);
    EXPECT_EQ(map[0].bwfStart, 7140.5);
    EXPECT_EQ(map[1].seqStart, 20.25);
    EXPECT_EQ(map[1].seqEnd, 21.25);
    EXPECT_EQ(map[1].bwfStart, 7199.0);
    EXPECT_EQ(map[2].seqStart, 21.25);
    EXPECT_EQ(map[2].seqEnd, 51.75);
    EXPECT_EQ(map[2].bwfStart, 7200.0);
}

TEST(BuildOffsetMap, aFileWithoutATimecodeSortsAsZero) {
    const auto map = buildOffsetMap({file("timed", 5.0, "00:00:00:01"), file("plain", 5.0), file("odd", 5.0, "noon")});
    EXPECT_EQ(namesInOrder(map), (std::vector<std::string>{"plain", "odd", "timed"}));
    EXPECT_EQ(map[0].bwfStart, 0.0);
    EXPECT_EQ(map[1].bwfStart, 0.0);
}

TEST(BuildOffsetMap, aDropFrameTimecodeCountsAsZero) {
    const auto map = buildOffsetMap({file("a", 5.0, "00:00:10:00"), file("drop", 5.0, "01:00:00;12")});
    EXPECT_EQ(namesInOrder(map), (std::vector<std::string>{"drop", "a"}));
    EXPECT_EQ(map[0].bwfStart, 0.0);
}

TEST(BuildOffsetMap, equalTimecodesKeepTheOrderGiven) {
    const auto map =
        buildOffsetMap({file("c", 1.0, "01:00:00:00"), file("b", 1.0, "00:60:00:00"), file("a", 1.0, "01:00:00:00")});
    EXPECT_EQ(namesInOrder(map), (std::vector<std::string>{"c", "b", "a"}));
}

TEST(BuildOffsetMap, isReadAt24WhateverTheFilesRate) {
    auto fast = file("fast", 1.0, "00:00:00:30");
    fast.fps = 60.0;
    EXPECT_EQ(buildOffsetMap({fast})[0].bwfStart, 1.25);
}

TEST(BuildOffsetMap, leavesNoFileOutHoweverShort) {
    const auto map = buildOffsetMap({file("a", 0.0), file("b", 0.5), file("c", 9.0)});
    ASSERT_EQ(map.size(), 3U);
    EXPECT_EQ(map[1].seqStart, 0.0);
    EXPECT_EQ(map[2].seqStart, 0.5);
    EXPECT_EQ(map[2].seqEnd, 9.5);
}

class ResolveSourceTime : public testing::Test {
protected:
    /// "a" is 0 to 10 s of mine time and starts at 1 h; "b" is 10 to 12.5 s and starts at 2 h.
    OffsetMap map = buildOffsetMap({file("a", 10.0, "01:00:00:00"), file("b", 2.5, "02:00:00:00")});

    void expectPlace(double time, const std::string& filename, double secondsFromFirstSample) const {
        const auto place = resolveSourceTime(time, map, SourceOrigin::firstSample);
        ASSERT_TRUE(place.has_value()) << time;
        EXPECT_EQ(place->filename, filename) << time;
        EXPECT_EQ(place->seconds, secondsFromFirstSample) << time;
    }
};

TEST_F(ResolveSourceTime, findsTheFileThatHoldsTheTime) {
    expectPlace(0.0, "a", 0.0);
    expectPlace(9.75, "a", 9.75);
    expectPlace(12.25, "b", 2.25);
}

TEST_F(ResolveSourceTime, theEndOfAFileBelongsToTheNextOne) {
    expectPlace(10.0, "b", 0.0);
}

TEST_F(ResolveSourceTime, theEndOfTheLastFileBelongsToIt) {
    expectPlace(12.5, "b", 2.5);
}

TEST_F(ResolveSourceTime, aTimeBehindTheEndRunsOnInTheLastFile) {
    expectPlace(100.0, "b", 90.0);
    expectPlace(1e308, "b", 1e308);
}

TEST_F(ResolveSourceTime, countsInTheFilesOwnTimecodeIfAsked) {
    EXPECT_EQ(resolveSourceTime(9.75, map, SourceOrigin::fileTimecode)->seconds, 3609.75);
    EXPECT_EQ(resolveSourceTime(10.0, map, SourceOrigin::fileTimecode)->seconds, 7200.0);
    EXPECT_EQ(resolveSourceTime(100.0, map, SourceOrigin::fileTimecode)->seconds, 7290.0);
}

TEST_F(ResolveSourceTime, givesNothingBelowZero) {
    EXPECT_FALSE(resolveSourceTime(-0.001, map, SourceOrigin::firstSample).has_value());
    EXPECT_FALSE(resolveSourceTime(-1e308, map, SourceOrigin::fileTimecode).has_value());
}

TEST_F(ResolveSourceTime, givesNothingWithoutAMap) {
    EXPECT_FALSE(resolveSourceTime(0.0, {}, SourceOrigin::firstSample).has_value());
}

TEST_F(ResolveSourceTime, givesNothingForNoNumber) {
    EXPECT_FALSE(resolveSourceTime(notANumber, map, SourceOrigin::firstSample).has_value());
}

TEST_F(ResolveSourceTime, passesOverFilesWithoutLength) {
    map = buildOffsetMap({file("empty", 0.0), file("a", 5.0), file("gone", 0.0), file("b", 5.0)});
    expectPlace(0.0, "a", 0.0);
    expectPlace(5.0, "b", 0.0);
}

TEST_F(ResolveSourceTime, takesTheFirstOfFilesThatOverlapByANegativeLength) {
    // 0 to 10, 10 to 4, 4 to 9: 5 lies in the first and in the last.
    map = buildOffsetMap({file("a", 10.0), file("backwards", -6.0), file("c", 5.0)});
    expectPlace(5.0, "a", 5.0);
    expectPlace(11.0, "c", 7.0);
}

} // namespace
} // namespace zuvo::exporters
