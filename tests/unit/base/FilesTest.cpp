#include "base/Files.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
    EXPECT_EQ(readFile(in("f")), bytes);
}

TEST_F(Files, readingAnEmptyFileGivesAnEmptyText) {
    write("f", "");
    EXPECT_EQ(readFile(in("f")), "");
    EXPECT_EQ(readTextFile(in("f")), "");
}

TEST_F(Files, readingAMissingFileOrAFolderGivesNothing) {
    EXPECT_EQ(readFile(in("missing")), std::nullopt);
    EXPECT_EQ(readFile(folder), std::nullopt);
    EXPECT_EQ(readFile(in("missing/f")), std::nullopt);
    EXPECT_EQ(readFile(""), std::nullopt);
}

TEST_F(Files, aReadErrorIsNoShortFile) {
    // Address 0 of a process is not mapped: opening succeeds, the first read fails.
    ASSERT_TRUE(std::ifstream("/proc/self/mem").is_open());
    EXPECT_EQ(readFile("/proc/self/mem"), std::nullopt);
}

TEST_F(Files, appendingPutsTheBytesBehindThoseThatAreThere) {
    const std::string large(200'000, 'x');
    write("f", large);
    std::string bytes = "head ";
    EXPECT_TRUE(appendFile(in("f"), bytes));
    EXPECT_EQ(bytes, "head " + large);
}

TEST_F(Files, appendingWhatCannotBeReadLeavesTheBytesAsTheyWere) {
    std::string bytes = "head";
    EXPECT_FALSE(appendFile(in("missing"), bytes));
    EXPECT_FALSE(appendFile(folder, bytes));
    EXPECT_FALSE(appendFile("/proc/self/mem", bytes));
    EXPECT_EQ(bytes, "head");
}

TEST_F(Files, readingDoesNotBelieveTheSizeThatAFileClaims) {
    // What the system makes up as it is read claims to be empty.
    EXPECT_THAT(readFile("/proc/self/status").value_or(""), testing::StartsWith("Name:"));
}

TEST_F(Files, readingTextRefusesInvalidUtf8) {
    write("good", "Vérité");
    write("bad", "V\xE9rit\xE9");
    EXPECT_EQ(readTextFile(in("good")), "Vérité");
    EXPECT_EQ(readTextFile(in("bad")), std::nullopt);
    EXPECT_NE(readFile(in("bad")), std::nullopt);
}

TEST_F(Files, replacingMakesANewFile) {
    const std::string bytes("a\0b\n", 4);
    EXPECT_TRUE(replaceFileAtomically(in("f"), bytes));
    EXPECT_EQ(readFile(in("f")), bytes);
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(Files, replacingLeavesNothingOfALongerFile) {
    write("f", std::string(100'000, 'x'));
    EXPECT_TRUE(replaceFileAtomically(in("f"), "short"));
    EXPECT_EQ(readFile(in("f")), "short");
    EXPECT_TRUE(replaceFileAtomically(in("f"), ""));
    EXPECT_EQ(readFile(in("f")), "");
    EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(Files, replacingWorksForTheLongestName) {
    const std::string name(255, 'n');
    EXPECT_TRUE(replaceFileAtomically(in(name), "x"));
    EXPECT_EQ(readFile(in(name)), "x");
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
    EXPECT_EQ(readFile(in("file")), "old");
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
    EXPECT_EQ(readFile(in("f")), "old");
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
    EXPECT_EQ(readFile(in("f")), "x");
}

TEST_F(Files, aNameWithAZeroByteReplacesNoOtherFile) {
    write("f", "old");
    EXPECT_EQ(fileReplacementError(in(std::string("f\0g", 3)), "x"), std::errc::invalid_argument);
    EXPECT_EQ(fileReplacementError(in(std::string("f\0/g", 4)), "x"), std::errc::invalid_argument);
    EXPECT_EQ(readFile(in("f")), "old");
    EXPECT_THAT(names(), ElementsAre("f"));
}

} // namespace
} // namespace zuvo
