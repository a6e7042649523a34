#include "fakes/pipeline/PipelineFixture.h"
#include "resolve/Scripts.h"

#include <QPointer>
#include <algorithm>
#include <filesystem>
#include <map>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// Where a run stands once the cancellation has been seen.
struct Stop {
    PipelineStep step;
    std::string lastLine;
};

// The calls of a mine of the footage, in their order, and where the run ends if it is cancelled inside each.
const std::vector<Stop> stops = {
    {PipelineStep::connecting, "[dim]   A.wav: 3:20, TC: none, 48000Hz"},    // 1: ffprobe, A
    {PipelineStep::connecting, "[green] ✓ Probed 2 files"},                  // 2: ffprobe, B
    {PipelineStep::extracting, "[muted] Extracting audio from files..."},    // 3: extraction
    {PipelineStep::chunking, "[muted] Preparing audio chunks..."},           // 4: its length
    {PipelineStep::chunking, "[muted] Preparing audio chunks..."},           // 5: first cut
    {PipelineStep::chunking, "[muted] Preparing audio chunks..."},           // 6: second cut
    {PipelineStep::error, "[accent] ✗ Transcription failed"},                // 7: first chunk
    {PipelineStep::error, "[accent] ✗ Transcription failed"},                // 8: its length
    {PipelineStep::transcribing, "[dim]   Transcribing chunk 2/2..."},       // 9: second chunk
    {PipelineStep::transcribing, "[dim]   Transcribing chunk 2/2..."},       // 10: its length
    {PipelineStep::error, "[accent] ✗ Story analysis failed"},               // 11: channels of A
    {PipelineStep::error, "[accent] ✗ Story analysis failed"},               // 12: samples of A
    {PipelineStep::error, "[accent] ✗ Story analysis failed"},               // 13: samples of B
    {PipelineStep::analyzing, "[dim] 🔑 API key found (anthropic-ke...)"},    // 14: the story
    {PipelineStep::translating, "[dim]   Word transcribing segment 1/2..."}, // 15: cut of the first moment
    {PipelineStep::translating, "[dim]   Word transcribing segment 1/2..."}, // 16: its words
    {PipelineStep::translating, "[dim]   Word transcribing segment 2/2..."}, // 17: cut of the second
    {PipelineStep::translating, "[dim]   Word transcribing segment 2/2..."}, // 18: its words
};

// A run from a timeline asks Resolve first and last.
constexpr std::size_t timelineCalls = 20;

std::vector<Stop> timelineStops() {
    auto all = stops;
    all[2].lastLine = "[muted] Extracting audio from timeline...";
    all.insert(all.begin(), {PipelineStep::connecting, "[muted] Connecting to DaVinci Resolve..."});
    all.push_back({PipelineStep::building, "[accent] ✗ Python returned no output"});
    return all;
}

// The calls of a project told anew in the launch that mined it.
const std::vector<Stop> projectStops = {
    {PipelineStep::error, "[accent] ✗ Story analysis failed"},               // 1: channels of A
    {PipelineStep::error, "[accent] ✗ Story analysis failed"},               // 2: samples of A
    {PipelineStep::error, "[accent] ✗ Story analysis failed"},               // 3: samples of B
    {PipelineStep::analyzing, "[dim] 🔑 API key found (anthropic-ke...)"},    // 4: the story
    {PipelineStep::translating, "[dim]   Word transcribing segment 1/2..."}, // 5: cut of the first moment
    {PipelineStep::translating, "[dim]   Word transcribing segment 1/2..."}, // 6: its words
    {PipelineStep::translating, "[dim]   Word transcribing segment 2/2..."}, // 7: cut of the second
    {PipelineStep::translating, "[dim]   Word transcribing segment 2/2..."}, // 8: its words
    {PipelineStep::building, "[accent] ✗ Python returned no output"},        // 9: the build
};

// The paid requests among the calls above, by their place.
const std::vector<std::size_t> paidCalls = {7, 9, 14, 16, 18};
const std::vector<std::size_t> paidProjectCalls = {4, 6, 8};

/// How many of those have begun when the call of that place has.
std::size_t begunUpTo(std::size_t call, const std::vector<std::size_t>& paid) {
    return static_cast<std::size_t>(std::count_if(paid.begin(), paid.end(), [call](auto one) { return one <= call; }));
}

class CancelFixture : public PipelineFixture, public testing::WithParamInterface<std::size_t> {
protected:
    /// All that lies in the projects' folder, by path.
    [[nodiscard]] std::map<std::string, std::string> exportedFiles() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(pipeline->projectsDir())) {
            if (entry.is_regular_file())
                files[entry.path().string()] = read(entry.path().string());
        }
        return files;
    }
};

class CancelInsideCall : public CancelFixture {};
class CancelInsideTimelineCall : public CancelFixture {};
class CancelInsideProjectCall : public CancelFixture {};

class Cancel : public PipelineFixture {
protected:
    void cancelInside(std::size_t call) {
        calls->inside = [this, call](std::size_t number) {
            if (number == call)
                pipeline->cancel();
        };
    }
};

} // namespace

TEST_P(CancelInsideCall, endsTheRunAtItsNextTest) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    calls->inside = [this](std::size_t number) {
        if (number == GetParam())
            pipeline->cancel();
    };
    mine(footage);
    const auto& stop = stops[GetParam() - 1];
    EXPECT_EQ(pipeline->step(), stop.step);
    EXPECT_EQ(log().back(), stop.lastLine);
    // A stage that gave nothing because of the cancellation fails the run; elsewhere it ends without a word.
    EXPECT_EQ(pipeline->errorMessage().has_value(), stop.step == PipelineStep::error);
    EXPECT_FALSE(pipeline->results().has_value());
    EXPECT_FALSE(pipeline->lastExportDir().has_value());
    EXPECT_LT(pipeline->progress(), 0.85);
    EXPECT_EQ(services->requests.size(), begunUpTo(GetParam(), paidCalls)) << "no other request is paid for";
}

TEST_P(CancelInsideCall, directlyFollowedByResetLetsTheRunGoOn) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    calls->inside = [this](std::size_t number) {
        if (number == GetParam()) {
            pipeline->cancel();
            pipeline->reset();
        }
    };
    mine(footage);
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(log().back(), "[green] ✓ Complete — we found gems!");
    EXPECT_TRUE(pipeline->results().has_value());
    // The lines from before the reset are gone.
    thenLogLacks("$ zuvo mine");
}

TEST_P(CancelInsideCall, leavesTheEarlierMineAndTheNextRunEndsWell) {
    const auto footage = givenAFinishedMine();
    const auto earlier = exportedFiles();
    ASSERT_FALSE(earlier.empty());
    givenNewLaunch(2);
    givenServicesAnswer();
    const auto before = calls->count();
    calls->inside = [this, before](std::size_t number) {
        if (number == before + GetParam())
            pipeline->cancel();
    };
    mine(footage);
    EXPECT_NE(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(exportedFiles(), earlier);
    EXPECT_EQ(temporaryFiles(), std::vector<std::string>());
    calls->inside = nullptr;
    services->forgetPlan();
    givenNewLaunch(3);
    givenServicesAnswer();
    mine(footage);
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(pipeline->listMineVersions().size(), 1U) << "the earlier story alone";
}

TEST_P(CancelInsideTimelineCall, endsTheRunAtItsNextTest) {
    const auto footage = givenFootage();
    tools->when(running(timelineMediaScript(platform.environment.resolveScriptLib, "Cut")),
                printed(footage[0] + "\n" + footage[1] + "\n"));
    givenServicesAnswer();
    calls->inside = [this](std::size_t number) {
        if (number == GetParam())
            pipeline->cancel();
    };
    ended(pipeline->run(std::string("Cut"), MineChoices()));
    const auto stop = timelineStops().at(GetParam() - 1);
    EXPECT_EQ(pipeline->step(), stop.step);
    EXPECT_EQ(log().back(), stop.lastLine);
    EXPECT_EQ(pipeline->errorMessage().has_value(), stop.step == PipelineStep::error);
    // The build is the last call: what came before it is kept.
    const bool isKept = stop.step == PipelineStep::building;
    EXPECT_EQ(pipeline->results().has_value(), isKept);
    EXPECT_EQ(exists(exportsPath("Cut/project.json")), isKept);
    EXPECT_EQ(services->requests.size(), begunUpTo(GetParam() - 1, paidCalls)) << "no other request is paid for";
}

TEST_P(CancelInsideProjectCall, endsTheRunAtItsNextTest) {
    (void)givenAFinishedMine();
    const auto project = pipeline->listProjects().at(0);
    const auto earlier = exportedFiles();
    givenStory(fixtureStory);
    givenWords(R"({"word": "uno", "start": 0.12, "end": 0.5})");
    givenWords(R"({"word": "tres", "start": 0.25, "end": 0.75})");
    const auto before = calls->count();
    const auto requestsBefore = services->requests.size();
    calls->inside = [this, before](std::size_t number) {
        if (number == before + GetParam())
            pipeline->cancel();
    };
    ended(pipeline->runFromProject(project, {}));
    const auto& stop = projectStops[GetParam() - 1];
    EXPECT_EQ(pipeline->step(), stop.step);
    EXPECT_EQ(log().back(), stop.lastLine);
    EXPECT_EQ(pipeline->errorMessage().has_value(), stop.step == PipelineStep::error);
    EXPECT_EQ(services->requests.size() - requestsBefore, begunUpTo(GetParam(), paidProjectCalls))
        << "no other request is paid for";
    if (stop.step != PipelineStep::building) {
        EXPECT_EQ(exportedFiles(), earlier);
    } else {
        EXPECT_EQ(pipeline->listMineVersions().size(), 1U) << "the earlier story is a version now";
    }
}

INSTANTIATE_TEST_SUITE_P(EveryCall, CancelInsideTimelineCall, testing::Range(std::size_t{1}, timelineCalls + 1));
INSTANTIATE_TEST_SUITE_P(EveryCall, CancelInsideProjectCall, testing::Range(std::size_t{1}, projectStops.size() + 1));

TEST_F(Cancel, theOtherRunsHaveAsManyCallsAsAreTriedHere) {
    const auto footage = givenFootage();
    tools->when(running(timelineMediaScript(platform.environment.resolveScriptLib, "Cut")),
                printed(footage[0] + "\n" + footage[1] + "\n"));
    givenServicesAnswer();
    ended(pipeline->run(std::string("Cut"), MineChoices()));
    EXPECT_EQ(calls->count(), timelineCalls);
    const auto project = pipeline->listProjects().at(0);
    givenStory(fixtureStory);
    givenWords("");
    givenWords("");
    ended(pipeline->runFromProject(project, {}));
    EXPECT_EQ(calls->count(), timelineCalls + projectStops.size());
}

INSTANTIATE_TEST_SUITE_P(EveryCall, CancelInsideCall, testing::Range(std::size_t{1}, stops.size() + 1));

TEST_F(Cancel, theRunHasAsManyCallsAsAreTriedHere) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    EXPECT_EQ(calls->count(), stops.size());
}

TEST_F(Cancel, betweenTwoFilesLeavesTheProbeFileAndPartOfTheResults) {
    const auto footage = givenFootage();
    write(cachePath("probe_results.json"), "from before");
    cancelInside(1);
    mine(footage);
    EXPECT_EQ(read(cachePath("probe_results.json")), "from before");
    ASSERT_EQ(pipeline->probeResults().size(), 1U);
    EXPECT_EQ(pipeline->probeResults().begin()->first, "A.wav");
    EXPECT_EQ(pipeline->progress(), 0.02);
}

TEST_F(Cancel, aStageThatGivesNothingFailsEvenACancelledRun) {
    const auto footage = givenFootage();
    tools->when(writing("extracted_audio.wav"), failed());
    cancelInside(3);
    mine(footage);
    EXPECT_EQ(pipeline->errorMessage(), "Audio extraction failed");
}

TEST_F(Cancel, anAnalysisThatGivesNothingFailsEvenACancelledRun) {
    const auto footage = givenFootage();
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": "one"})");
    givenTranscription("");
    services->thenFails("The request timed out");
    cancelInside(14);
    mine(footage);
    EXPECT_EQ(pipeline->errorMessage(), "Story analysis failed");
}

TEST_F(Cancel, afterTheLastChunkTheTranscriptIsNotCached) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    cancelInside(10);
    mine(footage);
    EXPECT_EQ(pipeline->errorMessage(), std::nullopt);
    EXPECT_FALSE(exists(cachePath("transcripts")));
}

TEST_F(Cancel, duringTheWordsKeepsTheOldWordFile) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    write(cachePath("word_timestamps.json"), "from before");
    cancelInside(16);
    mine(footage);
    EXPECT_EQ(read(cachePath("word_timestamps.json")), "from before");
}

TEST_F(Cancel, theNextRunIsNotCancelled) {
    const auto footage = givenFootage();
    cancelInside(2);
    mine(footage);
    calls->inside = nullptr;
    givenServicesAnswer();
    mine(footage);
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
}

TEST_F(Cancel, whileAProjectIsAnalysedEndsTheRunWithoutAWord) { // the call is the request itself
    SavedProject project;
    project.timeline = "Cut";
    givenStory(fixtureStory);
    cancelInside(1);
    ended(pipeline->runFromProject(project, {}));
    EXPECT_EQ(pipeline->step(), PipelineStep::analyzing);
    EXPECT_EQ(pipeline->progress(), 0.5);
    EXPECT_EQ(pipeline->errorMessage(), std::nullopt);
    EXPECT_EQ(log().back(), "[dim] 🔑 API key found (anthropic-ke...)");
}

TEST_F(Cancel, aProjectStopsAfterItsBuild) {
    SavedProject project;
    project.timeline = "Cut";
    givenStory(fixtureStory);
    QObject::connect(pipeline.get(), &LocalPipeline::buildResultChanged, pipeline.get(),
                     [this] { pipeline->cancel(); });
    ended(pipeline->runFromProject(project, {}));
    EXPECT_EQ(pipeline->step(), PipelineStep::building);
    EXPECT_EQ(pipeline->progress(), 0.85);
    // What came before the build stays.
    EXPECT_TRUE(pipeline->results().has_value());
    EXPECT_EQ(pipeline->listProjects().size(), 1U);
}

TEST_F(Cancel, aRunFromFilesHasNoTestBehindItsExports) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    QObject::connect(pipeline.get(), &LocalPipeline::resultsChanged, pipeline.get(), [this] { pipeline->cancel(); });
    mine(footage);
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
}

TEST_F(Cancel, twoRunsAtOnceWriteToOneStateAndBothEnd) {
    const auto footage = givenFootage();
    // One body for whatever is asked: a transcript with one line, and a story without moments.
    const std::string story =
        R"({"segments": [], "structure": {"acts": [], "totalDuration": 0}, "subtitles": [], "estimatedDuration": 0})";
    auto body = messagesAnswer(story);
    body.insert(1, R"("text": "", "segments": [{"start": 0.0, "end": 1.0, "text": "t"}], )");
    for (int i = 0; i < 6; ++i)
        services->then(200, body);
    RunningTask<void> first(pipeline->run(footage, {}));
    RunningTask<void> second(pipeline->run(footage, {}));
    first.result();
    second.result();
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    const auto lines = log();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[dim] $ zuvo mine --files 2 --mode full-mine"), 2);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[green] ✓ Complete — we found gems!"), 2);
}

TEST_F(Cancel, aPipelineThatEverybodyLetGoOfLivesUntilItsRunEnds) {
    for (std::size_t call = 1; call <= stops.size(); ++call) {
        givenNewLaunch(call + 100);
        const auto footage = givenFootage();
        givenServicesAnswer();
        const auto before = calls->count();
        const QPointer<LocalPipeline> watched = pipeline.get();
        calls->inside = [this, before, call](std::size_t number) {
            if (number == before + call)
                pipeline.reset();
        };
        RunningTask<void> run(pipeline->run(footage, {}));
        run.result();
        EXPECT_EQ(services->plannedCount(), 0U);
        EXPECT_TRUE(waitUntil([&] { return watched.isNull(); })) << "let go in call " << call;
    }
}

TEST_F(Cancel, aStageUsedAloneKeepsItsPipelineToo) {
    const auto chunk = disk.write("chunk.wav", "sound");
    services->then(500, "busy");
    const QPointer<LocalPipeline> watched = pipeline.get();
    std::vector<std::string> lines;
    QObject::connect(pipeline.get(), &LocalPipeline::logAdded, pipeline.get(),
                     [&lines, watched] { lines.push_back(watched->logs().back().text); });
    calls->inside = [this](std::size_t) { pipeline.reset(); };
    RunningTask<std::optional<WhisperResponse>> task(pipeline->transcribeChunk(chunk, "auto"));
    EXPECT_FALSE(task.result().has_value());
    EXPECT_EQ(lines, std::vector<std::string>{"  Whisper error: busy"});
    EXPECT_TRUE(waitUntil([&] { return watched.isNull(); }));
}
