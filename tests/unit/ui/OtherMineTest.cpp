// The flow while another program mines in the same cache folder: what would disturb that mine is put off, and the user
// is asked whether to wait. The lock is held here by hand, as by another program.

#include "MineFixture.h"

#include "platform/MineLock.h"

#include <optional>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;

namespace {

class OtherMine : public MineTest {
protected:
    OtherMine() {
        // The flow keeps no lock of an earlier test.
        other.emplace(platform.environment);
        EXPECT_TRUE(other->isHeld());
    }

    [[nodiscard]] static QString reason() {
        return QCoreApplication::applicationName().prepend(QStringLiteral("Another mine is running (")) +
               QStringLiteral(", process %1)").arg(getpid());
    }

    void thenTheUserIsAsked() const {
        EXPECT_EQ(flow->otherMine(), reason());
        EXPECT_FALSE(flow->isWaitingForOtherMine());
    }
    void thenNothingIsPutOff() const {
        EXPECT_EQ(flow->otherMine(), QString());
        EXPECT_FALSE(flow->isWaitingForOtherMine());
    }

    /// Longer than the time between two looks at the lock.
    static void letTimePass() { runEventLoop(std::chrono::milliseconds(600)); }

    std::optional<MineLock> other;
};

} // namespace

TEST_F(OtherMine, aMineDoesNotBeginAndTheUserIsAsked) {
    givenDroppedFootage();
    QSignalSpy changed(flow.get(), &MineViewModel::otherMineChanged);
    flow->styleNext();
    thenTheUserIsAsked();
    EXPECT_EQ(changed.count(), 1);
    thenNothingRan();
    services->forgetPlan();
}

TEST_F(OtherMine, withoutAnAnswerNothingBeginsWhenTheLockIsFree) {
    givenDroppedFootage();
    flow->styleNext();
    other.reset();
    letTimePass();
    thenNothingRan();
    thenTheUserIsAsked();
    services->forgetPlan();
}

TEST_F(OtherMine, aMineThatIsWaitedForBeginsByItselfWhenTheLockIsFree) {
    givenDroppedFootage();
    flow->styleNext();
    flow->waitForOtherMine();
    EXPECT_TRUE(flow->isWaitingForOtherMine());
    EXPECT_EQ(flow->otherMine(), reason());
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    ticker.start(std::chrono::milliseconds(5));
    letTimePass();
    EXPECT_GT(ticks, 20) << "the event loop turns while the lock is waited for";
    thenNothingRan();
    EXPECT_TRUE(flow->isWaitingForOtherMine());
    other.reset();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    thenNothingIsPutOff();
}

TEST_F(OtherMine, aMineThatIsGivenUpLeadsBackToTheStyleAndDoesNotBegin) {
    givenDroppedFootage();
    for (const bool isWaiting : {false, true}) {
        flow->styleNext();
        ASSERT_EQ(flow->currentStep(), MineStep::processing);
        if (isWaiting)
            flow->waitForOtherMine();
        flow->giveUpWaiting();
        EXPECT_EQ(flow->currentStep(), MineStep::style);
        thenNothingIsPutOff();
    }
    other.reset();
    letTimePass();
    thenNothingRan();
    services->forgetPlan();
}

TEST_F(OtherMine, theDigsOwnCancelGivesUpToo) {
    givenDroppedFootage();
    flow->styleNext();
    flow->waitForOtherMine();
    flow->cancelMining();
    thenNothingIsPutOff();
    other.reset();
    letTimePass();
    thenNothingRan();
    services->forgetPlan();
}

TEST_F(OtherMine, aFlowThatGoesWhileItWaitsStartsNothing) {
    givenDroppedFootage();
    flow->styleNext();
    flow->waitForOtherMine();
    flow.reset();
    other.reset();
    letTimePass();
    thenNothingRan();
    services->forgetPlan();
}

TEST_F(OtherMine, theCachesAreNotClearedUnderIt) {
    write(cachePath("segments.json"), "of the other mine");
    givenStep(MineStep::done);
    flow->startFresh();
    thenTheUserIsAsked();
    EXPECT_EQ(read(cachePath("segments.json")), "of the other mine");
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    flow->waitForOtherMine();
    other.reset();
    ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::setup; }));
    EXPECT_FALSE(exists(cachePath("segments.json")));
    EXPECT_TRUE(exists(cachePath("mine.lock")));
}

TEST_F(OtherMine, anEditedStoryDoesNotReplaceItsSegments) {
    write(cachePath("segments.json"), "of the other mine");
    pipeline->setResults(analysedStory());
    givenStep(MineStep::review);
    auto edited = analysedStory().segments;
    edited.pop_back();
    flow->sendToResolve(edited);
    thenTheUserIsAsked();
    turn();
    EXPECT_EQ(read(cachePath("segments.json")), "of the other mine");
    EXPECT_EQ(calls->count(), 0U) << "nothing is built";
    EXPECT_EQ(flow->currentStep(), MineStep::review);
    EXPECT_EQ(pipeline->results()->segments.size(), 3U);
    flow->waitForOtherMine();
    other.reset();
    ASSERT_TRUE(waitUntil([this] { return pipeline->buildResult().has_value(); }));
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    EXPECT_EQ(pipeline->results()->segments.size(), 2U);
    EXPECT_THAT(read(cachePath("segments.json")), HasSubstr("\"startTime\""));
}

TEST_F(OtherMine, theLockIsHeldUntilTheRunEndsAndThenLetGo) {
    other.reset();
    givenDroppedFootage();
    std::vector<bool> wasHeld;
    calls->inside = [this, &wasHeld](std::size_t) { wasHeld.push_back(MineLock(platform.environment).isTaken()); };
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    ASSERT_EQ(wasHeld.size(), 18U);
    EXPECT_THAT(wasHeld, testing::Each(true));
    turn();
    EXPECT_TRUE(MineLock(platform.environment).isHeld());
}

TEST_F(OtherMine, aSecondMineOfThisProgramNeedsNoOtherLock) {
    other.reset();
    givenDroppedFootage();
    bool wasAsked = false;
    calls->inside = [this, &wasAsked](std::size_t call) {
        if (call != 1)
            return;
        flow->buildTimeline();
        wasAsked = !flow->otherMine().isEmpty();
    };
    flow->styleNext();
    ASSERT_TRUE(runEnds());
    EXPECT_FALSE(wasAsked);
}
