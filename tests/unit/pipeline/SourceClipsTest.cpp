#include "fakes/pipeline/PipelineFixture.h"

#include <limits>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class SourceClips : public PipelineFixture {
protected:
    /// The source of each moment that starts at one of these times.
    std::vector<std::string> clipsOf(std::vector<double> starts, std::vector<std::string> paths) {
        std::vector<std::pair<double, double>> times;
        for (const double start : starts)
            times.emplace_back(start, start + 5.0);
        std::vector<std::string> clips;
        for (const auto& segment : ended(pipeline->assignSourceClips(storyOf(times), std::move(paths))).segments)
            clips.push_back(segment.sourceClip);
        return clips;
    }

    void givenProbeFile(const std::string& json) { write(cachePath("probe_results.json"), json); }
};

constexpr auto durationCall = "ffprobe|-v|quiet|-show_entries|format=duration|-of|csv=p=0|";

} // namespace

TEST_F(SourceClips, momentsAreFoundInTheProbedFilesByStartTimecode) {
    givenProbeFile(R"({"A.wav": {"duration": 1200.0, "startTimecodeSeconds": 3600.0},
                       "B.wav": {"duration": 600.4, "startTimecodeSeconds": 60.0}})");
    EXPECT_THAT(clipsOf({0.0, 600.4, 1800.4}, {"/m/A.wav", "/m/B.wav"}), ElementsAre("B.wav", "A.wav", "source"));
    EXPECT_THAT(log(), ElementsAre("[muted] 📋 Source clip map: B.wav: 0.0s–600.0s, A.wav: 600.0s–1800.0s"));
    EXPECT_THAT(tools->requests, IsEmpty());
}

TEST_F(SourceClips, aFileOfExactlyTenSecondsTakesNoPlace) {
    givenProbeFile(R"({"A.wav": {"duration": 10.0}, "B.wav": {"duration": 10.5}})");
    EXPECT_THAT(clipsOf({0.0}, {"/m/A.wav", "/m/B.wav"}), ElementsAre("B.wav"));
}

TEST_F(SourceClips, aMomentOnTheBoundaryBelongsToTheLaterFile) {
    givenProbeFile(R"({"A.wav": {"duration": 20.0}, "B.wav": {"duration": 20.0}})");
    EXPECT_THAT(clipsOf({19.9, 20.0}, {"/m/A.wav", "/m/B.wav"}), ElementsAre("A.wav", "B.wav"));
}

TEST_F(SourceClips, aMomentBehindTheLastFileKeepsWhatItHad) {
    givenProbeFile(R"({"A.wav": {"duration": 20.0}})");
    EXPECT_THAT(clipsOf({20.0}, {"/m/A.wav"}), ElementsAre("source"));
}

TEST_F(SourceClips, aProbedFileThatIsNoMediumOfThisRunTakesNoPlace) {
    givenProbeFile(R"({"A.wav": {"duration": 20.0}, "old.wav": {"duration": 500.0}})");
    EXPECT_THAT(clipsOf({30.0}, {"/m/A.wav"}), ElementsAre("source"));
}

TEST_F(SourceClips, withoutProbeDataTheLengthsAreMeasuredInTextOrder) {
    tools->durationText = {{"/m/B.wav", "20.0\n"}, {"/m/A.wav", "30.0\n"}, {"/m/C.wav", "10.0\n"}, {"/m/D.wav", "N/A"}};
    EXPECT_THAT(clipsOf({0.0, 30.0, 50.0}, {"/m/D.wav", "/m/C.wav", "/m/B.wav", "/m/A.wav", "/m/gone.wav"}),
                ElementsAre("A.wav", "B.wav", "source"));
    EXPECT_THAT(tools->commandLines(),
                ElementsAre(std::string(durationCall) + "/m/A.wav", std::string(durationCall) + "/m/B.wav",
                            std::string(durationCall) + "/m/C.wav", std::string(durationCall) + "/m/D.wav",
                            std::string(durationCall) + "/m/gone.wav"));
    EXPECT_THAT(log(), ElementsAre("[muted] 📋 Source clip map: A.wav: 0.0s–30.0s, B.wav: 30.0s–50.0s"));
}

TEST_F(SourceClips, brokenProbeDataCountAsNone) {
    tools->durationText["/m/A.wav"] = "30.0\n";
    for (const auto* text : {"broken", "[]", R"({"A.wav": 3})", R"({"A.wav": {"duration": "30.0"}})"}) {
        givenProbeFile(text);
        EXPECT_THAT(clipsOf({0.0}, {"/m/A.wav"}), ElementsAre("A.wav")) << text;
    }
    EXPECT_THAT(tools->requests, SizeIs(4));
}

TEST_F(SourceClips, ifNothingIsKnownTheStoryStaysAndNothingIsLogged) {
    EXPECT_THAT(clipsOf({0.0}, {"/m/A.wav"}), ElementsAre("source"));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SourceClips, onlyTheSourceOfAMomentChanges) {
    givenProbeFile(R"({"A.wav": {"duration": 20.0}})");
    auto story = storyOf({{1.0, 6.0}});
    story.segments[0].index = 4;
    story.segments[0].transcript = "uno";
    story.segments[0].translation = "one";
    story.segments[0].chapter = "Start";
    story.structure.acts = {{"Act 1", {4}}};
    story.subtitles = {{1.0, 2.0, "card"}};
    story.estimatedDuration = 9.0;
    const auto changed = ended(pipeline->assignSourceClips(story, {"/m/A.wav"}));
    const auto& segment = changed.segments.at(0);
    EXPECT_EQ(segment.sourceClip, "A.wav");
    EXPECT_EQ(segment.index, 4);
    EXPECT_EQ(segment.startTime, 1.0);
    EXPECT_EQ(segment.endTime, 6.0);
    EXPECT_EQ(segment.transcript, "uno");
    EXPECT_EQ(segment.translation, "one");
    EXPECT_EQ(segment.chapter, "Start");
    EXPECT_EQ(changed.structure.acts.at(0).name, "Act 1");
    EXPECT_THAT(changed.subtitles, SizeIs(1));
    EXPECT_EQ(changed.estimatedDuration, 9.0);
}

TEST_F(SourceClips, theHandOffIsPrettyWithSortedKeysAndANullChapter) {
    auto story = storyOf({{1.5, 6.0}});
    story.segments[0].transcript = "uno";
    pipeline->writeSegmentsJson(story);
    EXPECT_EQ(read(cachePath("segments.json")), R"([
  {
    "chapter": null,
    "endTime": 6.0,
    "index": 0,
    "sourceClip": "source",
    "startTime": 1.5,
    "transcript": "uno",
    "translation": ""
  }
])");
    EXPECT_THAT(log(), ElementsAre("[dim]   Wrote 1 segments to cache"));
}

TEST_F(SourceClips, anEmptyStoryIsHandedOffAsAnEmptyList) {
    pipeline->writeSegmentsJson({});
    EXPECT_EQ(read(cachePath("segments.json")), "[]");
    EXPECT_THAT(log(), ElementsAre("[dim]   Wrote 0 segments to cache"));
}

TEST_F(SourceClips, theReviewWritesTheSameWithoutALine) {
    auto story = storyOf({{1.0, 6.0}});
    pipeline->writeSegmentsJson(story);
    const auto text = read(cachePath("segments.json"));
    pipeline->reset();
    pipeline->writeSegmentsJsonPublic({});
    EXPECT_EQ(read(cachePath("segments.json")), "[]");
    pipeline->writeSegmentsJsonPublic(story.segments);
    EXPECT_EQ(read(cachePath("segments.json")), text);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SourceClips, aHandOffThatCannotBeWrittenIsNoFailureAndItsLineStaysTrueToTheAttempt) {
    write(home + "/Library/Caches", "a file where the folder should be");
    pipeline->writeSegmentsJson(storyOf({{1.0, 6.0}}));
    EXPECT_THAT(log(), ElementsAre("[dim]   Wrote 1 segments to cache"));
}

TEST_F(SourceClips, aStoryThatJsonCannotHoldLeavesTheFileAndLogsNothing) {
    write(cachePath("segments.json"), "from before");
    pipeline->writeSegmentsJson(storyOf({{std::numeric_limits<double>::infinity(), 6.0}}));
    EXPECT_EQ(read(cachePath("segments.json")), "from before");
    EXPECT_THAT(log(), IsEmpty());
}
