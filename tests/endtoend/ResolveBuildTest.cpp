// Builds and lists under what can go wrong: the hand-off file, Resolve's answers, and Python itself.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"

#include <QTimer>
#include <filesystem>

namespace zuvo::endtoend {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr auto noResponse = "✗ No response from Resolve";

class ResolveBuildTest : public MineTest {
protected:
    const std::string path = "/footage/talk.wav";

    void givenSegments(const std::string& text) {
        world.folder.write("home/Library/Caches/ZuvoManager/segments.json", text);
    }

    void givenTwoMoments() {
        givenSegments(R"([{"index": 0, "startTime": 1.0, "endTime": 3.0, "sourceClip": "talk.wav", "transcript": "a",
                           "translation": "First words here.", "chapter": "One"},
                          {"index": 1, "startTime": 10.0, "endTime": 12.5, "sourceClip": "talk.wav",
                           "transcript": "b", "translation": "Second words there.", "chapter": null}])");
    }

    void build() { ending = world.zuvo({"build"}); }

    /// The result of the build in this process, by a Python of the test's own.
    std::string buildBy(const std::string& shellScript) {
        givenTwoMoments();
        InProcess inside(world);
        inside.platform.environment.tools.python3 = pythonThat(shellScript);
        inside.pipeline = LocalPipeline::create(inside.platform, inside.timeouts);
        tests::runToEnd(inside.pipeline->buildTimelineFromSegmentsFile());
        lastLog = inside.log();
        return inside.pipeline->buildResult().value_or("nothing");
    }

    [[nodiscard]] std::string pythonThat(const std::string& shellScript) const {
        const auto program = world.folder.write("python3", "#!/bin/sh\n" + shellScript + "\n");
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return program;
    }

    std::vector<std::string> lastLog;
};

} // namespace

TEST_F(ResolveBuildTest, endsWellIfResolveTookTheClips) {
    world.givenResolve(resolveWith("Talk", {clipOf(path, "00:02:00:00")}));
    givenTwoMoments();
    build();
    thenItEndsWith(0);
    thenLogEndsWith({"  ✓ 2/2 clips appended"});
}

TEST_F(ResolveBuildTest, tellsTheEndOfABuildAsAnEvent) {
    world.givenResolve(resolveWith("Talk", {clipOf(path, "00:02:00:00")}));
    givenTwoMoments();
    ending = world.zuvo({"build", "--json"});
    thenItEndsWith(0);
    const auto last = Json::parse(linesOf(ending.output).back());
    EXPECT_EQ(last.at("event"), "end");
    EXPECT_EQ(last.at("buildResult"), "✓ 2/2 clips appended");
}

TEST_F(ResolveBuildTest, withoutResolveOnTheMachineItFailsWithWhatPythonSaid) {
    givenTwoMoments();
    build();
    thenItEndsWith(1);
    thenLogHas({"Building timeline in Resolve...", "✗ Python returned no output"});
    EXPECT_THAT(ending.output, HasSubstr("  stderr: Traceback (most recent call last):"));
}

TEST_F(ResolveBuildTest, aResolveThatDoesNotRunIsNamed) {
    world.givenResolve({{"running", false}});
    givenTwoMoments();
    build();
    thenItEndsWith(1);
    thenLogEndsWith({"  ✗ Resolve not connected"});
}

TEST_F(ResolveBuildTest, withoutAProjectTheScriptEndsBeforeAWord) {
    world.givenResolve({{"project", nullptr}});
    givenTwoMoments();
    build();
    thenItEndsWith(1);
    thenLogHas({"✗ Python returned no output"});
}

TEST_F(ResolveBuildTest, anEmptyTimelineForAMediaPoolThatHoldsNoneOfTheFilesIsAFailure) {
    world.givenResolve(resolveWith("Talk", {clipOf("/other/short.wav", "00:00:30:00")}));
    givenTwoMoments();
    build();
    thenItEndsWith(1);
    EXPECT_THAT(ending.output, HasSubstr("  SKIP seg 0: no matching clip for t=1.0s clip=talk.wav"));
    thenLogEndsWith({"  ✓ 0/2 clips appended"});
    EXPECT_EQ(ending.errors, "zuvo: 0 of 2 moments are on the new timeline; the lines above say which are not\n");
}

TEST_F(ResolveBuildTest, aMomentThatResolveDoesNotTakeIsAFailure) {
    auto resolve = resolveWith("Talk", {clipOf(path, "00:02:00:00")});
    resolve["failures"] = Json::array({{{"method", "AppendToTimeline"}, {"call", 2}, {"gives", nullptr}}});
    world.givenResolve(resolve);
    givenTwoMoments();
    ending = world.zuvo({"build", "--json"});
    thenItEndsWith(1);
    EXPECT_EQ(Json::parse(linesOf(ending.output).back()).at("buildResult"), "✓ 1/2 clips appended");
    EXPECT_EQ(ending.errors, "zuvo: 1 of 2 moments are on the new timeline; the lines above say which are not\n");
}

TEST_F(ResolveBuildTest, aNameThatIsTakenTwiceSaysWhatToDelete) {
    auto resolve = resolveWith("Talk", {clipOf(path, "00:02:00:00")});
    resolve["failures"] = Json::array({{{"method", "CreateEmptyTimeline"}, {"gives", nullptr}}});
    world.givenResolve(resolve);
    givenTwoMoments();
    build();
    thenItEndsWith(1);
    thenLogEndsWith({"  ✗ Could not create timeline — try deleting existing Zuvo Build timelines in Resolve"});
}

TEST_F(ResolveBuildTest, anExceptionInTheMiddleLeavesNoResponse) {
    auto resolve = resolveWith("Talk", {clipOf(path, "00:02:00:00")});
    resolve["failures"] = Json::array({{{"method", "AppendToTimeline"}, {"call", 2}, {"raises", "Resolve crashed"}}});
    world.givenResolve(resolve);
    givenTwoMoments();
    build();
    thenItEndsWith(1);
    EXPECT_THAT(bytesOf(world.cache("build_output.txt")), HasSubstr("RuntimeError: Resolve crashed"));
    EXPECT_THAT(ending.output, HasSubstr("  Seg 1: seq 10.0-12.5s"));
}

TEST_F(ResolveBuildTest, brokenHandOffsEndTheScriptAndNothingElse) {
    world.givenResolve(resolveWith("Talk", {clipOf(path, "00:02:00:00")}));
    for (const char* text : {"", "[{\"index\": 0, \"startTi", "null", "{}",
                             R"([{"index": 0, "startTime": null, "endTime": 3.0, "sourceClip": null,
                                  "translation": null, "chapter": null}])"}) {
        givenSegments(text);
        build();
        EXPECT_THAT(ending.status, testing::AnyOf(0, 1)) << text;
        EXPECT_EQ(ending.status == 0, ending.output.find("  ✓ 0/0 clips appended") != std::string::npos) << text;
    }
}

TEST_F(ResolveBuildTest, noHandOffAtAllIsNamed) {
    world.givenResolve(Json::object());
    build();
    thenItEndsWith(1);
    thenLogEndsWith({"✗ No segments file found"});
}

TEST_F(ResolveBuildTest, probeDataWithNullsAndMissingWordsAreNoObstacle) {
    world.givenResolve(resolveWith("Talk", {clipOf(path, "00:02:00:00")}));
    givenTwoMoments();
    world.folder.write("home/Library/Caches/ZuvoManager/probe_results.json",
                       R"({"talk.wav": {"path": "/footage/talk.wav", "duration": null, "startTimecodeSeconds": null,
                           "fps": null}, "gone.wav": null})");
    world.folder.write("home/Library/Caches/ZuvoManager/word_timestamps.json",
                       R"([{"segmentIndex": 1, "words": [{"word": "b", "start": 0.1, "end": 2.0}]}])");
    build();
    thenItEndsWith(0);
    EXPECT_THAT(ending.output, HasSubstr("  Loaded word-level timestamps for 1 segments"));
}

TEST_F(ResolveBuildTest, aPythonThatPrintsNothingOrNoTextIsNoOutput) {
    for (const char* program : {"exit 0", "exit 1", "printf 'LOG:\\377\\nSUCCESS:x\\n'", "kill -9 $$"}) {
        EXPECT_EQ(buildBy(program), "✗ Python returned no output — check Resolve connection") << program;
    }
}

TEST_F(ResolveBuildTest, aPythonThatIsKilledInTheMiddleKeepsItsLines) {
    EXPECT_EQ(buildBy("echo LOG:Loaded 2 segments; printf 'LOG:half'; kill -9 $$"), noResponse);
    EXPECT_THAT(lastLog, ElementsAre("Building timeline in Resolve...", "  Loaded 2 segments", "  half"));
}

TEST_F(ResolveBuildTest, tenMegabytesOfOutputNeitherBlockNorMatter) {
    EXPECT_EQ(buildBy("/usr/bin/head -c 10000000 /dev/zero | /usr/bin/tr '\\0' 'x'; echo; echo SUCCESS:done"),
              "✓ done");
}

TEST_F(ResolveBuildTest, noPythonIsNamedInThePlatformsWords) {
    givenTwoMoments();
    InProcess inside(world);
    inside.platform.environment.tools.python3 = world.folder / "no-python";
    inside.pipeline = LocalPipeline::create(inside.platform, inside.timeouts);
    tests::runToEnd(inside.pipeline->buildTimelineFromSegmentsFile());
    EXPECT_THAT(inside.pipeline->buildResult().value_or(""), StartsWith("✗ Python failed: "));
    EXPECT_THAT(inside.log().back(), StartsWith("✗ Python launch failed: "));
}

TEST_F(ResolveBuildTest, theEventLoopTicksWhileABuildRuns) {
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(std::chrono::milliseconds(10));
    EXPECT_EQ(buildBy("/bin/sleep 1; echo SUCCESS:done"), "✓ done");
    EXPECT_GT(ticks, 20);
}

TEST_F(ResolveBuildTest, timelinesAreListedInResolvesOrder) {
    world.givenResolve({{"timelines", {{{"name", "Cut 2"}}, {{"name", "Interview — 川 🎬"}}, {{"name", "Cut 1"}}}}});
    ending = world.zuvo({"timelines"});
    thenItEndsWith(0);
    EXPECT_EQ(ending.output, "Cut 2\nInterview — 川 🎬\nCut 1\n");
    ending = world.zuvo({"timelines", "--json"});
    EXPECT_EQ(linesOf(ending.output).at(0), R"({"timeline":"Cut 2"})");
}

TEST_F(ResolveBuildTest, aProjectWithoutTimelinesSaysSo) {
    world.givenResolve(Json::object());
    ending = world.zuvo({"timelines"});
    thenItEndsWith(0);
    EXPECT_EQ(ending.output, "There are no timelines in the open project.\n");
}

TEST_F(ResolveBuildTest, whyThereAreNoTimelinesIsSaidInWords) {
    const std::vector<std::pair<Json, std::string>> cases = {
        {{{"running", false}}, "zuvo: Not connected to DaVinci Resolve. Make sure Resolve is running.\n"},
        {{{"project", nullptr}}, "zuvo: No current project in DaVinci Resolve\n"}};
    for (const auto& [resolve, words] : cases) {
        world.givenResolve(resolve);
        ending = world.zuvo({"timelines"});
        thenItEndsWith(1);
        EXPECT_EQ(ending.errors, words);
        EXPECT_EQ(ending.output, "");
    }
}

TEST_F(ResolveBuildTest, withoutResolveOnTheMachineTheListFailsWithPythonsWords) {
    ending = world.zuvo({"timelines"});
    thenItEndsWith(1);
    EXPECT_THAT(ending.errors,
                AllOf(StartsWith("zuvo: Python does not find DaVinci Resolve's scripting module. Is Resolve Studio "
                                 "installed? ("),
                      HasSubstr("DaVinciResolveScript")));
    EXPECT_THAT(ending.output, IsEmpty());
}

} // namespace zuvo::endtoend
