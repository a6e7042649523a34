#include "platform/Environment.h"

#include "fakes/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// Sets or removes a variable of this process and puts it back.
class WithVariable {
public:
    WithVariable(std::string name, const std::optional<std::string>& value) : m_name(std::move(name)) {
        if (const char* before = std::getenv(m_name.c_str()))
            m_before = before;
        set(value);
    }
    ~WithVariable() { set(m_before); }
    WithVariable(const WithVariable&) = delete;
    WithVariable& operator=(const WithVariable&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value)
            setenv(m_name.c_str(), value->c_str(), 1);
        else
            unsetenv(m_name.c_str());
    }

    std::string m_name;
    std::optional<std::string> m_before;
};

std::string databaseHome() {
    const passwd* entry = getpwuid(getuid());
    return entry == nullptr ? "" : entry->pw_dir;
}

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

class PrivateFolder : public testing::Test {
protected:
    PrivateFolder() {
        environment.systemTemporaryFolder = system.path();
        expected = system / ("zuvo-" + std::to_string(geteuid()));
    }

    TemporaryFolder system;
    Environment environment;
    std::string expected;
};

} // namespace

TEST(Environment, homeIsTheVariable) {
    const WithVariable home("HOME", "/some/where");
    const auto environment = Environment::ofThisMachine();
    EXPECT_EQ(environment.home, "/some/where");
    EXPECT_EQ(environment.cacheFolder(), "/some/where/Library/Caches/ZuvoManager");
}

TEST(Environment, theTokenFileLiesInTheHomeFolderOfTheProcess) {
    Environment environment;
    environment.home = "/some/where";
    environment.realHomeDir = "/real";
    EXPECT_EQ(environment.tokenFile(), "/some/where/.zuvo/token.json");
}

TEST(Environment, homeHasNoSlashAtItsEnd) {
    {
        const WithVariable home("HOME", "/some/where//");
        EXPECT_EQ(Environment::ofThisMachine().home, "/some/where");
    }
    const WithVariable home("HOME", "/");
    EXPECT_EQ(Environment::ofThisMachine().home, "/");
}

TEST(Environment, withoutTheVariableHomeIsThatOfTheUserDatabase) {
    ASSERT_NE(databaseHome(), "");
    const WithVariable home("HOME", std::nullopt);
    EXPECT_EQ(Environment::ofThisMachine().home, databaseHome());
}

TEST(Environment, anEmptyVariableCountsAsNoHome) {
    const WithVariable home("HOME", "");
    EXPECT_EQ(Environment::ofThisMachine().home, databaseHome());
}

TEST(Environment, theRealHomeIsThatOfTheUserDatabaseWhateverTheVariableSays) {
    const WithVariable home("HOME", "/some/where");
    EXPECT_EQ(Environment::ofThisMachine().realHomeDir, databaseHome());
}

TEST(Environment, aVariableIsReadAnewAtEachUse) {
    const auto environment = Environment::ofThisMachine();
    const WithVariable unset("ZUVO_TEST_VARIABLE", std::nullopt);
    EXPECT_EQ(environment.variable("ZUVO_TEST_VARIABLE"), std::nullopt);
    const WithVariable empty("ZUVO_TEST_VARIABLE", "");
    EXPECT_EQ(environment.variable("ZUVO_TEST_VARIABLE"), "");
    const WithVariable set("ZUVO_TEST_VARIABLE", " a=b ");
    EXPECT_EQ(environment.variable("ZUVO_TEST_VARIABLE"), " a=b ");
}

TEST(Environment, theSystemsTemporaryFolderIsTheVariables) {
    const TemporaryFolder folder;
    const WithVariable variable("TMPDIR", folder.path() + "/");
    EXPECT_EQ(Environment::ofThisMachine().systemTemporaryFolder, std::filesystem::canonical(folder.path()).string());
}

TEST(Environment, aTemporaryFolderThatIsMissingIsNotTakenForTheRoot) {
    const WithVariable variable("TMPDIR", "/no/such/folder");
    EXPECT_EQ(Environment::ofThisMachine().systemTemporaryFolder, "/tmp");
}

TEST(Environment, aToolOfTheFirstPlaceIsTakenIfItExists) {
    const TemporaryFolder root;
    root.write("opt/homebrew/bin/ffmpeg", "");
    EXPECT_EQ(fixedToolPath("ffmpeg", root.path()), root / "opt/homebrew/bin/ffmpeg");
}

#ifndef Q_OS_MACOS
TEST(Environment, aToolThatIsNotInTheFirstPlaceIsTakenFromTheSecondWhetherItExistsOrNot) {
    const TemporaryFolder root;
    root.write("opt/homebrew/bin/ffmpeg", "");
    EXPECT_EQ(fixedToolPath("ffprobe", root.path()), root / "usr/bin/ffprobe");
}
#endif

TEST(Environment, theToolsOfThisMachineLieInFixedPlaces) {
    const auto tools = Environment::ofThisMachine().tools;
    EXPECT_EQ(tools.ffmpeg, fixedToolPath("ffmpeg"));
    EXPECT_EQ(tools.ffprobe, fixedToolPath("ffprobe"));
    EXPECT_EQ(tools.python3, fixedToolPath("python3"));
    EXPECT_THAT(tools.python3, testing::AnyOf("/opt/homebrew/bin/python3", "/usr/bin/python3"));
}

TEST(Environment, resolvesFoldersAreThoseOfItsInstallationElseTheFixedOnes) {
    const auto environment = Environment::ofThisMachine();
    const std::string installed = "/Library/Application Support/Blackmagic Design/DaVinci Resolve/Developer/Scripting";
    EXPECT_THAT(environment.resolveScriptAPI, testing::AnyOf(installed, "/opt/resolve/Developer/Scripting"));
    EXPECT_THAT(environment.resolveScriptLib,
                testing::AnyOf(installed + "/Modules", "/opt/resolve/Developer/Scripting/Modules"));
}

TEST_F(PrivateFolder, isMadeForThisUserAlone) {
    const auto umaskBefore = umask(0);
    const auto folder = environment.temporaryFolder();
    umask(umaskBefore);
    EXPECT_EQ(folder, expected + "/");
    EXPECT_TRUE(std::filesystem::is_directory(expected));
    EXPECT_EQ(modeOf(expected), S_IRWXU);
}

TEST_F(PrivateFolder, isFoundAgainWithWhatLiesInIt) {
    ASSERT_TRUE(environment.temporaryFolder());
    std::ofstream(expected + "/file") << "x";
    EXPECT_EQ(environment.temporaryFolder(), expected + "/");
    EXPECT_TRUE(std::filesystem::exists(expected + "/file"));
}

TEST_F(PrivateFolder, withAnotherModeIsNarrowed) {
    for (const mode_t mode : {0777U, 0755U, 0701U, 0500U, 01700U}) {
        std::filesystem::create_directory(expected);
        ASSERT_EQ(chmod(expected.c_str(), mode), 0);
        EXPECT_EQ(environment.temporaryFolder(), expected + "/");
        EXPECT_EQ(modeOf(expected), S_IRWXU);
    }
}

TEST_F(PrivateFolder, thatIsALinkIsRefused) {
    const auto target = system.makeFolder("target");
    ASSERT_EQ(chmod(target.c_str(), 0755), 0);
    std::filesystem::create_directory_symlink(target, expected);
    EXPECT_EQ(environment.temporaryFolder(), std::nullopt);
    EXPECT_EQ(modeOf(target), 0755U);
}

TEST_F(PrivateFolder, thatIsALinkToNothingIsRefused) {
    std::filesystem::create_directory_symlink(system / "nothing", expected);
    EXPECT_EQ(environment.temporaryFolder(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(system / "nothing"));
}

TEST_F(PrivateFolder, thatIsAFileIsRefused) {
    std::ofstream(expected) << "x";
    EXPECT_EQ(environment.temporaryFolder(), std::nullopt);
}

TEST_F(PrivateFolder, thatIsAnotherUsersIsRefused) {
    std::filesystem::create_directory(expected);
    ASSERT_EQ(chmod(expected.c_str(), 0700), 0);
    constexpr uid_t somebody = 54321;
    if (geteuid() != 0)
        return; // only root can give a folder away
    ASSERT_EQ(chown(expected.c_str(), somebody, static_cast<gid_t>(-1)), 0);
    EXPECT_EQ(environment.temporaryFolder(), std::nullopt);
}

TEST_F(PrivateFolder, inAFolderThatIsMissingIsRefused) {
    environment.systemTemporaryFolder = system / "missing";
    EXPECT_EQ(environment.temporaryFolder(), std::nullopt);
}
