#include "platform/Processes.h"

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"

#include <QCoreApplication>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// A named pipe that says whether a child which writes to it still lives: its end comes when the last writer is gone.
class LifeLine {
public:
    explicit LifeLine(const TemporaryFolder& folder) : m_path(folder / "life") {
        EXPECT_EQ(mkfifo(m_path.c_str(), S_IRWXU), 0);
        m_end = open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        EXPECT_GE(m_end, 0);
    }
    ~LifeLine() { close(m_end); }
    LifeLine(const LifeLine&) = delete;
    LifeLine& operator=(const LifeLine&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] bool isHeld() const {
        char byte = 0;
        return read(m_end, &byte, 1) < 0 && errno == EAGAIN;
    }

private:
    std::string m_path;
    int m_end = -1;
};

class Processes : public testing::Test {
protected:
    static ProcessRequest shell(const std::string& line, std::vector<std::string> arguments = {}) {
        ProcessRequest request;
        request.program = "/bin/sh";
        request.arguments = {"-c", line, "sh"};
        request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
        request.keepsOutput = true;
        request.keepsError = true;
        return request;
    }

    ProcessOutcome run(ProcessRequest request) { return runToEnd(runner->run(std::move(request))); }

    TemporaryFolder folder;
    std::unique_ptr<ChildProcessRunner> runner = std::make_unique<ChildProcessRunner>();
};

} // namespace

TEST_F(Processes, outputAndErrorAreKeptApart) {
    const auto outcome = run(shell("echo out; echo err >&2"));
    EXPECT_TRUE(outcome.launched);
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(outcome.launchFailure, "");
    EXPECT_EQ(outcome.standardOutput, "out\n");
    EXPECT_EQ(outcome.standardError, "err\n");
}

TEST_F(Processes, whatIsNotKeptGoesToTheNullDevice) {
    auto request = shell("echo out; echo err >&2; test /dev/fd/1 -ef /dev/null && test /dev/fd/2 -ef /dev/null");
    request.keepsOutput = false;
    request.keepsError = false;
    const auto outcome = run(std::move(request));
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError, "");
}

TEST_F(Processes, errorGoesToTheFileWhichIsEmptiedFirst) {
    auto request = shell("echo out; echo err >&2");
    request.keepsError = false;
    request.errorFile = folder.write("error.txt", "what stood there before, and is longer\n");
    const auto outcome = run(std::move(request));
    EXPECT_EQ(outcome.standardOutput, "out\n");
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(folder.read("error.txt"), "err\n");
}

TEST_F(Processes, anErrorFileThatCannotBeMadeIsALaunchFailure) {
    auto request = shell("echo out");
    request.errorFile = folder / "no such folder/error.txt";
    const auto outcome = run(std::move(request));
    EXPECT_FALSE(outcome.launched);
    EXPECT_THAT(outcome.launchFailure, Not(IsEmpty()));
}

TEST_F(Processes, anExitStatusOtherThanZeroIsNoSuccessButKeepsTheOutput) {
    const auto outcome = run(shell("echo before; exit 3"));
    EXPECT_TRUE(outcome.launched);
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.standardOutput, "before\n");
}

TEST_F(Processes, aKilledChildIsNoSuccess) {
    const auto outcome = run(shell("echo before; kill -9 $$"));
    EXPECT_TRUE(outcome.launched);
    EXPECT_EQ(outcome.launchFailure, "");
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.standardOutput, "before\n");
}

TEST_F(Processes, aProgramThatIsMissingFailsAtOnceInWords) {
    ProcessRequest request;
    request.program = folder / "missing";
    const auto outcome = runToEnd(runner->run(std::move(request)), 5s);
    EXPECT_FALSE(outcome.launched);
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_THAT(outcome.launchFailure, Not(IsEmpty()));
}

TEST_F(Processes, aFileThatMayNotBeExecutedFailsAtOnceInWords) {
    ProcessRequest request;
    request.program = folder.write("script", "#!/bin/sh\necho hello\n");
    const auto outcome = runToEnd(runner->run(std::move(request)), 5s);
    EXPECT_FALSE(outcome.launched);
    EXPECT_THAT(outcome.launchFailure, Not(IsEmpty()));
}

TEST_F(Processes, noProgramAtAllFailsAtOnceInWords) {
    const auto outcome = runToEnd(runner->run(ProcessRequest()), 5s);
    EXPECT_FALSE(outcome.launched);
    EXPECT_THAT(outcome.launchFailure, Not(IsEmpty()));
}

TEST_F(Processes, fiftyMegabytesOfOutputDoNotStandStill) {
    const auto outcome = run(shell("head -c 50000000 /dev/zero; echo end >&2"));
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_TRUE(outcome.standardOutput == std::string(50'000'000, '\0'));
    EXPECT_EQ(outcome.standardError, "end\n");
}

TEST_F(Processes, muchOnBothStreamsDoesNotStandStill) {
    const auto outcome = run(shell("head -c 3000000 /dev/zero >&2; head -c 3000000 /dev/zero"));
    EXPECT_EQ(outcome.standardOutput.size(), 3'000'000U);
    EXPECT_EQ(outcome.standardError.size(), 3'000'000U);
}

TEST_F(Processes, moreThanTheLimitIsReadButNotKept) {
    const auto outcome = run(shell("head -c 70000000 /dev/zero && echo all of it >&2"));
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(outcome.standardOutput.size(), keptOutputLimit);
    EXPECT_EQ(outcome.standardError, "all of it\n");
}

TEST_F(Processes, theEventLoopTicksWhileAChildRuns) {
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&ticks] { ++ticks; });
    timer.start(10ms);
    EXPECT_TRUE(run(shell("sleep 0.5")).succeeded);
    EXPECT_GE(ticks, 5);
}

TEST_F(Processes, standardInputIsTheNullDevice) {
    const auto outcome = run(shell("test /dev/fd/0 -ef /dev/null && cat && echo read to its end"));
    EXPECT_EQ(outcome.standardOutput, "read to its end\n");
}

TEST_F(Processes, aChildHasAProcessGroupOfItsOwn) {
    ProcessRequest request;
    request.program = "/usr/bin/python3";
    request.arguments = {"-c", "import os; print(os.getpgrp() == os.getpid())"};
    request.keepsOutput = true;
    EXPECT_EQ(run(std::move(request)).standardOutput, "True\n");
}

TEST_F(Processes, argumentsArriveAsGiven) {
    const std::vector<std::string> arguments = {
        "two words", "", "\"double\"",      "it's",         "a\\b",     "$HOME `id` *",
        "line\nend", "", "Gespräch über Ö", "インタビュー", "-x --y=z", "\xF0\x9F\x8E\xAC"};
    std::string expected;
    for (const auto& argument : arguments)
        expected += "[" + argument + "]";
    EXPECT_EQ(run(shell(R"(printf '[%s]' "$@")", arguments)).standardOutput, expected);
}

TEST_F(Processes, aProgramMayLieInAFolderWithAnyName) {
    ProcessRequest request;
    request.program = folder.write("it's a \"Prüfung\" 試験/tool", "#!/bin/sh\necho \"$0\"\n");
    ASSERT_EQ(chmod(request.program.c_str(), S_IRWXU), 0);
    request.keepsOutput = true;
    const auto expected = request.program + "\n";
    EXPECT_EQ(run(std::move(request)).standardOutput, expected);
}

TEST_F(Processes, underTheCLocaleArgumentsArriveAsGiven) {
    ProcessRequest request;
    request.program = QCoreApplication::applicationFilePath().toStdString();
    request.arguments = {
        "--gtest_filter=Processes.argumentsArriveAsGiven:Processes.aProgramMayLieInAFolderWithAnyName"};
    request.variables = {{"LC_ALL", "C"}};
    request.keepsOutput = true;
    const auto outcome = run(std::move(request));
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_THAT(outcome.standardOutput, HasSubstr("[  PASSED  ] 2 tests."));
}

TEST_F(Processes, bytesThatAreNoUtf8ArriveAsTheyAre) {
    EXPECT_EQ(run(shell(R"(printf 'a\377\303(\000z')")).standardOutput, std::string("a\xFF\xC3(\0z", 6));
}

TEST_F(Processes, variablesAreSetOnTopOfTheProgramsOwn) {
    qputenv("ZUVO_TEST_KEPT", "kept");
    qputenv("ZUVO_TEST_CHANGED", "old");
    auto request = shell(R"(echo "$ZUVO_TEST_KEPT $ZUVO_TEST_CHANGED $ZUVO_TEST_NEW")");
    request.variables = {{"ZUVO_TEST_CHANGED", "new"}, {"ZUVO_TEST_NEW", "a = \"é\""}};
    EXPECT_EQ(run(std::move(request)).standardOutput, "kept new a = \"é\"\n");
    EXPECT_EQ(qgetenv("ZUVO_TEST_CHANGED"), "old");
    qunsetenv("ZUVO_TEST_KEPT");
    qunsetenv("ZUVO_TEST_CHANGED");
}

TEST_F(Processes, aChildRunsInTheFolderItIsGivenElseInTheProgramsOwn) {
    auto request = shell("pwd");
    request.workingFolder = "/";
    EXPECT_EQ(run(std::move(request)).standardOutput, "/\n");
    EXPECT_EQ(run(shell("pwd -P")).standardOutput, std::filesystem::current_path().string() + "\n");
}

TEST_F(Processes, aFolderThatIsMissingIsALaunchFailure) {
    auto request = shell("pwd");
    request.workingFolder = folder / "missing";
    const auto outcome = run(std::move(request));
    EXPECT_FALSE(outcome.launched);
    EXPECT_NE(outcome.launchFailure, "");
}

TEST_F(Processes, twoChildrenRunAtOnce) {
    const auto mark = folder / "mark";
    RunningTask<ProcessOutcome> first(
        runner->run(shell(R"(while ! test -e "$1"; do sleep 0.02; done; echo first)", {mark})));
    RunningTask<ProcessOutcome> second(runner->run(shell(R"(touch "$1"; echo second)", {mark})));
    EXPECT_EQ(second.result().standardOutput, "second\n");
    EXPECT_EQ(first.result().standardOutput, "first\n");
}

TEST_F(Processes, endingTheChildrenEndsTheirOwnChildrenToo) {
    const LifeLine life(folder);
    RunningTask<ProcessOutcome> task(runner->run(shell(R"(sleep 300 > "$1" & wait)", {life.path()})));
    ASSERT_TRUE(waitUntil([&life] { return life.isHeld(); }));
    runner->endChildren();
    const auto outcome = task.result();
    EXPECT_TRUE(outcome.launched);
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_TRUE(waitUntil([&life] { return !life.isHeld(); }));
}

TEST_F(Processes, aChildThatWasJustStartedIsEndedToo) {
    for (int round = 0; round < 20; ++round) {
        RunningTask<ProcessOutcome> task(runner->run(shell("exec sleep 300")));
        runner->endChildren();
        ASSERT_FALSE(task.result().succeeded) << "round " << round;
    }
}

TEST_F(Processes, afterItsChildrenHaveBeenEndedARunnerStartsOthers) {
    runner->endChildren();
    EXPECT_EQ(run(shell("echo still here")).standardOutput, "still here\n");
}

TEST_F(Processes, aRunnerThatGoesTakesItsChildrenAlong) {
    const LifeLine life(folder);
    RunningTask<ProcessOutcome> task(runner->run(shell(R"(sleep 300 > "$1" & wait)", {life.path()})));
    ASSERT_TRUE(waitUntil([&life] { return life.isHeld(); }));
    runner.reset();
    EXPECT_FALSE(task.result().succeeded);
    EXPECT_TRUE(waitUntil([&life] { return !life.isHeld(); }));
}

TEST_F(Processes, aChildCutOffFromTheTerminalLeadsASessionOfItsOwn) {
    auto request = shell("test \"$(cut -d ' ' -f 6 /proc/$$/stat)\" = $$"); // the session's leader is the child itself
    request.hasNoTerminal = true;
    EXPECT_TRUE(run(request).succeeded);
    request.hasNoTerminal = false;
    EXPECT_FALSE(run(request).succeeded);
}

TEST_F(Processes, aChildCutOffFromTheTerminalIsEndedWithItsOwnChildren) {
    const LifeLine life(folder);
    auto request = shell("sleep 1000 > " + life.path() + " & wait");
    request.hasNoTerminal = true;
    RunningTask<ProcessOutcome> running(runner->run(std::move(request)));
    ASSERT_TRUE(waitUntil([&life] { return life.isHeld(); }));
    runner->endChildren();
    EXPECT_FALSE(running.result().succeeded);
    EXPECT_TRUE(waitUntil([&life] { return !life.isHeld(); }));
}

TEST_F(Processes, theExitStatusIsKnownOfAChildThatEndsByItself) {
    EXPECT_EQ(run(shell("exit 0")).exitStatus, 0);
    EXPECT_EQ(run(shell("exit 126")).exitStatus, 126);
    EXPECT_EQ(run(shell("kill -9 $$")).exitStatus, std::nullopt);
    ProcessRequest missing;
    missing.program = "/no/such/program";
    EXPECT_EQ(run(missing).exitStatus, std::nullopt);
}
