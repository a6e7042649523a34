#include "fakes/CoroutineTest.h"

#include <QCoroTimer>
#include <gmock/gmock.h>

using namespace std::chrono_literals;
using zuvo::tests::RunningTask;
using zuvo::tests::runToEnd;

namespace {

QCoro::Task<int> later(int value) {
    QTimer timer;
    timer.start(10);
    co_await timer;
    co_return value;
}

QCoro::Task<int> failLater() {
    co_await later(1);
    throw std::runtime_error("on purpose");
}

QCoro::Task<void> failAtOnce() {
    throw std::logic_error("at once");
    co_return;
}

} // namespace

TEST(CoroutineTest, aTaskIsRunToItsEnd) {
    EXPECT_EQ(runToEnd(later(7)), 7);
}

TEST(CoroutineTest, whatATaskThrowsIsThrownOn) {
    EXPECT_THROW(runToEnd(failLater()), std::runtime_error);
    EXPECT_THROW(runToEnd(failAtOnce()), std::logic_error);
}

TEST(CoroutineTest, aTaskThatDoesNotEndInTimeIsAFailure) {
    RunningTask<int> task(later(3));
    EXPECT_FALSE(task.hasEnded());
    EXPECT_THROW(task.result(0ms), std::runtime_error);
    EXPECT_EQ(task.result(), 3);
}
