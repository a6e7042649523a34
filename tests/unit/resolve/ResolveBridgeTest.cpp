#include "resolve/ResolveBridge.h"

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"
#include "resolve/Scripts.h"

#include <deque>
#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// A Python that answers from a queue and keeps what it was asked to run.
class PlannedPython final : public ProcessRunner {
public:
    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override {
        requests.push_back(std::move(request));
        if (plan.empty()) {
            ADD_FAILURE() << "Nobody planned this script";
            co_return ProcessOutcome();
        }
        auto outcome = plan.front();
        plan.pop_front();
        co_return outcome;
    }
    void endChildren() override {}

    void thenPrints(std::string output) { plan.push_back({true, {}, true, std::move(output), {}}); }
    void thenFails(std::string errors) { plan.push_back({true, {}, false, "half a line", std::move(errors)}); }
    void thenCannotStart(std::string words) { plan.push_back({false, std::move(words), false, {}, {}}); }

    std::deque<ProcessOutcome> plan;
    std::vector<ProcessRequest> requests;
};

class Bridge : public testing::Test {
protected:
    Bridge() {
        platform.environment.resolveScriptAPI = "/resolve/Scripting";
        platform.environment.resolveScriptLib = lib;
        platform.clock = [] { return QDateTime(QDate(2026, 3, 4), QTime(5, 17, 36), Qt::UTC); };
        platform.processes = python;
        bridge =
            ResolveBridge::create(platform, {disk / "none", disk.write("python-a", ""), disk.write("python-b", "")});
    }

    void givenConnection() {
        python->thenPrints("Film\n");
        runToEnd(bridge->connect());
        ASSERT_TRUE(bridge->isConnected());
        python->requests.clear();
    }

    void thenNotConnected(const std::string& status) const {
        EXPECT_FALSE(bridge->isConnected());
        EXPECT_EQ(bridge->projectName(), std::nullopt);
        EXPECT_EQ(bridge->statusMessage(), status);
    }

    /// What the build threw, or "" if it ended well.
    std::string buildFailure() {
        try {
            runToEnd(bridge->buildTimeline(MiningResults()));
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    }

    static constexpr const char* lib = "/resolve/Scripting/Modules";

    TemporaryFolder disk;
    Platform platform;
    std::shared_ptr<PlannedPython> python = std::make_shared<PlannedPython>();
    std::shared_ptr<ResolveBridge> bridge;
};

} // namespace

TEST_F(Bridge, knowsNothingBeforeItIsAsked) {
    thenNotConnected("Not connected");
    EXPECT_THAT(bridge->timelines(), IsEmpty());
    EXPECT_EQ(bridge->currentTimeline(), std::nullopt);
    EXPECT_THAT(python->requests, IsEmpty());
}

TEST_F(Bridge, looksForThreeInterpretersInThisOrder) {
    EXPECT_THAT(ResolveBridge::pythonPaths(),
                ElementsAre("/usr/bin/python3", "/opt/homebrew/bin/python3", "/usr/local/bin/python3"));
}

TEST_F(Bridge, runsTheFirstInterpreterThatExistsWithTheScriptAndResolvesFolders) {
    givenConnection();
    python->thenPrints("");
    runToEnd(bridge->getTimelines());
    ASSERT_THAT(python->requests, SizeIs(1));
    const auto& request = python->requests[0];
    EXPECT_EQ(request.program, disk / "python-a");
    EXPECT_THAT(request.arguments, ElementsAre("-c", timelineNamesScript(lib)));
    using Variable = std::pair<std::string, std::string>;
    EXPECT_THAT(request.variables, ElementsAre(Variable("RESOLVE_SCRIPT_API", "/resolve/Scripting"),
                                               Variable("RESOLVE_SCRIPT_LIB", lib), Variable("PYTHONPATH", lib)));
    EXPECT_TRUE(request.keepsOutput);
    EXPECT_TRUE(request.keepsError);
}

TEST_F(Bridge, theInterpreterIsDecidedOnceAtConstruction) {
    disk.write("none", "now it is there");
    givenConnection();
    python->thenPrints("");
    runToEnd(bridge->getTimelines());
    EXPECT_EQ(python->requests.at(0).program, disk / "python-a");
}

TEST_F(Bridge, withoutAnInterpreterNothingIsLaunched) {
    bridge = ResolveBridge::create(platform, {disk / "none"});
    runToEnd(bridge->connect());
    thenNotConnected("Python not found");
    EXPECT_THAT(python->requests, IsEmpty());
}

TEST_F(Bridge, aProjectIsNamedWithoutTheLineEnd) {
    python->thenPrints(" Film é \r\n");
    runToEnd(bridge->connect());
    EXPECT_TRUE(bridge->isConnected());
    EXPECT_EQ(bridge->projectName(), "Film é");
    EXPECT_EQ(bridge->statusMessage(), "Connected to Film é");
    EXPECT_THAT(python->requests, SizeIs(1)); // the timelines are not fetched
    EXPECT_EQ(python->requests[0].arguments.at(1), projectNameScript(lib));
}

TEST_F(Bridge, aProjectWithAnEmptyNameIsAProject) {
    python->thenPrints("\n");
    runToEnd(bridge->connect());
    EXPECT_TRUE(bridge->isConnected());
    EXPECT_EQ(bridge->projectName(), "");
    EXPECT_EQ(bridge->statusMessage(), "Connected to ");
}

TEST_F(Bridge, aMissingProjectShowsItsTokenWithTheLineEnd) {
    givenConnection();
    python->thenPrints("ERROR:NO_PROJECT\n");
    runToEnd(bridge->connect());
    thenNotConnected("NO_PROJECT\n");
}

TEST_F(Bridge, theFriendlyWordsNeedAnAnswerWithoutALineEnd) {
    python->thenPrints("ERROR:NOT_CONNECTED\n");
    runToEnd(bridge->connect());
    thenNotConnected("NOT_CONNECTED\n");
    python->thenPrints("ERROR:NOT_CONNECTED");
    runToEnd(bridge->connect());
    thenNotConnected("Resolve not running");
}

TEST_F(Bridge, anErrorBehindTheFirstLineIsNotSeen) {
    python->thenPrints("Film\nERROR:late\n");
    runToEnd(bridge->connect());
    EXPECT_TRUE(bridge->isConnected());
    EXPECT_EQ(bridge->projectName(), "Film\nERROR:late");
}

TEST_F(Bridge, aScriptThatFailsShowsWhatItSaidOnStandardError) {
    givenConnection();
    python->thenFails("Traceback\nSyntaxError\n");
    runToEnd(bridge->connect());
    thenNotConnected("Connection failed: Script execution failed: Traceback\nSyntaxError\n");
}

TEST_F(Bridge, aFailureThatIsNoTextIsUnknown) {
    python->thenFails("\xff");
    runToEnd(bridge->connect());
    thenNotConnected("Connection failed: Script execution failed: Unknown error");
}

TEST_F(Bridge, aLaunchThatFailsIsPassedOnInThePlatformsWords) {
    python->thenCannotStart("execve: Permission denied");
    runToEnd(bridge->connect());
    thenNotConnected("Connection failed: execve: Permission denied");
}

TEST_F(Bridge, outputThatIsNoTextCountsAsEmpty) {
    python->thenPrints("Film\xff\n");
    runToEnd(bridge->connect());
    EXPECT_EQ(bridge->statusMessage(), "Connected to ");
}

TEST_F(Bridge, everyChangeIsSignalledOnce) {
    int connected = 0;
    int project = 0;
    int status = 0;
    QObject::connect(bridge.get(), &ResolveBridge::isConnectedChanged, [&connected] { ++connected; });
    QObject::connect(bridge.get(), &ResolveBridge::projectNameChanged, [&project] { ++project; });
    QObject::connect(bridge.get(), &ResolveBridge::statusMessageChanged, [&status] { ++status; });
    for (int i = 0; i < 2; ++i) {
        python->thenPrints("Film\n");
        runToEnd(bridge->connect());
    }
    EXPECT_EQ(connected, 1);
    EXPECT_EQ(project, 1);
    EXPECT_EQ(status, 1);
}

TEST_F(Bridge, timelinesComeInResolvesOrder) {
    givenConnection();
    python->thenPrints("Cut 2\n Cut 1 \n\nCut 10\n");
    runToEnd(bridge->getTimelines());
    EXPECT_THAT(bridge->timelines(), ElementsAre("Cut 2", "Cut 1", "Cut 10"));
}

TEST_F(Bridge, noTimelinesAreAnEmptyListAndNoError) {
    givenConnection();
    python->thenPrints("Cut\n");
    runToEnd(bridge->getTimelines());
    python->thenPrints("");
    runToEnd(bridge->getTimelines());
    EXPECT_THAT(bridge->timelines(), IsEmpty());
}

TEST_F(Bridge, withoutAConnectionTimelinesAreNotAskedFor) {
    runToEnd(bridge->getTimelines());
    EXPECT_THAT(python->requests, IsEmpty());
}

TEST_F(Bridge, timelinesStayIfResolveDoesNotAnswer) {
    givenConnection();
    python->thenPrints("Cut\n");
    runToEnd(bridge->getTimelines());
    python->thenPrints("ERROR:'NoneType' object has no attribute 'GetTimelineCount'\n");
    runToEnd(bridge->getTimelines());
    EXPECT_THAT(bridge->timelines(), ElementsAre("Cut"));
    python->thenFails("killed");
    testing::internal::CaptureStderr();
    runToEnd(bridge->getTimelines());
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("Failed to get timelines: Script execution failed: killed"));
    EXPECT_THAT(bridge->timelines(), ElementsAre("Cut"));
    EXPECT_TRUE(bridge->isConnected());
}

TEST_F(Bridge, audioIsAPlaceThatNobodyWrites) {
    givenConnection();
    python->thenPrints("/home/x/Library/Caches/ZuvoManager/audio_export.wav\n");
    EXPECT_EQ(runToEnd(bridge->extractAudio("It's Day 1")), "/home/x/Library/Caches/ZuvoManager/audio_export.wav");
    EXPECT_EQ(python->requests.at(0).arguments.at(1), audioExportScript(lib, "It's Day 1"));
}

TEST_F(Bridge, audioOfAMissingTimelineOrWithoutAConnectionIsNothing) {
    EXPECT_EQ(runToEnd(bridge->extractAudio("Cut")), std::nullopt);
    EXPECT_THAT(python->requests, IsEmpty());
    givenConnection();
    python->thenPrints("ERROR:TIMELINE_NOT_FOUND\n");
    EXPECT_EQ(runToEnd(bridge->extractAudio("Cut")), std::nullopt);
    python->thenFails("killed");
    EXPECT_EQ(runToEnd(bridge->extractAudio("Cut")), std::nullopt);
}

TEST_F(Bridge, aNameThatWouldBreakOutOfItsQuotesIsNeverRun) {
    givenConnection();
    for (const char* name : {"My \"Cut\"", "a\\b", "a\nb"})
        EXPECT_EQ(runToEnd(bridge->extractAudio(name)), std::nullopt);
    EXPECT_THAT(python->requests, IsEmpty());
}

TEST_F(Bridge, aBuildMakesAnEmptyTimelineNamedAfterTheDateAndRefreshesTheList) {
    givenConnection();
    python->thenPrints("SUCCESS:Timeline created\n");
    python->thenPrints("Zuvo Mining - 2026-03-04 05:17:36 +0000\n");
    EXPECT_EQ(buildFailure(), "");
    ASSERT_THAT(python->requests, SizeIs(2));
    EXPECT_EQ(python->requests[0].arguments.at(1), emptyTimelineScript(lib, "Zuvo Mining - 2026-03-04 05:17:36 +0000"));
    EXPECT_THAT(bridge->timelines(), ElementsAre("Zuvo Mining - 2026-03-04 05:17:36 +0000"));
}

TEST_F(Bridge, aBuildWithoutAConnectionFails) {
    EXPECT_EQ(buildFailure(), "Not connected to DaVinci Resolve. Make sure Resolve is running.");
}

TEST_F(Bridge, aBuildThatResolveRefusesFails) {
    givenConnection();
    python->thenPrints("ERROR:TIMELINE_CREATE_FAILED\n");
    EXPECT_EQ(buildFailure(), "Failed to build timeline in Resolve");
}

TEST_F(Bridge, aBuildWhoseScriptFailsPassesTheFailureOn) {
    givenConnection();
    python->thenFails("killed");
    EXPECT_EQ(buildFailure(), "Script execution failed: killed");
    python->thenCannotStart("No such file");
    EXPECT_EQ(buildFailure(), "No such file");
}

TEST_F(Bridge, anOperationOutlivesItsCaller) {
    python->thenPrints("Film\n");
    auto task = bridge->connect();
    const std::weak_ptr<ResolveBridge> watched = bridge;
    bridge.reset();
    runToEnd(std::move(task));
    EXPECT_TRUE(watched.expired());
}

TEST(ResolveBridgeErrors, everyCaseHasItsWords) {
    using Case = ResolveBridgeError::Case;
    EXPECT_EQ(ResolveBridgeError::description(Case::pythonNotFound), "Python3 not found. Please install Python 3.");
    EXPECT_EQ(ResolveBridgeError::description(Case::noCurrentProject), "No current project in DaVinci Resolve");
    EXPECT_EQ(ResolveBridgeError::description(Case::audioExtractionFailed), "Failed to extract audio from timeline");
    EXPECT_STREQ(ResolveBridgeError(Case::scriptExecutionFailed, "why").what(), "Script execution failed: why");
    EXPECT_EQ(ResolveBridgeError(Case::notConnected).which(), Case::notConnected);
}
