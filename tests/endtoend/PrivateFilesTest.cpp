// What a mine leaves on the disk, and what its tools and a crash are given: nothing that is for others to read.

#include "endtoend/MineTest.h"
#include "fakes/CoroutineTest.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace zuvo::endtoend {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The laxest mask that a user can have.
constexpr const char* withoutMask = "umask 0; exec \"$@\"";

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    constexpr mode_t permissions = 07777;
    return status.st_mode & permissions;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class PrivateFilesTest : public TalkTest {
protected:
    /// What others may read, write or enter below a folder, itself included.
    [[nodiscard]] static std::vector<std::string> openToOthers(const std::string& folder) {
        constexpr mode_t others = S_IRWXG | S_IRWXO;
        std::vector<std::string> found;
        if ((modeOf(folder) & others) != 0)
            found.push_back(folder);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if ((modeOf(entry.path().string()) & others) != 0)
                found.push_back(entry.path().string());
        }
        return found;
    }

    void mineWithoutMask() { ending = world.byShell(withoutMask, {"mine", file}); }
};

TEST_F(PrivateFilesTest, theWholeCacheFolderIsItsOwnersAlone) {
    makeFootage(file, 301.0); // two chunks
    mineWithoutMask();
    thenItEndsWith(0);
    ASSERT_TRUE(exists(world.cache("chunks/chunk_001.wav")));
    ASSERT_TRUE(exists(world.cache("word_seg_0.wav")));
    EXPECT_THAT(openToOthers(world.cache()), IsEmpty());
    EXPECT_EQ(modeOf(world.cache()), 0700U);
    EXPECT_EQ(modeOf(world.cache("extracted_audio.wav")), 0600U);
    EXPECT_EQ(modeOf(world.cache("segments.json")), 0600U);
}

TEST_F(PrivateFilesTest, projectsAreItsOwnersAloneAndWhatIsHandedOnFollowsTheMask) {
    mineWithoutMask();
    thenItEndsWith(0);
    EXPECT_EQ(modeOf(world.home() + "/Library/Application Support/ZuvoManager"), 0700U);
    for (const char* name : {"project.json", "transcript.txt", "mining_results.json"})
        EXPECT_EQ(modeOf(world.exports("talk", name)), 0600U) << name;
    for (const char* name : {"subtitles.srt", "story_brief.md"})
        EXPECT_EQ(modeOf(world.exports("talk", name)), 0666U) << name;
    ending = world.byShell(withoutMask, {"export", "edl", "--project", "talk"});
    thenItEndsWith(0);
    EXPECT_EQ(modeOf(world.exports("talk", "story_edit.edl")), 0666U);
}

TEST_F(PrivateFilesTest, whatAnEarlierVersionLeftOpenIsClosed) {
    mine({file});
    thenItEndsWith(0);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(world.cache()))
        std::filesystem::permissions(entry.path(), std::filesystem::perms::all);
    std::filesystem::permissions(world.cache(), std::filesystem::perms::all);
    mineWithoutMask();
    thenItEndsWith(0);
    EXPECT_EQ(modeOf(world.cache()), 0700U) << "nobody else gets at what is in it";
    for (const char* name :
         {"extracted_audio.wav", "word_seg_0.wav", "segments.json", "probe_results.json", "mine.lock"})
        EXPECT_EQ(modeOf(world.cache(name)) & 077U, 0U) << name;
}

TEST_F(PrivateFilesTest, aStricterModeOfTheUsersStays) {
    mine({file});
    ASSERT_EQ(::chmod(world.exports("talk", "subtitles.srt").c_str(), 0400), 0);
    mineWithoutMask();
    thenItEndsWith(0);
    EXPECT_EQ(modeOf(world.exports("talk", "subtitles.srt")), 0400U);
}

/// A mine whose first tool waits for its footage.
class WaitingMineTest : public MineTest {
protected:
    void SetUp() override {
        const auto pipe = world.media("pipe.wav");
        ASSERT_EQ(::mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
        // As far as the system lets it, a crash would write a core file.
        run = world.beginByShell("ulimit -S -c $(ulimit -H -c); exec \"$@\"", {"mine", pipe});
        ASSERT_TRUE(tests::waitUntil([this] {
            tests::runEventLoop(std::chrono::milliseconds(20));
            for (const auto process : world.processes()) {
                if (contentOf(pathIn(process, "cmdline")).find("ffprobe") == 0 ||
                    contentOf(pathIn(process, "cmdline")).find("/ffprobe") != std::string::npos)
                    tool = process;
            }
            return tool != 0;
        }));
    }
    void TearDown() override {
        run->press(SIGKILL);
        (void)run->end();
    }

    static std::string pathIn(qint64 process, const std::string& name) {
        return "/proc/" + std::to_string(process) + "/" + name;
    }

    std::unique_ptr<Running> run;
    qint64 tool = 0;
};

TEST_F(WaitingMineTest, aToolGetsNoKey) {
    const auto variables = contentOf(pathIn(tool, "environ"));
    EXPECT_THAT(variables, HasSubstr("HOME=" + world.home()));
    EXPECT_THAT(variables, Not(HasSubstr(openaiKey)));
    EXPECT_THAT(variables, Not(HasSubstr(anthropicKey)));
    EXPECT_THAT(variables, Not(HasSubstr("_API_KEY")));
}

TEST_F(WaitingMineTest, aCrashWritesNoCoreFile) {
    const auto limits = contentOf(pathIn(run->processId(), "limits"));
    EXPECT_THAT(limits, testing::ContainsRegex("Max core file size +0 "));
}

} // namespace
} // namespace zuvo::endtoend
