// Ctrl-C: the first asks the run to stop, the second ends it with its children at once. SIGTERM and the end of the
// terminal likewise, each with words and a status of its own.

#include "endtoend/MineTest.h"
#include "fakes/CoroutineTest.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace zuvo::endtoend {
namespace {

using testing::HasSubstr;
using namespace std::chrono_literals;

const std::string stopping = "\nStopping after the current step. Press Ctrl-C again to stop at once.\n";
const std::string terminating =
    "\nAsked to terminate: stopping after the current step. A second request stops at once.\n";
const std::string hangingUp = "\nThe terminal is gone: stopping after the current step.\n";

/// State letter of a process ("Z" for one that ended and waits to be buried) and its parent; empty if it is gone.
struct ProcessState {
    std::string state;
    qint64 parent = 0;
};

ProcessState stateOf(qint64 process) {
    const auto text = processFile(process, "stat");
    // The name stands in brackets and may hold anything.
    const auto behindName = text.rfind(')');
    if (behindName == std::string::npos)
        return {};
    std::istringstream fields(text.substr(behindName + 1));
    ProcessState found;
    fields >> found.state >> found.parent;
    return found;
}

bool isRunning(qint64 process) {
    const auto state = stateOf(process).state;
    return !state.empty() && state != "Z" && state != "X";
}

/// The running child of a process; 0 if it has none.
qint64 childOf(qint64 parent) {
    std::error_code unreadable;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", unreadable)) {
        const auto name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const auto process = std::stoll(name);
        if (stateOf(process).parent == parent && isRunning(process))
            return process;
    }
    return 0;
}

class InterruptTest : public MineTest {
protected:
    /// A mine of a pipe that nobody writes to: its ffprobe runs for as long as the test wants.
    qint64 givenAChildThatWaits() {
        EXPECT_EQ(mkfifo(pipe().c_str(), S_IRUSR | S_IWUSR), 0);
        run = world.begin({"mine", pipe(), "--json"});
        qint64 child = 0;
        EXPECT_TRUE(tests::waitUntil([&] {
            child = childOf(run->processId());
            // Between fork and exec the child is not yet in a group of its own.
            return child != 0 && ::getpgid(static_cast<pid_t>(child)) == child;
        }));
        return child;
    }

    [[nodiscard]] std::string pipe() const { return world.media("pipe.wav"); }

    /// A project that is told again while its media is a pipe: the run waits with the file for its sound just made.
    void givenAMineThatReadsSound() {
        givenTranscript();
        givenStory();
        const auto file = givenFootage("talk.wav", {"-ac", "1"});
        mine({file});
        thenItEndsWith(0);
        const auto sound = bytesOf(file);
        std::filesystem::remove(file);
        ASSERT_EQ(mkfifo(file.c_str(), S_IRUSR | S_IWUSR), 0);
        run = world.begin({"mine", "--reload", "talk"});
        // The look at the channels comes first, and is given the beginning of the file.
        int end = -1;
        ASSERT_TRUE(tests::waitUntil([&] { return (end = ::open(file.c_str(), O_WRONLY | O_NONBLOCK)) >= 0; }));
        constexpr std::size_t beginning = 32768;
        ASSERT_GT(::write(end, sound.data(), std::min(beginning, sound.size())), 0);
        ::close(end);
        ASSERT_TRUE(tests::waitUntil([this] {
            tests::runEventLoop(20ms);
            return temporaryFiles().size() == 1 && childOf(run->processId()) != 0;
        }));
    }

    [[nodiscard]] std::vector<std::string> temporaryFiles() const {
        std::vector<std::string> files;
        for (const auto& [path, bytes] : filesBelow(world.temporary()))
            files.push_back(path);
        return files;
    }

    /// Lets the waiting ffprobe read an empty file.
    void closeThePipe() const {
        int end = -1;
        EXPECT_TRUE(tests::waitUntil([&] { return (end = ::open(pipe().c_str(), O_WRONLY | O_NONBLOCK)) >= 0; }));
        ::close(end);
    }

    [[nodiscard]] Json lastEvent() const {
        const auto lines = linesOf(ending.output);
        return lines.empty() ? Json() : Json::parse(lines.back());
    }

    std::unique_ptr<Running> run;
};

TEST_F(InterruptTest, aMineInterruptedWhileAServiceWorksEndsWithoutAStory) {
    givenTranscript();
    world.services.fail(standin::Service::transcription,
                        standin::Failure::body(transcriptionAnswer(climbingLines(), {})).after(700ms));
    run = world.begin({"mine", givenFootage("talk.wav")});
    ASSERT_TRUE(tests::waitUntil([this] { return transcriptionRequests() == 1; }));
    run->press(SIGINT);
    ending = run->end();
    thenItEndsWith(130);
    thenLogEndsWith({"  Transcribing chunk 1/1..."});
    EXPECT_EQ(ending.errors, stopping);
    EXPECT_EQ(messagesRequests(), 0U);
    EXPECT_FALSE(exists(world.exports("")));
}

TEST_F(InterruptTest, aRequestToTerminateIsAnInterruptOfItsOwnKind) {
    world.services.fail(standin::Service::transcription, standin::Failure::drop().after(700ms));
    run = world.begin({"mine", givenFootage("talk.wav")});
    ASSERT_TRUE(tests::waitUntil([this] { return transcriptionRequests() == 1; }));
    run->press(SIGTERM);
    ending = run->end();
    thenItEndsWith(143);
    EXPECT_EQ(ending.errors, terminating);
    // A stage that gave nothing fails the run before the interrupt is looked at.
    thenLogEndsWith({"✗ Transcription failed"});
}

TEST_F(InterruptTest, theFirstInterruptLeavesTheRunningToolAlone) {
    const auto child = givenAChildThatWaits();
    EXPECT_NE(::getpgid(static_cast<pid_t>(child)), ::getpgid(static_cast<pid_t>(run->processId())))
        << "what the terminal sends to the program's group does not reach the tool";
    run->press(SIGINT);
    tests::runEventLoop(300ms);
    EXPECT_TRUE(isRunning(child));
    EXPECT_FALSE(run->hasEnded());
    closeThePipe();
    ending = run->end();
    thenItEndsWith(130);
    EXPECT_EQ(ending.errors, stopping);
    EXPECT_EQ(lastEvent(),
              (Json{{"event", "end"}, {"step", "connecting"}, {"interrupted", true}, {"exportDir", nullptr}}));
}

TEST_F(InterruptTest, theSecondInterruptEndsProgramAndToolAtOnce) {
    const auto child = givenAChildThatWaits();
    run->press(SIGINT);
    tests::runEventLoop(200ms);
    EXPECT_FALSE(run->hasEnded());
    run->press(SIGINT);
    ending = run->end(10s);
    thenItEndsWith(130);
    EXPECT_TRUE(tests::waitUntil([child] { return !isRunning(child); }));
}

TEST_F(InterruptTest, theSecondRequestToTerminateEndsProgramAndToolAtOnce) {
    const auto child = givenAChildThatWaits();
    run->press(SIGTERM);
    tests::runEventLoop(200ms);
    EXPECT_FALSE(run->hasEnded());
    run->press(SIGTERM);
    ending = run->end(10s);
    thenItEndsWith(143);
    EXPECT_TRUE(tests::waitUntil([child] { return !isRunning(child); }));
}

TEST_F(InterruptTest, theEndOfTheTerminalStopsTheRunAfterItsStepHoweverOftenItIsReported) {
    const auto child = givenAChildThatWaits();
    run->press(SIGHUP);
    tests::runEventLoop(200ms);
    run->press(SIGHUP);
    tests::runEventLoop(200ms);
    EXPECT_FALSE(run->hasEnded());
    EXPECT_TRUE(isRunning(child));
    closeThePipe();
    ending = run->end();
    thenItEndsWith(129);
    EXPECT_EQ(ending.errors, hangingUp);
}

TEST_F(InterruptTest, whatTheProgramWasStartedToIgnoreDoesNotStopIt) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    for (const auto& [name, signal] :
         {std::pair("HUP", SIGHUP), std::pair("INT", SIGINT), std::pair("TERM", SIGTERM)}) {
        SCOPED_TRACE(name);
        world.services.fail(standin::Service::messages,
                            standin::Failure::reply(storyReply({{4.5, 11.5, "Late."}})).after(500ms));
        const auto requests = messagesRequests();
        run = world.beginByShell(std::string("trap '' ") + name + "; exec \"$@\"", {"mine", file});
        ASSERT_TRUE(tests::waitUntil([&] { return messagesRequests() > requests; }));
        run->press(signal);
        run->press(signal);
        ending = run->end();
        thenItEndsWith(0);
        EXPECT_EQ(ending.errors, "Export folder: " + world.exports("talk") + "\n");
    }
}

TEST_F(InterruptTest, theSecondInterruptLeavesNothingBehind) {
    givenAMineThatReadsSound();
    run->press(SIGINT);
    tests::runEventLoop(200ms);
    EXPECT_EQ(temporaryFiles().size(), 1U);
    run->press(SIGINT);
    ending = run->end(10s);
    thenItEndsWith(130);
    EXPECT_TRUE(temporaryFiles().empty());
}

TEST_F(InterruptTest, whatAKilledMineHasLeftIsRemovedAtTheNextStart) {
    givenAMineThatReadsSound();
    run->press(SIGKILL);
    EXPECT_EQ(run->end(10s).status, -1);
    ASSERT_EQ(temporaryFiles().size(), 1U);
    const auto half = world.folder.write("home/Library/Application Support/ZuvoManager/exports/talk/.new-1-2", "{");
    std::filesystem::remove(world.media("talk.wav"));
    mine({givenFootage("talk.wav")});
    thenItEndsWith(0);
    EXPECT_TRUE(temporaryFiles().empty());
    EXPECT_FALSE(exists(half));
}

TEST_F(InterruptTest, theSecondInterruptEndsARunThatWaitsForAService) {
    world.services.fail(standin::Service::transcription, standin::Failure::stall());
    run = world.begin({"mine", givenFootage("talk.wav")});
    ASSERT_TRUE(tests::waitUntil([this] { return transcriptionRequests() == 1; }));
    run->press(SIGINT);
    tests::runEventLoop(200ms);
    EXPECT_FALSE(run->hasEnded());
    run->press(SIGINT);
    ending = run->end(10s);
    thenItEndsWith(130);
    EXPECT_FALSE(exists(world.exports("")));
}

TEST_F(InterruptTest, anInterruptedMineCanBeStartedAgain) {
    givenTranscript();
    givenStory();
    world.services.fail(standin::Service::transcription, standin::Failure::stall(), standin::Occasion::next(1));
    const auto file = givenFootage("talk.wav");
    run = world.begin({"mine", file});
    ASSERT_TRUE(tests::waitUntil([this] { return transcriptionRequests() == 1; }));
    run->press(SIGINT);
    tests::runEventLoop(200ms);
    run->press(SIGINT);
    EXPECT_EQ(run->end(10s).status, 130);
    mine({file});
    thenItEndsWith(0);
}

} // namespace
} // namespace zuvo::endtoend
