// Saved projects, the edited story on its way to Resolve, and the beginning of another mine.

#include "MineFixture.h"

#include "base/Json.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MineProjects : public MineTest {
protected:
    /// The project that a restyling makes of the present choices.
    SavedProject restyled() {
        flow->restyle();
        EXPECT_EQ(flow->currentStep(), MineStep::style);
        EXPECT_TRUE(flow->loadedProject());
        return flow->loadedProject().value_or(SavedProject());
    }

    std::string restyledName(const std::vector<std::string>& files) {
        newFlow();
        givenDropped(files);
        return restyled().timeline;
    }

    /// Choices of every kind, all different from the first ones.
    void chooseEverything() {
        StyleSliders sliders;
        sliders.emotion = 0.9;
        givenDropped({"/footage/A.wav", "/footage/B.wav"});
        flow->setSourceMode(SourceMode::resolve);
        flow->setSelectedTimeline("Cut");
        flow->setSelectedMode(MiningMode::storyMine);
        flow->setTargetMinutes(12.0);
        flow->setSelectedLanguage("gl");
        flow->setStyleSliders(sliders);
        flow->setSelectedPresetId("campfire");
        flow->setReferenceURL("https://example.com");
        flow->setMagicMode(true);
        flow->setDirectorNotes("notes");
        flow->setRating(4);
    }

    void thenTheChoicesStand() const {
        EXPECT_EQ(flow->droppedFiles().size(), 2U);
        EXPECT_EQ(flow->sourceMode(), SourceMode::resolve);
        EXPECT_EQ(flow->selectedTimeline(), "Cut");
        EXPECT_EQ(flow->selectedMode(), MiningMode::storyMine);
        EXPECT_EQ(flow->targetMinutes(), 12.0);
        EXPECT_EQ(flow->selectedLanguage(), "gl");
        EXPECT_EQ(flow->styleSliders().emotion, 0.9);
        EXPECT_EQ(flow->selectedPresetId(), "campfire");
        EXPECT_EQ(flow->referenceURL(), "https://example.com");
        EXPECT_TRUE(flow->isMagicMode());
        EXPECT_EQ(flow->directorNotes(), "notes");
    }

    /// What the pages saw when the pipeline's state was put back.
    struct Reset {
        int count = 0;
        MineStep step = MineStep::processing;
        bool hadProbeFile = false;
    };
    void watchResets(Reset& reset) {
        QObject::connect(pipeline.get(), &LocalPipeline::logsCleared, flow.get(), [this, &reset] {
            ++reset.count;
            reset.step = flow->currentStep();
            reset.hadProbeFile = exists(cachePath("probe_results.json"));
        });
    }

    [[nodiscard]] bool buildEnds() const {
        return waitUntil([this] { return pipeline->buildResult().has_value(); });
    }
};

} // namespace

// Loading.

TEST_F(MineProjects, aProjectWithResultsIsShownInTheDiscovery) {
    auto project = projectCalled("Old");
    project.presetId = "essay";
    project.results = analysedStory();
    flow->loadProject(project);
    EXPECT_EQ(flow->currentStep(), MineStep::review);
    ASSERT_TRUE(flow->loadedProject());
    EXPECT_EQ(jsonOf(*flow->loadedProject()), jsonOf(project));
    EXPECT_EQ(flow->selectedTimeline(), "Old");
    EXPECT_EQ(flow->targetMinutes(), 12.0);
    EXPECT_EQ(flow->selectedPresetId(), "essay");
    ASSERT_TRUE(pipeline->results());
    EXPECT_EQ(jsonOf(*pipeline->results()), jsonOf(analysedStory()));
    EXPECT_EQ(pipeline->lastMediaPaths(), std::vector<std::string>({"/footage/A.wav", "/footage/B.wav"}));
    EXPECT_EQ(pipeline->lastExportDir(), exportsPath("Old"));
    // The pages get them from there.
    EXPECT_EQ(flow->reviewSegments().size(), 3U);
    EXPECT_THAT(flow->mediaPaths(), ElementsAre("/footage/A.wav", "/footage/B.wav"));
    thenNothingRan();
}

TEST_F(MineProjects, aProjectWithoutResultsIsShownInTheLantern) {
    auto project = projectCalled("Old");
    project.presetId = "essay";
    pipeline->setResults(analysedStory());
    pipeline->setLastExportDir("/before");
    flow->loadProject(project);
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    EXPECT_EQ(flow->selectedTimeline(), "Old");
    EXPECT_EQ(flow->targetMinutes(), 12.0);
    EXPECT_EQ(flow->selectedPresetId(), "essay");
    // The pipeline is left as it was.
    EXPECT_EQ(jsonOf(*pipeline->results()), jsonOf(analysedStory()));
    EXPECT_EQ(pipeline->lastMediaPaths(), std::nullopt);
    EXPECT_EQ(pipeline->lastExportDir(), "/before");
    thenNothingRan();
}

TEST_F(MineProjects, aProjectWithoutAPresetLeavesTheChosenOne) {
    flow->setSelectedPresetId("campfire");
    flow->loadProject(projectCalled("Old"));
    EXPECT_EQ(flow->selectedPresetId(), "campfire");
    auto withResults = projectCalled("Older");
    withResults.results = analysedStory();
    flow->loadProject(withResults);
    EXPECT_EQ(flow->selectedPresetId(), "campfire");
}

TEST_F(MineProjects, loadingLeavesSourceModeLanguageAndStyle) {
    for (const auto source : {SourceMode::files, SourceMode::resolve}) {
        newFlow();
        flow->setSourceMode(source);
        flow->setSelectedMode(MiningMode::structure);
        flow->setSelectedLanguage("gl");
        flow->setDirectorNotes("notes");
        flow->setRating(3);
        flow->loadProject(projectCalled("Old"));
        EXPECT_EQ(flow->sourceMode(), source);
        EXPECT_EQ(flow->selectedMode(), MiningMode::structure);
        EXPECT_EQ(flow->selectedLanguage(), "gl");
        EXPECT_EQ(flow->directorNotes(), "notes");
        EXPECT_EQ(flow->rating(), 3);
    }
}

TEST_F(MineProjects, aProjectWithoutResultsWhileNothingIsDroppedEndsOnTheDigWithNothingRunning) {
    flow->loadProject(projectCalled("Old"));
    flow->styleNext();
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
    thenNothingRan();
}

TEST_F(MineProjects, aProjectOnThePageOfAnAuditShowsTheModesPage) {
    auto project = projectCalled("Old");
    project.results = analysedStory();
    flow->setSelectedMode(MiningMode::audit);
    flow->loadProject(project);
    EXPECT_EQ(flow->pageName(), QStringLiteral("NoAuditReport"));
}

TEST_F(MineProjects, theProjectThatAMineSavedCanBeLoadedByTheNextFlow) {
    const auto footage = givenAFinishedMine();
    pipeline = LocalPipeline::create(platform);
    newFlow();
    flow->show();
    ASSERT_TRUE(waitUntil([this] { return flow->savedProjects().size() == 1; }));
    flow->loadProject(flow->savedProjects().front());
    EXPECT_EQ(flow->currentStep(), MineStep::review);
    EXPECT_EQ(flow->mediaPaths(), footage);
    EXPECT_EQ(pipeline->lastExportDir(), exportsPath("Dropped Files (2)"));
    EXPECT_EQ(flow->reviewSegments().size(), 2U);
}

// What the pages are given.

TEST_F(MineProjects, beforeAMineThePagesAreGivenNothing) {
    EXPECT_THAT(flow->reviewSegments(), IsEmpty());
    EXPECT_THAT(flow->mediaPaths(), IsEmpty());
    EXPECT_THAT(flow->fullTranscript(), IsEmpty());
    EXPECT_FALSE(flow->pipeline()->auditReport());
    EXPECT_FALSE(flow->pipeline()->results());
    EXPECT_EQ(flow->pipeline()->lastExportDir(), std::nullopt);
}

TEST_F(MineProjects, afterAMineThePagesAreGivenItsStoryMediaAndTranscript) {
    const auto footage = givenAFinishedMine();
    ASSERT_EQ(flow->reviewSegments().size(), 2U);
    EXPECT_EQ(flow->reviewSegments().at(0).transcript, "uno dos");
    EXPECT_EQ(flow->reviewSegments().at(1).endTime, 110.5);
    EXPECT_EQ(flow->mediaPaths(), footage);
    ASSERT_EQ(flow->fullTranscript().size(), 3U);
    EXPECT_EQ(flow->fullTranscript().at(2).start, 310.0);
    EXPECT_EQ(flow->pipeline().get(), pipeline.get());
}

// Sending the review to Resolve.

TEST_F(MineProjects, theEditedStoryReplacesTheAnalysedOneAndIsWhatIsBuilt) {
    pipeline->setResults(analysedStory());
    pipeline->setLastMediaPaths(std::vector<std::string>{"/footage/A.wav"});
    givenStep(MineStep::review);
    const auto all = analysedStory().segments;
    flow->sendToResolve({all.at(2), all.at(0)});
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    ASSERT_TRUE(pipeline->results());
    const auto& story = *pipeline->results();
    ASSERT_EQ(story.segments.size(), 2U);
    EXPECT_EQ(story.segments.at(0).index, 2);
    EXPECT_EQ(story.segments.at(1).index, 0);
    EXPECT_EQ(story.estimatedDuration, 15.5); // 5.5 and 10
    EXPECT_EQ(jsonOf(story.structure), jsonOf(analysedStory().structure));
    ASSERT_EQ(story.subtitles.size(), 1U);
    EXPECT_EQ(story.subtitles.front().text, "a card");

    const auto handOff = Json::parse(read(cachePath("segments.json")));
    ASSERT_EQ(handOff.size(), 2U);
    EXPECT_EQ(handOff.at(0).at("startTime"), 50.0);
    EXPECT_EQ(handOff.at(0).at("endTime"), 55.5);
    EXPECT_EQ(handOff.at(1).at("startTime"), 0.0);
    EXPECT_EQ(calls->count(), 0U);
    ASSERT_TRUE(buildEnds()); // it runs on while Daylight is on screen
    EXPECT_EQ(tools->requests.size(), 1U);
    EXPECT_EQ(flow->currentStep(), MineStep::done);
}

TEST_F(MineProjects, theHandOffFileOfBeforeIsRewritten) {
    (void)givenAFinishedMine();
    const auto before = Json::parse(read(cachePath("segments.json")));
    ASSERT_EQ(before.size(), 2U);
    auto kept = flow->reviewSegments();
    kept.erase(kept.begin());
    flow->sendToResolve(kept);
    const auto after = Json::parse(read(cachePath("segments.json")));
    ASSERT_EQ(after.size(), 1U);
    EXPECT_EQ(after.at(0).at("startTime"), 100.0);
    EXPECT_EQ(pipeline->results()->estimatedDuration, 10.5);
    ASSERT_TRUE(buildEnds());
}

TEST_F(MineProjects, anEmptiedStoryIsAStoryOfNoLength) {
    pipeline->setResults(analysedStory());
    flow->sendToResolve({});
    EXPECT_THAT(pipeline->results()->segments, IsEmpty());
    EXPECT_EQ(pipeline->results()->estimatedDuration, 0.0);
    EXPECT_EQ(Json::parse(read(cachePath("segments.json"))).size(), 0U);
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    ASSERT_TRUE(buildEnds());
}

TEST_F(MineProjects, withoutAStoryTheFileThatLiesThereIsBuilt) {
    write(cachePath("segments.json"), "[]");
    givenStep(MineStep::review);
    flow->sendToResolve(analysedStory().segments);
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    EXPECT_FALSE(pipeline->results());
    EXPECT_EQ(read(cachePath("segments.json")), "[]");
    ASSERT_TRUE(buildEnds());
    EXPECT_EQ(tools->requests.size(), 1U);
}

TEST_F(MineProjects, aBuildThatRunsWhileTheFlowGoesEndsByItself) {
    write(cachePath("segments.json"), "[]");
    const QPointer<LocalPipeline> watched = pipeline.get();
    calls->inside = [this](std::size_t) {
        flow.reset();
        pipeline.reset();
    };
    flow->buildTimeline();
    EXPECT_TRUE(waitUntil([&watched] { return watched.isNull(); }));
    EXPECT_EQ(calls->count(), 1U);
}

// Restyling.

TEST_F(MineProjects, aRestyledRunOfOneFileIsCalledByItsNameWithoutTheExtension) {
    EXPECT_EQ(restyledName({"/footage/a.mov"}), "a");
    EXPECT_EQ(restyledName({"/footage/a.mov.mov"}), "a.mov"); // removed once
    EXPECT_EQ(restyledName({"/footage/Día 1. Interview.MP4"}), "Día 1. Interview");
    EXPECT_EQ(restyledName({"/footage/README"}), "README");
    EXPECT_EQ(restyledName({"/footage/.wav"}), ".wav");
    EXPECT_EQ(restyledName({"/foo.tage/a."}), "a.");
    EXPECT_EQ(restyledName({"/footage/50% #1.wav"}), "50% #1");
}

TEST_F(MineProjects, aRestyledRunOfAnyOtherNumberOfFilesIsCalledByTheirNumber) {
    EXPECT_EQ(restyledName({"/footage/a.mov", "/footage/b.mov"}), "Dropped Files (2)");
    EXPECT_EQ(restyledName({"/footage/a.mov", "/footage/b.mov", "/footage/c.mov"}), "Dropped Files (3)");
    EXPECT_EQ(restyledName({}), "Dropped Files (0)");
}

TEST_F(MineProjects, aRestyledTimelineIsCalledByItsNameOrUnknown) {
    flow->setSourceMode(SourceMode::resolve);
    EXPECT_EQ(restyled().timeline, "Unknown");
    newFlow();
    givenDropped({"/footage/a.mov"});
    flow->setSourceMode(SourceMode::resolve);
    flow->setSelectedTimeline("Cut.v2");
    EXPECT_EQ(restyled().timeline, "Cut.v2");
}

TEST_F(MineProjects, aRestyledRunKeepsTheChoicesAndTheStoryButNoTranscript) {
    const auto footage = givenAFinishedMine();
    givenDropped(footage);
    flow->setSelectedLanguage("gl");
    flow->setSelectedPresetId("campfire");
    flow->setTargetMinutes(12.0);
    givenStep(MineStep::done);
    const auto project = restyled();
    EXPECT_EQ(project.timeline, "Dropped Files (2)");
    EXPECT_EQ(project.createdAt, static_cast<double>(now.toSecsSinceEpoch()));
    EXPECT_EQ(project.language, "gl");
    EXPECT_EQ(project.mediaPaths, footage);
    EXPECT_THAT(project.transcript, IsEmpty());
    ASSERT_TRUE(project.results);
    EXPECT_EQ(jsonOf(*project.results), jsonOf(*pipeline->results()));
    EXPECT_EQ(project.presetId, "campfire");
    EXPECT_EQ(project.targetMinutes, 12.0);
    ASSERT_EQ(pipeline->listProjects().size(), 1U); // nothing is stored by this
    EXPECT_FALSE(pipeline->listProjects().front().presetId);
}

TEST_F(MineProjects, restylingBeforeAnyRunMakesAProjectOfNothing) {
    const auto project = restyled();
    EXPECT_THAT(project.mediaPaths, IsEmpty());
    EXPECT_FALSE(project.results);
    EXPECT_EQ(project.presetId, std::nullopt);
    EXPECT_EQ(project.language, "auto");
    EXPECT_EQ(project.targetMinutes, 5.0);
    thenNothingRan();
}

TEST_F(MineProjects, aProjectThatIsLoadedIsRestyledAsItIs) {
    auto project = projectCalled("Old");
    project.results = analysedStory();
    flow->loadProject(project);
    flow->setTargetMinutes(3.0);
    const QSignalSpy told(flow.get(), &MineViewModel::loadedProjectChanged);
    EXPECT_EQ(jsonOf(restyled()), jsonOf(project));
    EXPECT_EQ(told.count(), 0);
}

// Another mine.

TEST_F(MineProjects, startingOverKeepsTheChoicesAndTheCaches) {
    const auto footage = givenAFinishedMine();
    chooseEverything();
    flow->restyle();
    ASSERT_TRUE(flow->loadedProject());
    givenStep(MineStep::done);
    ASSERT_TRUE(exists(cachePath("probe_results.json")));
    Reset reset;
    watchResets(reset);
    flow->resetFlow();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    EXPECT_EQ(flow->rating(), std::nullopt);
    EXPECT_FALSE(flow->loadedProject());
    ASSERT_EQ(flow->savedProjects().size(), 1U);
    thenTheChoicesStand();
    EXPECT_EQ(pipeline->step(), PipelineStep::idle);
    EXPECT_FALSE(pipeline->results());
    EXPECT_EQ(reset.count, 1);
    EXPECT_EQ(reset.step, MineStep::setup); // first the page, then the pipeline
    EXPECT_TRUE(exists(cachePath("probe_results.json")));
    EXPECT_TRUE(exists(cachePath("segments.json")));
    EXPECT_TRUE(exists(cachePath("transcripts")));
}

TEST_F(MineProjects, startingFreshClearsTheCachesFirstAndKeepsTheChoices) {
    (void)givenAFinishedMine();
    chooseEverything();
    flow->restyle();
    givenStep(MineStep::done);
    Reset reset;
    watchResets(reset);
    flow->startFresh();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    EXPECT_EQ(flow->rating(), std::nullopt);
    EXPECT_FALSE(flow->loadedProject());
    ASSERT_EQ(flow->savedProjects().size(), 1U);
    thenTheChoicesStand();
    EXPECT_FALSE(exists(cachePath("probe_results.json")));
    EXPECT_FALSE(exists(cachePath("segments.json")));
    EXPECT_TRUE(exists(cachePath("transcripts"))); // paid for
    // The one reset is the clearing's own, behind the removal and before the page changes.
    EXPECT_EQ(reset.count, 1);
    EXPECT_EQ(reset.step, MineStep::done);
    EXPECT_FALSE(reset.hadProbeFile);
}

TEST_F(MineProjects, aFlowThatWasNeverRatedTellsNoChangeWhenItStartsOver) {
    const QSignalSpy rating(flow.get(), &MineViewModel::ratingChanged);
    const QSignalSpy project(flow.get(), &MineViewModel::loadedProjectChanged);
    const QSignalSpy step(flow.get(), &MineViewModel::currentStepChanged);
    flow->resetFlow();
    flow->startFresh();
    EXPECT_EQ(rating.count() + project.count() + step.count(), 0);
}

TEST_F(MineProjects, theAuditPageStartsOverToo) {
    flow->setSelectedMode(MiningMode::audit);
    givenStep(MineStep::review);
    flow->resetFlow();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    EXPECT_EQ(flow->selectedMode(), MiningMode::audit);
}

TEST_F(MineProjects, afterStartingOverTheNextTimelineIsMinedAnewNotReloaded) {
    givenTimeline("Cut");
    givenServicesAnswer();
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    flow->skipToExport();
    flow->restyle();
    flow->resetFlow();
    services->forgetPlan();
    services->thenFails("nobody there");
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(firstLine(), "[dim] $ zuvo mine --mode full-mine");
}
