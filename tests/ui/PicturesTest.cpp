#include "fakes/CoroutineTest.h"
#include "ui/InstallViewModel.h"
#include "ui/UiWorld.h"
#include "ui/UpdateViewModel.h"
#include "ui/WindowDriver.h"

#include <QDir>
#include <gmock/gmock.h>

// A picture of every state of the pages, for a person to look at: they are written to the folder that the variable
// ZUVO_PICTURES names, and thrown away without it. What the tests themselves check is that each state comes about and
// that the picture shows something.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class Pictures : public testing::Test {
protected:
    void launchSignedIn() {
        world.givenSignedInBefore();
        world.launch();
        driver = std::make_unique<WindowDriver>(&world.content());
        ASSERT_TRUE(waitUntil([this] { return world.content().isSignedIn(); }));
    }
    void launchSignedOut() {
        world.launch();
        driver = std::make_unique<WindowDriver>(&world.content());
    }

    void take(const QString& name) {
        const auto image = driver->picture();
        EXPECT_GT(image.width(), 0);
        EXPECT_NE(image.pixelColor(image.width() / 2, image.height() / 2).alpha(), 0);
        const auto folder = qEnvironmentVariable("ZUVO_PICTURES");
        if (folder.isEmpty())
            return;
        QDir().mkpath(folder);
        EXPECT_TRUE(image.save(folder + QLatin1Char('/') + name + QStringLiteral(".png")));
    }

    UiWorld world;
    std::unique_ptr<WindowDriver> driver;
};

} // namespace

TEST_F(Pictures, signIn) {
    launchSignedOut();
    ASSERT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    take(QStringLiteral("01-sign-in-a-default"));
    driver->click(QStringLiteral("tokenChoiceButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("tokenField")));
    world.services.fail(standin::Service::me, standin::Failure::status(401, "Unauthorized"));
    driver->type(QStringLiteral("zuvo_7kq2m9xw41td"));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    take(QStringLiteral("01-sign-in-b-token-error"));
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
    take(QStringLiteral("08-account"));
    driver->resize(900, 600);
    take(QStringLiteral("08-account-minimum-window"));
    driver->resize(2560, 1440);
    take(QStringLiteral("08-account-large-window"));
}

TEST_F(Pictures, updates) {
    launchSignedIn();
    world.services.setVersion({"0.2.0", world.services.accountBase().toStdString() + "/downloads/zuvo-plugin.zip",
                               "Faster hand-off of chapters and markers to Resolve.\nSubtitle cards keep their place "
                               "after a ripple delete.\nFixes a panel that stayed empty after a project switch."});
    world.content().setSelectedTab(ContentViewModel::updatesTab);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("availableCard")));
    take(QStringLiteral("09-updates-a-available"));
    world.services.setVersion({"0.1.0", std::nullopt, std::nullopt});
    driver->click(QStringLiteral("checkButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("upToDateCard")));
    take(QStringLiteral("09-updates-b-up-to-date"));
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
