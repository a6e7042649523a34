#include "platform/Interrupts.h"

#include "fakes/CoroutineTest.h"

#include <csignal>
#include <gmock/gmock.h>
#include <vector>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// What the process does with a signal.
void (*handlerOf(int signal))(int) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

/// A signal that is ignored for one test, as a shell or nohup leaves it.
class Ignored {
public:
    explicit Ignored(int signal) : m_signal(signal), m_before(std::signal(signal, SIG_IGN)) {}
    ~Ignored() { std::signal(m_signal, m_before); }
    Ignored(const Ignored&) = delete;
    Ignored& operator=(const Ignored&) = delete;

private:
    int m_signal;
    void (*m_before)(int);
};

/// The numbers that have come.
struct Received {
    explicit Received(const Interrupts& interrupts) {
        QObject::connect(&interrupts, &Interrupts::interrupted, &receiver,
                         [this](int signal) { numbers.push_back(signal); });
    }

    std::vector<int> numbers;
    QObject receiver;
};

const std::vector<int> endingSignals = {SIGINT, SIGTERM, SIGHUP};

} // namespace

TEST(Interrupts, eachSignalThatAsksToEndArrivesWithItsNumber) {
    const Interrupts interrupts;
    const Received received(interrupts);
    for (const int signal : endingSignals) {
        std::raise(signal);
        ASSERT_TRUE(waitUntil([&] { return !received.numbers.empty() && received.numbers.back() == signal; }))
            << signal;
    }
}

TEST(Interrupts, twoPressesAreTwo) {
    const Interrupts interrupts;
    const Received received(interrupts);
    std::raise(SIGINT);
    std::raise(SIGINT);
    EXPECT_TRUE(waitUntil([&received] { return received.numbers.size() == 2; }));
}

TEST(Interrupts, whatTheProgramWasStartedToIgnoreStaysIgnored) {
    for (const int signal : endingSignals) {
        const Ignored ignored(signal);
        const Interrupts interrupts;
        const Received received(interrupts);
        EXPECT_EQ(handlerOf(signal), SIG_IGN) << signal;
        std::raise(signal);
        runEventLoop(std::chrono::milliseconds(20));
        EXPECT_TRUE(received.numbers.empty()) << signal;
    }
}

TEST(Interrupts, whatTheProgramDidBeforeIsPutBack) {
    const Ignored ignored(SIGHUP);
    { const Interrupts interrupts; }
    EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
    EXPECT_EQ(handlerOf(SIGINT), SIG_DFL);
    EXPECT_EQ(handlerOf(SIGTERM), SIG_DFL);
}
