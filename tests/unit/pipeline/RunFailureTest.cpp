#include "fakes/pipeline/PipelineFixture.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class RunFailure : public PipelineFixture {
protected:
    void thenTheMineBeforeSurvives() const {
        ASSERT_TRUE(pipeline->results());
        EXPECT_EQ(pipeline->results()->segments.size(), 2U);
        ASSERT_TRUE(pipeline->lastTranscript());
        EXPECT_EQ(pipeline->lastTranscript()->segments.size(), 3U);
        EXPECT_EQ(pipeline->lastExportDir(), exportsPath("Dropped Files (2)"));
    }

    void thenFailedWith(const std::string& message, double progress) const {
        EXPECT_EQ(pipeline->step(), PipelineStep::error);
        EXPECT_EQ(pipeline->errorMessage(), message);
        EXPECT_EQ(log().back(), "[accent] ✗ " + message);
        EXPECT_EQ(pipeline->progress(), progress);
    }
};

} // namespace

TEST_F(RunFailure, audioThatCannotBeExtractedFailsTheRunAtItsProgress) {
    const auto path = givenFile("C.wav", "20.0");
    tools->when(writing("extracted_audio.wav"), failed());
    mine({path});
    thenFailedWith("Audio extraction failed", 0.05);
    EXPECT_THAT(takeChanges(), ElementsAre("step Connecting to Resolve...", "progress 0.02", "progress 0.05",
                                           "step Extracting audio...", "step Error"));
    EXPECT_EQ(pipeline->lastMediaPaths(), std::vector<std::string>{path});
    EXPECT_EQ(pipeline->probeResults().size(), 1U);
    EXPECT_EQ(pipeline->results().has_value(), false);
}

TEST_F(RunFailure, aMissingToolFailsTheRunLikeAFailedOne) {
    const auto path = givenFile("C.wav", "20.0");
    tools->when(call("ffmpeg", {}), notLaunched());
    tools->when(call("ffprobe", {}), notLaunched());
    mine({path});
    thenLogHas("[accent]   ⚠ Failed to probe C.wav");
    thenFailedWith("Audio extraction failed", 0.05);
}

TEST_F(RunFailure, noFilesAtAllFailInTheExtraction) {
    tools->when(call("ffmpeg", {"concat"}), failed());
    mine({});
    EXPECT_THAT(log(), ElementsAre("[dim] $ zuvo mine --files 0 --mode full-mine", "[muted] Using 0 dropped files...",
                                   "[muted] 📋 Probing 0 source files...", "[muted] Extracting audio from files...",
                                   "[accent] ✗ Audio extraction failed"));
    EXPECT_EQ(read(cachePath("concat.txt")), "");
}

TEST_F(RunFailure, aTranscriptionWithoutALineFailsTheRunAndKeepsTheChunks) {
    const auto footage = givenFootage();
    services->then(500, "busy");
    services->then(500, "busy");
    mine(footage);
    thenFailedWith("Transcription failed", 0.3);
    EXPECT_TRUE(exists(cachePath("chunks/chunk_001.wav")));
    EXPECT_FALSE(exists(cachePath("transcripts")));
}

TEST_F(RunFailure, aFailedAnalysisLeavesThePaidTranscriptForTheNextRun) {
    const auto footage = givenFootage();
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": "one"})");
    givenTranscription("");
    services->then(529, "overloaded");
    mine(footage);
    thenLogHas("[accent]   Claude HTTP error: overloaded");
    thenFailedWith("Story analysis failed", 0.45);

    givenStory(fixtureStory);
    givenWords("");
    givenWords("");
    mine(footage);
    thenLogHas("[green] ✓ Found cached transcript — 1 segments · 1 words");
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
}

TEST_F(RunFailure, aFailedRunLeavesStoryTranscriptAndFolderOfTheRunBefore) {
    givenAFinishedMine();
    const auto path = givenFile("C.wav", "20.0");
    tools->when(writing("extracted_audio.wav"), failed());
    mine({path});
    thenFailedWith("Audio extraction failed", 0.05);
    thenTheMineBeforeSurvives();
}

TEST_F(RunFailure, aTimelineWhoseMediaAreNotFoundFailsBeforeAnythingIsTouched) {
    const auto footage = givenAFinishedMine();
    const auto linesBefore = log().size();
    const auto callsBefore = tools->requests.size();
    MineChoices choices;
    choices.mode = MiningMode::structure;
    ended(pipeline->run(std::string("My \"cut\""), choices));

    auto lines = log();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(linesBefore));
    EXPECT_THAT(lines, ElementsAre("[dim] $ zuvo mine --mode structure", "[muted] Connecting to DaVinci Resolve...",
                                   "[accent] ✗ Could not find source media for timeline 'My \"cut\"'"));
    EXPECT_THAT(takeChanges(), ElementsAre("step Connecting to Resolve...", "progress 0.02", "step Error"));
    EXPECT_EQ(pipeline->errorMessage(), "Could not find source media for timeline 'My \"cut\"'");
    EXPECT_EQ(pipeline->lastMediaPaths(), footage);
    EXPECT_EQ(pipeline->probeResults().size(), 2U);
    EXPECT_EQ(tools->requests.size(), callsBefore + 1); // of Python
    thenTheMineBeforeSurvives();
}

TEST_F(RunFailure, theMediaOfATimelineAreNothingWithoutResolve) {
    EXPECT_EQ(ended(pipeline->getMediaPaths("Cut")), std::nullopt);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(RunFailure, aRunDoesNotResetWhatStandsThereItAppends) {
    const auto footage = givenAFinishedMine();
    const auto linesBefore = log().size();
    givenStory(fixtureStory);
    givenWords("");
    givenWords("");
    mine(footage);
    EXPECT_GT(log().size(), linesBefore);
    EXPECT_EQ(log()[linesBefore], "[dim] $ zuvo mine --files 2 --mode full-mine");
}

TEST_F(RunFailure, resetEmptiesTheRunsStateAndKeepsTheRest) {
    const auto footage = givenAFinishedMine();
    pipeline->reset();
    EXPECT_EQ(pipeline->step(), PipelineStep::idle);
    EXPECT_EQ(pipeline->progress(), 0.0);
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_FALSE(pipeline->results().has_value());
    EXPECT_FALSE(pipeline->errorMessage().has_value());
    EXPECT_FALSE(pipeline->lastExportDir().has_value());
    EXPECT_EQ(pipeline->lastMediaPaths(), footage);
    EXPECT_EQ(pipeline->probeResults().size(), 2U);
    EXPECT_TRUE(pipeline->lastTranscript().has_value());
}

TEST_F(RunFailure, aFailureIsForgottenOnlyByReset) {
    const auto path = givenFile("C.wav", "20.0");
    tools->when(call("ffmpeg", {"C.wav"}), failed());
    mine({path});
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(pipeline->errorMessage(), "Audio extraction failed");
    pipeline->reset();
    EXPECT_EQ(pipeline->errorMessage(), std::nullopt);
}

TEST_F(RunFailure, foldersThatCannotBeWrittenFailNeitherExportsNorProject) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    write(home + "/Library/Application Support/ZuvoManager", "a file where the folder should be");
    mine(footage);
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(pipeline->lastExportDir(), exportsPath("Dropped Files (2)"));
    thenLogHas("[green] ✓ Exported SRT, transcript, and story brief");
    EXPECT_THAT(pipeline->listProjects(), IsEmpty());
}
