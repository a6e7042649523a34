#include "fakes/pipeline/PipelineFixture.h"

#include "base/Text.h"
#include "resolve/Scripts.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

class TimelineRun : public PipelineFixture {
protected:
    /// A timeline in Resolve on which these media lie.
    void givenTimeline(const std::string& name, const std::vector<std::string>& media) {
        tools->when(running(timelineMediaScript(platform.environment.resolveScriptLib, name)),
                    printed(join(media, "\n") + "\n"));
    }

    void mineTimeline(const std::string& name) { runToEnd(pipeline->run(name, MineChoices())); }
};

} // namespace

TEST_F(TimelineRun, theLogReadsLineByLineAndEndsCompleteAfterAFailedBuild) {
    const auto footage = givenFootage();
    givenTimeline("Interview Day 1", footage);
    givenServicesAnswer();
    mineTimeline("Interview Day 1");
    auto lines = log();
    ASSERT_GT(lines.size(), 16U);
    const std::vector<std::string> first(lines.begin(), lines.begin() + 10);
    EXPECT_THAT(first, ElementsAre("[dim] $ zuvo mine --mode full-mine", "[muted] Connecting to DaVinci Resolve...",
                                   "[green] ✓ Connected — found 2 source clips", "[dim]   → A.wav", "[dim]   → B.wav",
                                   "[muted] 📋 Probing 2 source files...", "[dim]   A.wav: 3:20, TC: none, 48000Hz",
                                   "[dim]   B.wav: 2:30, TC: none, 48000Hz", "[green] ✓ Probed 2 files",
                                   "[muted] Extracting audio from timeline..."));
    const std::vector<std::string> last(lines.end() - 7, lines.end());
    EXPECT_THAT(last,
                ElementsAre("[green] ✓ 3 words transcribed across 2 segments",
                            "[green] ✓ Exported SRT, transcript, and story brief", "[dim]   Wrote 2 segments to cache",
                            "[muted] Building timeline in Resolve...", "[muted] Building timeline in Resolve...",
                            "[accent] ✗ Python returned no output", "[green] ✓ Complete — we found gems!"));
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(pipeline->buildResult(), "✗ Python returned no output — check Resolve connection");
    EXPECT_EQ(pipeline->lastExportDir(), exportsPath("Interview Day 1"));
    EXPECT_EQ(pipeline->lastMediaPaths(), footage);
}

TEST_F(TimelineRun, oneClipIsFoundInTheSingular) {
    givenTimeline("One", {givenFile("A.wav", "200.0")});
    services->then(500, "no");
    mineTimeline("One");
    thenLogHas("[green] ✓ Connected — found 1 source clip");
}

TEST_F(TimelineRun, aCancelWhileTheMediaAreSoughtEndsTheRunWithoutAWord) {
    givenTimeline("Interview Day 1", givenFootage());
    calls->inside = [this](std::size_t call) {
        if (call == 1)
            pipeline->cancel();
    };
    mineTimeline("Interview Day 1");
    EXPECT_THAT(log(), ElementsAre("[dim] $ zuvo mine --mode full-mine", "[muted] Connecting to DaVinci Resolve..."));
    EXPECT_EQ(pipeline->lastMediaPaths(), std::nullopt);
    EXPECT_EQ(pipeline->step(), PipelineStep::connecting);
    EXPECT_EQ(pipeline->errorMessage(), std::nullopt);
}

TEST_F(TimelineRun, stepAndProgressPassThroughTheirFixedPoints) {
    givenTimeline("Interview Day 1", givenFootage());
    givenServicesAnswer();
    mineTimeline("Interview Day 1");
    EXPECT_THAT(takeChanges(),
                ElementsAre("step Connecting to Resolve...", "progress 0.02", "progress 0.035", "progress 0.05",
                            "step Extracting audio...", "step Preparing audio chunks...", "progress 0.1",
                            "step Transcribing with Whisper...", "progress 0.15", "progress 0.3", "progress 0.45",
                            "step Analyzing story structure...", "progress 0.7", "step Translating...", "progress 0.85",
                            "step Building timeline...", "progress 1", "step Complete"));
}

TEST_F(TimelineRun, aStoryWithoutWordTimesStillGetsExportsAProjectAndABuild) {
    givenTimeline("Interview Day 1", givenFootage());
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": "one two three"})");
    givenTranscription("");
    givenStory(fixtureStory);
    services->then(500, "no");
    services->then(500, "no");
    mineTimeline("Interview Day 1");
    thenLogLacks("words transcribed");
    EXPECT_TRUE(exists(exportsPath("Interview Day 1/subtitles.srt")));
    EXPECT_TRUE(exists(exportsPath("Interview Day 1/project.json")));
    EXPECT_FALSE(exists(cachePath("word_timestamps.json")));
    thenLogHas("[accent] ✗ Python returned no output");
}
