#include "fakes/pipeline/PipelineFixture.h"

#include <algorithm>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

// Runs that start from what an earlier one paid for: its transcript, or the whole saved project.
class CachedRun : public PipelineFixture {
protected:
    /// What is left of a finished mine once the page has been reset.
    std::vector<std::string> givenAnEarlierMine() {
        auto footage = givenAFinishedMine();
        pipeline->reset();
        (void)takeChanges();
        tools->requests.clear();
        services->requests.clear();
        return footage;
    }

    void givenStoryAndWords() {
        givenStory(fixtureStory);
        givenWords(R"({"word": "uno", "start": 0.0, "end": 0.5})");
        givenWords(R"({"word": "tres", "start": 0.0, "end": 0.5})");
    }

    SavedProject theProject() {
        const auto projects = pipeline->listProjects();
        EXPECT_EQ(projects.size(), 1U);
        return projects.empty() ? SavedProject() : projects.front();
    }
};

} // namespace

TEST_F(CachedRun, aHitSkipsExtractionChunkingAndTranscription) {
    const auto footage = givenAnEarlierMine();
    givenStoryAndWords();
    mine(footage);
    EXPECT_THAT(takeChanges(),
                ElementsAre("step Connecting to Resolve...", "progress 0.02", "progress 0.035", "progress 0.05",
                            "progress 0.45", "step Analyzing story structure...", "progress 0.7", "step Translating...",
                            "progress 0.85", "step Building timeline...", "progress 1", "step Complete"));
    thenLogHas("[green] ✓ Found cached transcript — 3 segments · 6 words");
    thenLogHas("[dim]   Skipping audio extraction + Whisper (saved ~$1)");
    thenLogLacks("Extracting audio from files");
    thenLogLacks("Split into");
}

TEST_F(CachedRun, theOrderOfThePathsDoesNotMatter) {
    auto footage = givenAnEarlierMine();
    std::reverse(footage.begin(), footage.end());
    givenStoryAndWords();
    mine(footage);
    thenLogHas("[green] ✓ Found cached transcript — 3 segments · 6 words");
}

TEST_F(CachedRun, otherMediaMiss) {
    const auto footage = givenAnEarlierMine();
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": "one"})");
    givenTranscription("");
    givenStoryAndWords();
    mine({footage[0]});
    thenLogLacks("cached transcript");
    thenLogHas("[muted] Extracting audio from files...");
}

TEST_F(CachedRun, aNewStartOfTheProgramMisses) {
    const auto footage = givenAnEarlierMine();
    givenNewLaunch(2);
    givenServicesAnswer();
    mine(footage);
    thenLogLacks("cached transcript");
    thenLogHas("[muted] Extracting audio from files...");
}

TEST_F(CachedRun, theModelIsToldTheLanguageThatTheUserChoseNotTheCachedOne) {
    const auto footage = givenAnEarlierMine();
    givenStoryAndWords();
    MineChoices choices;
    choices.language = "fr";
    mine(footage, choices);
    ASSERT_EQ(services->requests.size(), 3U);
    EXPECT_THAT(services->requests[0].body, HasSubstr("- Source language: fr\\n"));
    EXPECT_THAT(services->requests[1].body, HasSubstr("name=\"language\"\r\n\r\nfr\r\n"));
}

TEST_F(CachedRun, withAutomaticLanguageTheModelIsToldTheTranscriptsOwn) {
    const auto footage = givenAnEarlierMine();
    givenStoryAndWords();
    mine(footage);
    ASSERT_EQ(services->requests.size(), 3U);
    EXPECT_THAT(services->requests[0].body, HasSubstr("- Source language: en\\n"));
    EXPECT_THAT(services->requests[1].body, Not(HasSubstr("name=\"language\"")));
}

TEST_F(CachedRun, aHitStillProbesForTheLaterStages) {
    const auto footage = givenAnEarlierMine();
    givenStoryAndWords();
    mine(footage);
    EXPECT_EQ(commands().front(), "ffprobe|-v|quiet|-print_format|json|-show_format|-show_streams|{footage}/A.wav");
    thenLogHas("[green] ✓ Probed 2 files");
}

TEST_F(CachedRun, aTranscriptWithoutLinesIsAHit) {
    const auto footage = givenFootage();
    pipeline->saveTranscriptCache(transcriptOf({}), footage);
    givenStoryAndWords();
    mine(footage);
    thenLogHas("[green] ✓ Found cached transcript — 0 segments · 0 words");
    // Without a line there is nothing to compare with: both thresholds lie at the floor and every moment passes.
    thenLogHas("[dim]   Energy: 0 loud, 0 medium, 0 quiet — thresholds: quiet<-60dB<med<-60dB<loud");
}

TEST_F(CachedRun, aProjectToldAnewReadsLineByLine) {
    givenAnEarlierMine();
    const auto project = theProject();
    givenStoryAndWords();
    StoryChoices choices;
    choices.targetMinutes = 2.5;
    choices.presetId = "sizzle";
    ended(pipeline->runFromProject(project, choices));
    EXPECT_THAT(
        log(),
        ElementsAre(
            "[dim] $ zuvo mine --reload Dropped Files (2)", "[green] ✓ Loaded saved project — 3 segments",
            "[dim]   Skipping transcription (cached)", "[accent] ⛏ Claude analyzing story structure...",
            "[dim]   Extracting audio energy profile...", "[dim]   A.wav: 200s extracted",
            "[dim]   B.wav: 150s extracted",
            "[dim]   Energy: 2 loud, 0 medium, 1 quiet — thresholds: quiet<-20dB<med<-20dB<loud",
            "[dim]   Sending 76 chars to Claude (energy-annotated)...", "[dim] 🔑 API key found (anthropic-ke...)",
            "[muted] 📋 Source clip map: A.wav: 0.0s–200.0s, B.wav: 200.0s–350.0s",
            "[accent] 💎 Found 1 acts · 2 moments", "[accent] ⛏ Re-transcribing selected moments at word level...",
            "[dim]   Word transcribing segment 1/2...", "[dim]   Word transcribing segment 2/2...",
            "[green] ✓ 2 words across 2 segments", "[green] ✓ Exported SRT, transcript, and story brief",
            "[dim]   Wrote 2 segments to cache", "[muted] Building timeline in Resolve...",
            "[muted] Building timeline in Resolve...", "[accent] ✗ Python returned no output",
            "[green] ✓ Complete — new style applied!"));
    EXPECT_THAT(takeChanges(),
                ElementsAre("progress 0.5", "step Analyzing story structure...", "progress 0.7", "step Translating...",
                            "progress 0.85", "step Building timeline...", "progress 1", "step Complete"));
}

TEST_F(CachedRun, aProjectWhoseBuildFailedIsCompleteAllTheSame) {
    givenAnEarlierMine();
    const auto project = theProject();
    givenStoryAndWords();
    ended(pipeline->runFromProject(project, {}));
    EXPECT_EQ(pipeline->buildResult(), "✗ Python returned no output — check Resolve connection");
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
}

TEST_F(CachedRun, minutesPresetAndNotesOfAProjectComeFromTheCaller) {
    givenAnEarlierMine();
    auto project = theProject();
    project.targetMinutes = 5.0;
    project.presetId = "campfire";
    givenStoryAndWords();
    StoryChoices choices;
    choices.targetMinutes = 2.5;
    choices.directorNotes = "Keep the boat";
    choices.referenceURL = "https://example.com/never-asked-for";
    ended(pipeline->runFromProject(project, choices));
    const auto& prompt = services->requests.at(0).body;
    EXPECT_THAT(prompt, HasSubstr("compelling 2-minute story"));
    EXPECT_THAT(prompt, HasSubstr("Target edit: 2 min (150s)"));
    EXPECT_THAT(prompt, HasSubstr("Keep the boat"));
    EXPECT_THAT(prompt, Not(HasSubstr("Base style")));
    EXPECT_THAT(prompt, Not(HasSubstr("never-asked-for")));
    EXPECT_EQ(theProject().targetMinutes, 2.5);
    EXPECT_EQ(theProject().presetId, std::nullopt);
}

TEST_F(CachedRun, theLanguageOfAProjectIsItsOwn) {
    givenAnEarlierMine();
    auto project = theProject();
    project.language = "es";
    givenStoryAndWords();
    ended(pipeline->runFromProject(project, {}));
    EXPECT_THAT(services->requests.at(0).body, HasSubstr("- Source language: es\\n"));
    EXPECT_THAT(services->requests.at(1).body, HasSubstr("name=\"language\"\r\n\r\nes\r\n"));
}

TEST_F(CachedRun, eachNewStyleMakesANewVersion) {
    givenAnEarlierMine();
    const auto project = theProject();
    for (int i = 0; i < 2; ++i) {
        givenStoryAndWords();
        ended(pipeline->runFromProject(project, {}));
    }
    EXPECT_TRUE(exists(exportsPath("Dropped Files (2)/mining_results_v1.json")));
    EXPECT_TRUE(exists(exportsPath("Dropped Files (2)/mining_results_v2.json")));
    EXPECT_FALSE(exists(exportsPath("Dropped Files (2)/mining_results_v3.json")));
}

TEST_F(CachedRun, aProjectSetsTheMediaOfTheRunEvenIfItFailsLater) {
    SavedProject project;
    project.timeline = "Old cut";
    project.mediaPaths = {"/gone/A.wav"};
    services->thenFails("The request timed out");
    ended(pipeline->runFromProject(project, {}));
    EXPECT_EQ(pipeline->lastMediaPaths(), std::vector<std::string>{"/gone/A.wav"});
    thenLogHas("[accent]   Claude request failed: The request timed out");
    EXPECT_EQ(pipeline->errorMessage(), "Story analysis failed");
    EXPECT_EQ(pipeline->progress(), 0.5);
}

TEST_F(CachedRun, aProjectWhoseNameLeadsOutIsToldButWritesNothingThere) {
    SavedProject project;
    project.timeline = "../x";
    givenStory(fixtureStory);
    ended(pipeline->runFromProject(project, {}));
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_TRUE(pipeline->results().has_value());
    EXPECT_FALSE(exists(home + "/Library/Application Support"));
}

TEST_F(CachedRun, withoutAStoryNothingIsRebuiltAndNothingIsLogged) {
    EXPECT_FALSE(ended(pipeline->rebuildTimeline("Cut", {})));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(CachedRun, aFailedRebuildSaysSoAndTouchesNeitherStepNorProgress) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    (void)takeChanges();
    EXPECT_FALSE(ended(pipeline->rebuildTimeline("Cut", footage)));
    const auto lines = log();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
                ElementsAre("[muted] Rebuilding timeline in Resolve...", "[accent]   Python script failed to execute",
                            "[accent] ✗ Timeline rebuild failed"));
    EXPECT_THAT(takeChanges(), IsEmpty());
}

TEST_F(CachedRun, aTimelineIsNotBuiltWithoutASegmentsFile) {
    ended(pipeline->buildTimelineFromSegmentsFile());
    EXPECT_EQ(pipeline->buildResult(), "✗ No segments file found");
    EXPECT_THAT(log(), ElementsAre("[accent] ✗ No segments file found"));
}
