#include "PipelineFixture.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

/// A pipeline that finds the media it is given behind every timeline.
class PipelineWithATimeline final : public LocalPipeline {
public:
    PipelineWithATimeline(const Platform& platform, std::vector<std::string> media)
        : LocalPipeline(platform, {}), m_media(std::move(media)) {}

    QCoro::Task<std::optional<std::vector<std::string>>> getTimelineMedia(std::string /*timeline*/) override {
        if (cancelsMeanwhile)
            cancel();
        co_return m_media;
    }

    bool cancelsMeanwhile = false;

private:
    std::vector<std::string> m_media;
};

class TimelineRun : public PipelineFixture {
protected:
    std::shared_ptr<PipelineWithATimeline> givenTimelineOf(std::vector<std::string> media) {
        auto found = std::make_shared<PipelineWithATimeline>(platform, std::move(media));
        pipeline = found;
        watch();
        return found;
    }

    void mineTimeline(const std::string& name) { runToEnd(pipeline->run(name, MineChoices())); }
};

} // namespace

TEST_F(TimelineRun, theLogReadsLineByLineAndEndsCompleteAfterAFailedBuild) {
    const auto footage = givenFootage();
    givenTimelineOf(footage);
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
    givenTimelineOf({givenFile("A.wav", "200.0")});
    services->then(500, "no");
    mineTimeline("One");
    thenLogHas("[green] ✓ Connected — found 1 source clip");
}

TEST_F(TimelineRun, anEmptyListOfMediaIsNoFailureOfTheSearch) {
    givenTimelineOf({});
    services->then(500, "no");
    mineTimeline("Empty");
    thenLogHas("[green] ✓ Connected — found 0 source clips");
    thenLogHas("[muted] 📋 Probing 0 source files...");
}

TEST_F(TimelineRun, aCancelWhileTheMediaAreSoughtEndsTheRunWithoutAWord) {
    givenTimelineOf(givenFootage())->cancelsMeanwhile = true;
    mineTimeline("Interview Day 1");
    EXPECT_THAT(log(), ElementsAre("[dim] $ zuvo mine --mode full-mine", "[muted] Connecting to DaVinci Resolve..."));
    EXPECT_EQ(pipeline->lastMediaPaths(), std::nullopt);
    EXPECT_EQ(pipeline->step(), PipelineStep::connecting);
    EXPECT_EQ(pipeline->errorMessage(), std::nullopt);
}

TEST_F(TimelineRun, stepAndProgressPassThroughTheirFixedPoints) {
    givenTimelineOf(givenFootage());
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
    givenTimelineOf(givenFootage());
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
