// Which run the choices start, with what, and how a run gets on with a flow that cancels it or is gone.

#include "MineFixture.h"

#include "base/Json.h"

#include <algorithm>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// Of a mine of the fixture's footage; `theRunHasAsManyCallsAsAreTriedHere` holds it to that.
constexpr std::size_t callsOfAMine = 18;

/// One more asks Resolve for the media, and one builds the timeline.
constexpr std::size_t callsOfATimelinesMine = callsOfAMine + 2;

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

    /// Plans answers that are right for whatever is asked: a transcript with one line, its words, and the story.
    void givenServicesThatAnswerEverything() {
        auto body = Json::parse(messagesAnswer(fixtureStory));
        body["text"] = "";
        body["language"] = "en";
        body["segments"] = Json::array({Json::parse(R"({"start": 0.0, "end": 10.0, "text": "one"})")});
        body["words"] = Json::array();
        constexpr int enoughForSeveralRuns = 60;
        for (int i = 0; i < enoughForSeveralRuns; ++i)
            services->then(200, body.dump());
    }

    enum class Leaving { cancelled, destroyed };

    /// At the `number`-th call, counted from the first of the test, the user cancels the mine or the flow goes.
    void leaveAt(std::size_t number, Leaving how) {
        calls->inside = [this, number, how](std::size_t call) {
            if (call != number)
                return;
            if (how == Leaving::destroyed)
                flow.reset();
            else
                flow->cancelMining();
        };
    }

    [[nodiscard]] static std::size_t countOf(const std::vector<std::string>& events, const std::string& event) {
        return static_cast<std::size_t>(std::count(events.begin(), events.end(), event));
    }
};

class MineAtEveryCall : public MineRuns, public testing::WithParamInterface<std::size_t> {};
class TimelineMineAtEveryCall : public MineRuns, public testing::WithParamInterface<std::size_t> {};

} // namespace

// The choice of run.

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

// While a run is under way.

TEST_F(MineRuns, theRunHasAsManyCallsAsAreTriedHere) {
    givenDroppedFootage();
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(calls->count(), callsOfAMine);
}

TEST_P(MineAtEveryCall, aMineGoesOnSafelyToItsEndWhenTheFlowIsGone) {
    givenDroppedFootage();
    const QPointer<LocalPipeline> watched = pipeline.get();
    calls->inside = [this](std::size_t call) {
        if (call == GetParam()) {
            flow.reset();
            pipeline.reset(); // from here on the run alone holds it
        }
    };
    flow->styleNext();
    std::vector<std::string> changes;
    ASSERT_TRUE(waitUntil([this, &changes] {
        for (auto& change : takeChanges())
            changes.push_back(std::move(change));
        return countOf(changes, "step Complete") == 1;
    }));
    EXPECT_EQ(flow, nullptr);
    EXPECT_EQ(services->plannedCount(), 0U);
    EXPECT_EQ(calls->count(), callsOfAMine);
    EXPECT_EQ(countOf(changes, "step Error"), 0U);
    EXPECT_TRUE(waitUntil([&watched] { return watched.isNull(); }));
    // What the mine was for lies on the disk: the next showing lists it.
    pipeline = LocalPipeline::create(platform);
    newFlow();
    flow->listProjects();
    ASSERT_EQ(flow->savedProjects().size(), 1U);
    EXPECT_EQ(flow->savedProjects().front().timeline, "Dropped Files (2)");
}

TEST_P(MineAtEveryCall, aCancelledMineMovesTheFlowNoMore) {
    givenDroppedFootage();
    std::vector<int> steps;
    QObject::connect(flow.get(), &MineViewModel::currentStepChanged,
                     [this, &steps] { steps.push_back(flow->currentStepNumber()); });
    leaveAt(GetParam(), Leaving::cancelled);
    givenStep(MineStep::style);
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return calls->count() == callsOfAMine; }));
    ASSERT_TRUE(runEnds());
    turn();
    // The reset took the cancellation back, so the run went on unseen.
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_THAT(steps, ElementsAre(1, 2, 1));
    EXPECT_EQ(flow->currentStep(), MineStep::style);
}

TEST_P(MineAtEveryCall, aSecondStartWhileOneRunsCrashesNothing) {
    givenDropped(givenFootage());
    givenServicesThatAnswerEverything();
    calls->inside = [this](std::size_t call) {
        if (call == GetParam())
            flow->styleNext();
    };
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    // The first to end has moved the flow; the other ends by itself.
    EXPECT_TRUE(waitUntil([this] {
        const auto before = calls->count();
        turn();
        return calls->count() == before && pipeline->step() == PipelineStep::complete;
    }));
    EXPECT_EQ(flow->currentStep(), MineStep::review);
    services->forgetPlan();
}

INSTANTIATE_TEST_SUITE_P(EveryCall, MineAtEveryCall, testing::Range(std::size_t{1}, callsOfAMine + 1));

TEST_P(TimelineMineAtEveryCall, aMineGoesOnSafelyToItsBuildWhenTheFlowIsGone) {
    givenTimeline("Cut");
    givenServicesAnswer();
    const QPointer<LocalPipeline> watched = pipeline.get();
    std::string buildResult;
    QObject::connect(pipeline.get(), &LocalPipeline::buildResultChanged, pipeline.get(),
                     [watched, &buildResult] { buildResult = watched->buildResult().value_or(""); });
    calls->inside = [this](std::size_t call) {
        if (call == GetParam()) {
            flow.reset();
            pipeline.reset();
        }
    };
    flow->styleNext();
    EXPECT_TRUE(waitUntil([&watched] { return watched.isNull(); }));
    EXPECT_EQ(takeChanges().back(), "step Complete");
    EXPECT_EQ(buildResult, "✗ Python returned no output — check Resolve connection");
    EXPECT_EQ(calls->count(), callsOfATimelinesMine);
}

TEST_P(TimelineMineAtEveryCall, aCancelledMineMovesTheFlowNoMore) {
    givenTimeline("Cut");
    givenServicesAnswer();
    std::vector<int> steps;
    QObject::connect(flow.get(), &MineViewModel::currentStepChanged,
                     [this, &steps] { steps.push_back(flow->currentStepNumber()); });
    leaveAt(GetParam(), Leaving::cancelled);
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return calls->count() == callsOfATimelinesMine; }));
    ASSERT_TRUE(runEnds());
    turn();
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_THAT(steps, ElementsAre(2, 1));
}

INSTANTIATE_TEST_SUITE_P(EveryCall, TimelineMineAtEveryCall, testing::Range(std::size_t{1}, callsOfATimelinesMine + 1));

TEST_F(MineRuns, anAuditThatIsCancelledOrLeftBehindMovesNoFlow) {
    constexpr std::size_t callsOfAnAudit = 3; // its clips, its media, the model
    const auto footage = givenAFinishedMine();
    const std::string clips = R"(SUCCESS:[{"sourceFile": ")" + footage.at(0) +
                              R"(", "startFrame": 0, "endFrame": 264, "duration": 11.0}])" + "\n";
    tools->when(running(timelineClipsScript("/resolve/Modules", "Cut")), printed(clips));
    tools->when(running(timelineMediaScript("/resolve/Modules", "Cut")),
                printed(footage.at(0) + "\n" + footage.at(1) + "\n"));
    for (const bool isGone : {false, true}) {
        for (std::size_t call = 1; call <= callsOfAnAudit; ++call) {
            newFlow();
            flow->setSourceMode(SourceMode::resolve);
            flow->setSelectedTimeline("Cut");
            flow->setSelectedMode(MiningMode::audit);
            services->then(200, messagesAnswer(R"({"coveragePercent": 1, "usedSegments": [], "buriedGold": [],
                "redundancies": [], "alternates": [], "themeGaps": [], "confidenceScore": 1, "summary": "s"})"));
            const auto before = calls->count();
            leaveAt(before + call, isGone ? Leaving::destroyed : Leaving::cancelled);
            flow->startAudit();
            ASSERT_TRUE(waitUntil([&] { return calls->count() == before + callsOfAnAudit; })) << call;
            turn();
            EXPECT_EQ(pipeline->step(), PipelineStep::complete) << call;
            EXPECT_TRUE(pipeline->auditReport());
            if (!isGone) {
                EXPECT_EQ(flow->currentStep(), MineStep::style) << call;
            }
        }
    }
}

TEST_F(MineRuns, aProjectThatIsToldAnewGoesOnToItsEndWhenItIsCancelledOrLeftBehindAtAnyCall) {
    const auto begin = [this] {
        newFlow();
        flow->setSourceMode(SourceMode::resolve);
        flow->loadProject(projectCalled("Old"));
        givenStory(fixtureStory);
        flow->styleNext();
    };
    begin();
    ASSERT_TRUE(runEnds());
    turn();
    const auto callsOfARun = calls->count();
    ASSERT_GE(callsOfARun, 2U); // the model, and the build at its end
    for (const bool isGone : {false, true}) {
        for (std::size_t call = 1; call <= callsOfARun; ++call) {
            const auto before = calls->count();
            leaveAt(before + call, isGone ? Leaving::destroyed : Leaving::cancelled);
            begin();
            ASSERT_TRUE(waitUntil([&] { return calls->count() == before + callsOfARun; })) << call;
            turn();
            EXPECT_EQ(pipeline->step(), PipelineStep::complete) << call;
            if (!isGone) {
                EXPECT_EQ(flow->currentStep(), MineStep::style) << call;
            }
        }
    }
}

TEST_F(MineRuns, aRunThatIsCancelledBeforeItBeginsDoesNotBegin) {
    givenDroppedFootage();
    givenStep(MineStep::style);
    flow->styleNext();
    flow->cancelMining();
    thenNothingRan();
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    services->forgetPlan();
}

TEST_F(MineRuns, afterACancelTheNextRunMovesTheFlowAndTheCancelledOneDoesNot) {
    givenDropped(givenFootage());
    givenServicesThatAnswerEverything();
    leaveAt(callsOfAMine, Leaving::cancelled);
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return pipeline->step() == PipelineStep::complete; }));
    turn();
    ASSERT_EQ(flow->currentStep(), MineStep::style);
    flow->styleNext();
    ASSERT_EQ(flow->currentStep(), MineStep::processing);
    EXPECT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    services->forgetPlan();
}

TEST_F(MineRuns, aCancelledRunThatEndsDuringTheNextDoesNotMoveTheFlow) {
    givenDropped(givenFootage());
    givenServicesThatAnswerEverything();
    std::vector<int> steps;
    QObject::connect(flow.get(), &MineViewModel::currentStepChanged,
                     [this, &steps] { steps.push_back(flow->currentStepNumber()); });
    // The first is near its end when it is cancelled, so that it ends while the second is at its beginning.
    std::vector<int> stepsAtTheFirstEnd;
    bool hasSeenTheFirstEnd = false;
    QObject::connect(pipeline.get(), &LocalPipeline::resultsChanged, pipeline.get(), [&, this] {
        if (pipeline->results() && !std::exchange(hasSeenTheFirstEnd, true)) {
            QTimer::singleShot(0, flow.get(), [&, this] { stepsAtTheFirstEnd = {flow->currentStepNumber()}; });
        }
    });
    calls->inside = [this](std::size_t call) {
        if (call == callsOfAMine - 1) {
            flow->cancelMining();
            flow->styleNext();
        }
    };
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    EXPECT_THAT(stepsAtTheFirstEnd, ElementsAre(2));
    EXPECT_THAT(steps, ElementsAre(2, 1, 2, 3));
    services->forgetPlan();
}

TEST_F(MineRuns, cancellingTellsTheRunThenPutsThePipelineBackThenLeavesTheDig) {
    givenDroppedFootage();
    MineStep stepAtTheReset = MineStep::setup;
    QObject::connect(pipeline.get(), &LocalPipeline::logsCleared, flow.get(),
                     [this, &stepAtTheReset] { stepAtTheReset = flow->currentStep(); });
    leaveAt(2, Leaving::cancelled);
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::style; }));
    EXPECT_EQ(stepAtTheReset, MineStep::processing);
    // Had the cancellation come behind the reset, the run would have seen it.
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
}
