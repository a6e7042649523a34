#include "model/MiningResults.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

template <class Type>
concept Comparable = requires(const Type& a) {
    a == a;
};

const std::string emptyRest = R"("structure":{"acts":[],"totalDuration":0},"subtitles":[],"estimatedDuration":0)";

Decoded<MiningResults> withSegment(const std::string& segment) {
    return decodeRecordText<MiningResults>(R"({"segments":[)" + segment + "]," + emptyRest + "}");
}

TEST(MiningResults, aSegmentWithoutChapterDecodesWithNoChapter) {
    const auto decoded =
        withSegment(R"({"index":0,"startTime":1,"endTime":2,"sourceClip":"a","transcript":"b","translation":"c"})");
    ASSERT_TRUE(decoded.value.has_value()) << decoded.failure;
    EXPECT_EQ(decoded.value->segments.at(0).chapter, std::nullopt);
}

TEST(MiningResults, anEmptyChapterIsThere) {
    const auto decoded = withSegment(
        R"({"index":0,"startTime":1,"endTime":2,"sourceClip":"a","transcript":"b","translation":"c","chapter":""})");
    ASSERT_TRUE(decoded.value.has_value()) << decoded.failure;
    EXPECT_EQ(decoded.value->segments.at(0).chapter, "");
}

TEST(MiningResults, aSegmentWithoutTranslationFailsTheWholeRecord) {
    const auto decoded = withSegment(R"({"index":0,"startTime":1,"endTime":2,"sourceClip":"a","transcript":"b"})");
    EXPECT_FALSE(decoded.value.has_value());
    EXPECT_EQ(decoded.failure, "segments[0].translation is missing");
}

TEST(MiningResults, anActThatNamesAMissingSegmentStillDecodes) {
    const auto decoded = decodeRecordText<MiningResults>(
        R"({"segments":[],"structure":{"acts":[{"name":"A","segments":[99,-1]}],"totalDuration":0},)"
        R"("subtitles":[],"estimatedDuration":0})");
    ASSERT_TRUE(decoded.value.has_value()) << decoded.failure;
    EXPECT_THAT(decoded.value->structure.acts.at(0).segments, testing::ElementsAre(99, -1));
}

TEST(MiningResults, twoActsOfTheSameNameHaveOneIdentity) {
    const Act first{"Opening", {0, 1}};
    const Act second{"Opening", {2}};
    EXPECT_EQ(first.id(), "Opening");
    EXPECT_EQ(first.id(), second.id());
}

TEST(MiningResults, twoSubtitlesWithTheSameTimesHaveOneIdentity) {
    const Subtitle first{125.5, 130.0, "one"};
    const Subtitle second{125.5, 130.0, "another"};
    EXPECT_EQ(first.id(), "125.5-130.0");
    EXPECT_EQ(first.id(), second.id());
}

TEST(MiningResults, aSubtitlesIdentityHoldsTheShortestFormOfItsTimes) {
    EXPECT_EQ((Subtitle{0.1, 33.333333333333336, ""}.id()), "0.1-33.333333333333336");
    EXPECT_EQ((Subtitle{-1.0, 0.0, ""}.id()), "-1.0-0.0");
}

TEST(MiningResults, aSegmentsIdentityIsItsIndex) {
    StorySegment segment;
    segment.index = 7;
    EXPECT_EQ(segment.id(), 7);
}

TEST(MiningResults, segmentsAreToldApartByIndexAlone) {
    EXPECT_FALSE(Comparable<StorySegment>);
}

} // namespace
} // namespace zuvo
