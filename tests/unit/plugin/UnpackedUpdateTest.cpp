#include "plugin/UnpackedUpdate.h"

#include "fakes/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <sys/stat.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class UnpackedUpdate : public testing::Test {
protected:
    UnpackedUpdate() { disk.write("tree/plugin/docs/index.html", "text"); }

    void link(const std::string& name, const std::string& target) {
        std::filesystem::create_symlink(target, disk / ("tree/" + name));
        files[name] = target.size();
    }

    std::optional<std::string> refusal() const { return unpackedRefusal(disk / "tree", files); }

    static std::string leadsOut(const std::string& name) {
        return "The update holds a link that leads out of it: " + name;
    }

    TemporaryFolder disk;
    std::map<std::string, std::uint64_t> files{{"plugin/docs/index.html", 4}}; ///< of the archive
};

} // namespace

TEST_F(UnpackedUpdate, filesAndFoldersMayBeCopied) {
    disk.makeFolder("tree/empty");
    disk.write("tree/.hidden", "");
    files[".hidden"] = 0;
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(UnpackedUpdate, anEmptyTreeMayBeCopied) {
    disk.makeFolder("nothing");
    EXPECT_EQ(unpackedRefusal(disk / "nothing", {}), std::nullopt);
}

TEST_F(UnpackedUpdate, linksWithinTheTopLevelFolderMayBeCopied) {
    link("plugin/beside", "docs");
    link("plugin/here", "./docs/./index.html");
    link("plugin/docs/up", "../docs/index.html");
    link("plugin/docs/root", "..");
    link("plugin/broken", "docs/missing");
    link("plugin/loop", "loop");
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(UnpackedUpdate, anAbsoluteLinkIsRefused) {
    link("plugin/passwords", "/etc/passwd");
    EXPECT_EQ(refusal(), leadsOut("plugin/passwords"));
}

TEST_F(UnpackedUpdate, anAbsoluteLinkIntoTheTreeItselfIsRefused) {
    link("plugin/self", disk / "tree/plugin/docs");
    EXPECT_EQ(refusal(), leadsOut("plugin/self"));
}

TEST_F(UnpackedUpdate, aLinkThatClimbsOutIsRefused) {
    link("plugin/docs/out", "../../../secret");
    EXPECT_EQ(refusal(), leadsOut("plugin/docs/out"));
}

TEST_F(UnpackedUpdate, aLinkToANeighbourOfTheTopLevelFolderIsRefused) {
    disk.makeFolder("tree/other");
    link("plugin/all", "../other");
    EXPECT_EQ(refusal(), leadsOut("plugin/all"));
}

TEST_F(UnpackedUpdate, aLinkToTheTreeItselfIsRefused) {
    link("plugin/top", "..");
    EXPECT_EQ(refusal(), leadsOut("plugin/top"));
}

TEST_F(UnpackedUpdate, aLinkAtTheTopLevelIsRefused) {
    link("alias", "plugin");
    EXPECT_EQ(refusal(), leadsOut("alias"));
}

TEST_F(UnpackedUpdate, aLinkThatClimbsAfterAnotherLinkIsRefused) {
    link("plugin/docs/root", "..");          // leads to plugin/
    link("plugin/docs/sly", "root/../../x"); // by its names plugin/docs/../x, in truth beside the tree
    EXPECT_EQ(refusal(), leadsOut("plugin/docs/sly"));
}

TEST_F(UnpackedUpdate, aPipeIsRefused) {
    ASSERT_EQ(mkfifo((disk / "tree/plugin/pipe").c_str(), S_IRWXU), 0);
    EXPECT_EQ(refusal(), "The update holds a special file: plugin/pipe");
}

TEST_F(UnpackedUpdate, aNameThatALineCannotCarryIsRefusedAndHarmlessOnTheScreen) {
    link("plugin/\x1B[2Jx", "docs");
    EXPECT_EQ(refusal(), "The update holds a name that cannot be used: plugin/\uFFFD[2Jx");
}

TEST_F(UnpackedUpdate, aTreeThatIsNotThereIsRefused) {
    EXPECT_EQ(unpackedRefusal(disk / "missing", {}), "The update cannot be looked through");
    EXPECT_EQ(unpackedRefusal(disk.write("file", ""), {}), "The update cannot be looked through");
}

TEST_F(UnpackedUpdate, aLinkIsNotFollowed) {
    disk.makeFolder("outside");
    ASSERT_EQ(mkfifo((disk / "outside/pipe").c_str(), S_IRWXU), 0);
    link("plugin/broken", "docs/outside");
    std::filesystem::create_symlink(disk / "outside", disk / "tree/plugin/zlink");
    EXPECT_EQ(refusal(), leadsOut("plugin/zlink")); // and not its pipe
}

TEST_F(UnpackedUpdate, aFileThatIsAlsoSomewhereElseIsRefused) {
    disk.write("outside", "text");
    std::filesystem::create_hard_link(disk / "outside", disk / "tree/plugin/second");
    EXPECT_EQ(refusal(), "The update holds a file that has a second name: plugin/second");
}

TEST_F(UnpackedUpdate, setIdRightsAreRefused) {
    const auto file = disk.write("tree/plugin/tool", "x");
    for (const mode_t bit : {mode_t(S_ISUID), mode_t(S_ISGID)}) {
        ASSERT_EQ(chmod(file.c_str(), S_IRWXU | bit), 0);
        EXPECT_EQ(refusal(), "The update holds a file with set-id rights: plugin/tool");
    }
}

TEST_F(UnpackedUpdate, whatItsOwnerCannotReadIsRefusedForRootToo) {
    ASSERT_EQ(chmod((disk / "tree/plugin/docs/index.html").c_str(), S_IWUSR), 0);
    EXPECT_EQ(refusal(), "The update holds an entry that its owner cannot read: plugin/docs/index.html");
}

TEST_F(UnpackedUpdate, whatDiffersFromTheArchiveIsNotWhole) {
    const std::string notWhole = "The update could not be unpacked whole";
    disk.write("tree/plugin/added", "x");
    EXPECT_EQ(refusal(), notWhole);
    files["plugin/added"] = 1;
    EXPECT_EQ(refusal(), std::nullopt);
    files["plugin/added"] = 2; // cut off
    EXPECT_EQ(refusal(), notWhole);
    files["plugin/added"] = 1;
    files["plugin/missing"] = 0;
    EXPECT_EQ(refusal(), notWhole);
}

// The digests are those of sha256sum.
TEST_F(UnpackedUpdate, theManifestListsEveryEntrySorted) {
    link("plugin/docs/up", "../run");
    const auto run = disk.write("tree/plugin/run", "");
    ASSERT_EQ(chmod(run.c_str(), S_IRWXU), 0);
    disk.write("tree/other", "not part of the plugin");
    EXPECT_EQ(manifestOf(disk / "tree", "plugin"),
              "d plugin\n"
              "d plugin/docs\n"
              "f 982d9e3eb996f559e633f4d194def3761d909f5a3b647d1a851fead67c32c9d1  plugin/docs/index.html\n"
              "f e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855  plugin/run\n"
              "l plugin/docs/up -> ../run\n"
              "x plugin/run\n");
    EXPECT_EQ(manifestOf(disk / "tree", "missing"), std::nullopt);
    EXPECT_EQ(sha256Of("text"), "982d9e3eb996f559e633f4d194def3761d909f5a3b647d1a851fead67c32c9d1");
}
