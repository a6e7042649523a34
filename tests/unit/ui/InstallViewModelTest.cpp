#include "ui/InstallViewModel.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RecordingAdministratorShell.h"
#include "fakes/TemporaryFolder.h"

#include <QSignalSpy>
#include <filesystem>
#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class InstallPage : public testing::Test {
protected:
    InstallPage() {
        disk.write("resources/plugin/version.json", R"({"version":"0.1.0-beta"})");
        newPage();
    }

    void newPage() {
        page.reset();
        manager = std::make_shared<PluginManager>(administrator, disk / "resources", pluginPath);
        page = std::make_unique<InstallViewModel>(manager);
    }

    void givenInstalled(const std::string& versionFile = R"({"version":"0.3"})") {
        disk.write("plugins/zuvo/version.json", versionFile);
        newPage();
        ASSERT_TRUE(page->isInstalled());
    }

    [[nodiscard]] bool ends() const {
        return waitUntil([this] { return !administrator->sources.empty() && !manager->isLoading(); });
    }

    static void turn() { runEventLoop(std::chrono::milliseconds(20)); }

    TemporaryFolder disk;
    std::string pluginPath = disk / "plugins/zuvo";
    std::shared_ptr<RecordingAdministratorShell> administrator = std::make_shared<RecordingAdministratorShell>();
    std::shared_ptr<PluginManager> manager;
    std::unique_ptr<InstallViewModel> page;
};

} // namespace

TEST_F(InstallPage, withoutThePluginItOffersTheInstallation) {
    EXPECT_FALSE(page->isInstalled());
    EXPECT_EQ(page->statusText(), QStringLiteral("Not Installed"));
    EXPECT_EQ(page->versionText(), QString());
    EXPECT_EQ(page->installText(), QStringLiteral("Install Plugin"));
    EXPECT_FALSE(page->isBusy());
    EXPECT_FALSE(page->confirmsUninstall());
    EXPECT_EQ(page->errorMessage(), QString());
    EXPECT_EQ(InstallViewModel::minimumResolve(), QStringLiteral("18"));
}

TEST_F(InstallPage, withThePluginItShowsTheVersion) {
    givenInstalled();
    EXPECT_EQ(page->statusText(), QStringLiteral("Installed"));
    EXPECT_EQ(page->versionText(), QStringLiteral("Version 0.3"));
    EXPECT_EQ(page->reinstallText(), QStringLiteral("Reinstall Plugin"));
}

TEST_F(InstallPage, aPluginThatNamesNoVersionIsOfAnUnknownOne) {
    givenInstalled("no JSON");
    EXPECT_EQ(page->statusText(), QStringLiteral("Installed"));
    EXPECT_EQ(page->versionText(), QStringLiteral("Version Unknown"));
}

TEST_F(InstallPage, whileItInstallsItSaysSoAndASecondClickDoesNothing) {
    administrator->hold();
    const QSignalSpy told(page.get(), &InstallViewModel::changed);
    page->install();
    page->install();
    ASSERT_TRUE(waitUntil([this] { return page->isBusy(); }));
    EXPECT_EQ(page->installText(), QStringLiteral("Installing..."));
    EXPECT_EQ(page->reinstallText(), QStringLiteral("Working..."));
    EXPECT_GT(told.count(), 0);
    page->reinstall();
    page->uninstall();
    turn();
    EXPECT_THAT(administrator->sources, SizeIs(1));
    administrator->letGo();
    ASSERT_TRUE(ends());
    turn();
    EXPECT_EQ(page->installText(), QStringLiteral("Install Plugin"));
    EXPECT_THAT(administrator->sources, SizeIs(1));
}

TEST_F(InstallPage, anInstallationIsSeenOnceItEnds) {
    page->install();
    disk.write("plugins/zuvo/version.json", R"({"version":"0.1.0-beta"})"); // what the administrator's copy leaves
    ASSERT_TRUE(ends());
    EXPECT_TRUE(page->isInstalled());
    EXPECT_EQ(page->versionText(), QStringLiteral("Version 0.1.0-beta"));
}

TEST_F(InstallPage, aPasswordThatIsNotGivenIsToldAsTheManagerSaysIt) {
    administrator->thenFails("User canceled.");
    page->install();
    ASSERT_TRUE(ends());
    EXPECT_EQ(page->errorMessage(), QStringLiteral("Installation failed: User canceled."));
    EXPECT_FALSE(page->isInstalled());
    EXPECT_FALSE(page->isBusy());
}

TEST_F(InstallPage, uninstallingAsksFirst) {
    givenInstalled();
    const QSignalSpy asked(page.get(), &InstallViewModel::confirmsUninstallChanged);
    page->askToUninstall();
    page->askToUninstall();
    EXPECT_TRUE(page->confirmsUninstall());
    EXPECT_EQ(asked.count(), 1);
    turn();
    EXPECT_THAT(administrator->sources, IsEmpty());
}

TEST_F(InstallPage, cancellingTheQuestionRemovesNothing) {
    givenInstalled();
    page->askToUninstall();
    page->cancelUninstall();
    EXPECT_FALSE(page->confirmsUninstall());
    turn();
    EXPECT_THAT(administrator->sources, IsEmpty());
    EXPECT_TRUE(page->isInstalled());
}

TEST_F(InstallPage, theQuestionsOwnButtonRemovesThePlugin) {
    givenInstalled();
    page->askToUninstall();
    page->uninstall();
    EXPECT_FALSE(page->confirmsUninstall());
    std::filesystem::remove_all(pluginPath); // what the administrator's line does
    ASSERT_TRUE(ends());
    EXPECT_EQ(page->statusText(), QStringLiteral("Not Installed"));
    EXPECT_THAT(administrator->sources, SizeIs(1));
}

TEST_F(InstallPage, aRemovalThatFailsIsToldInTheWordsOfAnInstallation) {
    givenInstalled();
    administrator->thenFails("rm: no");
    page->uninstall();
    ASSERT_TRUE(ends());
    EXPECT_EQ(page->errorMessage(), QStringLiteral("Installation failed: rm: no"));
    EXPECT_TRUE(page->isInstalled());
}

TEST_F(InstallPage, aReinstallationRemovesThenInstalls) {
    givenInstalled();
    page->reinstall();
    ASSERT_TRUE(waitUntil([this] { return administrator->sources.size() == 2 && !page->isBusy(); }));
    EXPECT_EQ(page->errorMessage(), QString());
}

TEST_F(InstallPage, aReinstallationThatCannotRemoveDoesNotInstall) {
    givenInstalled();
    administrator->thenFails("rm: no");
    page->reinstall();
    ASSERT_TRUE(ends());
    turn();
    EXPECT_THAT(administrator->sources, SizeIs(1));
}

TEST_F(InstallPage, aPageThatIsGoneWhileThePasswordIsAskedForIsNotMissed) {
    administrator->hold();
    page->install();
    ASSERT_TRUE(waitUntil([this] { return !administrator->sources.empty(); }));
    page.reset();
    administrator->letGo();
    EXPECT_TRUE(waitUntil([this] { return !manager->isLoading(); }));
    EXPECT_EQ(manager->statusMessage(), "Plugin installed successfully!");
}
