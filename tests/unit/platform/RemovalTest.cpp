// Removing folders that their owner may not change, as an unpacked archive may hold them.

#include "platform/FileSystem.h"

#include "fakes/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// Root may remove anything, so a child without rights does it. Ends that child.
[[noreturn]] void removeAsNobody(const std::string& path) {
    constexpr uid_t nobody = 65534;
    const bool isNobody = geteuid() != 0 || setuid(nobody) == 0;
    const bool isRemoved = isNobody && removeTree(path);
    _exit(isRemoved && !std::filesystem::exists(std::filesystem::symlink_status(path)) ? 0 : 1);
}

void giveAway(const std::string& path) {
    constexpr uid_t nobody = 65534;
    ASSERT_TRUE(geteuid() != 0 || lchown(path.c_str(), nobody, nobody) == 0);
}

} // namespace

TEST(Removal, foldersWithoutAnyRightsAreRemovedWithWhatIsInThem) {
    GTEST_FLAG_SET(death_test_style, "fast");
    const TemporaryFolder disk;
    disk.write("tree/locked/inner/file", "x");
    disk.write("tree/readonly/file", "x");
    std::filesystem::create_directory_symlink("/usr", disk / "tree/locked/link");
    for (const auto* name : {"", "tree/locked/inner/file", "tree/locked/inner", "tree/locked/link", "tree/locked",
                             "tree/readonly/file", "tree/readonly", "tree"})
        giveAway(disk / name);
    ASSERT_EQ(chmod((disk / "tree/locked/inner").c_str(), 0), 0);
    ASSERT_EQ(chmod((disk / "tree/locked").c_str(), 0), 0);
    ASSERT_EQ(chmod((disk / "tree/readonly").c_str(), S_IRUSR | S_IXUSR), 0);
    EXPECT_EXIT(removeAsNobody(disk / "tree"), testing::ExitedWithCode(0), "");
    EXPECT_TRUE(std::filesystem::exists("/usr"));
}
