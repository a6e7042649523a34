// The line that runs with an administrator's rights, run for real within the test's folder. What the user's other
// programs do while the password is asked for is done by `meanwhile`.

#include "UpdateFixture.h"

#include <csignal>
#include <sys/stat.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

constexpr const char* changed = "Install failed: The update was changed after it was checked";

class CheckedReplacement : public Update {
protected:
    CheckedReplacement() {
        givenUpdate();
        givenGoodArchive();
        givenRealCopies();
    }

    /// A program of the system's name that the line finds first. `$n` counts its calls from 1.
    void givenProgram(const std::string& name, const std::string& script) {
        const auto counter = disk / ("bin/" + name + ".calls");
        const auto path = disk.write("bin/" + name, "#!/bin/sh\necho >> '" + counter + "'\nn=$(wc -l < '" + counter +
                                                        "')\n" + script + "\nexec /bin/" + name + " \"$@\"\n");
        fs::permissions(path, fs::perms::owner_all);
    }

    void installWhile(std::function<void()> others) {
        shell->meanwhile = std::move(others);
        downloadAndInstall();
    }

    void thenTheChangeWasSeen() const {
        EXPECT_EQ(manager->errorMessage(), changed);
        thenTheOldPluginIsThere();
    }

    void thenItFailedAndTheOldPluginIsBack(const std::string& words) const {
        ASSERT_TRUE(manager->errorMessage());
        EXPECT_THAT(*manager->errorMessage(), HasSubstr(words));
        thenTheOldPluginIsThere();
    }
};

} // namespace

TEST_F(CheckedReplacement, withoutAnyoneInBetweenTheNewPluginIsInstalled) {
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_THAT(namesIn("plugins"), ElementsAre("com.tarnwick.zuvo"));
    EXPECT_THAT(namesIn("plugins/com.tarnwick.zuvo"), ElementsAre("b.js", "lib", "version.json"));
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
    EXPECT_TRUE(fs::is_symlink(disk / "plugins/com.tarnwick.zuvo/b.js"));
}

TEST_F(CheckedReplacement, everybodyMayReadWhatIsInstalledAndOnlyRootMayChangeIt) {
    givenArchive("def put(name, mode):\n"
                 "    i = zipfile.ZipInfo(name)\n"
                 "    i.create_system = 3\n"
                 "    i.external_attr = mode << 16\n"
                 "    z.writestr(i, '{\"version\":\"0.2\"}')\n"
                 "put('com.tarnwick.zuvo/version.json', 0o100600)\n"
                 "put('com.tarnwick.zuvo/tool', 0o100777)");
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    const auto rights = [this](const std::string& name) {
        struct stat status {};
        EXPECT_EQ(stat((disk / ("plugins/com.tarnwick.zuvo" + name)).c_str(), &status), 0);
        return status.st_mode & 07777U;
    };
    EXPECT_EQ(rights(""), 0755U);
    EXPECT_EQ(rights("/version.json"), 0644U);
    EXPECT_EQ(rights("/tool"), 0755U);
}

TEST_F(CheckedReplacement, withoutAnOldPluginTheNewOneIsInstalled) {
    fs::remove_all(disk / "plugins/com.tarnwick.zuvo");
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
}

TEST_F(CheckedReplacement, aFileSwappedForALinkIsSeenAndNotFollowed) {
    disk.write("secret", "only root may read this");
    installWhile([this] {
        fs::remove(disk / unpacked("lib/a.js"));
        fs::create_symlink(disk / "secret", disk / unpacked("lib/a.js"));
    });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aLinkThatLeadsElsewhereIsSeen) {
    installWhile([this] {
        fs::remove(disk / unpacked("b.js"));
        fs::create_symlink("/etc/shadow", disk / unpacked("b.js"));
    });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aLinkInThePlaceOfAFolderIsSeen) {
    disk.write("elsewhere/a.js", "a"); // the same file by name and bytes
    installWhile([this] {
        fs::remove_all(disk / unpacked("lib"));
        fs::create_directory_symlink(disk / "elsewhere", disk / unpacked("lib"));
    });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aLinkInThePlaceOfTheWholePluginIsSeen) {
    installWhile([this] {
        const fs::path plugin(disk / unpacked(""));
        const auto path = plugin.parent_path();
        fs::rename(path, disk / "moved");
        fs::create_directory_symlink(disk / "moved", path);
    });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aChangedFileIsSeen) {
    installWhile([this] { disk.write(unpacked("lib/a.js"), "b"); });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, anAddedFileIsSeen) {
    installWhile([this] { disk.write(unpacked("lib/added.js"), "evil"); });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, anAddedEmptyFolderIsSeen) {
    installWhile([this] { disk.makeFolder(unpacked("added")); });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aRemovedFileIsSeen) {
    installWhile([this] { fs::remove(disk / unpacked("lib/a.js")); });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aRenamedFileIsSeen) {
    installWhile([this] { fs::rename(disk / unpacked("lib/a.js"), disk / unpacked("lib/c.js")); });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aFileMadeExecutableIsSeen) {
    installWhile([this] { fs::permissions(disk / unpacked("lib/a.js"), fs::perms::owner_all); });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, aNameThatLooksLikeALineOfTheManifestIsSeen) {
    installWhile([this] {
        fs::remove(disk / unpacked("b.js"));
        disk.makeFolder(unpacked("x\nl com.tarnwick.zuvo"));
    });
    thenTheChangeWasSeen();
}

TEST_F(CheckedReplacement, anUnpackedUpdateThatHasGoneIsAFailure) {
    installWhile([this] { fs::remove_all(disk / unpacked("")); });
    thenItFailedAndTheOldPluginIsBack("cp: ");
}

TEST_F(CheckedReplacement, anArchiveSwappedAfterTheCheckChangesNothing) {
    installWhile([this] { disk.write("private/" + namesIn("private").at(0) + "/plugin-update.zip", "another"); });
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
}

TEST_F(CheckedReplacement, aCopyThatFailsHalfWayBringsTheOldPluginBack) {
    // The second copy is the one that takes the old plugin's place.
    givenProgram("cp", "if [ $n = 2 ]; then mkdir -p \"$3/com.tarnwick.zuvo\"; echo half > "
                       "\"$3/com.tarnwick.zuvo/version.json\"; echo 'cp: No space left' >&2; exit 1; fi");
    downloadAndInstall();
    thenItFailedAndTheOldPluginIsBack("cp: No space left");
}

TEST_F(CheckedReplacement, aCopyThatFailsHalfWayLeavesNothingIfThereWasNoPlugin) {
    fs::remove_all(disk / "plugins/com.tarnwick.zuvo");
    givenProgram("cp", "if [ $n = 2 ]; then mkdir -p \"$3/com.tarnwick.zuvo\"; exit 1; fi");
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), "Install failed: Install error");
    EXPECT_THAT(namesIn("plugins"), IsEmpty());
}

TEST_F(CheckedReplacement, aFirstCopyThatFailsLeavesTheOldPlugin) {
    givenProgram("cp", "echo 'cp: No space left' >&2; exit 1");
    downloadAndInstall();
    thenItFailedAndTheOldPluginIsBack("cp: No space left");
}

TEST_F(CheckedReplacement, aSignalBringsTheOldPluginBack) {
    for (const auto* signal : {"TERM", "HUP", "INT"}) {
        SCOPED_TRACE(signal);
        fs::remove_all(disk / "bin");
        givenProgram("cp", std::string("if [ $n = 2 ]; then kill -") + signal + " $PPID; sleep 0.2; exit 1; fi");
        downloadAndInstall();
        EXPECT_TRUE(manager->errorMessage());
        thenTheOldPluginIsThere();
    }
}

TEST_F(CheckedReplacement, anOldPluginThatCannotBePutBackIsKeptAndNamed) {
    givenProgram("cp", "if [ $n = 2 ]; then exit 1; fi");
    givenProgram("mv", "if [ $n = 2 ]; then exit 1; fi");
    downloadAndInstall();
    ASSERT_TRUE(manager->errorMessage());
    EXPECT_THAT(*manager->errorMessage(),
                StartsWith("Install failed: The old plugin was kept in " + (disk / "plugins/.zuvo-update.")));
    const auto names = namesIn("plugins");
    ASSERT_THAT(names, ElementsAre(StartsWith(".zuvo-update.")));
    EXPECT_EQ(disk.read("plugins/" + names[0] + "/old/version.json"), R"({"version":"0.1.0-beta"})");
}

TEST_F(CheckedReplacement, withoutTheFolderOfPluginsNothingIsMade) {
    fs::remove_all(disk / "plugins");
    downloadAndInstall();
    ASSERT_TRUE(manager->errorMessage());
    EXPECT_THAT(*manager->errorMessage(), StartsWith("Install failed: mktemp: "));
    EXPECT_FALSE(exists("plugins"));
}

TEST_F(CheckedReplacement, theSystemsOtherProgramForSha256DoesAsWell) {
    // As on macOS: no sha256sum on the path, but Perl's shasum.
    disk.makeFolder("only");
    for (const std::string name : {"chmod", "cp", "find", "mktemp", "mv", "readlink", "rm", "sed", "shasum", "sort"}) {
        ASSERT_TRUE(fs::exists("/usr/bin/" + name)) << name;
        fs::create_symlink("/usr/bin/" + name, disk / ("only/" + name));
    }
    disk.write("fake-pkexec", "#!/bin/sh\nshift\nPATH='" + (disk / "only") + "' exec \"$@\"\n");
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
    installWhile([this] { disk.write(unpacked("lib/a.js"), "b"); });
    EXPECT_EQ(manager->errorMessage(), changed);
}
