#include "ui/PluginPageFixture.h"

// The page that installs and removes the plugin, with the real cp and rm.

using namespace zuvo;
using namespace zuvo::tests;
using testing::IsEmpty;

namespace {

class PluginPageTest : public PluginPageFixture {
protected:
    PluginPageTest() = default;

    [[nodiscard]] bool isInstalled() const { return std::filesystem::exists(world.pluginDirectory()); }
};

const QString installButton = QStringLiteral("installButton");
const QString reinstallButton = QStringLiteral("reinstallButton");
const QString uninstallButton = QStringLiteral("uninstallButton");

} // namespace

TEST_F(PluginPageTest, withoutAPluginItOffersToInstall) {
    show();
    for (const auto* text : {"Zuvo Plugin", "DaVinci Resolve Workflow Integration", "Installation Status",
                             "Not Installed", "Install Plugin", "Requirements", "DaVinci Resolve Studio 18+",
                             "Free version not supported", "macOS 12 or later", "Monterey, Ventura, Sonoma, Sequoia",
                             "Admin privileges", "Required for plugin installation"})
        EXPECT_TRUE(driver->showsText(QLatin1String(text))) << text;
    EXPECT_FALSE(driver->shows(reinstallButton));
    EXPECT_FALSE(driver->shows(uninstallButton));
    EXPECT_FALSE(driver->shows(QStringLiteral("errorView")));
}

TEST_F(PluginPageTest, withAPluginItTellsItsVersionAndOffersBothOthers) {
    givenInstalled("0.1.0-beta");
    show();
    for (const auto* text : {"Installed", "Version 0.1.0-beta", "Reinstall Plugin", "Uninstall Plugin"})
        EXPECT_TRUE(driver->showsText(QLatin1String(text))) << text;
    EXPECT_FALSE(driver->shows(installButton));
}

TEST_F(PluginPageTest, aClickInstalls) {
    show();
    driver->click(installButton);
    EXPECT_TRUE(driver->showsText(QStringLiteral("Installing...")));
    EXPECT_FALSE(driver->findEvenDisabled(installButton)->isEnabled());
    EXPECT_TRUE(driver->waitFor(reinstallButton));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Installed")));
    EXPECT_TRUE(isInstalled());
}

TEST_F(PluginPageTest, whileItReinstallsBothButtonsRest) {
    givenInstalled();
    show();
    driver->click(reinstallButton);
    EXPECT_TRUE(driver->showsText(QStringLiteral("Working...")));
    EXPECT_FALSE(driver->shows(uninstallButton));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Reinstall Plugin")));
    EXPECT_TRUE(isInstalled());
}

TEST_F(PluginPageTest, aFailureIsToldInItsOwnWordsAsText) {
    TemporaryFolder elsewhere;
    world.administrator = std::make_shared<RecordingAdministratorShell>();
    world.administrator->thenFails("The <b>disk</b> is full");
    show();
    driver->click(installButton);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    EXPECT_THAT(driver->find(QStringLiteral("errorView"))->property("text").toString().toStdString(),
                testing::HasSubstr("The <b>disk</b> is full"));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Not Installed")));
    EXPECT_TRUE(driver->shows(installButton));
}

TEST_F(PluginPageTest, uninstallAsksFirst) {
    givenInstalled();
    show();
    openAlert();
    EXPECT_TRUE(driver->showsText(QStringLiteral("Uninstall Zuvo?")));
    EXPECT_TRUE(driver->showsText(
        QStringLiteral("This will remove the Zuvo plugin from DaVinci Resolve. You can reinstall it at any time.")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Cancel")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Uninstall")));
    EXPECT_TRUE(isInstalled());
}

TEST_F(PluginPageTest, cancelKeepsThePlugin) {
    givenInstalled();
    show();
    openAlert();
    driver->click(QStringLiteral("keepButton"));
    EXPECT_TRUE(waitUntilAlertHasGone());
    EXPECT_FALSE(model->confirmsUninstall());
    EXPECT_THAT(world.administrator->sources, IsEmpty());
    EXPECT_TRUE(isInstalled());
}

TEST_F(PluginPageTest, escapeKeepsThePluginAndTheAlertCanBeOpenedAgain) {
    givenInstalled();
    show();
    for (int times = 0; times < 3; ++times) {
        openAlert();
        driver->press(Qt::Key_Escape);
        EXPECT_TRUE(waitUntilAlertHasGone());
        EXPECT_FALSE(model->confirmsUninstall());
    }
    EXPECT_THAT(world.administrator->sources, IsEmpty());
}

TEST_F(PluginPageTest, returnPressesTheSafeButtonAtFirst) {
    givenInstalled();
    show();
    openAlert();
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(waitUntilAlertHasGone());
    runEventLoop(std::chrono::milliseconds(50));
    EXPECT_THAT(world.administrator->sources, IsEmpty());
    EXPECT_TRUE(isInstalled());
}

TEST_F(PluginPageTest, theDestructiveButtonRemovesThePlugin) {
    givenInstalled();
    show();
    openAlert();
    driver->click(QStringLiteral("proceedButton"));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Not Installed")));
    EXPECT_TRUE(waitUntilAlertHasGone());
    EXPECT_FALSE(isInstalled());
}

TEST_F(PluginPageTest, theKeyboardAloneRemovesThePlugin) {
    givenInstalled();
    show();
    ASSERT_TRUE(driver->tabTo(uninstallButton));
    driver->press(Qt::Key_Space);
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("proceedButton"));
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Not Installed")));
    EXPECT_FALSE(isInstalled());
}

TEST_F(PluginPageTest, theKeyboardStaysWithinTheAlert) {
    givenInstalled();
    show();
    openAlert();
    for (const auto* name : {"proceedButton", "keepButton", "proceedButton", "keepButton"}) {
        driver->press(Qt::Key_Tab);
        EXPECT_EQ(driver->focusedName().toStdString(), name);
    }
}

TEST_F(PluginPageTest, aClickBesideTheAlertDoesNothing) {
    givenInstalled();
    show();
    openAlert();
    driver->click(QPoint(20, 20));
    const auto* button = driver->findEvenDisabled(uninstallButton);
    driver->click(button->mapToScene({5, 5}).toPoint());
    runEventLoop(std::chrono::milliseconds(50));
    EXPECT_TRUE(model->confirmsUninstall());
    EXPECT_TRUE(driver->shows(QStringLiteral("keepButton")));
}

TEST_F(PluginPageTest, theKeyboardIsBackOnTheButtonWhenTheAlertHasGone) {
    givenInstalled();
    show();
    ASSERT_TRUE(driver->tabTo(uninstallButton));
    driver->press(Qt::Key_Space);
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    driver->press(Qt::Key_Escape);
    EXPECT_TRUE(waitUntilAlertHasGone());
    EXPECT_TRUE(waitUntil([this] { return driver->focusedName() == uninstallButton; }));
}
