#include "fakes/CoroutineTest.h"
#include "ui/PluginPageFixture.h"
#include "ui/ShellFixture.h"
#include "ui/TakePicture.h"
#include "ui/UpdateViewModel.h"

#include <gmock/gmock.h>

// A picture of every state of the pages, for a person to look at. What the tests themselves check is that each state
// comes about and that the picture shows something.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// In the usual size and in the smallest.
void takeBothSizes(WindowDriver& driver, const QString& name) {
    driver.resize(1100, 750);
    takePicture(driver, name);
    driver.resize(900, 600);
    takePicture(driver, name + QStringLiteral("-minimum-window"));
    driver.resize(1100, 750);
}

class Pictures : public ShellFixture {
protected:
    void take(const QString& name) { takePicture(*driver, name); }
};
class PluginPictures : public PluginPageFixture {};

} // namespace

TEST_F(Pictures, signIn) {
    launchSignedOut();
    ASSERT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    takeBothSizes(*driver, QStringLiteral("01-sign-in-a-default"));
    driver->press(Qt::Key_Tab);
    take(QStringLiteral("01-sign-in-a-keyboard"));
    driver->click(QStringLiteral("tokenChoiceButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("tokenField")));
    world.services.fail(standin::Service::me, standin::Failure::status(401, "Unauthorized"));
    driver->type(QStringLiteral("zuvo_7kq2m9xw41td"));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    takeBothSizes(*driver, QStringLiteral("01-sign-in-b-token-error"));
    driver->click(QStringLiteral("tokenBackButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    take(QStringLiteral("01-sign-in-c-waiting"));
}

TEST_F(Pictures, account) {
    launchSignedIn();
    world.content().setSelectedTab(ContentViewModel::accountTab);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("signOutButton")));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton")));
    takeBothSizes(*driver, QStringLiteral("08-account"));
    driver->resize(2560, 1440);
    take(QStringLiteral("08-account-large-window"));
    driver->resize(1100, 750);
    for (const auto* name : {"refreshButton", "buyCreditsButton", "signOutButton"}) {
        ASSERT_TRUE(driver->tabTo(QLatin1String(name)));
        take(QStringLiteral("08-account-keyboard-") + QLatin1String(name));
    }
}

TEST_F(Pictures, accountWithoutANameOrAPlan) {
    world.services.setAccount({"user-1", "", "marta@farofilms.example", 0, ""});
    launchSignedIn();
    world.content().setSelectedTab(ContentViewModel::accountTab);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton")));
    takeBothSizes(*driver, QStringLiteral("08-account-free-no-name"));
}

TEST_F(Pictures, updates) {
    launchSignedIn();
    world.services.setVersion({"0.2.0", world.services.accountBase().toStdString() + "/downloads/zuvo-plugin.zip",
                               "Faster hand-off of chapters and markers to Resolve.\nSubtitle cards keep their place "
                               "after a ripple delete.\nFixes a panel that stayed empty after a project switch."});
    world.content().setSelectedTab(ContentViewModel::updatesTab);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("availableCard")));
    takeBothSizes(*driver, QStringLiteral("09-updates-a-available"));
    world.services.setVersion({"0.1.0", std::nullopt, std::nullopt});
    driver->click(QStringLiteral("checkButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("upToDateCard")));
    takeBothSizes(*driver, QStringLiteral("09-updates-b-up-to-date"));
    world.services.fail(standin::Service::version, standin::Failure::status(500, "The service is being repaired"));
    driver->click(QStringLiteral("checkButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    take(QStringLiteral("09-updates-c-error"));
}

TEST_F(Pictures, flow) {
    launchSignedIn();
    ASSERT_TRUE(driver->waitFor(QStringLiteral("step0")));
    take(QStringLiteral("02-setup-frame"));
    auto* flow = world.page<MineViewModel>();
    ASSERT_NE(flow, nullptr);
    flow->advanceTo(MineStep::review);
    take(QStringLiteral("05-discovery-frame"));
    driver->resize(900, 600);
    take(QStringLiteral("05-discovery-frame-minimum-window"));
    flow->advanceTo(MineStep::done);
    take(QStringLiteral("06-daylight-frame-minimum-window"));
}

TEST_F(PluginPictures, notInstalled) {
    show({1100, 750});
    takeBothSizes(*driver, QStringLiteral("10-plugin-not-installed"));
}

TEST_F(PluginPictures, installed) {
    givenInstalled();
    show({1100, 750});
    takeBothSizes(*driver, QStringLiteral("10-plugin"));
    ASSERT_TRUE(driver->tabTo(QStringLiteral("reinstallButton")));
    takePicture(*driver, QStringLiteral("10-plugin-keyboard"));
    openAlert();
    takeBothSizes(*driver, QStringLiteral("10-plugin-alert"));
}

TEST_F(PluginPictures, failed) {
    world.administrator = std::make_shared<RecordingAdministratorShell>();
    world.administrator->thenFails("The administrator's password was not given.");
    givenInstalled();
    show({1100, 750});
    driver->click(QStringLiteral("reinstallButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    takeBothSizes(*driver, QStringLiteral("10-plugin-error"));
}
