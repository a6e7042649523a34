#include "platform/FileSystem.h"

#include "base/Files.h"
#include "fakes/TemporaryFolder.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::UnorderedElementsAre;

namespace {

class Files : public testing::Test {
protected:
    TemporaryFolder folder;
};

} // namespace

TEST_F(Files, aFileAndAFolderExistAndALinkToNothingDoesNot) {
    EXPECT_TRUE(fileExists(folder.write("a", "")));
    EXPECT_TRUE(fileExists(folder.path()));
    EXPECT_FALSE(fileExists(folder / "b"));
    EXPECT_FALSE(fileExists(folder / "a/b"));
    EXPECT_FALSE(fileExists(""));
    std::filesystem::create_symlink(folder / "b", folder / "link");
    EXPECT_FALSE(fileExists(folder / "link"));
}

TEST_F(Files, foldersAreMadeWithAllAboveThem) {
    EXPECT_TRUE(createFolders(folder / "a/b ü/c"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b ü/c"));
    EXPECT_TRUE(createFolders(folder / "a/b ü/c"));
    EXPECT_TRUE(createFolders(folder / "a/d/"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a/d"));
}

TEST_F(Files, aFolderWhereAFileStandsCannotBeMade) {
    folder.write("file", "x");
    EXPECT_FALSE(createFolders(folder / "file"));
    EXPECT_FALSE(createFolders(folder / "file/sub"));
    EXPECT_FALSE(createFolders(""));
    EXPECT_EQ(folder.read("file"), "x");
}

TEST_F(Files, aListingHasNamesOfFilesFoldersAndHiddenOnes) {
    folder.write("a.txt", "");
    folder.write(".hidden", "");
    folder.write("sub/inner", "");
    EXPECT_THAT(listFolder(folder.path()), Optional(UnorderedElementsAre("a.txt", ".hidden", "sub")));
}

TEST_F(Files, anEmptyFolderHasAnEmptyListingAndWhatIsNoFolderHasNone) {
    EXPECT_THAT(listFolder(folder.path()), Optional(IsEmpty()));
    EXPECT_EQ(listFolder(folder / "missing"), std::nullopt);
    EXPECT_EQ(listFolder(folder.write("file", "")), std::nullopt);
}

TEST_F(Files, removingTakesFilesAndWholeFolders) {
    folder.write("tree/a/b", "x");
    folder.write("tree/c", "x");
    EXPECT_TRUE(removeTree(folder / "tree"));
    EXPECT_FALSE(fileExists(folder / "tree"));
    EXPECT_TRUE(removeTree(folder.write("file", "")));
    EXPECT_FALSE(fileExists(folder / "file"));
}

TEST_F(Files, removingWhatIsNotThereIsNoFailure) {
    EXPECT_TRUE(removeTree(folder / "missing"));
}

TEST_F(Files, removingDoesNotFollowLinks) {
    folder.write("kept/file", "x");
    folder.write("tree/other", "x");
    std::filesystem::create_directory_symlink(folder / "kept", folder / "tree/link");
    std::filesystem::create_directory_symlink(folder / "kept", folder / "link");
    EXPECT_TRUE(removeTree(folder / "tree"));
    EXPECT_TRUE(removeTree(folder / "link"));
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(folder.read("kept/file"), "x");
}

TEST_F(Files, whatCannotBeRemovedIsAFailure) {
    EXPECT_FALSE(removeTree("/proc/self/status"));
}

TEST_F(Files, aCopyHasTheSameBytes) {
    const std::string bytes("a\0\xFF\n", 4);
    EXPECT_TRUE(copyFile(folder.write("from", bytes), folder / "to"));
    EXPECT_EQ(folder.read("to"), bytes);
    EXPECT_EQ(folder.read("from"), bytes);
}

TEST_F(Files, aCopyDoesNotReplaceWhatIsThere) {
    folder.write("to", "old");
    EXPECT_FALSE(copyFile(folder.write("from", "new"), folder / "to"));
    EXPECT_EQ(folder.read("to"), "old");
}

TEST_F(Files, aCopyOfNothingOrOfAFolderOrIntoNothingFails) {
    EXPECT_FALSE(copyFile(folder / "missing", folder / "to"));
    EXPECT_FALSE(copyFile(folder.makeFolder("sub"), folder / "to"));
    EXPECT_FALSE(copyFile(folder.write("from", "x"), folder / "missing/to"));
    EXPECT_FALSE(fileExists(folder / "to"));
}

TEST_F(Files, whatIsKeptUnderAnotherNameOutlivesTheReplacementOfTheFile) {
    const auto path = folder.write("results", "old");
    EXPECT_TRUE(keepUnderOtherName(path, folder / "kept"));
    EXPECT_TRUE(replaceFileAtomically(path, "new"));
    EXPECT_EQ(folder.read("kept"), "old");
}

TEST_F(Files, withoutRoomForACopyTheBytesGetASecondName) {
    const auto path = folder.write("results", "old");
    (void)std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
    const bool copied = copyFile(path, folder / "copy");
    const bool kept = keepUnderOtherName(path, folder / "kept");
    setrlimit(RLIMIT_FSIZE, &before);
    (void)std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_FALSE(copied);
    EXPECT_FALSE(fileExists(folder / "copy")) << "a part of a copy is no copy";
    EXPECT_TRUE(kept);
    EXPECT_TRUE(replaceFileAtomically(path, "new"));
    EXPECT_EQ(folder.read("kept"), "old");
}

TEST_F(Files, aNameThatIsTakenKeepsWhatItHas) {
    folder.write("kept", "older");
    EXPECT_FALSE(keepUnderOtherName(folder.write("results", "old"), folder / "kept"));
    EXPECT_FALSE(keepUnderOtherName(folder / "missing", folder / "none"));
    EXPECT_EQ(folder.read("kept"), "older");
    EXPECT_FALSE(fileExists(folder / "none"));
}

TEST_F(Files, theSizeOfAFileIsInBytes) {
    EXPECT_EQ(fileSize(folder.write("ü", "ü")), 2U);
    EXPECT_EQ(fileSize(folder.write("empty", "")), 0U);
    EXPECT_EQ(fileSize(folder / "missing"), std::nullopt);
    EXPECT_EQ(fileSize(folder.path()), std::nullopt);
}

TEST_F(Files, theTimeOfTheLastChangeHasFractions) {
    const auto path = folder.write("file", "");
    const timespec times[2] = {{0, 0}, {1'700'000'000, 250'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    EXPECT_EQ(modificationTime(path), 1'700'000'000.25);
    EXPECT_EQ(modificationTime(folder / "missing"), std::nullopt);
}

TEST_F(Files, samplesAreLittleEndianAndSigned) {
    const auto path = folder.write("a.raw", std::string("\x01\x00\xFF\xFF\x00\x80\xFF\x7F\x34\x12", 10));
    EXPECT_THAT(readSamples(path), Optional(ElementsAre(1, -1, -32768, 32767, 0x1234)));
}

TEST_F(Files, anOddLastByteOfSamplesIsDropped) {
    EXPECT_THAT(readSamples(folder.write("a.raw", std::string("\x02\x00\x05", 3))), Optional(ElementsAre(2)));
    EXPECT_THAT(readSamples(folder.write("b.raw", "x")), Optional(IsEmpty()));
}

TEST_F(Files, anEmptyFileHasNoSamplesAndAMissingOneOrAFolderIsNothing) {
    EXPECT_THAT(readSamples(folder.write("a.raw", "")), Optional(IsEmpty()));
    EXPECT_EQ(readSamples(folder / "missing"), std::nullopt);
    EXPECT_EQ(readSamples(folder.path()), std::nullopt);
}

TEST_F(Files, aRelativePathIsMadeAbsoluteAgainstTheWorkingFolder) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const auto working = std::filesystem::current_path().string();
    EXPECT_EQ(absolutePath("a.mov"), working + "/a.mov");
    EXPECT_EQ(absolutePath("./a/../b ü.mov"), working + "/b ü.mov");
    EXPECT_EQ(absolutePath("/x/./y/../z.mov"), "/x/z.mov");
    EXPECT_EQ(absolutePath("/a.mov"), "/a.mov");
    EXPECT_EQ(absolutePath("/../a.mov"), "/a.mov");
    std::filesystem::current_path(before);
}

TEST(FolderWithin, aNameThatStaysAtOrBelowTheRootIsTakenAsWritten) {
    const std::vector<std::string> inside = {"Interview", "A/B",   "a/../b",   "..x",   "x..",   "...",
                                             "..x/y",     ".",     "",         "a/..",  "./a",   "/abs",
                                             "/",         "a b/ü", "a/./b/..", "//abs", "a/..b", "a/b/../../c"};
    for (const auto& name : inside)
        EXPECT_EQ(folderWithin("/root", name), "/root/" + name);
}

TEST(FolderWithin, aNameThatLeadsOutOfTheRootIsNothing) {
    const std::vector<std::string> outside = {"..",       "../",   "../x",    "a/../..",     "a/../../b",      "./..",
                                              "/..",      "/../x", "../root", "../../etc/x", "a/b/../../../c", "..//x",
                                              ".././../x"};
    for (const auto& name : outside)
        EXPECT_EQ(folderWithin("/root", name), std::nullopt) << name;
}

TEST_F(Files, whatLiesBelowAFolderIsFoundThroughNamesAndLinks) {
    const auto root = folder.makeFolder("root");
    const auto outside = folder.makeFolder("outside");
    folder.makeFolder("root/a/b");
    std::filesystem::create_directory_symlink(outside, root + "/out");
    std::filesystem::create_directory_symlink(root + "/a", outside + "/in");
    for (const auto& path : {root + "/a", root + "/a/b/", root + "/./a/../a", root + "/missing/x", outside + "/in/b",
                             root + "/a/../../root/a"})
        EXPECT_TRUE(liesBelow(root, path)) << path;
    for (const auto& path : {root, root + "/", root + "/.", root + "/a/..", root + "/..", outside, root + "/out",
                             root + "/out/x", root + "2", root + "/../root2/a", std::string()})
        EXPECT_FALSE(liesBelow(root, path)) << path;
}

namespace {

class PrivateFolders : public Files {
protected:
    PrivateFolders() : mask(umask(0)) {}
    ~PrivateFolders() override { umask(mask); }

    [[nodiscard]] mode_t modeOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat((folder / name).c_str(), &status), 0) << name;
        constexpr mode_t permissions = 07777;
        return status.st_mode & permissions;
    }

    mode_t mask;
};

} // namespace

TEST_F(PrivateFolders, fromTheRootDownTheyAreMadeForThisUserAlone) {
    EXPECT_EQ(makePrivateFolder(folder / "above/root", folder / "above/root/a/b"), std::error_code());
    EXPECT_EQ(modeOf("above"), 0777U);
    EXPECT_EQ(modeOf("above/root"), 0700U);
    EXPECT_EQ(modeOf("above/root/a"), 0700U);
    EXPECT_EQ(modeOf("above/root/a/b"), 0700U);
}

TEST_F(PrivateFolders, theRootAloneCanBeMade) {
    EXPECT_EQ(makePrivateFolder(folder / "root", folder / "root"), std::error_code());
    EXPECT_EQ(modeOf("root"), 0700U);
    EXPECT_EQ(makePrivateFolder(folder / "other", folder / "other/"), std::error_code());
    EXPECT_EQ(modeOf("other"), 0700U);
}

TEST_F(PrivateFolders, whatIsThereLosesWhatOthersMayDo) {
    folder.makeFolder("root/a");
    ASSERT_EQ(modeOf("root/a"), 0777U);
    EXPECT_EQ(makePrivateFolder(folder / "root", folder / "root/a"), std::error_code());
    EXPECT_EQ(modeOf("root"), 0700U);
    EXPECT_EQ(modeOf("root/a"), 0700U);
}

TEST_F(PrivateFolders, aStricterModeStays) {
    folder.makeFolder("root");
    ASSERT_EQ(chmod((folder / "root").c_str(), 0550), 0);
    EXPECT_EQ(makePrivateFolder(folder / "root", folder / "root"), std::error_code());
    EXPECT_EQ(modeOf("root"), 0500U);
}

TEST_F(PrivateFolders, aFileInTheWayIsAFailureAndStays) {
    folder.write("root", "x");
    EXPECT_EQ(makePrivateFolder(folder / "root", folder / "root"), std::errc::not_a_directory);
    EXPECT_EQ(makePrivateFolder(folder / "root", folder / "root/a"), std::errc::not_a_directory);
    EXPECT_EQ(makePrivateFolder(folder / "root/a", folder / "root/a"), std::errc::not_a_directory);
    EXPECT_EQ(folder.read("root"), "x");
}

TEST_F(PrivateFolders, aFileIsMadePrivateAndAMissingOneIsNotMade) {
    folder.write("f", "x");
    makePrivate(folder / "f");
    EXPECT_EQ(modeOf("f"), 0600U);
    makePrivate(folder / "missing");
    EXPECT_FALSE(fileExists(folder / "missing"));
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0666), 0);
    makePrivate(folder / "pipe");
    EXPECT_EQ(modeOf("pipe"), 0666U);
}
