// The program ended by SIGKILL in the middle of a mine, at random moments, over and over in one home folder.
//
//     ZUVO_KILL_COUNT=200 ZUVO_KILL_SEED=7 ctest -R endtoend/KillTest --output-on-failure

#include "endtoend/MineTest.h"
#include "endtoend/StoredStories.h"
#include "fakes/CoroutineTest.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <random>

namespace zuvo::endtoend {
namespace {

using std::chrono::milliseconds;

constexpr int standardCount = 20;

std::uint64_t numberFrom(const char* variable, std::uint64_t otherwise) {
    bool isNumber = false;
    const auto number = qEnvironmentVariable(variable).toULongLong(&isNumber);
    return isNumber ? number : otherwise;
}

/// When a mine is killed: so long after its start, or after a request of it has reached a service.
struct Moment {
    std::size_t transcriptions = 0; ///< requests that have come
    std::size_t messages = 0;
    milliseconds after{0};
};

class KillTest : public MineTest {
protected:
    const std::uint64_t seed = numberFrom("ZUVO_KILL_SEED", std::random_device()());
    const int count = static_cast<int>(numberFrom("ZUVO_KILL_COUNT", standardCount));
    std::mt19937_64 random{seed};
    std::string file;

    void SetUp() override { file = givenFootage("talk.wav"); }

    /// Enough lines that every file takes its time to be written.
    static std::vector<Line> manyLines() {
        std::vector<Line> lines = climbingLines();
        for (int i = 0; i < 4000; ++i)
            lines.push_back({12.0, 12.0, "Line " + std::to_string(i) + " is spoken into the silence behind the end."});
        return lines;
    }

    void givenServicesTell(const std::string& story) {
        world.services.failNothing();
        givenTranscript(manyLines());
        givenStory({{4.5, 11.5, story}});
    }

    milliseconds upTo(int most) { return milliseconds(std::uniform_int_distribution(0, most)(random)); }

    /// Half of the moments lie behind the last answer, where all is written within a few milliseconds.
    Moment anyMoment() {
        switch (std::uniform_int_distribution(0, 5)(random)) {
        case 0:
            return {0, 0, upTo(400)};
        case 1:
            return {1, 0, upTo(150)};
        case 2:
            return {1, 1, upTo(150)};
        default:
            return {2, 1, upTo(80)};
        }
    }

    /// Kills a mine that tells this story; true if it had not ended before.
    bool mineKilledAt(const Moment& moment, const std::string& story) {
        givenServicesTell(story);
        const auto transcriptions = transcriptionRequests() + moment.transcriptions;
        const auto messages = messagesRequests() + moment.messages;
        const auto run = world.begin({"mine", file});
        EXPECT_TRUE(tests::waitUntil([&] {
            return (transcriptionRequests() >= transcriptions && messagesRequests() >= messages) || run->hasEnded();
        }));
        tests::runEventLoop(moment.after);
        const bool wasRunning = !run->hasEnded();
        run->press(SIGKILL);
        const auto killed = run->end();
        EXPECT_TRUE(killed.status == -1 || killed.status == 0) << killed.output << killed.errors;
        // Its tools are ended with it, but not in the same instant.
        EXPECT_TRUE(tests::waitUntil([this] { return world.processes().empty(); })) << "a tool lives on";
        return wasRunning;
    }

    [[nodiscard]] std::map<std::string, std::string> versions() const {
        auto files = filesBelow(world.exports("talk"));
        std::erase_if(files,
                      [](const auto& entry) { return entry.first.find("/mining_results_v") == std::string::npos; });
        return files;
    }

    /// What an earlier run has left is there, to the byte.
    void thenNothingIsLost(const std::set<std::string>& storiesBefore,
                           const std::map<std::string, std::string>& versionsBefore) const {
        const auto stories = storiesKept(world, "talk");
        EXPECT_TRUE(std::includes(stories.begin(), stories.end(), storiesBefore.begin(), storiesBefore.end()));
        const auto now = versions();
        EXPECT_TRUE(std::includes(now.begin(), now.end(), versionsBefore.begin(), versionsBefore.end()))
            << "a version of an earlier run was changed";
    }

    void thenTheProjectIsWhole() const {
        const auto project = jsonOf(world.exports("talk", "project.json"));
        EXPECT_EQ(project.at("transcript").size(), manyLines().size());
        EXPECT_EQ(project.at("mediaPaths"), Json::array({file}));
        EXPECT_EQ(linesOf(world.zuvo({"projects", "--json"}).output).size(), 1U) << "leftovers are no projects";
    }
};

TEST_F(KillTest, killedAtAnyMomentNothingIsHalfWrittenAndNothingIsLost) {
    std::cout << "ZUVO_KILL_SEED=" << seed << " ZUVO_KILL_COUNT=" << count << "\n";
    givenServicesTell("The first telling.");
    mine({file});
    thenItEndsWith(0);
    int killed = 0;
    for (int i = 0; i < count; ++i) {
        const auto storiesBefore = storiesKept(world, "talk");
        const auto versionsBefore = versions();
        const auto moment = anyMoment();
        SCOPED_TRACE("kill " + std::to_string(i) + " with seed " + std::to_string(seed) + ": after " +
                     std::to_string(moment.transcriptions) + " and " + std::to_string(moment.messages) +
                     " requests and " + std::to_string(moment.after.count()) + " ms");
        killed += mineKilledAt(moment, "Telling " + std::to_string(i) + ".") ? 1 : 0;
        thenEveryJsonFileIsWhole(world);
        thenNothingIsLost(storiesBefore, versionsBefore);
        thenTheProjectIsWhole();
        if (HasFailure())
            break;
    }
    std::cout << killed << " mines were still running when they were killed\n";
    EXPECT_GT(killed, 0) << "no mine was still running when it was killed";

    const auto storiesBefore = storiesKept(world, "talk");
    const auto versionsBefore = versions();
    givenServicesTell("The last telling.");
    mine({file});
    thenItEndsWith(0);
    thenNothingIsLost(storiesBefore, versionsBefore);
    EXPECT_EQ(jsonOf(world.exports("talk", "mining_results.json")).at("segments").at(0).at("transcript"),
              "The last telling.");
}

} // namespace
} // namespace zuvo::endtoend
