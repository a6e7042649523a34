// The real program's window closed in the middle of a mine, at each of its stages. A stage is held by a pipe in the
// place of a file, which the tool at work then waits for, or by a service that does not answer.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "endtoend/OpenWindow.h"
#include "endtoend/ResolveWorlds.h"
#include "endtoend/StoredStories.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace zuvo::endtoend {
namespace {

using standin::Failure;
using standin::Occasion;
using standin::Service;
using testing::IsEmpty;
using testing::IsSupersetOf;

using Stories = std::set<std::string>;

/// Long enough for a test to do what must be done before a service answers.
constexpr std::chrono::milliseconds aWhile{500};

class CloseWindowTest : public MineTest {
protected:
    std::string file;
    std::map<std::string, std::string> exportsBefore;
    std::optional<OpenWindow> window;

    /// An earlier mine has left its exports.
    void SetUp() override {
        file = givenFootage("talk.wav");
        givenServicesTell("The first telling.");
        InProcess earlier(world);
        earlier.mine({file});
        ASSERT_EQ(earlier.step(), PipelineStep::complete) << joined(earlier.log());
        earlier.forgetTranscripts();
        exportsBefore = filesBelow(world.exports(""));
        world.services.forgetRequests();
        givenServicesTell("The second telling.");
    }

    /// A tool that a failed test has left would wait for ever.
    void TearDown() override {
        window.reset();
        for (const auto process : world.processes())
            ::kill(static_cast<pid_t>(process), SIGKILL);
    }

    void givenServicesTell(const std::string& story) {
        world.services.failNothing();
        givenTranscript();
        givenStory({{4.5, 11.5, story}});
    }
    void givenNoAnswerFrom(Service service, Occasion occasion) {
        world.services.fail(service, Failure::stall(), occasion);
    }

    /// Whoever opens it waits for somebody at its other end.
    static void putPipeAt(const std::string& path) {
        std::filesystem::remove(path);
        ASSERT_EQ(::mkfifo(path.c_str(), S_IRUSR | S_IWUSR), 0) << path;
    }
    /// Takes all that is written into the pipe, as a file would.
    static void takeAllFrom(const std::string& pipe) {
        const int end = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
        ASSERT_GE(end, 0);
        bool hasBegun = false;
        EXPECT_TRUE(tests::waitUntil([end, &hasBegun] {
            std::array<char, 4096> bytes{};
            ssize_t count = 0;
            while ((count = ::read(end, bytes.data(), bytes.size())) > 0)
                hasBegun = true;
            return hasBegun && count == 0;
        }));
        ::close(end);
    }

    void open() {
        window.emplace(world);
        window->waitFor("emptyDropZone");
    }
    void pressThrough() {
        window->click("actionButton");
        window->waitFor("backButton");
        window->click("actionButton");
    }
    void beginMine() {
        open();
        window->drop(file);
        pressThrough();
    }

    /// Resolve has a timeline "Cut" on which the first ten seconds of the talk lie.
    void givenTimeline() {
        auto resolve = resolveWith("Cut", {clipOf(file, "00:00:12:00")});
        resolve["timelines"][0]["startTimecode"] = "00:00:00:00";
        resolve["timelines"][0]["tracks"]["audio"][0] = Json::array({Json{{"clip", file}, {"start", 0}, {"end", 240}}});
        world.givenResolve(resolve);
    }
    void beginMineOfTheTimeline() {
        open();
        window->click("resolveTab");
        window->click("timelinePicker");
        window->click("pickerRow1");
        pressThrough();
    }

    /// How many children run with these words in their command line.
    [[nodiscard]] std::ptrdiff_t runningTools(const std::string& words) const {
        const auto all = world.processes();
        return std::count_if(all.begin(), all.end(), [&words](qint64 process) {
            auto line = processFile(process, "cmdline");
            std::replace(line.begin(), line.end(), '\0', ' ');
            return line.find(words) != std::string::npos;
        });
    }
    void waitForTool(const std::string& words, std::ptrdiff_t count = 1) const {
        ASSERT_TRUE(tests::waitUntil([&] {
            tests::runEventLoop(std::chrono::milliseconds(20)); // a look at all processes is work
            return runningTools(words) == count;
        })) << words;
    }
    void waitForRequests(Service service, std::size_t count) const {
        ASSERT_TRUE(tests::waitUntil([&] { return world.services.requests(service).size() >= count; }));
    }

    /// The program ends well, and nothing of it is left but whole files.
    void closeWindow() {
        const auto requests = world.services.requests().size();
        ending = window->close();
        thenItEndsWith(0);
        EXPECT_EQ(ending.errors, "");
        EXPECT_TRUE(tests::waitUntil([this] { return world.processes().empty(); })) << "a tool lives on";
        EXPECT_EQ(world.services.requests().size(), requests) << "something was asked for at the end";
        thenEveryJsonFileIsWhole(world);
    }

    void thenTheExportsAreAsBefore() const { EXPECT_EQ(filesBelow(world.exports("")), exportsBefore); }
    /// The transcript that was paid for lies in the cache.
    void thenTheTranscriptIsKept() const {
        const auto keys = namesIn(world.cache("transcripts"));
        ASSERT_EQ(keys.size(), 1U);
        EXPECT_EQ(jsonOf(world.cache("transcripts/" + keys[0] + "/transcript.json")).at("segments").size(),
                  climbingLines().size());
    }
    void thenNoTranscriptIsKept() const { EXPECT_THAT(namesIn(world.cache("transcripts")), IsEmpty()); }

    /// What was a pipe is a file again, as it was for the user all along; all stories up to now are kept.
    void thenTheNextMineEndsWell(const std::vector<std::string>& words, const std::string& project) {
        const auto before = storiesKept(world, project);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(world.folder.path())) {
            if (entry.is_fifo())
                std::filesystem::remove(entry.path());
        }
        file = givenFootage("talk.wav");
        givenServicesTell("The last telling.");
        mine(words);
        thenItEndsWith(0);
        EXPECT_THAT(storiesKept(world, project), IsSupersetOf(before));
        EXPECT_EQ(jsonOf(world.exports(project, "mining_results.json")).at("segments").at(0).at("transcript"),
                  "The last telling.");
    }
    void thenTheNextMineEndsWell() { thenTheNextMineEndsWell({file}, "talk"); }
};

TEST_F(CloseWindowTest, beforeAnyMineTheProgramJustEnds) {
    open();
    closeWindow();
    thenTheExportsAreAsBefore();
    EXPECT_EQ(transcriptionRequests(), 0U);
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileDroppedFilesAreProbedTheProbeEndsToo) {
    putPipeAt(file);
    open();
    window->drop(file);
    waitForTool("ffprobe");
    closeWindow();
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileAMineProbesNothingIsPaidFor) {
    putPipeAt(file);
    beginMine();
    waitForTool("ffprobe", 2); // that of the page, too
    closeWindow();
    EXPECT_EQ(transcriptionRequests(), 0U);
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileSoundIsExtractedNothingIsPaidFor) {
    putPipeAt(world.cache("extracted_audio.wav"));
    beginMine();
    waitForTool("ffmpeg");
    closeWindow();
    EXPECT_EQ(transcriptionRequests(), 0U);
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileChunksAreMadeNothingIsPaidFor) {
    const auto audio = world.cache("extracted_audio.wav");
    putPipeAt(audio);
    beginMine();
    waitForTool("ffmpeg");
    takeAllFrom(audio);
    waitForTool("csv=p=0 " + audio);
    closeWindow();
    EXPECT_EQ(transcriptionRequests(), 0U);
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileTheTranscriptIsWaitedForTheExportsStayAsTheyWere) {
    givenNoAnswerFrom(Service::transcription, Occasion::from(1));
    beginMine();
    waitForRequests(Service::transcription, 1);
    closeWindow();
    thenNoTranscriptIsKept();
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileLevelsAreMeasuredTheTranscriptIsKept) {
    world.services.fail(Service::transcription, Failure::body(transcriptionAnswer(climbingLines(), {})).after(aWhile));
    beginMine();
    waitForRequests(Service::transcription, 1);
    putPipeAt(file);
    waitForTool("stream=channels");
    closeWindow();
    thenTheTranscriptIsKept();
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileTheStoryIsWaitedForTheTranscriptIsKept) {
    givenNoAnswerFrom(Service::messages, Occasion::from(1));
    beginMine();
    waitForRequests(Service::messages, 1);
    closeWindow();
    thenTheTranscriptIsKept();
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileAMomentIsCutTheTranscriptIsKept) {
    putPipeAt(world.cache("word_seg_0.wav"));
    beginMine();
    waitForTool("word_seg_0.wav");
    closeWindow();
    thenTheTranscriptIsKept();
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileWordTimesAreWaitedForTheTranscriptIsKept) {
    givenNoAnswerFrom(Service::transcription, Occasion::from(2));
    beginMine();
    waitForRequests(Service::transcription, 2);
    closeWindow();
    thenTheTranscriptIsKept();
    thenTheExportsAreAsBefore();
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileTheStoryIsWrittenItIsWrittenToItsEnd) {
    std::vector<Line> lines = climbingLines();
    for (int i = 0; i < 4000; ++i)
        lines.push_back({12.0, 12.0, "Line " + std::to_string(i) + " is spoken into the silence behind the end."});
    givenTranscript(lines);
    beginMine();
    // The earlier story has made room, which is the last before the new one.
    ASSERT_TRUE(tests::waitUntil([this] { return exists(world.exports("talk", "mining_results_v1.json")); }));
    closeWindow();
    EXPECT_EQ(storiesKept(world, "talk"), (Stories{"The first telling.", "The second telling."}));
    EXPECT_EQ(jsonOf(world.exports("talk", "mining_results.json")).at("segments").at(0).at("transcript"),
              "The second telling.");
    EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("transcript").size(), lines.size());
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("transcript"), "The second telling.");
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileResolveBuildsTheScriptEndsAndTheStoryIsThere) {
    givenTimeline();
    const auto resolve = world.folder / "resolve.json";
    const auto resolveBefore = bytesOf(resolve);
    world.services.fail(Service::messages,
                        Failure::reply(storyReply({{4.5, 11.5, "The second telling."}})).after(aWhile));
    beginMineOfTheTimeline();
    waitForRequests(Service::messages, 1);
    putPipeAt(resolve);
    waitForTool("python3 -c");
    closeWindow();
    thenTheTranscriptIsKept();
    EXPECT_EQ(storiesKept(world, "Cut"), Stories{"The second telling."});
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("transcript"), "The second telling.");
    std::filesystem::remove(resolve);
    world.folder.write("resolve.json", resolveBefore);
    thenTheNextMineEndsWell({"--timeline", "Cut"}, "Cut");
    EXPECT_EQ(timelinesNamed(world.resolve(), "Zuvo Build — ").size(), 1U);
}

TEST_F(CloseWindowTest, whileAMomentPlaysItsDecoderEnds) {
    constexpr double longerThanIsDecodedAhead = 60.0;
    makeFootage(file, longerThanIsDecodedAhead);
    beginMine();
    window->waitFor("segmentCard0");
    window->press("Space");
    waitForTool("pipe:1");
    closeWindow();
    EXPECT_EQ(storiesKept(world, "talk"), (Stories{"The first telling.", "The second telling."}));
    thenTheNextMineEndsWell();
}

TEST_F(CloseWindowTest, whileACutIsAuditedTheMineBeforeItIsThere) {
    givenTimeline();
    givenNoAnswerFrom(Service::messages, Occasion::from(2));
    beginMineOfTheTimeline();
    window->waitFor("segmentCard0");
    window->click("step0");
    window->click("mode3");
    window->click("actionButton");
    waitForRequests(Service::messages, 2);
    closeWindow();
    thenTheTranscriptIsKept();
    EXPECT_EQ(storiesKept(world, "Cut"), Stories{"The second telling."});
    thenTheNextMineEndsWell({"--timeline", "Cut"}, "Cut");
}

TEST_F(CloseWindowTest, theNextStartOfTheWindowMinesToTheEnd) {
    givenNoAnswerFrom(Service::messages, Occasion::from(1));
    beginMine();
    waitForRequests(Service::messages, 1);
    closeWindow();
    givenServicesTell("The second telling.");
    beginMine();
    window->waitFor("segmentCard0");
    closeWindow();
    EXPECT_EQ(storiesKept(world, "talk"), (Stories{"The first telling.", "The second telling."}));
}

} // namespace
} // namespace zuvo::endtoend
