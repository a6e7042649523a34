// The plugin's whole road over real sockets and with the real unzip, cp and rm, but for the password.

#include "endtoend/World.h"
#include "fakes/CoroutineTest.h"
#include "fakes/RecordingAdministratorShell.h"
#include "platform/ResourceFolder.h"
#include "plugin/PluginManager.h"
#include "plugin/UpdateManager.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;

class PluginTest : public testing::Test {
protected:
    PluginTest() {
        if (!services.listen())
            throw std::runtime_error("No port is free");
        shell->runsWithin(disk, processes);
        disk.makeFolder("tmp");
        disk.makeFolder("plugins");
        environment.systemTemporaryFolder = disk / "tmp";
        environment.variable = [this](const std::string& name) -> std::optional<std::string> {
            return name == "ZUVO_SERVICE_URL" ? std::optional(services.accountBase().toStdString()) : std::nullopt;
        };
        // A copy, since administrator's lines run only within the test's folder.
        const auto shipped = resourceFolder(ownBuildTree().folder + "/src").value_or("missing");
        fs::create_directories(disk / "resources");
        fs::copy(shipped + "/plugin", disk / "resources/plugin", fs::copy_options::recursive);
        plugin = std::make_unique<PluginManager>(shell, disk / "resources", pluginPath);
        update = std::make_unique<UpdateManager>(
            UpdateMeans{APIClient(std::make_shared<NetworkHttpClient>(), accountAddresses(environment)),
                        std::make_shared<NetworkDownloader>(), processes, shell,
                        [this] { return environment.temporaryFolder(); }, pluginPath});
    }

    TemporaryFolder disk;
    Environment environment;
    standin::StandIn services;
    std::string pluginPath = disk / "plugins/com.tarnwick.zuvo";
    std::shared_ptr<ChildProcessRunner> processes = std::make_shared<ChildProcessRunner>();
    std::shared_ptr<RecordingAdministratorShell> shell = std::make_shared<RecordingAdministratorShell>();
    std::unique_ptr<PluginManager> plugin;
    std::unique_ptr<UpdateManager> update;
};

} // namespace

TEST_F(PluginTest, aNewerPluginIsFoundFetchedAndPutInThePlaceOfTheOldOne) {
    runToEnd(plugin->install());
    ASSERT_EQ(plugin->installedVersion(), "0.1.0-beta");

    runToEnd(update->checkForUpdates());
    ASSERT_EQ(update->errorMessage(), std::nullopt);
    EXPECT_EQ(update->latestVersion(), "0.2.0");
    EXPECT_TRUE(update->updateAvailable());
    EXPECT_TRUE(update->releaseNotes());

    std::vector<double> progress;
    QObject::connect(update.get(), &UpdateManager::downloadProgressChanged,
                     [&] { progress.push_back(update->downloadProgress()); });
    runToEnd(update->downloadAndInstall());
    ASSERT_EQ(update->errorMessage(), std::nullopt);
    EXPECT_EQ(update->statusMessage(), "Update installed! Restart DaVinci Resolve to apply changes.");
    EXPECT_THAT(progress, ElementsAre(0.5, 0.8, 1.0));
    EXPECT_FALSE(update->updateAvailable());

    EXPECT_EQ(plugin->installedVersion(), "0.1.0-beta"); // not told
    plugin->detectInstallation();
    EXPECT_EQ(plugin->installedVersion(), "0.2.0");
    EXPECT_THAT(disk.read("plugins/com.tarnwick.zuvo/index.html"), HasSubstr("Zuvo 0.2.0"));

    ASSERT_THAT(services.requests(standin::Service::archive), SizeIs(1));
    const auto asked = services.requests(standin::Service::archive).front();
    EXPECT_EQ(asked.header("Authorization"), "");
    const auto own = disk / ("tmp/zuvo-" + std::to_string(geteuid()));
    EXPECT_TRUE(fs::is_empty(own));
    struct stat status {};
    ASSERT_EQ(stat(own.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(PluginTest, thePluginThatShipsIsInstalledAndRemoved) {
    EXPECT_FALSE(plugin->isInstalled());
    runToEnd(plugin->install());
    EXPECT_EQ(plugin->errorMessage(), std::nullopt);
    EXPECT_EQ(plugin->installedVersion(), "0.1.0-beta");
    EXPECT_THAT(disk.read("plugins/com.tarnwick.zuvo/index.html"), HasSubstr("zuvo-manager://open"));
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/manifest.json"), "{\"name\":\"Zuvo\",\"version\":\"0.1.0-beta\"}\n");

    runToEnd(plugin->reinstall());
    EXPECT_EQ(plugin->installedVersion(), "0.1.0-beta");
    EXPECT_EQ(plugin->statusMessage(), "Plugin installed successfully!");

    runToEnd(plugin->uninstall());
    EXPECT_EQ(plugin->errorMessage(), std::nullopt);
    EXPECT_FALSE(plugin->isInstalled());
    EXPECT_TRUE(fs::is_empty(disk / "plugins"));
}

TEST_F(PluginTest, aDownloadThatBreaksOffLeavesTheOldPlugin) {
    runToEnd(plugin->install());
    runToEnd(update->checkForUpdates());
    services.fail(standin::Service::archive, standin::Failure::cut());
    runToEnd(update->downloadAndInstall());
    EXPECT_TRUE(update->errorMessage());
    EXPECT_EQ(update->statusMessage(), std::nullopt);
    EXPECT_FALSE(update->isDownloading());
    plugin->detectInstallation();
    EXPECT_EQ(plugin->installedVersion(), "0.1.0-beta");
}

TEST_F(PluginTest, aServiceInTroubleLeavesACheckWithItsWords) {
    services.fail(standin::Service::version, standin::Failure::status(500, "out of order"));
    runToEnd(update->checkForUpdates());
    EXPECT_EQ(update->errorMessage(), "Server error 500: out of order");
    EXPECT_FALSE(update->isChecking());
}
