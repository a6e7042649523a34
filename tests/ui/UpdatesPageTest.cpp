#include "platform/ResourceFolder.h"
#include "ui/ShellFixture.h"
#include "ui/UpdateViewModel.h"

#include <filesystem>

// The page that looks for a newer plugin, against the stand-in, with the real unzip, cp and rm.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class UpdatesPageTest : public ShellFixture {
protected:
    UpdatesPageTest() {
        world.administrator->runsWithin(world.disk(), world.platform.processes);
        world.disk().makeFolder("plugins");
    }

    void openPage() {
        launchSignedIn();
        driver->click(QStringLiteral("tab2"));
        ASSERT_TRUE(driver->waitFor(QStringLiteral("latestRow")));
    }
    [[nodiscard]] QString latest() { return driver->find(QStringLiteral("latestRow"))->property("version").toString(); }
    [[nodiscard]] bool waitForCheck() {
        return waitUntil([this] { return !world.page<UpdateViewModel>()->isChecking(); });
    }
    void serviceHas(const std::string& version, std::optional<std::string> notes = {}) {
        world.services.setVersion(
            {version, world.services.accountBase().toStdString() + "/downloads/zuvo-plugin.zip", std::move(notes)});
    }
};

const QString checkButton = QStringLiteral("checkButton");
const QString installButton = QStringLiteral("installButton");
const QString availableCard = QStringLiteral("availableCard");
const QString upToDateCard = QStringLiteral("upToDateCard");
const QString notesCard = QStringLiteral("notesCard");
const QString errorView = QStringLiteral("errorView");

} // namespace

TEST_F(UpdatesPageTest, thePageChecksOnceWhenItIsShown) {
    openPage();
    ASSERT_TRUE(waitForCheck());
    runEventLoop(std::chrono::milliseconds(30));
    EXPECT_EQ(world.services.requests(standin::Service::version).size(), 1U);
}

TEST_F(UpdatesPageTest, whileItChecksTheButtonRestsAndTheLatestIsNotTold) {
    world.services.fail(standin::Service::version, standin::Failure::late(std::chrono::milliseconds(400)));
    openPage();
    EXPECT_TRUE(driver->showsText(QStringLiteral("Checking...")));
    EXPECT_FALSE(driver->findEvenDisabled(checkButton)->isEnabled());
    EXPECT_EQ(latest(), QStringLiteral("..."));
    EXPECT_FALSE(driver->shows(upToDateCard));
    EXPECT_FALSE(driver->shows(availableCard));
    ASSERT_TRUE(waitForCheck());
    EXPECT_TRUE(driver->showsText(QStringLiteral("Check for Updates")));
    EXPECT_EQ(latest(), QStringLiteral("0.2.0"));
}

TEST_F(UpdatesPageTest, aNewerVersionIsOfferedWithItsNotes) {
    serviceHas("0.2.0", "Faster hand-off");
    openPage();
    ASSERT_TRUE(driver->waitFor(availableCard));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Update Available")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Version 0.2.0 is ready to install")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Download & Install")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("1.0.0")));
    EXPECT_TRUE(driver->shows(notesCard));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Faster hand-off")));
    EXPECT_FALSE(driver->shows(upToDateCard));
    EXPECT_FALSE(driver->shows(errorView));
}

TEST_F(UpdatesPageTest, notesAreTextAndNoMarkup) {
    serviceHas("0.2.0", "<b>bold</b> <img src='http://127.0.0.1:9/x.png'>");
    openPage();
    ASSERT_TRUE(driver->waitFor(notesCard));
    EXPECT_TRUE(driver->showsText(QStringLiteral("<b>bold</b> <img src='http://127.0.0.1:9/x.png'>")));
}

TEST_F(UpdatesPageTest, theSameVersionIsUpToDateAndHasNoNotes) {
    serviceHas("0.1.0");
    openPage();
    ASSERT_TRUE(driver->waitFor(upToDateCard));
    EXPECT_TRUE(driver->showsText(QStringLiteral("You're up to date!")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("The latest version is installed")));
    EXPECT_FALSE(driver->shows(availableCard));
    EXPECT_FALSE(driver->shows(notesCard));
}

TEST_F(UpdatesPageTest, aFailedCheckIsToldAndTheLatestIsUnknown) {
    world.services.fail(standin::Service::version, standin::Failure::status(500, "The service is being repaired"));
    openPage();
    ASSERT_TRUE(driver->waitFor(errorView));
    const auto words = driver->find(errorView)->property("text").toString();
    EXPECT_THAT(words.toStdString(), testing::HasSubstr("The service is being repaired"));
    EXPECT_EQ(latest(), QStringLiteral("—"));
    EXPECT_FALSE(driver->shows(upToDateCard));
    // The next check that succeeds takes the failure away.
    world.services.failNothing();
    serviceHas("0.1.0");
    driver->click(checkButton);
    EXPECT_TRUE(driver->waitFor(upToDateCard));
    EXPECT_FALSE(driver->shows(errorView));
}

TEST_F(UpdatesPageTest, anUpdateIsInstalledAndAsksForARestart) {
    openPage();
    ASSERT_TRUE(driver->waitFor(installButton));
    driver->click(installButton);
    EXPECT_TRUE(driver->showsText(QStringLiteral("Installing...")));
    EXPECT_FALSE(driver->findEvenDisabled(installButton)->isEnabled());
    EXPECT_TRUE(driver->waitFor(QStringLiteral("installedNotice")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Update installed! Restart DaVinci Resolve to apply changes.")));
    EXPECT_FALSE(driver->shows(availableCard));
    EXPECT_FALSE(driver->shows(errorView));
    EXPECT_TRUE(std::filesystem::exists(world.pluginDirectory() + "/manifest.json"));
}

TEST_F(UpdatesPageTest, theKeyboardInstallsAnUpdate) {
    openPage();
    ASSERT_TRUE(driver->waitFor(installButton));
    ASSERT_TRUE(driver->tabTo(installButton));
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("installedNotice")));
}

TEST_F(UpdatesPageTest, anArchiveThatIsNoneIsAFailureAndTheOfferStays) {
    world.services.setArchive("no archive");
    openPage();
    ASSERT_TRUE(driver->waitFor(installButton));
    driver->click(installButton);
    EXPECT_TRUE(driver->waitFor(errorView));
    EXPECT_TRUE(driver->waitFor(installButton));
    EXPECT_FALSE(driver->shows(QStringLiteral("installedNotice")));
}

TEST_F(UpdatesPageTest, aBuildWithoutAKeySaysThatUpdatesAreNotSigned) {
    openPage();
    EXPECT_TRUE(driver->showsText(QStringLiteral("Updates are not signed: this build has no key to check them with.")));
}

TEST_F(UpdatesPageTest, withoutAPluginOneCanBeInstalledFromHere) {
    // A copy, since administrator's lines run only within the test's folder.
    const auto shipped = resourceFolder(ownBuildTree().folder + "/src").value_or("missing");
    std::filesystem::create_directories(world.disk() / "resources");
    std::filesystem::copy(shipped + "/plugin", world.disk() / "resources/plugin",
                          std::filesystem::copy_options::recursive);
    world.resourceFolder = world.disk() / "resources";
    openPage();
    ASSERT_TRUE(driver->waitForText(QStringLiteral("The Resolve plugin is not installed")));
    driver->click(QStringLiteral("pluginButton"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("DaVinci Resolve Workflow Integration")));
    EXPECT_FALSE(driver->shows(checkButton));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Not Installed")));
    driver->click(QStringLiteral("installButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("reinstallButton")));
    EXPECT_TRUE(std::filesystem::exists(world.pluginDirectory() + "/version.json"));
    driver->click(QStringLiteral("pluginBackButton"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("The Resolve plugin is installed: version 0.1.0-beta")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Manage Plugin")));
    EXPECT_TRUE(driver->shows(checkButton));
}

TEST_F(UpdatesPageTest, theKeyboardOpensThePluginsPageAndLeavesIt) {
    openPage();
    ASSERT_TRUE(waitForCheck());
    ASSERT_TRUE(driver->tabTo(QStringLiteral("pluginButton")));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("pluginBackButton")));
    ASSERT_TRUE(driver->tabTo(QStringLiteral("pluginBackButton")));
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(driver->waitFor(checkButton));
}

TEST_F(UpdatesPageTest, leavingThePageInTheMiddleOfACheckHarmsNothing) {
    world.services.fail(standin::Service::version, standin::Failure::late(std::chrono::milliseconds(200)));
    openPage();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("signOutButton")));
    runEventLoop(std::chrono::milliseconds(300));
    driver->click(QStringLiteral("tab2"));
    EXPECT_TRUE(driver->waitFor(availableCard));
}
