#include "base/Files.h"

#include "base/DiskSync.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// More bytes than any file of these tests has.
constexpr std::uint64_t plenty = 1'000'000;

class Files : public testing::Test {
protected:
    Files() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zuvo-files-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }
    ~Files() override { std::filesystem::remove_all(folder); }

    [[nodiscard]] std::string in(const std::string& name) const { return folder + "/" + name; }

    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(in(name), std::ios::binary) << bytes;
    }

    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            found.push_back(entry.path().filename().string());
        return found;
    }

    std::string folder;
};

/// A disk that takes no file longer than so many bytes, without the signal that would end the process.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before{};
    void (*handler)(int);
};

TEST_F(Files, readingGivesEveryByte) {
    const std::string bytes = std::string("a\0\r\n\xFF", 5) + std::string(200'000, 'x') + "end";
    write("f", bytes);
    EXPECT_EQ(readFile(in("f"), plenty), bytes);
}

TEST_F(Files, readingAnEmptyFileGivesAnEmptyText) {
    write("f", "");
    EXPECT_EQ(readFile(in("f"), plenty), "");
    EXPECT_EQ(readTextFile(in("f"), plenty), "");
}

TEST_F(Files, readingAMissingFileOrAFolderGivesNothing) {
    EXPECT_EQ(readFile(in("missing"), plenty), std::nullopt);
    EXPECT_EQ(readFile(folder, plenty), std::nullopt);
    EXPECT_EQ(readFile(in("missing/f"), plenty), std::nullopt);
    EXPECT_EQ(readFile("", plenty), std::nullopt);
}

TEST_F(Files, aReadErrorIsNoShortFile) {
    // Address 0 of a process is not mapped: opening succeeds, the first read fails.
    ASSERT_TRUE(std::ifstream("/proc/self/mem").is_open());
    EXPECT_EQ(readFile("/proc/self/mem", plenty), std::nullopt);
}

TEST_F(Files, appendingPutsTheBytesBehindThoseThatAreThere) {
    const std::string large(200'000, 'x');
    write("f", large);
    std::string bytes = "head ";
    EXPECT_TRUE(appendFile(in("f"), bytes, plenty));
    EXPECT_EQ(bytes, "head " + large);
}

TEST_F(Files, appendingWhatCannotBeReadLeavesTheBytesAsTheyWere) {
    std::string bytes = "head";
    EXPECT_FALSE(appendFile(in("missing"), bytes, plenty));
    EXPECT_FALSE(appendFile(folder, bytes, plenty));
    EXPECT_FALSE(appendFile("/proc/self/mem", bytes, plenty));
    EXPECT_EQ(bytes, "head");
}

TEST_F(Files, readingDoesNotBelieveTheSizeThatAFileClaims) {
    // What the system makes up as it is read claims to be empty.
    EXPECT_THAT(readFile("/proc/self/status", plenty).value_or(""), testing::StartsWith("Name:"));
}

TEST_F(Files, aFileOfTheLimitIsReadAndALargerOneIsNot) {
    write("f", "12345");
    EXPECT_EQ(readFile(in("f"), 5), "12345");
    EXPECT_EQ(readFile(in("f"), 4), std::nullopt);
    EXPECT_EQ(readFile(in("f"), 0), std::nullopt);
    EXPECT_EQ(readTextFile(in("f"), 5), "12345");
    EXPECT_EQ(readTextFile(in("f"), 4), std::nullopt);
    write("empty", "");
    EXPECT_EQ(readFile(in("empty"), 0), "");
}

TEST_F(Files, aFileThatIsTooLargeLeavesTheBytesAsTheyWere) {
    write("f", "12345");
    std::string bytes = "head";
    EXPECT_FALSE(appendFile(in("f"), bytes, 4));
    EXPECT_EQ(bytes, "head");
    EXPECT_TRUE(appendFile(in("f"), bytes, 5)) << "what is there already does not count";
    EXPECT_EQ(bytes, "head12345");
}

TEST_F(Files, theLimitHoldsForAFileThatClaimsToBeEmpty) {
    EXPECT_EQ(readFile("/proc/self/status", 10), std::nullopt);
}

TEST_F(Files, aPipeOrADeviceIsNotWaitedFor) {
    ASSERT_EQ(mkfifo(in("pipe").c_str(), S_IRUSR | S_IWUSR), 0);
    EXPECT_EQ(readFile(in("pipe"), plenty), std::nullopt);
    EXPECT_EQ(readFile("/dev/zero", plenty), std::nullopt);
}

TEST_F(Files, aFileThatIsTooLargeUsesNoMemory) {
    // A terabyte that takes no room on the disk: reading it would end the program.
    write("f", "");
    std::error_code error;
    std::filesystem::resize_file(in("f"), 1ULL << 40, error);
    if (error)
        GTEST_SKIP() << "this file system has no sparse files of that size";
    EXPECT_EQ(readFile(in("f"), plenty), std::nullopt);
}

TEST_F(Files, readingTextRefusesInvalidUtf8) {
    write("good", "Vérité");
    write("bad", "V\xE9rit\xE9");
    EXPECT_EQ(readTextFile(in("good"), plenty), "Vérité");
    EXPECT_EQ(readTextFile(in("bad"), plenty), std::nullopt);
    EXPECT_NE(readFile(in("bad"), plenty), std::nullopt);
}

TEST_F(Files, replacingMakesANewFile) {
    const std::string bytes("a\0b\n", 4);
    EXPECT_TRUE(replaceFileAtomically(in("f"), bytes));
    EXPECT_EQ(readFile(in("f"), plenty), bytes);
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(Files, replacingLeavesNothingOfALongerFile) {
    write("f", std::string(100'000, 'x'));
    EXPECT_TRUE(replaceFileAtomically(in("f"), "short"));
    EXPECT_EQ(readFile(in("f"), plenty), "short");
    EXPECT_TRUE(replaceFileAtomically(in("f"), ""));
    EXPECT_EQ(readFile(in("f"), plenty), "");
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(Files, replacingWorksForTheLongestName) {
    const std::string name(255, 'n');
    EXPECT_TRUE(replaceFileAtomically(in(name), "x"));
    EXPECT_EQ(readFile(in(name), plenty), "x");
}

TEST_F(Files, aReaderWhoHoldsTheOldFileKeepsIt) {
    write("f", "old");
    std::ifstream reader(in("f"));
    ASSERT_TRUE(replaceFileAtomically(in("f"), "new"));
    std::string seen;
    reader >> seen;
    EXPECT_EQ(seen, "old");
}

TEST_F(Files, aMissingFolderFailsAndIsNotMade) {
    EXPECT_FALSE(replaceFileAtomically(in("missing/f"), "x"));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Files, aFileWhereTheFolderShouldBeFailsAndStays) {
    write("file", "old");
    EXPECT_FALSE(replaceFileAtomically(in("file/f"), "x"));
    EXPECT_EQ(readFile(in("file"), plenty), "old");
    EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(Files, aFolderInTheWayFailsAndLeavesNothingBehind) {
    std::filesystem::create_directory(in("f"));
    EXPECT_FALSE(replaceFileAtomically(in("f"), "x"));
    EXPECT_TRUE(std::filesystem::is_directory(in("f")));
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(Files, aFullDiskLeavesTheOldFileAndNothingBehind) {
    write("f", "old");
    bool replaced = true;
    {
        const FullDisk disk(4096);
        replaced = replaceFileAtomically(in("f"), std::string(100'000, 'x'));
    }
    EXPECT_FALSE(replaced);
    EXPECT_EQ(readFile(in("f"), plenty), "old");
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(Files, aDiskThatFillsUpWhenTheFileIsClosedFailsToo) {
    bool replaced = true;
    {
        // Small enough to lie in the stream's buffer until the file is closed.
        const FullDisk disk(10);
        replaced = replaceFileAtomically(in("f"), "twenty bytes of text");
    }
    EXPECT_FALSE(replaced);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Files, replacingTellsThePlatformsReason) {
    write("file", "old");
    std::filesystem::create_directory(in("folder"));
    EXPECT_EQ(fileReplacementError(in("missing/f"), "x"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(fileReplacementError(in("file/f"), "x"), std::errc::not_a_directory);
    EXPECT_EQ(fileReplacementError(in("folder"), "x"), std::errc::is_a_directory);
    EXPECT_THAT(names(), testing::UnorderedElementsAre("file", "folder"));
}

TEST_F(Files, aReasonHasWords) {
    EXPECT_EQ(fileReplacementError(in("missing/f"), "x").message(), std::strerror(ENOENT));
}

TEST_F(Files, aFullDiskIsTheReasonWheneverItIsSeen) {
    for (const std::size_t size : {std::size_t{20}, std::size_t{100'000}}) {
        std::error_code error;
        {
            // 20 bytes lie in the stream's buffer until the file is closed.
            const FullDisk disk(10);
            error = fileReplacementError(in("f"), std::string(size, 'x'));
        }
        EXPECT_EQ(error, std::errc::file_too_large) << size;
        EXPECT_THAT(names(), IsEmpty());
    }
}

TEST_F(Files, aReplacedFileHasNoReason) {
    EXPECT_EQ(fileReplacementError(in("f"), "x"), std::error_code());
    EXPECT_EQ(readFile(in("f"), plenty), "x");
}

TEST_F(Files, aNameWithAZeroByteReplacesNoOtherFile) {
    write("f", "old");
    EXPECT_EQ(fileReplacementError(in(std::string("f\0g", 3)), "x"), std::errc::invalid_argument);
    EXPECT_EQ(fileReplacementError(in(std::string("f\0/g", 4)), "x"), std::errc::invalid_argument);
    EXPECT_EQ(readFile(in("f"), plenty), "old");
    EXPECT_THAT(names(), ElementsAre("f"));
}

/// The permissions that a test's umask leaves to everybody.
class NoMask {
public:
    NoMask() : before(umask(0)) {}
    ~NoMask() { umask(before); }
    NoMask(const NoMask&) = delete;
    NoMask& operator=(const NoMask&) = delete;

private:
    mode_t before;
};

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    constexpr mode_t permissions = 07777;
    return status.st_mode & permissions;
}

TEST_F(Files, aNewFileIsItsOwnersAloneUnlessItIsToBeHandedOn) {
    const NoMask mask;
    ASSERT_TRUE(replaceFileAtomically(in("private"), "x"));
    EXPECT_EQ(modeOf(in("private")), 0600U);
    ASSERT_TRUE(replaceFileAtomically(in("shared"), "x", Readers::asUsual));
    EXPECT_EQ(modeOf(in("shared")), 0666U);
}

TEST_F(Files, theMaskHoldsForAFileThatIsHandedOn) {
    const NoMask mask;
    umask(027);
    ASSERT_TRUE(replaceFileAtomically(in("shared"), "x", Readers::asUsual));
    EXPECT_EQ(modeOf(in("shared")), 0640U);
}

TEST_F(Files, aReplacedFileLosesWhatOthersMayDo) {
    const NoMask mask;
    write("f", "old");
    ASSERT_EQ(modeOf(in("f")), 0666U);
    ASSERT_TRUE(replaceFileAtomically(in("f"), "new"));
    EXPECT_EQ(modeOf(in("f")), 0600U);
}

TEST_F(Files, aReplacedFileKeepsAStricterMode) {
    const NoMask mask;
    for (const auto readers : {Readers::ownerAlone, Readers::asUsual}) {
        write("f", "old");
        ASSERT_EQ(chmod(in("f").c_str(), 0400), 0);
        ASSERT_TRUE(replaceFileAtomically(in("f"), "new", readers));
        EXPECT_EQ(modeOf(in("f")), 0400U);
        EXPECT_EQ(readFile(in("f"), plenty), "new");
        std::filesystem::remove(in("f"));
    }
    write("f", "old");
    ASSERT_EQ(chmod(in("f").c_str(), 0640), 0);
    ASSERT_TRUE(replaceFileAtomically(in("f"), "new", Readers::asUsual));
    EXPECT_EQ(modeOf(in("f")), 0640U);
}

// What was synced, in order: the path that the descriptor leads to, and what the target holds at that moment.
struct Synced {
    std::string path;
    std::string bytesOfTarget;
    bool operator==(const Synced&) const = default;
};
std::vector<Synced> synced; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
std::string watchedTarget;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
int failureOfFile = 0;      // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
int failureOfFolder = 0;    // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

int watchedSync(int descriptor) {
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor)).string();
    synced.push_back({path, readFile(watchedTarget, plenty).value_or("missing")});
    return std::filesystem::is_directory(path) ? failureOfFolder : failureOfFile;
}

class SyncedFiles : public Files {
protected:
    SyncedFiles() : before(exchangeDiskSync(watchedSync)) {
        synced.clear();
        failureOfFile = 0;
        failureOfFolder = 0;
        watchedTarget = in("f");
    }
    ~SyncedFiles() override { exchangeDiskSync(before); }

    DiskSync before;
};

TEST_F(SyncedFiles, theBytesReachTheDiskBeforeTheNameAndThenTheFolder) {
    write("f", "old");
    ASSERT_TRUE(replaceFileAtomically(in("f"), "new"));
    ASSERT_EQ(synced.size(), 2U);
    EXPECT_THAT(synced[0].path, testing::StartsWith(in(".new-")));
    EXPECT_EQ(synced[0].bytesOfTarget, "old");
    EXPECT_EQ(synced[1], (Synced{folder, "new"}));
}

TEST_F(SyncedFiles, aFileThatDoesNotReachTheDiskReplacesNothing) {
    write("f", "old");
    failureOfFile = EIO;
    EXPECT_EQ(fileReplacementError(in("f"), "new"), std::errc::io_error);
    EXPECT_EQ(readFile(in("f"), plenty), "old");
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(SyncedFiles, aFolderThatDoesNotReachTheDiskIsReported) {
    failureOfFolder = EIO;
    EXPECT_EQ(fileReplacementError(in("f"), "new"), std::errc::io_error);
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(SyncedFiles, aFileSystemThatCannotSyncIsNoFailure) {
    failureOfFile = EINVAL;
    failureOfFolder = ENOTSUP;
    EXPECT_EQ(fileReplacementError(in("f"), "new"), std::error_code());
    EXPECT_EQ(readFile(in("f"), plenty), "new");
}

TEST_F(Files, theSystemItselfSyncsAFileAndAFolderAndReportsWhatIsNeither) {
    write("f", "x");
    const int file = open(in("f").c_str(), O_WRONLY);
    EXPECT_EQ(syncToDisk(file), 0);
    close(file);
    EXPECT_EQ(syncToDisk(file), EBADF);
}

TEST_F(Files, theNewFileOfAKilledProgramIsRemoved) {
    write(".new-123-4", "half");
    EXPECT_TRUE(removeAbandonedReplacement(in(".new-123-4")));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Files, theNewFileThatARunningProgramWritesStays) {
    write(".new-123-4", "half");
    const int writer = open(in(".new-123-4").c_str(), O_WRONLY);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    EXPECT_FALSE(removeAbandonedReplacement(in(".new-123-4")));
    close(writer);
    EXPECT_THAT(names(), ElementsAre(".new-123-4"));
}

TEST_F(SyncedFiles, aFileUnderWayIsNotAbandoned) {
    static bool wasRemoved = false;
    exchangeDiskSync([](int descriptor) {
        const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor)).string();
        wasRemoved = removeAbandonedReplacement(path) || wasRemoved;
        return 0;
    });
    EXPECT_TRUE(replaceFileAtomically(in("f"), "new"));
    EXPECT_FALSE(wasRemoved);
    EXPECT_EQ(readFile(in("f"), plenty), "new");
}

TEST_F(Files, noOtherFileIsTakenForAnAbandonedOne) {
    for (const char* name :
         {"f", ".new", ".new-", ".new-1", ".new-1-", ".new-a-1", ".new-1-2x", "x.new-1-2", "new-1-2"})
        write(name, "x");
    std::filesystem::create_directory(in(".new-5-5"));
    std::filesystem::create_symlink(in("f"), in(".new-6-6"));
    const auto before = names().size();
    for (const auto& name : names())
        EXPECT_FALSE(removeAbandonedReplacement(in(name))) << name;
    EXPECT_EQ(names().size(), before);
}

} // namespace
} // namespace zuvo
