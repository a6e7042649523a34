#include "steps/ClipMap.h"

#include "support/GoldenFile.h"

#include <gtest/gtest.h>

#include <limits>

namespace zuvo {
namespace {

Json parsed(const char* text) {
    return Json::parse(text);
}

void expectMap(const std::vector<ClipMapEntry>& map, const std::vector<ClipMapEntry>& expected) {
    ASSERT_EQ(map.size(), expected.size());
    for (std::size_t i = 0; i < map.size(); ++i) {
        EXPECT_EQ(map[i].name, expected[i].name) << i;
        EXPECT_EQ(map[i].start, expected[i].start) << i;
        EXPECT_EQ(map[i].end, expected[i].end) << i;
    }
}

StorySegment segmentAt(double startTime, const std::string& sourceClip) {
    return {1, startTime, startTime + 5.0, sourceClip, "hola", "hello", "One"};
}

std::string clipOf(double startTime, const std::vector<ClipMapEntry>& map) {
    MiningResults analysis;
    analysis.segments = {segmentAt(startTime, "old.wav")};
    return withSourceClips(analysis, map).segments[0].sourceClip;
}

const std::vector<ClipMapEntry> twoClips = {{"A.wav", 0.0, 20.0}, {"B.wav", 20.0, 31.0}};

TEST(ClipMap, sourcesLieEndToEndByStartTimecodeWhateverTheirGaps) {
    const auto cache = parsed(R"({"late.wav":{"duration":20,"startTimecodeSeconds":7200.5},
        "early.wav":{"duration":11.5,"startTimecodeSeconds":3600},"unused.wav":{"duration":99}})");
    expectMap(clipMapFromProbeCache(cache, {"/f/late.wav", "/g/early.wav"}),
              {{"early.wav", 0.0, 11.5}, {"late.wav", 11.5, 31.5}});
}

TEST(ClipMap, aProbedDurationOfExactlyTenIsLeftOut) {
    const auto cache = parsed(R"({"ten.wav":{"duration":10.0},"over.wav":{"duration":10.000001}})");
    expectMap(clipMapFromProbeCache(cache, {"/f/ten.wav", "/f/over.wav"}), {{"over.wav", 0.0, 10.000001}});
}

TEST(ClipMap, aMissingOrNullStartTimecodeCountsAsZero) {
    const auto cache = parsed(R"({"a.wav":{"duration":30,"startTimecodeSeconds":5},
        "b.wav":{"duration":20,"startTimecodeSeconds":null},"c.wav":{"duration":15},
        "d.wav":{"duration":12,"startTimecodeSeconds":"9"},"e.wav":{"duration":11,"startTimecodeSeconds":-1}})");
    expectMap(clipMapFromProbeCache(cache, {"/f/a.wav", "/f/b.wav", "/f/c.wav", "/f/d.wav", "/f/e.wav"}),
              {{"e.wav", 0.0, 11.0},
               {"b.wav", 11.0, 31.0},
               {"c.wav", 31.0, 46.0},
               {"d.wav", 46.0, 58.0},
               {"a.wav", 58.0, 88.0}});
}

TEST(ClipMap, equalStartTimecodesKeepTheOrderGiven) {
    const auto cache = parsed(R"({"a.wav":{"duration":11},"b.wav":{"duration":12},"c.wav":{"duration":13}})");
    expectMap(clipMapFromProbeCache(cache, {"/f/c.wav", "/f/a.wav", "/f/b.wav"}),
              {{"c.wav", 0.0, 13.0}, {"a.wav", 13.0, 24.0}, {"b.wav", 24.0, 36.0}});
}

TEST(ClipMap, manyEqualStartTimecodesKeepTheOrderGiven) {
    auto cache = Json::object();
    std::vector<std::string> paths;
    std::vector<ClipMapEntry> expected;
    for (int i = 0; i < 100; ++i) {
        const auto name = std::to_string(i * 37 % 100) + ".wav";
        cache[name] = {{"duration", 20.0}, {"startTimecodeSeconds", 3600.0}};
        paths.push_back("/f/" + name);
        expected.push_back({name, 20.0 * i, 20.0 * (i + 1)});
    }
    expectMap(clipMapFromProbeCache(cache, paths), expected);
}

TEST(ClipMap, entriesWithoutAUsableDurationAreLeftOut) {
    const auto cache = parsed(R"({"a.wav":{},"b.wav":{"duration":null},"c.wav":{"duration":"30"},
        "d.wav":{"duration":true},"e.wav":{"duration":-30},"f.wav":{"duration":30}})");
    expectMap(clipMapFromProbeCache(
                  cache, {"/f/a.wav", "/f/b.wav", "/f/c.wav", "/f/d.wav", "/f/e.wav", "/f/f.wav", "/f/absent.wav"}),
              {{"f.wav", 0.0, 30.0}});
}

TEST(ClipMap, aPathGivenTwiceStandsTwice) {
    const auto cache = parsed(R"({"a.wav":{"duration":20}})");
    expectMap(clipMapFromProbeCache(cache, {"/f/a.wav", "/g/a.wav"}), {{"a.wav", 0.0, 20.0}, {"a.wav", 20.0, 40.0}});
}

TEST(ClipMap, aCacheOfAnotherFormCountsAsEmpty) {
    for (const auto* text : {"null", "[]", "7", R"("a.wav")", R"([{"duration":20}])", R"({"a.wav":20})",
                             R"({"a.wav":{"duration":20},"b.wav":[]})"})
        EXPECT_TRUE(clipMapFromProbeCache(parsed(text), {"/f/a.wav"}).empty()) << text;
}

TEST(ClipMap, measuredDurationsKeepTheOrderGivenAndLeaveShortOnesOut) {
    expectMap(clipMapFromDurations({{"b.wav", 20.0},
                                    {"ten.wav", 10.0},
                                    {"nan.wav", std::numeric_limits<double>::quiet_NaN()},
                                    {"a.wav", 11.5}}),
              {{"b.wav", 0.0, 20.0}, {"a.wav", 20.0, 31.5}});
    EXPECT_TRUE(clipMapFromDurations({}).empty());
}

TEST(ClipMapLogLine, timesAreRoundedButShownAsFloatingNumbers) {
    EXPECT_EQ(clipMapLogLine({{"A.wav", 0.0, 1200.0}}), "📋 Source clip map: A.wav: 0.0s–1200.0s");
    EXPECT_EQ(clipMapLogLine({{"A.wav", 0.0, 20.49}, {"B.wav", 20.49, 31.5}}),
              "📋 Source clip map: A.wav: 0.0s–20.0s, B.wav: 20.0s–32.0s");
}

TEST(WithSourceClips, aStartExactlyOnTheBoundaryBelongsToTheLaterClip) {
    EXPECT_EQ(clipOf(20.0, twoClips), "B.wav");
    EXPECT_EQ(clipOf(19.999, twoClips), "A.wav");
    EXPECT_EQ(clipOf(0.0, twoClips), "A.wav");
}

TEST(WithSourceClips, aSegmentOutsideOfAllClipsKeepsItsOldClip) {
    EXPECT_EQ(clipOf(31.0, twoClips), "old.wav");
    EXPECT_EQ(clipOf(500.0, twoClips), "old.wav");
    EXPECT_EQ(clipOf(-0.5, twoClips), "old.wav");
    EXPECT_EQ(clipOf(std::numeric_limits<double>::quiet_NaN(), twoClips), "old.wav");
    EXPECT_EQ(clipOf(5.0, {}), "old.wav");
}

TEST(WithSourceClips, nothingElseChanges) {
    MiningResults analysis;
    analysis.segments = {segmentAt(25.0, "x"), segmentAt(40.0, "y"), segmentAt(3.0, "z")};
    analysis.structure = {{{"Act I", {1, 2}}}, 12.5};
    analysis.subtitles = {{1.0, 2.0, "card"}};
    analysis.estimatedDuration = 99.5;
    auto expected = encodeRecord(analysis);
    expected["segments"][0]["sourceClip"] = "B.wav";
    expected["segments"][2]["sourceClip"] = "A.wav";
    EXPECT_EQ(encodeRecord(withSourceClips(analysis, twoClips)), expected);
}

TEST(SegmentsFile, isPrettyWithSortedKeysAndANullForAMissingChapter) {
    const auto text = segmentsFileText({{7, 100.25, 110.0, "A.wav", "Nunca pensamos quedarnos aquí",
                                         "We never planned to stay here", "Arrival \"one\""},
                                        {3, 40.0, 47.0, "", "line\nend", "", std::nullopt}});
    ASSERT_TRUE(text);
    tests::expectGolden(*text, "cache/segments.json");
}

TEST(SegmentsFile, anEmptyListIsAPairOfBrackets) {
    EXPECT_EQ(segmentsFileText({}), "[]");
}

TEST(SegmentsFile, aTimeThatJsonCannotWriteGivesNothing) {
    EXPECT_FALSE(segmentsFileText({segmentAt(std::numeric_limits<double>::infinity(), "A.wav")}));
}

} // namespace
} // namespace zuvo
