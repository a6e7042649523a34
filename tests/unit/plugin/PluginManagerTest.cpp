#include "plugin/PluginManager.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RecordingAdministratorShell.h"
#include "fakes/TemporaryFolder.h"
#include "plugin/AdministratorScripts.h"
#include "plugin/PluginError.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Plugin : public testing::Test {
protected:
    Plugin() { make(); }

    void make(std::optional<std::string> resources) {
        manager = std::make_unique<PluginManager>(shell, std::move(resources), pluginPath);
        QObject::connect(manager.get(), &PluginManager::isInstalledChanged, [this] { note("installed"); });
        QObject::connect(manager.get(), &PluginManager::installedVersionChanged, [this] { note("version"); });
        QObject::connect(manager.get(), &PluginManager::isLoadingChanged,
                         [this] { note(manager->isLoading() ? "loading" : "not loading"); });
        QObject::connect(manager.get(), &PluginManager::statusMessageChanged,
                         [this] { note("status " + manager->statusMessage().value_or("-")); });
        QObject::connect(manager.get(), &PluginManager::errorMessageChanged,
                         [this] { note("error " + manager->errorMessage().value_or("-")); });
    }
    void make() { make(disk / "resources"); }
    void note(std::string event) { events.push_back(std::move(event)); }

    void givenShippedPlugin() const {
        disk.write("resources/plugin/version.json", "{\"version\":\"0.1.0-beta\"}\n");
        disk.write("resources/plugin/.hidden/file", "hidden");
    }

    void givenInstalled(const std::string& versionFile) {
        disk.write("plugins/zuvo/version.json", versionFile);
        manager->detectInstallation();
        events.clear();
    }

    void install() { runToEnd(manager->install()); }
    void uninstall() { runToEnd(manager->uninstall()); }

    void thenInstalled(const std::optional<std::string>& version) const {
        EXPECT_EQ(manager->isInstalled(), version.has_value());
        EXPECT_EQ(manager->installedVersion(), version);
    }

    void thenFailed(const std::string& words) const {
        EXPECT_EQ(manager->errorMessage(), words);
        EXPECT_EQ(manager->statusMessage(), std::nullopt);
        EXPECT_FALSE(manager->isLoading());
    }

    TemporaryFolder disk;
    std::string pluginPath = disk / "plugins/zuvo";
    std::shared_ptr<RecordingAdministratorShell> shell = std::make_shared<RecordingAdministratorShell>();
    std::vector<std::string> events;
    std::unique_ptr<PluginManager> manager;
};

} // namespace

TEST_F(Plugin, beforeAnythingIsAskedThereIsNothing) {
    thenInstalled(std::nullopt);
    EXPECT_FALSE(manager->isLoading());
    EXPECT_EQ(manager->statusMessage(), std::nullopt);
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_THAT(shell->sources, IsEmpty());
}

TEST_F(Plugin, itsPlaceIsResolvesForTheWholeMachine) {
    const PluginManager standard(shell, std::nullopt);
    EXPECT_EQ(standard.pluginPath(), "/Library/Application Support/Blackmagic Design/DaVinci Resolve/"
                                     "Workflow Integration Plugins/com.tarnwick.zuvo");
}

TEST_F(Plugin, anInstalledOneIsFoundAtConstruction) {
    disk.write("plugins/zuvo/version.json", R"({"version":"0.3"})");
    make();
    thenInstalled("0.3");
}

TEST_F(Plugin, aFolderWithoutAVersionFileIsAnUnknownVersion) {
    disk.makeFolder("plugins/zuvo");
    manager->detectInstallation();
    thenInstalled("Unknown");
}

TEST_F(Plugin, aFileInThePlaceOfTheFolderCountsAsInstalled) {
    disk.write("plugins/zuvo", "what is this");
    manager->detectInstallation();
    thenInstalled("Unknown");
}

TEST_F(Plugin, aVersionFileThatDoesNotDecodeIsAnUnknownVersion) {
    for (const auto* text : {"", "0.1", "[]", "{}", R"({"version":1})", R"({"version":null})", R"({"Version":"1"})",
                             R"({"version":"1")", "{\"version\":\"\xFF\"}"}) {
        SCOPED_TRACE(text);
        givenInstalled(text);
        thenInstalled("Unknown");
    }
    givenInstalled(R"({"version":")" + std::string(200'000, '1') + "\"}");
    thenInstalled("Unknown");
}

TEST_F(Plugin, aPipeInThePlaceOfTheVersionFileIsNotWaitedFor) {
    disk.makeFolder("plugins/zuvo");
    ASSERT_EQ(mkfifo((disk / "plugins/zuvo/version.json").c_str(), S_IRWXU), 0);
    manager->detectInstallation();
    thenInstalled("Unknown");
}

TEST_F(Plugin, otherKeysOfAVersionFileAreOverlooked) {
    givenInstalled(R"({"build":7,"version":"0.2"})");
    thenInstalled("0.2");
}

TEST_F(Plugin, aPluginThatIsGoneHasNoVersion) {
    givenInstalled(R"({"version":"0.2"})");
    std::filesystem::remove_all(pluginPath);
    manager->detectInstallation();
    thenInstalled(std::nullopt);
    EXPECT_THAT(events, ElementsAre("installed", "version"));
}

TEST_F(Plugin, detectingTheSameAgainSignalsNothing) {
    givenInstalled(R"({"version":"0.2"})");
    manager->detectInstallation();
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(Plugin, whatShipsIsCopied) {
    givenShippedPlugin();
    install();
    EXPECT_THAT(shell->sources,
                ElementsAre("do shell script \"mkdir -p '" + pluginPath + "' && cp -R '" +
                            (disk / "resources/plugin/") + "' '" + pluginPath + "'\" with administrator privileges"));
    EXPECT_EQ(manager->statusMessage(), "Plugin installed successfully!");
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_FALSE(manager->isLoading());
}

TEST_F(Plugin, installingReallyPutsWhatShipsIntoTheFolder) {
    givenShippedPlugin();
    shell->runsWithin(disk, std::make_shared<ChildProcessRunner>());
    install();
    thenInstalled("0.1.0-beta");
    EXPECT_EQ(disk.read("plugins/zuvo/.hidden/file"), "hidden");
    EXPECT_FALSE(std::filesystem::exists(disk / "plugins/zuvo/plugin"));
    EXPECT_THAT(events, ElementsAre("loading", "status Installing plugin...", "installed", "version",
                                    "status Plugin installed successfully!", "not loading"));
}

TEST_F(Plugin, installingOverAnOldPluginPutsNoFolderIntoTheFolder) {
    givenShippedPlugin();
    givenInstalled(R"({"version":"0.0.1"})");
    disk.write("plugins/zuvo/old", "stays");
    shell->runsWithin(disk, std::make_shared<ChildProcessRunner>());
    install();
    thenInstalled("0.1.0-beta");
    EXPECT_FALSE(std::filesystem::exists(disk / "plugins/zuvo/plugin"));
    EXPECT_EQ(disk.read("plugins/zuvo/old"), "stays");
}

TEST_F(Plugin, withoutAFolderThatShipsThereAreTwoFiles) {
    disk.makeFolder("resources");
    shell->runsWithin(disk, std::make_shared<ChildProcessRunner>());
    install();
    EXPECT_THAT(shell->sources, ElementsAre(minimalPluginScript(pluginPath, "0.1.0-beta")));
    EXPECT_EQ(disk.read("plugins/zuvo/version.json"), "{\"version\":\"0.1.0-beta\"}\n");
    EXPECT_EQ(disk.read("plugins/zuvo/manifest.json"), "{\"name\":\"Zuvo\",\"version\":\"0.1.0-beta\"}\n");
    thenInstalled("0.1.0-beta");
}

TEST_F(Plugin, withoutResourcesNothingIsRun) {
    make(std::nullopt);
    install();
    thenFailed("Plugin files not found in app bundle");
    EXPECT_THAT(shell->sources, IsEmpty());
    EXPECT_THAT(events, ElementsAre("loading", "status Installing plugin...",
                                    "error Plugin files not found in app bundle", "status -", "not loading"));
}

TEST_F(Plugin, uninstallingRemovesTheFolderAndNothingBesideIt) {
    givenInstalled(R"({"version":"0.2"})");
    disk.write("plugins/other/file", "another's");
    shell->runsWithin(disk, std::make_shared<ChildProcessRunner>());
    uninstall();
    thenInstalled(std::nullopt);
    EXPECT_EQ(manager->statusMessage(), "Plugin uninstalled.");
    EXPECT_EQ(disk.read("plugins/other/file"), "another's");
    EXPECT_THAT(shell->sources,
                ElementsAre("do shell script \"rm -rf '" + pluginPath + "'\" with administrator privileges"));
    EXPECT_THAT(events, ElementsAre("loading", "status Uninstalling plugin...", "installed", "version",
                                    "status Plugin uninstalled.", "not loading"));
}

TEST_F(Plugin, aFailedUninstallReadsAsAFailedInstallation) {
    givenInstalled(R"({"version":"0.2"})");
    shell->thenFails("User canceled.");
    uninstall();
    thenFailed("Installation failed: User canceled.");
    thenInstalled("0.2");
}

TEST_F(Plugin, aCancelledDialogShowsTheSystemsWords) {
    givenShippedPlugin();
    shell->thenFails("User canceled.");
    install();
    thenFailed("Installation failed: User canceled.");
}

TEST_F(Plugin, afterAFailureWhatIsInstalledIsNotLookedAtAgain) {
    givenShippedPlugin();
    disk.write("plugins/zuvo/version.json", R"({"version":"0.2"})"); // after the last look
    shell->thenFails("No.");
    install();
    thenInstalled(std::nullopt);
}

TEST_F(Plugin, aFailureWithoutWordsIsAnAppleScriptError) {
    shell->thenFails("");
    uninstall();
    thenFailed("Installation failed: AppleScript error");
}

TEST_F(Plugin, aScriptThatCannotBeMadeSaysSo) {
    shell->thenCannotCreate();
    uninstall();
    thenFailed("Installation failed: Could not create AppleScript");
}

TEST_F(Plugin, aNewOperationTakesTheOldErrorAway) {
    shell->thenFails("No.");
    uninstall();
    events.clear();
    uninstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_THAT(events, ElementsAre("loading", "status Uninstalling plugin...", "error -", "status Plugin uninstalled.",
                                    "not loading"));
}

TEST_F(Plugin, aPluginPathWithAQuoteIsNeverRun) {
    pluginPath = disk / "it's";
    make();
    uninstall();
    thenFailed("Installation failed: The path holds a quote: " + pluginPath);
    install();
    thenFailed("Installation failed: The path holds a quote: " + pluginPath);
    EXPECT_THAT(shell->sources, IsEmpty());
}

TEST_F(Plugin, aResourceFolderWithAQuoteIsNeverRun) {
    disk.makeFolder("o'brien/plugin");
    make(disk / "o'brien");
    install();
    thenFailed("Installation failed: The path holds a quote: " + (disk / "o'brien/plugin"));
    EXPECT_THAT(shell->sources, IsEmpty());
}

TEST_F(Plugin, reinstallingRemovesAndInstalls) {
    givenShippedPlugin();
    runToEnd(manager->reinstall());
    EXPECT_THAT(shell->sources,
                ElementsAre(removalScript(pluginPath), copyScript(disk / "resources/plugin", pluginPath)));
    EXPECT_EQ(manager->statusMessage(), "Plugin installed successfully!");
    EXPECT_FALSE(manager->isLoading());
}

TEST_F(Plugin, reinstallingStopsAtARemovalThatFailed) {
    givenShippedPlugin();
    shell->thenFails("User canceled.");
    runToEnd(manager->reinstall());
    EXPECT_THAT(shell->sources, ElementsAre(removalScript(pluginPath)));
    thenFailed("Installation failed: User canceled.");
}

TEST_F(Plugin, aSecondOperationWhileOneRunsDoesNothing) {
    givenShippedPlugin();
    shell->hold();
    RunningTask<void> first(manager->install());
    EXPECT_TRUE(manager->isLoading());
    install();
    uninstall();
    runToEnd(manager->reinstall());
    EXPECT_FALSE(first.hasEnded());
    EXPECT_TRUE(manager->isLoading());
    EXPECT_EQ(manager->statusMessage(), "Installing plugin...");
    shell->letGo();
    first.result();
    EXPECT_THAT(shell->sources, SizeIs(1));
    EXPECT_FALSE(manager->isLoading());
}

TEST_F(Plugin, aManagerMayGoWhileThePasswordDialogStands) {
    givenShippedPlugin();
    shell->hold();
    RunningTask<void> installation(manager->install());
    events.clear();
    manager.reset();
    shell->letGo();
    installation.result();
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(Plugin, aManagerMayGoWhileItReinstalls) {
    givenShippedPlugin();
    shell->hold();
    RunningTask<void> installation(manager->reinstall());
    manager.reset();
    shell->letGo();
    installation.result();
    EXPECT_THAT(shell->sources, SizeIs(1)); // the removal; nobody is left who wanted the rest
}

TEST(PluginErrorWords, areThoseForTheUser) {
    EXPECT_EQ(PluginError::installFailed("x").errorDescription(), "Installation failed: x");
    EXPECT_EQ(PluginError::uninstallFailed("x").errorDescription(), "Uninstallation failed: x");
    EXPECT_EQ(PluginError::bundleResourcesMissing().errorDescription(), "Plugin files not found in app bundle");
}
