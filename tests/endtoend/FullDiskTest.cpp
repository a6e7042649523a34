// A disk that is full at each write in turn. A limit on the size of files plays it: a file that would grow beyond it
// fails in the middle, as on a full disk, for root too.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "endtoend/StoredStories.h"
#include "fakes/FileSizeLimit.h"

#include <algorithm>
#include <filesystem>

namespace zuvo::endtoend {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;

class FullDiskTest : public MineTest {
protected:
    InProcess inProcess{world};
    std::string file;

    void SetUp() override {
        file = givenFootage("talk.wav");
        givenTranscript();
        inProcess.platform.environment.tools = {withoutLimit(inProcess.platform.environment.tools.ffmpeg),
                                                withoutLimit(inProcess.platform.environment.tools.ffprobe),
                                                inProcess.platform.environment.tools.python3};
    }

    /// The tool with the limit lifted, so that it is our own writes that fail.
    [[nodiscard]] std::string withoutLimit(const std::string& tool) const {
        const auto name = tool.substr(tool.rfind('/') + 1);
        const auto path =
            world.folder.write("tools/" + name, "#!/bin/sh\nulimit -S -f unlimited\nexec " + tool + " \"$@\"\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    void mineWithStory(const std::string& story) {
        givenStory({{4.5, 11.5, story}});
        inProcess.forgetTranscripts();
        inProcess.mine({file});
    }

    void mineWithStory(const std::string& story, std::size_t limit) {
        givenStory({{4.5, 11.5, story}});
        inProcess.forgetTranscripts();
        const tests::FileSizeLimit full(limit);
        inProcess.mine({file});
    }

    void thenItIsComplete() const {
        ASSERT_EQ(inProcess.step(), PipelineStep::complete) << joined(inProcess.log());
        EXPECT_EQ(inProcess.log().back(), "✓ Complete — we found gems!");
    }

    [[nodiscard]] std::string storyInMemory() const {
        const auto& results = inProcess.pipeline->results();
        return results && !results->segments.empty() ? results->segments[0].transcript : "";
    }

    /// Nothing is half there: neither a part of a JSON file nor a part of any file under a name for writing.
    void thenNothingIsHalfWritten() const {
        thenEveryJsonFileIsWhole(world);
        for (const auto& [path, bytes] : filesBelow(world.home()))
            EXPECT_FALSE(isLeftover(path)) << path;
    }
};

TEST_F(FullDiskTest, whicheverOwnFileCannotBeWrittenTheMineIsCompleteAndThatFileIsTheOldOne) {
    mineWithStory("Telling number 10.");
    thenItIsComplete();
    int failing = 11;
    for (const auto& path : {world.cache("probe_results.json"), world.cache("word_timestamps.json"),
                             world.cache("segments.json"), world.exports("talk", "subtitles.srt"),
                             world.exports("talk", "transcript.txt"), world.exports("talk", "story_brief.md"),
                             world.exports("talk", "mining_results.json"), world.exports("talk", "project.json")}) {
        SCOPED_TRACE(path);
        const auto storiesBefore = storiesKept(world, "talk");
        const auto before = bytesOf(path);
        // Every story is as long as the one before; times of writing may differ by some digits.
        constexpr std::size_t digits = 20;
        ASSERT_GT(before.size(), digits);
        const auto story = "Telling number " + std::to_string(failing++) + ".";
        mineWithStory(story, before.size() - digits);
        thenItIsComplete();
        EXPECT_EQ(storyInMemory(), story);
        EXPECT_EQ(bytesOf(path), before) << "the old file stays whole";
        EXPECT_THAT(storiesKept(world, "talk"), IsSupersetOf(storiesBefore));
        thenNothingIsHalfWritten();
    }
    mineWithStory("Telling number 99.");
    thenItIsComplete();
    EXPECT_THAT(storiesKept(world, "talk"), Contains("Telling number 99."));
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("transcript"), "Telling number 99.");
}

TEST_F(FullDiskTest, atEveryLimitBetweenNothingAndEnoughTheEarlierStoriesStay) {
    mineWithStory("Telling number 10.");
    const auto most = bytesOf(world.exports("talk", "project.json")).size();
    constexpr std::size_t steps = 8;
    for (std::size_t i = 0; i < steps; ++i) {
        const auto limit = most * i / steps;
        SCOPED_TRACE("limit " + std::to_string(limit));
        const auto before = storiesKept(world, "talk");
        mineWithStory("Telling number " + std::to_string(20 + i) + ".", limit);
        thenItIsComplete();
        EXPECT_THAT(storiesKept(world, "talk"), IsSupersetOf(before));
        thenNothingIsHalfWritten();
    }
}

TEST_F(FullDiskTest, whereNothingAtAllCanBeWrittenEveryFileOfOursIsTheOldOne) {
    mineWithStory("The first telling.");
    const auto before = filesBelow(world.exports("talk"));
    const auto segments = bytesOf(world.cache("segments.json"));
    mineWithStory("The second telling.", 0);
    thenItIsComplete();
    EXPECT_EQ(storyInMemory(), "The second telling.") << "what was paid for is in the window";
    auto after = filesBelow(world.exports("talk"));
    // The earlier story has a second name, which takes no room.
    EXPECT_EQ(after[world.exports("talk", "mining_results_v1.json")],
              before.at(world.exports("talk", "mining_results.json")));
    after.erase(world.exports("talk", "mining_results_v1.json"));
    EXPECT_EQ(after, before);
    EXPECT_EQ(bytesOf(world.cache("segments.json")), segments);
}

TEST_F(FullDiskTest, anEarlierStoryIsKeptEvenWithoutRoomForACopyOfIt) {
    const std::string longStory = "A long telling " + std::string(3000, 'o') + " to its end.";
    mineWithStory(longStory);
    thenItIsComplete();
    // Room for the short story, none for a copy of the long one.
    mineWithStory("A short one.", 2000);
    thenItIsComplete();
    EXPECT_THAT(storiesKept(world, "talk"), ElementsAre(longStory, "A short one."));
    EXPECT_EQ(jsonOf(world.exports("talk", "mining_results.json")).at("segments").at(0).at("transcript"),
              "A short one.");
    thenNothingIsHalfWritten();
}

TEST_F(FullDiskTest, aTranscriptThatCannotBeCachedIsStillTold) {
    std::vector<Line> lines = climbingLines();
    for (int i = 0; i < 200; ++i)
        lines.push_back({12.0, 12.0, "A line that makes the transcript longer than the disk has room for."});
    givenTranscript(lines);
    mineWithStory("Told.", 4000);
    thenItIsComplete();
    for (const auto& key : namesIn(world.cache("transcripts")))
        EXPECT_TRUE(namesIn(world.cache("transcripts/" + key)).empty());
    EXPECT_FALSE(exists(world.exports("talk", "project.json"))) << "it holds the transcript too";
    EXPECT_THAT(storiesKept(world, "talk"), ElementsAre("Told."));
    thenNothingIsHalfWritten();
}

TEST_F(FullDiskTest, toolsThatFindNoRoomFailTheExtractionAndLeaveTheEarlierProject) {
    mineWithStory("The first telling.");
    const auto before = filesBelow(world.exports("talk"));
    const auto asked = world.services.requests().size();
    InProcess limited(world);
    limited.forgetTranscripts();
    {
        const tests::FileSizeLimit full(50'000);
        limited.mine({file});
    }
    EXPECT_EQ(limited.step(), PipelineStep::error);
    EXPECT_EQ(limited.log().back(), "✗ Audio extraction failed");
    EXPECT_EQ(world.services.requests().size(), asked) << "nothing is paid for";
    EXPECT_EQ(filesBelow(world.exports("talk")), before);
}

} // namespace
} // namespace zuvo::endtoend
