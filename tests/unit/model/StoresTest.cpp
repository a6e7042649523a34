#include "model/Stores.h"

#include <gmock/gmock.h>

#include <limits>

namespace zuvo {
namespace {

SavedProject projectMadeAt(double createdAt) {
    SavedProject project;
    project.timeline = "My Cut";
    project.createdAt = createdAt;
    return project;
}

TEST(SavedProject, isKnownByItsNameAndTheWholeSecondOfItsMaking) {
    EXPECT_EQ(projectMadeAt(1700000000.75).id(), "My Cut_1700000000");
    EXPECT_EQ(projectMadeAt(-0.5).id(), "My Cut_0");
}

TEST(SavedProject, hasAnIdentityWhateverTimeItsFileNames) {
    EXPECT_EQ(projectMadeAt(1e300).id(), "My Cut_9223372036854775807");
    EXPECT_EQ(projectMadeAt(std::numeric_limits<double>::quiet_NaN()).id(), "My Cut_0");
}

TEST(SavedProject, withoutResultsLeavesTheirKeysOut) {
    auto project = projectMadeAt(1.0);
    project.language = "en";
    project.targetMinutes = 2.5;
    EXPECT_EQ(compactText(encodeRecord(project)),
              R"({"timeline":"My Cut","createdAt":1.0,"language":"en","mediaPaths":[],"transcript":[],)"
              R"("targetMinutes":2.5})");
}

TEST(SavedProject, withResultsThatDoNotDecodeFails) {
    const auto decoded = decodeRecordText<SavedProject>(
        R"({"timeline":"a","createdAt":1,"language":"en","mediaPaths":[],"transcript":[],"results":{},)"
        R"("targetMinutes":5})");
    EXPECT_EQ(decoded.failure, "results.segments is missing");
}

TEST(CachedSegments, dropTheLanguageOfTheLines) {
    const TranscriptResult transcript{{{0.5, 1.5, "a", "en"}, {2.0, 3.0, "", "de"}}, "en"};
    const auto cached = cachedSegments(transcript);
    EXPECT_EQ(compactText(encodeRecord(cached)),
              R"([{"start":0.5,"end":1.5,"text":"a"},{"start":2.0,"end":3.0,"text":""}])");
}

TEST(TranscriptFrom, givesEveryLineTheOneLanguage) {
    const auto transcript = transcriptFrom({{0.5, 1.5, "a"}, {2.0, 3.0, "b"}}, "fr");
    EXPECT_EQ(transcript.language, "fr");
    ASSERT_EQ(transcript.segments.size(), 2u);
    EXPECT_EQ(transcript.segments[0].start, 0.5);
    EXPECT_EQ(transcript.segments[0].end, 1.5);
    EXPECT_EQ(transcript.segments[0].text, "a");
    for (const auto& line : transcript.segments)
        EXPECT_EQ(line.language, "fr");
}

TEST(TranscriptFrom, anEmptyListIsATranscriptToo) {
    const auto transcript = transcriptFrom({}, "fr");
    EXPECT_EQ(transcript.language, "fr");
    EXPECT_TRUE(transcript.segments.empty());
}

} // namespace
} // namespace zuvo
