#include "ui/PluginPageFixture.h"
#include "ui/ScreenReader.h"
#include "ui/ShellFixture.h"

#include <QQuickItem>
#include <algorithm>
#include <map>

// What a screen reader is told of each page.

using namespace zuvo;
using namespace zuvo::tests;
using testing::Contains;
using testing::Not;

namespace {

std::vector<std::string> operatedNames(const std::vector<Told>& told) {
    std::vector<std::string> names;
    for (const auto& each : told) {
        if (isOperated(each.role))
            names.push_back(each.name);
    }
    return names;
}

std::vector<std::string> textNames(const std::vector<Told>& told) {
    std::vector<std::string> names;
    for (const auto& each : told) {
        if (each.role == QAccessible::StaticText || each.role == QAccessible::AlertMessage)
            names.push_back(each.name);
    }
    return names;
}

class AccessibilityTest : public ShellFixture {};
class PluginPageAccessibilityTest : public PluginPageFixture {};

} // namespace

TEST_F(AccessibilityTest, theSignInPageIsToldWhole) {
    launchSignedOut();
    expectAllNamed(*driver);
    const auto told = toldOf(*driver);
    EXPECT_EQ(told.front().role, QAccessible::Window);
    EXPECT_THAT(operatedNames(told), Contains("Sign in with Google"));
    EXPECT_THAT(operatedNames(told), Contains("Sign in with token"));
    EXPECT_THAT(textNames(told), Contains("Welcome to Zuvo"));
}

TEST_F(AccessibilityTest, theTokenFieldIsToldWithItsName) {
    launchSignedOut();
    driver->click(QStringLiteral("tokenChoiceButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("tokenField")));
    expectAllNamed(*driver);
    const auto told = toldOf(*driver);
    const auto field =
        std::find_if(told.begin(), told.end(), [](const Told& each) { return each.role == QAccessible::EditableText; });
    ASSERT_NE(field, told.end());
    EXPECT_EQ(field->name, "API Token");
    EXPECT_THAT(operatedNames(told), Contains("Sign In"));
}

TEST_F(AccessibilityTest, aFailureIsToldAsAnAlert) {
    launchSignedOut();
    world.services.fail(standin::Service::me, standin::Failure::status(500, "The service is being repaired"));
    driver->click(QStringLiteral("tokenChoiceButton"));
    ASSERT_TRUE(waitForFocus(QStringLiteral("tokenField")));
    driver->type(QStringLiteral("zuvo_a"));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    const auto told = toldOf(*driver);
    const auto alert =
        std::find_if(told.begin(), told.end(), [](const Told& each) { return each.role == QAccessible::AlertMessage; });
    ASSERT_NE(alert, told.end());
    EXPECT_THAT(alert->name, testing::HasSubstr("The service is being repaired"));
}

TEST_F(AccessibilityTest, theWaitingIsToldWhole) {
    launchSignedOut();
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    expectAllNamed(*driver);
    EXPECT_THAT(textNames(toldOf(*driver)), Contains("Waiting for browser sign-in..."));
}

TEST_F(AccessibilityTest, theSidebarTellsWhichEntryIsChosen) {
    launchSignedIn();
    expectAllNamed(*driver);
    std::vector<std::pair<std::string, bool>> entries;
    for (const auto& each : toldOf(*driver)) {
        if (each.object != nullptr && each.object->objectName().startsWith(QLatin1String("tab")))
            entries.emplace_back(each.name, (each.state.selected != 0));
    }
    EXPECT_THAT(entries, testing::ElementsAre(testing::Pair("The Mine", true), testing::Pair("Account", false),
                                              testing::Pair("Updates", false)));
}

TEST_F(AccessibilityTest, theWindowButtonsHaveTheirNames) {
    launchSignedIn();
    EXPECT_THAT(operatedNames(toldOf(*driver)), testing::IsSupersetOf({"Close", "Minimise", "Zoom"}));
}

TEST_F(AccessibilityTest, theAccountIsToldWhole) {
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton")));
    expectAllNamed(*driver);
    const auto told = toldOf(*driver);
    EXPECT_THAT(operatedNames(told),
                testing::IsSupersetOf({"Refresh account", "Buy Credits", "Manage Billing", "Sign Out"}));
    EXPECT_THAT(textNames(told), testing::IsSupersetOf({"Account", "Marta Carballo", "marta@farofilms.example", "24",
                                                        "credits", "Studio", "PRO"}));
    EXPECT_THAT(operatedNames(told), Not(Contains("Sign in with Google")));
}

TEST_F(AccessibilityTest, theUpdatesAreToldWhole) {
    launchSignedIn();
    world.services.setVersion({"0.2.0", "http://127.0.0.1/a.zip", "Faster hand-off"});
    driver->click(QStringLiteral("tab2"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("availableCard")));
    expectAllNamed(*driver);
    const auto told = toldOf(*driver);
    EXPECT_THAT(operatedNames(told), testing::IsSupersetOf({"Check for Updates", "Download & Install"}));
    EXPECT_THAT(textNames(told), testing::IsSupersetOf({"Update Available", "Release Notes", "Faster hand-off"}));
    EXPECT_THAT(textNames(told), Not(Contains("You're up to date!")));
}

TEST_F(AccessibilityTest, theFlowIsToldWhole) {
    launchSignedIn();
    for (const auto step :
         {MineStep::style, MineStep::processing, MineStep::review, MineStep::done, MineStep::setup, MineStep::done}) {
        world.page<MineViewModel>()->advanceTo(step);
        runEventLoop(std::chrono::milliseconds(450)); // the page before has gone
        expectAllNamed(*driver);
    }
    EXPECT_THAT(operatedNames(toldOf(*driver)),
                testing::IsSupersetOf({"Into the Mine", "The Lantern", "The Dig", "The Discovery", "Daylight"}));
}

TEST_F(AccessibilityTest, aStepTellsWhetherItCanBeGoneTo) {
    launchSignedIn();
    world.page<MineViewModel>()->advanceTo(MineStep::style);
    runEventLoop(std::chrono::milliseconds(450));
    std::map<std::string, std::string> steps;
    for (const auto& each : toldOf(*driver)) {
        if (isOperated(each.role))
            steps[each.name] = each.description;
    }
    EXPECT_EQ(steps["Into the Mine"], "Go back to this step");
    EXPECT_EQ(steps["The Lantern"], "Current step");
    EXPECT_EQ(steps["Daylight"], "Not reached yet");
}

TEST_F(PluginPageAccessibilityTest, thePluginIsToldWhole) {
    givenInstalled();
    show();
    expectAllNamed(*driver);
    const auto told = toldOf(*driver);
    EXPECT_THAT(operatedNames(told), testing::UnorderedElementsAre("Reinstall Plugin", "Uninstall Plugin"));
    EXPECT_THAT(textNames(told), testing::IsSupersetOf({"Installed", "Version 0.1.0-beta", "Admin privileges"}));
}

TEST_F(PluginPageAccessibilityTest, theAlertIsToldWithItsQuestionAndItsButtons) {
    givenInstalled();
    show();
    openAlert();
    expectAllNamed(*driver);
    const auto told = toldOf(*driver);
    EXPECT_THAT(operatedNames(told), testing::IsSupersetOf({"Cancel", "Uninstall"}));
    EXPECT_THAT(textNames(told), Contains("Uninstall Zuvo?"));
}
