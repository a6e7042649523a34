#include "platform/TopLevelTask.h"

#include "fakes/CoroutineTest.h"

#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;

namespace {

QCoro::Task<void> count(int* runs) {
    ++*runs;
    co_return;
}

QCoro::Task<void> fail() {
    throw std::runtime_error("the reason");
    co_return;
}

QCoro::Task<void> failOddly() {
    throw 7;
    co_return;
}

std::string saidOnStandardError(const std::function<QCoro::Task<void>()>& start) {
    QObject owner;
    testing::internal::CaptureStderr();
    startTopLevelTask(&owner, "of the test", start);
    runEventLoop(20ms);
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(TopLevelTask, aTaskStartsOnceTheEventLoopTurns) {
    QObject owner;
    int runs = 0;
    startTopLevelTask(&owner, "of the test", [&runs] { return count(&runs); });
    EXPECT_EQ(runs, 0);
    EXPECT_TRUE(waitUntil([&runs] { return runs == 1; }));
}

TEST(TopLevelTask, aTaskWhoseOwnerIsGoneDoesNotStart) {
    auto owner = std::make_unique<QObject>();
    int runs = 0;
    startTopLevelTask(owner.get(), "of the test", [&runs] { return count(&runs); });
    owner.reset();
    runEventLoop(20ms);
    EXPECT_EQ(runs, 0);
}

TEST(TopLevelTask, aFailureIsToldAndEndsNothingElse) {
    EXPECT_THAT(saidOnStandardError(fail), testing::HasSubstr("The task of the test failed: the reason"));
    EXPECT_THAT(saidOnStandardError(failOddly),
                testing::HasSubstr("The task of the test failed: no exception of a known kind"));
}
