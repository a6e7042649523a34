#include "fakes/pipeline/PipelineFixture.h"

#include "base/Text.h"
#include "resolve/Scripts.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// What a Python program wrote on its two streams.
ProcessOutcome wrote(std::string output, std::string errors, bool succeeded = true) {
    auto outcome = printed(std::move(output), succeeded);
    outcome.standardError = std::move(errors);
    return outcome;
}

// The build of segments.json as it stands.
class TimelineBuild : public PipelineFixture {
protected:
    TimelineBuild() { write(cachePath("segments.json"), "[]"); }

    void whenBuilt(const ProcessOutcome& outcome) {
        tools->when(call("python3", {}), outcome);
        ended(pipeline->buildTimelineFromSegmentsFile());
    }

    void thenNoOutput() const {
        EXPECT_EQ(pipeline->buildResult(), "✗ Python returned no output — check Resolve connection");
        thenLogHas("[accent] ✗ Python returned no output");
    }
};

// The older build, of the story that stands in `results`.
class Rebuild : public PipelineFixture {
protected:
    bool rebuild(const ProcessOutcome& outcome, const std::string& name = "Cut") {
        const auto footage = givenAFinishedMine();
        linesBefore = log().size();
        tools->requests.clear();
        tools->when(call("python3", {}), outcome);
        return ended(pipeline->rebuildTimeline(name, footage));
    }

    [[nodiscard]] std::vector<std::string> newLines() const {
        auto lines = log();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(linesBefore));
        return lines;
    }

    std::size_t linesBefore = 0;
};

} // namespace

TEST_F(TimelineBuild, runsTheFixedPythonWithTheScriptAndTheModulesFolderAlone) {
    whenBuilt(printed("SUCCESS:0/0 clips appended\n"));
    ASSERT_THAT(tools->requests, SizeIs(1));
    const auto& request = tools->requests[0];
    EXPECT_EQ(request.program, "/tools/python3");
    EXPECT_THAT(request.arguments,
                ElementsAre("-c", finalBuildScript("/resolve/Modules", "Zuvo Build — " + shortTimeText(now),
                                                   cachePath("segments.json"))));
    EXPECT_THAT(request.variables, ElementsAre(std::pair<std::string, std::string>("PYTHONPATH", "/resolve/Modules")));
    EXPECT_TRUE(request.keepsOutput);
    EXPECT_TRUE(request.keepsError);
}

TEST_F(TimelineBuild, isNamedAfterTheShortTimeWithoutADate) {
    whenBuilt(printed("x"));
    EXPECT_THAT(tools->requests.at(0).arguments.at(1), HasSubstr("\"Zuvo Build — 5:17 AM\""));
}

TEST_F(TimelineBuild, forgetsTheResultOfTheBuildBefore) {
    std::vector<std::optional<std::string>> results;
    QObject::connect(pipeline.get(), &LocalPipeline::buildResultChanged,
                     [&] { results.push_back(pipeline->buildResult()); });
    whenBuilt(printed("SUCCESS:1/1 clips appended\n"));
    EXPECT_THAT(results, ElementsAre(std::nullopt, "✓ 1/1 clips appended"));
}

TEST_F(TimelineBuild, leavesATraceOfItsCallAndOfBothStreamsUntrimmed) {
    now = QDateTime(QDate(2026, 3, 4), QTime(5, 17, 36), Qt::UTC);
    whenBuilt(wrote(" LOG:é\nSUCCESS:1/1 clips appended\n\n", "warning\n"));
    EXPECT_EQ(read(cachePath("build_debug.txt")), "buildTimelineFromSegmentsFile called at 2026-03-04 05:17:36 +0000");
    EXPECT_EQ(read(cachePath("build_output.txt")),
              "STDOUT:\n LOG:é\nSUCCESS:1/1 clips appended\n\n\n\nSTDERR:\nwarning\n");
}

TEST_F(TimelineBuild, tracesThatCannotBeWrittenDoNotMatter) {
    makeFolder(cachePath("build_debug.txt"));
    makeFolder(cachePath("build_output.txt"));
    whenBuilt(printed("SUCCESS:1/1 clips appended\n"));
    EXPECT_EQ(pipeline->buildResult(), "✓ 1/1 clips appended");
}

TEST_F(TimelineBuild, showsEveryLineInItsColour) {
    whenBuilt(printed("LOG:Using default fps=24.0\n plain\n\tERROR:LOG:odd \nSUCCESS:2/3 clips appended\r\nbehind\n"));
    EXPECT_THAT(log(), ElementsAre("[muted] Building timeline in Resolve...", "[dim]   Using default fps=24.0",
                                   "[accent]   ✗ LOG:odd", "[green]   ✓ 2/3 clips appended"));
}

TEST_F(TimelineBuild, theLastErrorOrSuccessIsTheResult) {
    whenBuilt(printed("ERROR:early\nSUCCESS:3/3 clips appended\nLOG:late\n"));
    EXPECT_EQ(pipeline->buildResult(), "✓ 3/3 clips appended");
    whenBuilt(printed("SUCCESS:3/3 clips appended\nERROR:late\n"));
    EXPECT_EQ(pipeline->buildResult(), "✗ late");
}

TEST_F(TimelineBuild, aScriptThatEndsAfterSomeLinesHasNoResponse) {
    whenBuilt(wrote("LOG:Loaded 3 segments\nLOG:half a li", "Traceback (most recent call last)\n", false));
    EXPECT_EQ(pipeline->buildResult(), "✗ No response from Resolve");
    EXPECT_THAT(log(), ElementsAre("[muted] Building timeline in Resolve...", "[dim]   Loaded 3 segments",
                                   "[dim]   half a li"));
}

TEST_F(TimelineBuild, theExitStatusIsNotLookedAt) {
    whenBuilt(printed("SUCCESS:1/1 clips appended\n", false));
    EXPECT_EQ(pipeline->buildResult(), "✓ 1/1 clips appended");
}

TEST_F(TimelineBuild, noOutputIsAFailureWithTheFirstCharactersOfTheErrors) {
    std::string errors;
    for (int i = 0; i < 201; ++i)
        errors += "é";
    whenBuilt(wrote(" \n\t\n", errors, false));
    thenNoOutput();
    EXPECT_EQ(log().back(), "[accent]   stderr: " + errors.substr(0, 400));
}

TEST_F(TimelineBuild, noOutputAndNoErrorsIsAFailureWithoutThem) {
    whenBuilt(wrote("", "", false));
    thenNoOutput();
    EXPECT_THAT(log(), SizeIs(2));
}

TEST_F(TimelineBuild, streamsThatAreNoTextCountAsEmpty) {
    whenBuilt(wrote("LOG:\xff\n", "\xff"));
    thenNoOutput();
    EXPECT_THAT(log(), SizeIs(2));
    EXPECT_EQ(read(cachePath("build_output.txt")), "STDOUT:\n\n\nSTDERR:\n");
}

TEST_F(TimelineBuild, aPythonThatCannotBeLaunchedIsNamedInThePlatformsWords) {
    auto outcome = notLaunched();
    outcome.launchFailure = "execve: No such file or directory";
    whenBuilt(outcome);
    EXPECT_EQ(pipeline->buildResult(), "✗ Python failed: execve: No such file or directory");
    EXPECT_EQ(log().back(), "[accent] ✗ Python launch failed: execve: No such file or directory");
    EXPECT_FALSE(exists(cachePath("build_output.txt")));
}

TEST_F(TimelineBuild, tenMegabytesOfOutputAreRead) {
    std::string output;
    while (output.size() < 10'000'000)
        output += std::string(100'000, 'x') + "\n";
    whenBuilt(printed(output + "SUCCESS:1/1 clips appended\n"));
    EXPECT_EQ(pipeline->buildResult(), "✓ 1/1 clips appended");
    EXPECT_THAT(log(), SizeIs(2));
}

TEST_F(TimelineBuild, withoutASegmentsFileThereIsATraceButNoScript) {
    platform.environment.home = disk.makeFolder("other-home");
    home = platform.environment.home;
    makeFolder(cachePath(""));
    givenNewLaunch(1);
    ended(pipeline->buildTimelineFromSegmentsFile());
    EXPECT_EQ(pipeline->buildResult(), "✗ No segments file found");
    EXPECT_TRUE(exists(cachePath("build_debug.txt")));
    EXPECT_THAT(tools->requests, IsEmpty());
}

TEST_F(TimelineBuild, aHomeThatWouldBreakOutOfTheScriptIsNeverRun) {
    home = disk.makeFolder("home \"x\"");
    platform.environment.home = home;
    givenNewLaunch(1);
    write(cachePath("segments.json"), "[]");
    ended(pipeline->buildTimelineFromSegmentsFile());
    EXPECT_THAT(tools->requests, IsEmpty());
    thenNoOutput();
}

TEST_F(Rebuild, writesTheMomentsCompactlyAndRunsItsOwnScript) {
    EXPECT_TRUE(rebuild(printed("SUCCESS:2 clips appended, 0 failed\n"), "My \"Cut\""));
    EXPECT_EQ(read(cachePath("segments.json")),
              R"([{"index":0,"startTime":0.0,"endTime":10.0,"sourceClip":"A.wav","transcript":"uno dos",)"
              R"("translation":"one two","chapter":"Start"},{"index":1,"startTime":100.0,"endTime":110.5,)"
              R"("sourceClip":"A.wav","transcript":"tres","translation":"three"}])");
    ASSERT_THAT(tools->requests, SizeIs(1));
    EXPECT_EQ(tools->requests[0].arguments.at(1),
              firstBuildScript("/resolve/Modules", "My \"Cut\"", cachePath("segments.json"),
                               {disk / "footage/A.wav", disk / "footage/B.wav"}));
}

TEST_F(Rebuild, showsProgressAndFailuresAndTheSummary) {
    EXPECT_TRUE(rebuild(printed("LOG:FPS=25.0\nERROR: small \nother\nSUCCESS:2 clips appended, 0 failed\nLOG:late\n")));
    EXPECT_THAT(newLines(),
                ElementsAre("[muted] Rebuilding timeline in Resolve...", "[dim]   FPS=25.0", "[accent]   ✗  small",
                            "[dim]   late", "[green]   2 clips appended, 0 failed", "[green] ✓ Timeline rebuilt"));
}

TEST_F(Rebuild, successAnywhereInTheOutputIsSuccess) {
    EXPECT_TRUE(rebuild(printed("ERROR:but SUCCESS:0 clips appended, 2 failed\n")));
    EXPECT_THAT(newLines(),
                ElementsAre("[muted] Rebuilding timeline in Resolve...",
                            "[accent]   ✗ but SUCCESS:0 clips appended, 2 failed",
                            "[green]   ERROR:but 0 clips appended, 2 failed", "[green] ✓ Timeline rebuilt"));
}

TEST_F(Rebuild, withoutSuccessItFails) {
    EXPECT_FALSE(rebuild(printed("LOG:a\nERROR:Resolve not connected\n")));
    EXPECT_THAT(newLines(), ElementsAre("[muted] Rebuilding timeline in Resolve...", "[dim]   a",
                                        "[accent]   ✗ Resolve not connected", "[accent] ✗ Timeline rebuild failed"));
}

TEST_F(Rebuild, aPythonThatCannotBeLaunchedFailsIt) {
    EXPECT_FALSE(rebuild(notLaunched()));
    EXPECT_THAT(newLines(),
                ElementsAre("[muted] Rebuilding timeline in Resolve...", "[accent]   Python script failed to execute",
                            "[accent] ✗ Timeline rebuild failed"));
}

TEST_F(Rebuild, aNameThatWouldBreakOutOfItsQuotesIsNeverRun) {
    EXPECT_FALSE(rebuild(printed("SUCCESS:never"), "x\\\"; import os"));
    EXPECT_THAT(tools->requests, IsEmpty());
}
