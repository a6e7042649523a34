// Which run the choices start, and with what.

#include "MineFixture.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::Not;

namespace {

class MineRuns : public MineTest {
protected:
    /// What the model was asked, as the services got it.
    [[nodiscard]] std::string modelRequest() const {
        for (const auto& request : services->requests) {
            if (request.url.ends_with("/v1/messages"))
                return request.body;
        }
        return {};
    }

    [[nodiscard]] std::string firstTranscriptionRequest() const {
        for (const auto& request : services->requests) {
            if (request.url.ends_with("/audio/transcriptions"))
                return request.body;
        }
        return {};
    }

    /// Choices that differ from the first ones in every field.
    void choose() {
        StyleSliders sliders;
        sliders.pace = 0.9;
        flow->setTargetMinutes(12.0);
        flow->setStyleSliders(sliders);
        flow->setSelectedPresetId("campfire");
        flow->setReferenceURL("https://example.com/film");
        flow->setDirectorNotes("Begin at the harbour");
        flow->setSelectedLanguage("gl");
    }

    void thenTheModelWasToldTheChoices() const {
        const auto asked = modelRequest();
        EXPECT_THAT(asked, HasSubstr("compelling 12-minute story"));
        EXPECT_THAT(asked, HasSubstr("Base style: Campfire"));
        EXPECT_THAT(asked, HasSubstr("Fast-paced, energetic"));
        EXPECT_THAT(asked, HasSubstr("Begin at the harbour"));
        EXPECT_THAT(asked, Not(HasSubstr("MAGIC MODE")));
        EXPECT_THAT(asked, Not(HasSubstr("example.com"))); // accepted, and used by no stage
    }
};

} // namespace

TEST_F(MineRuns, withoutAFileNothingRuns) {
    flow->styleNext();
    thenNothingRan();
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
}

TEST_F(MineRuns, withoutATimelineNothingRuns) {
    givenDropped({"/footage/A.wav"}); // of the other source
    flow->setSourceMode(SourceMode::resolve);
    for (const auto mode : allMiningModes) {
        flow->setSelectedMode(mode);
        flow->styleNext();
        flow->startAudit();
    }
    thenNothingRan();
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
}

TEST_F(MineRuns, aTimelineThatIsChosenDoesNotRunWhileTheSourceIsFiles) {
    flow->setSelectedTimeline("Cut");
    flow->styleNext();
    thenNothingRan();
}

TEST_F(MineRuns, filesAreMinedInTheOrderInWhichTheyWereDroppedWithAllChoices) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    givenDropped({footage.at(1), footage.at(0)});
    choose();
    flow->setSelectedMode(MiningMode::storyMine);
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(firstLine(), "[dim] $ zuvo mine --files 2 --mode story-mine");
    EXPECT_EQ(pipeline->lastMediaPaths(), std::vector({footage.at(1), footage.at(0)}));
    EXPECT_THAT(firstTranscriptionRequest(), HasSubstr("name=\"language\"\r\n\r\ngl\r\n"));
    thenTheModelWasToldTheChoices();
}

TEST_F(MineRuns, anAutomaticLanguageIsNotSent) {
    givenDroppedFootage();
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_THAT(firstTranscriptionRequest(), Not(HasSubstr("\"language\"")));
    EXPECT_THAT(modelRequest(), HasSubstr("compelling 5-minute story"));
}

TEST_F(MineRuns, magicModeIsToldInPlaceOfSlidersAndPreset) {
    givenDroppedFootage();
    choose();
    flow->setMagicMode(true);
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_THAT(modelRequest(), HasSubstr("MAGIC MODE"));
    EXPECT_THAT(modelRequest(), HasSubstr("Begin at the harbour"));
    EXPECT_THAT(modelRequest(), Not(HasSubstr("Campfire")));
    EXPECT_THAT(modelRequest(), Not(HasSubstr("energetic")));
}

TEST_F(MineRuns, theSavedProjectKeepsThePresetAndTheLength) {
    givenDroppedFootage();
    choose();
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    const auto projects = pipeline->listProjects();
    ASSERT_EQ(projects.size(), 1U);
    EXPECT_EQ(projects.front().presetId, "campfire");
    EXPECT_EQ(projects.front().targetMinutes, 12.0);
}

TEST_F(MineRuns, theStyleIsReadWhenTheRunBegins) {
    givenDroppedFootage();
    flow->styleNext();
    flow->setDirectorNotes("Said before the event loop turned");
    calls->inside = [this](std::size_t call) {
        if (call == 1)
            flow->setDirectorNotes("Said too late");
    };
    ASSERT_TRUE(runEnds());
    EXPECT_THAT(modelRequest(), HasSubstr("Said before the event loop turned"));
    EXPECT_THAT(modelRequest(), Not(HasSubstr("Said too late")));
}

TEST_F(MineRuns, filesThatAreTakenAwayBeforeTheRunBeginsAreMinedAsTheyWereChosen) {
    givenDroppedFootage();
    flow->styleNext();
    flow->setDroppedFiles({});
    flow->setSourceMode(SourceMode::resolve);
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(firstLine(), "[dim] $ zuvo mine --files 2 --mode full-mine");
}

TEST_F(MineRuns, aTimelineThatIsTakenBackBeforeTheRunBeginsIsMinedAsItWasChosen) {
    givenTimeline("Cut");
    givenServicesAnswer();
    flow->styleNext();
    flow->setSelectedTimeline(std::nullopt);
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(tools->requests.front().arguments.at(1), timelineMediaScript("/resolve/Modules", "Cut").value_or(""));
}

TEST_F(MineRuns, anAuditWhoseTimelineIsTakenBackBeforeItBeginsReadsTheOneChosen) {
    givenTimeline("Cut");
    flow->setSelectedMode(MiningMode::audit);
    flow->startAudit();
    flow->setSelectedTimeline(std::nullopt);
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(firstLine(), "[dim] $ zuvo audit --timeline Cut");
}

TEST_F(MineRuns, filesAreMinedWhateverProjectIsLoadedAndEvenInAuditMode) {
    givenDroppedFootage();
    flow->loadProject(projectCalled("Old"));
    flow->setSelectedMode(MiningMode::audit);
    flow->startAudit();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(firstLine(), "[dim] $ zuvo mine --files 2 --mode audit-mine");
    EXPECT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    EXPECT_EQ(flow->pageName(), QStringLiteral("NoAuditReport"));
}

TEST_F(MineRuns, namesWithBlanksPercentAndHashAreTheFilesOwn) {
    const auto path = givenFile("50% #1 ñandú?.wav", "200.0");
    services->then(500, "busy");
    givenDropped({path});
    tools->durationText[cachePath("extracted_audio.wav")] = "200.0\n";
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(pipeline->lastMediaPaths(), std::vector({path}));
    thenLogHas("[dim]   → 50% #1 ñandú?.wav");
}

TEST_F(MineRuns, aTimelineIsMinedWithAllChoices) {
    givenTimeline("Interview Day 1");
    givenServicesAnswer();
    choose();
    flow->setSelectedMode(MiningMode::structure);
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(firstLine(), "[dim] $ zuvo mine --mode structure");
    EXPECT_EQ(tools->requests.front().arguments.at(1),
              timelineMediaScript("/resolve/Modules", "Interview Day 1").value_or(""));
    EXPECT_THAT(firstTranscriptionRequest(), HasSubstr("name=\"language\"\r\n\r\ngl\r\n"));
    thenTheModelWasToldTheChoices();
    EXPECT_TRUE(pipeline->buildResult()); // a mine from a timeline builds one
    EXPECT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    EXPECT_EQ(flow->pageName(), QStringLiteral("ReviewPage"));
}

TEST_F(MineRuns, anAuditReadsTheChosenTimelineWhateverProjectIsLoaded) {
    givenTimeline("Cut");
    flow->loadProject(projectCalled("Old"));
    flow->setSelectedTimeline("Cut");
    flow->setSelectedMode(MiningMode::audit);
    flow->startAudit();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(firstLine(), "[dim] $ zuvo audit --timeline Cut");
    EXPECT_EQ(tools->requests.front().arguments.at(1), timelineClipsScript("/resolve/Modules", "Cut").value_or(""));
    EXPECT_EQ(pipeline->step(), PipelineStep::error);
    turn();
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
}

TEST_F(MineRuns, aLoadedProjectIsToldAnewWithItsOwnNameAndLanguage) {
    flow->setSourceMode(SourceMode::resolve);
    flow->loadProject(projectCalled("Old"));
    flow->setSelectedTimeline("Another"); // chosen after loading: a project is told under its own name
    choose();
    flow->setSelectedMode(MiningMode::structure);
    givenStory(R"({"segments": [], "structure": {"acts": [], "totalDuration": 0}, "subtitles": [],
                   "estimatedDuration": 0})");
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(firstLine(), "[dim] $ zuvo mine --reload Old");
    thenLogLacks("--mode");
    EXPECT_EQ(firstTranscriptionRequest(), ""); // its transcript is paid for
    thenTheModelWasToldTheChoices();
    EXPECT_THAT(modelRequest(), HasSubstr("hola"));
    EXPECT_EQ(pipeline->lastMediaPaths(), projectCalled("Old").mediaPaths);
    const auto projects = pipeline->listProjects();
    ASSERT_EQ(projects.size(), 1U);
    EXPECT_EQ(projects.front().timeline, "Old");
    EXPECT_EQ(projects.front().targetMinutes, 12.0);
    EXPECT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
}

TEST_F(MineRuns, aRestyledTimelineIsToldAnewWithoutATranscript) {
    givenTimeline("Cut");
    givenServicesAnswer();
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    flow->skipToExport();
    services->requests.clear();
    flow->restyle();
    givenStory(R"({"segments": [], "structure": {"acts": [], "totalDuration": 0}, "subtitles": [],
                   "estimatedDuration": 0})");
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return hasLine("[dim] $ zuvo mine --reload Cut"); }));
    thenLogHas("[green] ✓ Loaded saved project — 0 segments");
    ASSERT_TRUE(runEnds());
}
