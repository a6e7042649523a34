// How a run gets on with a flow that cancels it, starts another or is gone.

#include "MineFixture.h"

#include "base/Json.h"

#include <algorithm>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

/// Of a mine of the fixture's footage; `theRunHasAsManyCallsAsAreTriedHere` holds it to that.
constexpr std::size_t callsOfAMine = 18;

/// One more asks Resolve for the media, and one builds the timeline.
constexpr std::size_t callsOfATimelinesMine = callsOfAMine + 2;

class MineUnderWay : public MineTest {
protected:
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

class MineAtEveryCall : public MineUnderWay, public testing::WithParamInterface<std::size_t> {};
class TimelineMineAtEveryCall : public MineUnderWay, public testing::WithParamInterface<std::size_t> {};

} // namespace

TEST_F(MineUnderWay, theRunHasAsManyCallsAsAreTriedHere) {
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

TEST_F(MineUnderWay, anAuditThatIsCancelledOrLeftBehindMovesNoFlow) {
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

TEST_F(MineUnderWay, aProjectThatIsToldAnewGoesOnToItsEndWhenItIsCancelledOrLeftBehindAtAnyCall) {
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

TEST_F(MineUnderWay, aRunThatIsCancelledBeforeItBeginsDoesNotBegin) {
    givenDroppedFootage();
    givenStep(MineStep::style);
    flow->styleNext();
    flow->cancelMining();
    thenNothingRan();
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    services->forgetPlan();
}

TEST_F(MineUnderWay, afterACancelTheNextRunMovesTheFlowAndTheCancelledOneDoesNot) {
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

TEST_F(MineUnderWay, aCancelledRunThatEndsDuringTheNextDoesNotMoveTheFlow) {
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

TEST_F(MineUnderWay, cancellingTellsTheRunThenPutsThePipelineBackThenLeavesTheDig) {
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
