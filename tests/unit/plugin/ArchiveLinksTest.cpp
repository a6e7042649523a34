#include "plugin/ArchiveLinks.h"

#include "fakes/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class ArchiveLinks : public testing::Test {
protected:
    ArchiveLinks() { disk.write("tree/plugin/docs/index.html", "text"); }

    void link(const std::string& name, const std::string& target) const {
        std::filesystem::create_symlink(target, disk / ("tree/" + name));
    }

    std::optional<std::string> refusal() const { return archiveRefusal(disk / "tree"); }

    static std::string leadsOut(const std::string& name) {
        return "The update holds a link that leads out of it: " + name;
    }

    TemporaryFolder disk;
};

} // namespace

TEST_F(ArchiveLinks, filesAndFoldersMayBeCopied) {
    disk.makeFolder("tree/empty");
    disk.write("tree/.hidden", "");
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(ArchiveLinks, anEmptyTreeMayBeCopied) {
    disk.makeFolder("nothing");
    EXPECT_EQ(archiveRefusal(disk / "nothing"), std::nullopt);
}

TEST_F(ArchiveLinks, linksWithinTheTopLevelFolderMayBeCopied) {
    link("plugin/beside", "docs");
    link("plugin/here", "./docs/./index.html");
    link("plugin/docs/up", "../docs/index.html");
    link("plugin/docs/root", "..");
    link("plugin/broken", "docs/missing");
    link("plugin/loop", "loop");
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(ArchiveLinks, anAbsoluteLinkIsRefused) {
    link("plugin/passwords", "/etc/passwd");
    EXPECT_EQ(refusal(), leadsOut("plugin/passwords"));
}

TEST_F(ArchiveLinks, anAbsoluteLinkIntoTheTreeItselfIsRefused) {
    link("plugin/self", disk / "tree/plugin/docs");
    EXPECT_EQ(refusal(), leadsOut("plugin/self"));
}

TEST_F(ArchiveLinks, aLinkThatClimbsOutIsRefused) {
    link("plugin/docs/out", "../../../secret");
    EXPECT_EQ(refusal(), leadsOut("plugin/docs/out"));
}

TEST_F(ArchiveLinks, aLinkToANeighbourOfTheTopLevelFolderIsRefused) {
    disk.makeFolder("tree/other");
    link("plugin/all", "../other");
    EXPECT_EQ(refusal(), leadsOut("plugin/all"));
}

TEST_F(ArchiveLinks, aLinkToTheTreeItselfIsRefused) {
    link("plugin/top", "..");
    EXPECT_EQ(refusal(), leadsOut("plugin/top"));
}

TEST_F(ArchiveLinks, aLinkAtTheTopLevelIsRefused) {
    link("alias", "plugin");
    EXPECT_EQ(refusal(), leadsOut("alias"));
}

TEST_F(ArchiveLinks, aLinkThatClimbsAfterAnotherLinkIsRefused) {
    link("plugin/docs/root", "..");          // leads to plugin/
    link("plugin/docs/sly", "root/../../x"); // by its names plugin/docs/../x, in truth beside the tree
    EXPECT_EQ(refusal(), leadsOut("plugin/docs/sly"));
}

TEST_F(ArchiveLinks, aPipeIsRefused) {
    ASSERT_EQ(mkfifo((disk / "tree/plugin/pipe").c_str(), S_IRWXU), 0);
    EXPECT_EQ(refusal(), "The update holds a special file: plugin/pipe");
}

TEST_F(ArchiveLinks, aNameOnTheScreenIsHarmless) {
    link("plugin/\x1B[2Jx", "/etc");
    EXPECT_EQ(refusal(), leadsOut("plugin/\uFFFD[2Jx"));
}

TEST_F(ArchiveLinks, aTreeThatIsNotThereIsRefused) {
    EXPECT_EQ(archiveRefusal(disk / "missing"), "The update cannot be looked through");
    EXPECT_EQ(archiveRefusal(disk.write("file", "")), "The update cannot be looked through");
}

TEST_F(ArchiveLinks, aLinkIsNotFollowed) {
    disk.makeFolder("outside");
    ASSERT_EQ(mkfifo((disk / "outside/pipe").c_str(), S_IRWXU), 0);
    link("plugin/broken", "docs/outside");
    std::filesystem::create_symlink(disk / "outside", disk / "tree/plugin/zlink");
    EXPECT_EQ(refusal(), leadsOut("plugin/zlink")); // and not its pipe
}
