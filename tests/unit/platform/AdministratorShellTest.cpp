#include "platform/AdministratorShell.h"

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Ending = AdministratorOutcome::Ending;

/// Ends every child in the planned way and keeps what it was asked for.
class PlannedRunner final : public ProcessRunner {
public:
    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override {
        requests.push_back(std::move(request));
        auto outcome = plan;
        co_return outcome;
    }
    void endChildren() override {}

    void thenEnds(int status, std::string words) {
        plan = {true, {}, status == 0, {}, std::move(words)};
        plan.exitStatus = status;
    }

    ProcessOutcome plan;
    std::vector<ProcessRequest> requests;
};

class AdministratorShells : public testing::Test {
protected:
    AdministratorShells() {
        runner->thenEnds(0, "");
        pkexec = disk.write("pkexec", "");
    }

    AdministratorOutcome byPolkit(const std::string& source) {
        return runToEnd(PolkitShell(runner, pkexec).run(source));
    }
    AdministratorOutcome byAppleScript(const std::string& source) {
        return runToEnd(AppleScriptShell(runner).run(source));
    }

    /// The shell of Linux with a pkexec that asks nobody and gives no rights.
    AdministratorOutcome really(const std::string& line) {
        pkexec = disk.write("really", "#!/bin/sh\nshift\nexec \"$@\"\n");
        std::filesystem::permissions(pkexec, std::filesystem::perms::owner_all);
        const auto processes = std::make_shared<ChildProcessRunner>();
        return runToEnd(PolkitShell(processes, pkexec).run(script(line)));
    }

    static std::string script(const std::string& escapedLine) {
        return "do shell script \"" + escapedLine + "\" with administrator privileges";
    }

    TemporaryFolder disk;
    std::string pkexec;
    std::shared_ptr<PlannedRunner> runner = std::make_shared<PlannedRunner>();
};

} // namespace

TEST_F(AdministratorShells, onMacOSTheSourceIsHandedOverAsItIs) {
    const auto source = script("rm -rf '/a b'");
    EXPECT_TRUE(byAppleScript(source).hasSucceeded());
    ASSERT_THAT(runner->requests, SizeIs(1));
    EXPECT_EQ(runner->requests[0].program, "/usr/bin/osascript");
    EXPECT_THAT(runner->requests[0].arguments, ElementsAre("-e", source));
    EXPECT_TRUE(runner->requests[0].keepsError);
}

TEST_F(AdministratorShells, onLinuxTheLineIsRunByPkexec) {
    EXPECT_TRUE(byPolkit(script("rm -rf '/a b'")).hasSucceeded());
    ASSERT_THAT(runner->requests, SizeIs(1));
    EXPECT_EQ(runner->requests[0].program, pkexec);
    EXPECT_THAT(runner->requests[0].arguments,
                ElementsAre("--disable-internal-agent", "/bin/sh", "-c", "rm -rf '/a b'"));
    EXPECT_TRUE(runner->requests[0].keepsError);
    EXPECT_TRUE(runner->requests[0].hasNoTerminal);
}

TEST_F(AdministratorShells, theEscapesOfTheSourceAreUndone) {
    EXPECT_EQ(shellLineOf(script(R"(echo '{\"version\":\"1\"}')")), R"(echo '{"version":"1"}')");
    EXPECT_EQ(shellLineOf(script(R"(a\\b\\\"c)")), R"(a\b\"c)");
    EXPECT_EQ(shellLineOf(script("")), "");
}

TEST_F(AdministratorShells, aSourceOfAnotherFormIsNotRun) {
    for (const auto& source :
         {std::string(), std::string("do shell script \"ls\""), std::string("ls"), script(R"(a"b)"), script(R"(a\n)"),
          script("a\\"), script(std::string("a\0b", 3)), script("a\" & \"b"), script("ls") + " ",
          std::string("do shell script \" with administrator privileges")}) {
        SCOPED_TRACE(source);
        EXPECT_EQ(shellLineOf(source), std::nullopt);
        EXPECT_EQ(byPolkit(source).ending, Ending::couldNotCreate);
    }
    EXPECT_THAT(runner->requests, IsEmpty());
}

TEST_F(AdministratorShells, aFolderWithASlashBehindItMeansWhatIsInIt) {
    EXPECT_EQ(withContentsCopied("mkdir -p '/to' && cp -R '/from/' '/to'"), "mkdir -p '/to' && cp -R '/from/.' '/to'");
    EXPECT_EQ(withContentsCopied("cp -R '/x/zuvo' '/to/'"), "cp -R '/x/zuvo' '/to/'");
    EXPECT_EQ(withContentsCopied("mkdir -p '/cp -R ' && rm '/a/'"), "mkdir -p '/cp -R ' && rm '/a/'");
    EXPECT_EQ(withContentsCopied("echo '/' && cp -R '/a/' '/b/' && cp -R '/c/' '/d'"),
              "echo '/' && cp -R '/a/.' '/b/' && cp -R '/c/.' '/d'");
    EXPECT_EQ(withContentsCopied("cp -R '/open/"), "cp -R '/open/");
    EXPECT_EQ(withContentsCopied(""), "");
}

TEST_F(AdministratorShells, contentsAreCopiedIntoATargetThatExists) {
    disk.write("from/file", "new");
    disk.write("from/.hidden", "new");
    disk.write("to/old", "old");
    EXPECT_TRUE(really("mkdir -p '" + (disk / "to") + "' && cp -R '" + (disk / "from/") + "' '" + (disk / "to") + "'")
                    .hasSucceeded());
    EXPECT_EQ(disk.read("to/file"), "new");
    EXPECT_EQ(disk.read("to/.hidden"), "new");
    EXPECT_EQ(disk.read("to/old"), "old");
    EXPECT_FALSE(std::filesystem::exists(disk / "to/from"));
}

TEST_F(AdministratorShells, aFolderWithoutASlashIsCopiedAsAFolder) {
    disk.write("from/file", "new");
    disk.makeFolder("to");
    EXPECT_TRUE(really("cp -R '" + (disk / "from") + "' '" + (disk / "to") + "'").hasSucceeded());
    EXPECT_EQ(disk.read("to/from/file"), "new");
}

TEST_F(AdministratorShells, aLineThatFailsShowsWhatItSaid) {
    const auto outcome = really("echo one >&2; echo two >&2; exit 3");
    EXPECT_EQ(outcome.ending, Ending::failed);
    EXPECT_EQ(outcome.failure, "one two");
}

TEST_F(AdministratorShells, aLineThatFailsSilentlyHasNoWords) {
    const auto outcome = really("exit 3");
    EXPECT_EQ(outcome.ending, Ending::failed);
    EXPECT_EQ(outcome.failure, "");
}

TEST_F(AdministratorShells, aClosedDialogIsSaidInWords) {
    runner->thenEnds(126, "Error executing command as another user: Request dismissed\n");
    EXPECT_EQ(byPolkit(script("ls")).failure, "The password dialog was closed");
    runner->thenEnds(126, "");
    EXPECT_EQ(byPolkit(script("ls")).failure, "The password dialog was closed");
}

TEST_F(AdministratorShells, refusedRightsAreSaidInWords) {
    runner->thenEnds(127,
                     "Error executing command as another user: Not authorized\n\nThis incident has been reported.");
    EXPECT_EQ(byPolkit(script("ls")).failure, "Administrator rights were not given");
}

TEST_F(AdministratorShells, aDesktopWithoutADialogIsSaidInWords) {
    runner->thenEnds(127, "Error executing command as another user: No authentication agent found.\n");
    EXPECT_EQ(byPolkit(script("ls")).failure,
              "This desktop has no dialog that could ask for the administrator's password");
}

TEST_F(AdministratorShells, aLineOfThoseStatusesSpeaksForItself) {
    runner->thenEnds(127, "sh: 1: cp: not found\n");
    EXPECT_EQ(byPolkit(script("ls")).failure, "sh: 1: cp: not found");
    runner->thenEnds(126, "sh: 1: /x: Permission denied\n");
    EXPECT_EQ(byPolkit(script("ls")).failure, "sh: 1: /x: Permission denied");
}

TEST_F(AdministratorShells, aMissingPkexecIsSaidInWords) {
    pkexec = disk / "missing";
    const auto outcome = byPolkit(script("ls"));
    EXPECT_EQ(outcome.ending, Ending::failed);
    EXPECT_EQ(outcome.failure, "Administrator rights are asked for by pkexec, which is not installed (package pkexec)");
    EXPECT_THAT(runner->requests, IsEmpty());
}

TEST_F(AdministratorShells, aPkexecThatDoesNotStartIsSaidInWords) {
    const auto processes = std::make_shared<ChildProcessRunner>(); // the file may not be executed
    const auto outcome = runToEnd(PolkitShell(processes, pkexec).run(script("ls")));
    EXPECT_EQ(outcome.ending, Ending::failed);
    EXPECT_THAT(outcome.failure, testing::StartsWith("pkexec could not be started: "));
}

TEST_F(AdministratorShells, wordsOfOtherProgramsAreMadeHarmlessAndShort) {
    runner->thenEnds(1, " \n\x1B[31mred\x07\t\xFF" + std::string(100'000, 'x') + "\n");
    const auto words = byPolkit(script("ls")).failure;
    EXPECT_THAT(words, testing::StartsWith("\uFFFD[31mred\uFFFD \uFFFDxxx"));
    EXPECT_EQ(words.size(), 500U + 3U * 2U); // 500 characters, three of three bytes
}

TEST_F(AdministratorShells, osascriptsWordsAreTheSystemsOwn) {
    runner->thenEnds(1, "0:66: execution error: User canceled. (-128)\n");
    const auto outcome = byAppleScript(script("ls"));
    EXPECT_EQ(outcome.ending, Ending::failed);
    EXPECT_EQ(outcome.failure, "User canceled.");
    EXPECT_EQ(appleScriptFailure("12:3: execution error: cp: /x (copy): No such file (1)\n"),
              "cp: /x (copy): No such file");
    EXPECT_EQ(appleScriptFailure("4:5: syntax error: Expected end of line. (-2741)"), "Expected end of line.");
    EXPECT_EQ(appleScriptFailure("something else (-1)"), "something else (-1)");
    EXPECT_EQ(appleScriptFailure(""), "");
}

TEST_F(AdministratorShells, anOsascriptThatDoesNotStartCouldNotCreateTheScript) {
    runner->plan = {false, "No such file", false, {}, {}};
    EXPECT_EQ(byAppleScript(script("ls")).ending, Ending::couldNotCreate);
}

TEST_F(AdministratorShells, theEventLoopIsFreeWhileTheDialogStands) {
    pkexec = disk.write("waits", "#!/bin/sh\nwhile [ ! -e '" + (disk / "go") + "' ]; do sleep 0.02; done\n");
    std::filesystem::permissions(pkexec, std::filesystem::perms::owner_all);
    RunningTask<AdministratorOutcome> running(
        PolkitShell(std::make_shared<ChildProcessRunner>(), pkexec).run(script("ls")));
    runEventLoop(std::chrono::milliseconds(50));
    EXPECT_FALSE(running.hasEnded());
    disk.write("go", "");
    EXPECT_TRUE(running.result().hasSucceeded()); // the shell itself is long gone
}

TEST_F(AdministratorShells, thisSystemHasOne) {
    const auto shell = administratorShell(runner);
    ASSERT_NE(shell, nullptr);
#ifdef Q_OS_LINUX
    EXPECT_NE(dynamic_cast<PolkitShell*>(shell.get()), nullptr);
#endif
}
