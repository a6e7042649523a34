// Which page follows which, and what each call of a page does to the flow.

#include "MineFixture.h"

#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MineFlow : public MineTest {
protected:
    /// The state of every step of the indicator, from left to right.
    [[nodiscard]] std::vector<std::string> stepStates() const {
        std::vector<std::string> states;
        for (const auto& step : flow->steps())
            states.push_back(step.toMap().value(QStringLiteral("state")).toString().toStdString());
        return states;
    }

    void choose(MiningMode mode, double minutes) {
        flow->setSelectedMode(mode);
        flow->setTargetMinutes(minutes);
    }

    void givenAuditReport() {
        pipeline = LocalPipeline::create(platform);
        const auto footage = givenFootage();
        givenServicesAnswer();
        mine(footage);
        newFlow();
        const std::string clips = R"(SUCCESS:[{"sourceFile": ")" + footage.at(0) +
                                  R"(", "startFrame": 0, "endFrame": 264, "duration": 11.0}])" + "\n";
        tools->when(running(timelineClipsScript("/resolve/Modules", "Cut")), printed(clips));
        tools->when(running(timelineMediaScript("/resolve/Modules", "Cut")),
                    printed(footage.at(0) + "\n" + footage.at(1) + "\n"));
        services->then(200, messagesAnswer(R"({"coveragePercent": 12.5, "usedSegments": [], "buriedGold": [],
            "redundancies": [], "alternates": [], "themeGaps": [], "confidenceScore": 82.7, "summary": "s"})"));
        ended(pipeline->auditTimeline("Cut"));
        ASSERT_TRUE(pipeline->auditReport());
    }
};

} // namespace

TEST_F(MineFlow, beginsIntoTheMineWithTheFirstChoices) {
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    EXPECT_EQ(flow->selectedTimeline(), std::nullopt);
    EXPECT_EQ(flow->selectedMode(), MiningMode::fullMine);
    EXPECT_EQ(flow->targetMinutes(), 5.0);
    EXPECT_EQ(jsonOf(flow->styleSliders()),
              R"({"pace":0.5,"structure":0.5,"emotion":0.5,"length":0.5,"boldness":0.3,"silence":0.5})");
    EXPECT_EQ(flow->selectedPresetId(), std::nullopt);
    EXPECT_EQ(flow->referenceURL(), "");
    EXPECT_FALSE(flow->isMagicMode());
    EXPECT_EQ(flow->directorNotes(), "");
    EXPECT_EQ(flow->selectedLanguage(), "auto");
    EXPECT_EQ(flow->rating(), std::nullopt);
    EXPECT_FALSE(flow->loadedProject());
    EXPECT_THAT(flow->savedProjects(), IsEmpty());
    EXPECT_THAT(flow->droppedFiles(), IsEmpty());
    EXPECT_EQ(flow->sourceMode(), SourceMode::files);
    EXPECT_EQ(calls->count(), 0U);
}

TEST_F(MineFlow, theStepsAreFiveInTheOrderOfTheFlowWithTheirLabels) {
    const std::vector<std::pair<MineStep, std::string_view>> rows = {{MineStep::setup, "Into the Mine"},
                                                                     {MineStep::style, "The Lantern"},
                                                                     {MineStep::processing, "The Dig"},
                                                                     {MineStep::review, "The Discovery"},
                                                                     {MineStep::done, "Daylight"}};
    ASSERT_EQ(allMineSteps.size(), rows.size());
    ASSERT_EQ(flow->steps().size(), 5);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(allMineSteps[i], rows[i].first);
        EXPECT_EQ(static_cast<std::size_t>(rows[i].first), i);
        EXPECT_EQ(label(rows[i].first), rows[i].second);
        const auto shown = flow->steps().at(static_cast<qsizetype>(i)).toMap();
        EXPECT_EQ(shown.value(QStringLiteral("label")).toString().toStdString(), rows[i].second);
        EXPECT_EQ(shown.value(QStringLiteral("number")).toInt(), static_cast<int>(i) + 1);
    }
}

TEST_F(MineFlow, theIndicatorTellsPassedCurrentAndAhead) {
    const std::vector<std::vector<std::string>> rows = {{"current", "ahead", "ahead", "ahead", "ahead"},
                                                        {"passed", "current", "ahead", "ahead", "ahead"},
                                                        {"passed", "passed", "current", "ahead", "ahead"},
                                                        {"passed", "passed", "passed", "current", "ahead"},
                                                        {"passed", "passed", "passed", "passed", "current"}};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        flow->advanceTo(static_cast<MineStep>(i));
        EXPECT_EQ(stepStates(), rows[i]) << i;
    }
}

TEST_F(MineFlow, aTapGoesBackToAPassedStepAndElsewhereDoesNothing) {
    constexpr int stepCount = 5;
    for (int from = 0; from < stepCount; ++from) {
        for (int to = -2; to <= stepCount; ++to) {
            flow->advanceTo(static_cast<MineStep>(from));
            const QSignalSpy moved(flow.get(), &MineViewModel::currentStepChanged);
            flow->tapStep(to);
            const bool isPassed = to >= 0 && to < from;
            EXPECT_EQ(flow->currentStepNumber(), isPassed ? to : from) << from << " to " << to;
            EXPECT_EQ(moved.count(), isPassed ? 1 : 0) << from << " to " << to;
        }
    }
    flow->tapStep(std::numeric_limits<int>::min());
    flow->tapStep(std::numeric_limits<int>::max());
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    thenNothingRan();
}

TEST_F(MineFlow, aTapOnTheDigFromDaylightShowsTheFinishedRunAndStartsNothing) {
    (void)givenAFinishedMine();
    givenDropped({"/footage/A.wav"});
    givenStep(MineStep::done);
    const auto callsBefore = calls->count();
    const auto linesBefore = log();
    flow->tapStep(2);
    turn();
    EXPECT_EQ(flow->pageName(), QStringLiteral("ProcessingPage"));
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    EXPECT_EQ(calls->count(), callsBefore);
    EXPECT_EQ(log(), linesBefore);
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
}

TEST_F(MineFlow, eachStepHasItsPageInEveryModeButAudit) {
    const std::vector<std::pair<MineStep, QString>> pages = {{MineStep::setup, QStringLiteral("SetupPage")},
                                                             {MineStep::style, QStringLiteral("StylePage")},
                                                             {MineStep::processing, QStringLiteral("ProcessingPage")},
                                                             {MineStep::review, QStringLiteral("ReviewPage")},
                                                             {MineStep::done, QStringLiteral("DonePage")}};
    for (const auto mode : allMiningModes) {
        flow->setSelectedMode(mode);
        for (const auto& [step, page] : pages) {
            flow->advanceTo(step);
            if (mode == MiningMode::audit && step == MineStep::review)
                EXPECT_EQ(flow->pageName(), QStringLiteral("NoAuditReport"));
            else
                EXPECT_EQ(flow->pageName(), page) << static_cast<int>(mode);
        }
    }
}

TEST_F(MineFlow, theReviewOfAnAuditIsItsReport) {
    givenAuditReport();
    givenStep(MineStep::review);
    EXPECT_EQ(flow->pageName(), QStringLiteral("ReviewPage")); // the mode decides, not what ran
    flow->setSelectedMode(MiningMode::audit);
    EXPECT_EQ(flow->pageName(), QStringLiteral("AuditPage"));
    EXPECT_EQ(flow->pipeline()->auditReport()->summary, "s");
}

TEST_F(MineFlow, aReportThatComesWhileItsPageStandsIsShownAtOnce) {
    flow->setSelectedMode(MiningMode::audit);
    givenStep(MineStep::review);
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    const std::string clips = R"(SUCCESS:[{"sourceFile": ")" + footage.at(0) +
                              R"(", "startFrame": 0, "endFrame": 264, "duration": 11.0}])" + "\n";
    tools->when(running(timelineClipsScript("/resolve/Modules", "Cut")), printed(clips));
    tools->when(running(timelineMediaScript("/resolve/Modules", "Cut")),
                printed(footage.at(0) + "\n" + footage.at(1) + "\n"));
    services->then(200, messagesAnswer(R"({"coveragePercent": 1, "usedSegments": [], "buriedGold": [],
        "redundancies": [], "alternates": [], "themeGaps": [], "confidenceScore": 1, "summary": "s"})"));
    EXPECT_EQ(flow->pageName(), QStringLiteral("NoAuditReport"));
    const QSignalSpy pages(flow.get(), &MineViewModel::pageNameChanged);
    ended(pipeline->auditTimeline("Cut"));
    EXPECT_EQ(flow->pageName(), QStringLiteral("AuditPage"));
    EXPECT_EQ(pages.count(), 1);
}

TEST_F(MineFlow, theEstimateIsOneCreditForTenMinutesOfAFullMineAndLessForTheOthers) {
    struct Row {
        double minutes;
        std::array<double, 4> credits; ///< full mine, story mine, structure, audit
    };
    const std::vector<Row> rows = {
        {5.0, {1.0, 1.0, 1.0, 1.0}},   // ceil of 0.5, 0.25, 0.125, 0.15
        {60.0, {6.0, 3.0, 2.0, 2.0}},  // 6, 3, 1.5, 1.8
        {25.0, {3.0, 2.0, 1.0, 1.0}},  // 2.5, 1.25, 0.625, 0.75
        {10.0, {1.0, 1.0, 1.0, 1.0}},  // 1, 0.5, 0.25, 0.3
        {10.5, {2.0, 1.0, 1.0, 1.0}},  // 1.05, 0.525, 0.2625, 0.315
        {20.0, {2.0, 1.0, 1.0, 1.0}},  // 2, 1, 0.5, 0.6
        {21.0, {3.0, 2.0, 1.0, 1.0}},  // 2.1, 1.05, 0.525, 0.63
        {40.0, {4.0, 2.0, 1.0, 2.0}},  // 4, 2, 1, 1.2
        {45.0, {5.0, 3.0, 2.0, 2.0}},  // 4.5, 2.25, 1.125, 1.35
        {0.0, {1.0, 1.0, 1.0, 1.0}},   // never less than one
        {-30.0, {1.0, 1.0, 1.0, 1.0}}, // not even for a length that a foreign project names
        {1e6, {1e5, 5e4, 25000, 30000}},
    };
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < allMiningModes.size(); ++i) {
            choose(allMiningModes[i], row.minutes);
            EXPECT_EQ(flow->estimatedCredits(), row.credits[i]) << row.minutes << " in mode " << i;
        }
    }
}

TEST_F(MineFlow, theEstimateTellsOnlyItsChanges) {
    const QSignalSpy told(flow.get(), &MineViewModel::estimatedCreditsChanged);
    choose(MiningMode::storyMine, 5.0); // 1 as before
    flow->setTargetMinutes(8.0);        // still 1
    EXPECT_EQ(told.count(), 0);
    flow->setTargetMinutes(60.0); // 3
    EXPECT_EQ(told.count(), 1);
    flow->setSelectedMode(MiningMode::fullMine); // 6
    EXPECT_EQ(told.count(), 2);
}

TEST_F(MineFlow, thePageTellsOnlyItsChanges) {
    const QSignalSpy told(flow.get(), &MineViewModel::pageNameChanged);
    flow->setSelectedMode(MiningMode::audit);
    flow->advanceTo(MineStep::setup);
    EXPECT_EQ(told.count(), 0);
    flow->advanceTo(MineStep::review);
    EXPECT_EQ(told.count(), 1);
    flow->setSelectedMode(MiningMode::fullMine);
    EXPECT_EQ(told.count(), 2);
    flow->setSelectedMode(MiningMode::structure);
    EXPECT_EQ(told.count(), 2);
}

TEST_F(MineFlow, everyChoiceTellsItsChangeOnceAndNoOther) {
    const QSignalSpy timeline(flow.get(), &MineViewModel::selectedTimelineChanged);
    const QSignalSpy mode(flow.get(), &MineViewModel::selectedModeChanged);
    const QSignalSpy minutes(flow.get(), &MineViewModel::targetMinutesChanged);
    const QSignalSpy sliders(flow.get(), &MineViewModel::styleSlidersChanged);
    const QSignalSpy preset(flow.get(), &MineViewModel::selectedPresetIdChanged);
    const QSignalSpy reference(flow.get(), &MineViewModel::referenceURLChanged);
    const QSignalSpy magic(flow.get(), &MineViewModel::magicModeChanged);
    const QSignalSpy notes(flow.get(), &MineViewModel::directorNotesChanged);
    const QSignalSpy language(flow.get(), &MineViewModel::selectedLanguageChanged);
    const QSignalSpy rating(flow.get(), &MineViewModel::ratingChanged);
    const QSignalSpy files(flow.get(), &MineViewModel::droppedFilesChanged);
    const QSignalSpy source(flow.get(), &MineViewModel::sourceModeChanged);
    const QSignalSpy step(flow.get(), &MineViewModel::currentStepChanged);
    const QSignalSpy project(flow.get(), &MineViewModel::loadedProjectChanged);
    StyleSliders slow;
    slow.pace = 0.1;
    for (int round = 0; round < 2; ++round) {
        flow->setSelectedTimeline("Cut");
        flow->setSelectedMode(MiningMode::structure);
        flow->setTargetMinutes(7.0);
        flow->setStyleSliders(slow);
        flow->setSelectedPresetId("campfire");
        flow->setReferenceURL("https://example.com");
        flow->setMagicMode(true);
        flow->setDirectorNotes("notes");
        flow->setSelectedLanguage("es");
        flow->setRating(4);
        flow->setSourceMode(SourceMode::resolve);
    }
    for (const auto* spy :
         {&timeline, &mode, &minutes, &sliders, &preset, &reference, &magic, &notes, &language, &rating, &source})
        EXPECT_EQ(spy->count(), 1) << spy->signal().toStdString();
    EXPECT_EQ(files.count() + step.count() + project.count(), 0);
    givenDropped({"/a.mov"});
    EXPECT_EQ(files.count(), 1);
}

// The pages' calls, one for each row of the table of transitions.

TEST_F(MineFlow, setupGoesOnToTheLantern) {
    flow->setupNext();
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    thenNothingRan();
}

TEST_F(MineFlow, anAuditPassesTheLanternOver) {
    std::vector<int> steps;
    QObject::connect(flow.get(), &MineViewModel::currentStepChanged,
                     [this, &steps] { steps.push_back(flow->currentStepNumber()); });
    flow->startAudit();
    EXPECT_THAT(steps, ElementsAre(2));
    thenNothingRan(); // nothing is chosen
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
}

TEST_F(MineFlow, theLanternGoesBackToSetup) {
    givenStep(MineStep::style);
    flow->styleBack();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    thenNothingRan();
}

TEST_F(MineFlow, theLanternGoesOnToTheDigBeforeTheRunBegins) {
    givenDroppedFootage();
    givenStep(MineStep::style);
    flow->styleNext();
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
    EXPECT_EQ(calls->count(), 0U); // the run begins once the event loop turns
    EXPECT_TRUE(runEnds());
}

TEST_F(MineFlow, theDigGoesOnToTheDiscoveryWhenItsPageSaysSo) {
    givenStep(MineStep::processing);
    flow->processingDone();
    EXPECT_EQ(flow->currentStep(), MineStep::review);
    thenNothingRan();
}

TEST_F(MineFlow, theDigGoesOnToTheDiscoveryWhenTheRunIsComplete) {
    givenDroppedFootage();
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
}

TEST_F(MineFlow, aRunThatFailsLeavesTheDigOnScreen) {
    const auto footage = givenFootage();
    givenDropped(footage);
    tools->when(writing("extracted_audio.wav"), failed());
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    turn();
    EXPECT_EQ(pipeline->step(), PipelineStep::error);
    EXPECT_EQ(pipeline->errorMessage(), "Audio extraction failed");
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
}

TEST_F(MineFlow, theEndOfARunIsShownWhereverTheUserHasGoneMeanwhile) {
    givenDroppedFootage();
    calls->inside = [this](std::size_t call) {
        if (call == 4)
            flow->tapStep(0);
    };
    flow->styleNext();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::setup; }));
    ASSERT_TRUE(runEnds());
    EXPECT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
}

TEST_F(MineFlow, cancellingTheDigGoesBackToTheLantern) {
    givenStep(MineStep::processing);
    flow->cancelMining();
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    thenNothingRan();
}

TEST_F(MineFlow, theDiscoveryGoesBackToTheLanternForAnotherAnalysis) {
    (void)givenAFinishedMine();
    givenStep(MineStep::review);
    const auto before = calls->count();
    flow->reanalyze();
    turn();
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    EXPECT_EQ(calls->count(), before);
    EXPECT_TRUE(pipeline->results());
    EXPECT_FALSE(flow->loadedProject());
}

TEST_F(MineFlow, skippingToTheExportBuildsNothingAndLeavesTheStoryAsItWas) {
    (void)givenAFinishedMine();
    const auto story = jsonOf(*pipeline->results());
    const auto handOff = read(cachePath("segments.json"));
    const auto before = calls->count();
    givenStep(MineStep::review);
    flow->skipToExport();
    turn();
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    EXPECT_EQ(jsonOf(*pipeline->results()), story);
    EXPECT_EQ(read(cachePath("segments.json")), handOff);
    EXPECT_EQ(calls->count(), before);
    EXPECT_EQ(pipeline->buildResult(), std::nullopt);
}

TEST_F(MineFlow, daylightGoesBackToTheDiscovery) {
    givenStep(MineStep::done);
    flow->backToReview();
    EXPECT_EQ(flow->currentStep(), MineStep::review);
    thenNothingRan();
}

TEST_F(MineFlow, aBuildLeavesTheStepAndTellsItsOutcomeByThePipelineAlone) {
    for (const auto step : {MineStep::review, MineStep::done}) {
        pipeline = LocalPipeline::create(platform);
        newFlow();
        write(cachePath("segments.json"), "[]");
        givenStep(step);
        tools->requests.clear();
        flow->buildTimeline();
        EXPECT_THAT(tools->requests, IsEmpty());
        ASSERT_TRUE(waitUntil([this] { return pipeline->buildResult().has_value(); }));
        EXPECT_EQ(flow->currentStep(), step);
        ASSERT_EQ(tools->requests.size(), 1U);
        EXPECT_TRUE(tools->requests.front().program.ends_with("/python3"));
    }
}

TEST_F(MineFlow, aDroppedFileIsFoundAgainByAnIdOfItsOwnAndAwaitsItsProbe) {
    const auto first = dropped("/footage/50% #1.mov");
    const auto second = dropped("/footage/50% #1.mov");
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(first.filename(), QStringLiteral("50% #1.mov"));
    EXPECT_TRUE(first.isProbing);
    EXPECT_FALSE(first.probeResult);
}

// Coming on screen.

TEST_F(MineFlow, onShowingTheProjectsAreListedBeforeResolveIsAsked) {
    (void)givenAFinishedMine();
    newFlow();
    tools->requests.clear();
    std::size_t projectsAtTheQuestion = 0;
    calls->inside = [this, &projectsAtTheQuestion](std::size_t) {
        projectsAtTheQuestion = flow->savedProjects().size();
    };
    flow->show();
    EXPECT_TRUE(flow->savedProjects().empty()); // the page stands first
    ASSERT_TRUE(waitUntil([this] { return flow->resolveBridge()->statusMessage() != "Not connected"; }));
    EXPECT_EQ(projectsAtTheQuestion, 1U);
    ASSERT_EQ(flow->savedProjects().size(), 1U);
    EXPECT_EQ(flow->savedProjects().front().timeline, "Dropped Files (2)");
    EXPECT_FALSE(flow->resolveBridge()->isConnected());
    turn();
    EXPECT_EQ(tools->requests.size(), 1U); // without a connection the timelines are not asked for
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
}

TEST_F(MineFlow, onShowingTheTimelinesOfAConnectedResolveAreFetched) {
    tools->when(running(projectNameScript("/resolve/Modules")), printed("Doc\n"));
    tools->when(running(timelineNamesScript("/resolve/Modules")), printed("Cut 1\nCut 2\n"));
    flow->show();
    ASSERT_TRUE(waitUntil([this] { return !flow->resolveBridge()->timelines().empty(); }));
    EXPECT_TRUE(flow->resolveBridge()->isConnected());
    EXPECT_THAT(flow->resolveBridge()->timelines(), ElementsAre("Cut 1", "Cut 2"));
    EXPECT_EQ(flow->selectedTimeline(), std::nullopt);
    EXPECT_EQ(tools->requests.size(), 2U);
}

TEST_F(MineFlow, aFlowThatIsGoneWhileResolveIsAskedIsNotMissed) {
    tools->when(running(projectNameScript("/resolve/Modules")), printed("Doc\n"));
    tools->when(running(timelineNamesScript("/resolve/Modules")), printed("Cut 1\n"));
    for (std::size_t call = 1; call <= 2; ++call) {
        newFlow();
        const auto before = calls->count();
        calls->inside = [this, call, before](std::size_t number) {
            if (number == before + call)
                flow.reset();
        };
        const QPointer<ResolveBridge> bridge = flow->resolveBridge().get();
        flow->show();
        EXPECT_TRUE(waitUntil([&bridge] { return bridge.isNull(); })) << call;
        EXPECT_EQ(calls->count(), before + 2) << call;
        EXPECT_EQ(flow, nullptr);
    }
}

TEST_F(MineFlow, aFlowThatIsGoneBeforeTheEventLoopTurnsAsksNothing) {
    flow->show();
    flow.reset();
    turn();
    EXPECT_EQ(calls->count(), 0U);
}
