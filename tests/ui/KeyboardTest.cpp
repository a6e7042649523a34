#include "ui/PluginPageFixture.h"
#include "ui/ShellFixture.h"

#include <algorithm>

// The keyboard alone: Tab comes to every button in the order of reading, and shows where it is.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// Where Tab leads, from the first control to the last, once round.
std::vector<QQuickItem*> tabStops(WindowDriver& driver) {
    std::vector<QQuickItem*> stops;
    constexpr int moreThanAnyPageHas = 60;
    for (int presses = 0; presses < moreThanAnyPageHas; ++presses) {
        driver.press(Qt::Key_Tab);
        auto* item = driver.window().activeFocusItem();
        if (item == nullptr || (!stops.empty() && item == stops.front()))
            break;
        stops.push_back(item);
    }
    return stops;
}

/// Controls that can be pressed or typed into: they take the keyboard by Tab.
std::vector<QQuickItem*> controls(WindowDriver& driver) {
    std::vector<QQuickItem*> found;
    for (auto* item : driver.shownItems()) {
        const bool isButton = item->inherits("QQuickAbstractButton") && item->property("focusPolicy").toInt() != 0;
        if (item->isEnabled() && (isButton || item->inherits("QQuickTextField")))
            found.push_back(item);
    }
    return found;
}

std::string nameOf(const QQuickItem* item) {
    return item == nullptr ? "nothing" : item->objectName().toStdString();
}

bool showsItsRing(const QQuickItem* item) {
    if (item->inherits("QQuickTextField"))
        return item->hasActiveFocus(); // its own border is lit
    const auto children = item->childItems();
    return std::any_of(children.begin(), children.end(), [](const QQuickItem* child) {
        return QString::fromLatin1(child->metaObject()->className()).startsWith(QLatin1String("FocusRing")) &&
               child->isVisible();
    });
}

/// A page is read from the sidebar to what stands beside it, and in each from the top to the bottom.
bool isReadBefore(const QQuickItem* a, const QQuickItem* b, double sidebarWidth) {
    const auto placeA = a->mapToScene({a->width() / 2, a->height() / 2});
    const auto placeB = b->mapToScene({b->width() / 2, b->height() / 2});
    const bool isBesideA = placeA.x() > sidebarWidth;
    const bool isBesideB = placeB.x() > sidebarWidth;
    if (isBesideA != isBesideB)
        return isBesideB;
    constexpr double sameLine = 8;
    return placeA.y() < placeB.y() - sameLine ||
           (std::abs(placeA.y() - placeB.y()) <= sameLine && placeA.x() < placeB.x());
}

void expectKeyboardReachesAll(WindowDriver& driver, double sidebarWidth) {
    auto expected = controls(driver);
    ASSERT_FALSE(expected.empty());
    auto stops = tabStops(driver);
    for (auto* item : expected)
        EXPECT_TRUE(std::find(stops.begin(), stops.end(), item) != stops.end()) << nameOf(item) << " is not reached";
    for (auto* item : stops)
        EXPECT_TRUE(std::find(expected.begin(), expected.end(), item) != expected.end())
            << nameOf(item) << " is no control";
    // The round may have begun anywhere.
    const auto first = std::min_element(stops.begin(), stops.end(), [&](const QQuickItem* a, const QQuickItem* b) {
        return isReadBefore(a, b, sidebarWidth);
    });
    std::rotate(stops.begin(), first, stops.end());
    for (std::size_t i = 1; i < stops.size(); ++i)
        EXPECT_TRUE(isReadBefore(stops[i - 1], stops[i], sidebarWidth))
            << nameOf(stops[i - 1]) << " is before " << nameOf(stops[i]);

    for (std::size_t i = 0; i < stops.size(); ++i) {
        driver.press(Qt::Key_Tab);
        const auto* item = driver.window().activeFocusItem();
        EXPECT_TRUE(item != nullptr && showsItsRing(item)) << nameOf(item);
    }
    // And back the same way.
    const auto* before = driver.window().activeFocusItem();
    driver.press(Qt::Key_Tab);
    driver.press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(driver.window().activeFocusItem(), before);
}

class KeyboardTest : public ShellFixture {
protected:
    static constexpr double sidebarWidth = 220;
};
class PluginPageKeyboardTest : public PluginPageFixture {};

} // namespace

TEST_F(KeyboardTest, tabComesToEveryButtonOfTheSignInPage) {
    launchSignedOut();
    expectKeyboardReachesAll(*driver, 0);
}

TEST_F(KeyboardTest, tabComesToTheTokenFieldAndItsButtons) {
    launchSignedOut();
    driver->click(QStringLiteral("tokenChoiceButton"));
    ASSERT_TRUE(waitForFocus(QStringLiteral("tokenField")));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("tokenField"))); // it comes gently
    driver->type(QStringLiteral("a"));
    expectKeyboardReachesAll(*driver, 0);
}

TEST_F(KeyboardTest, tabComesToTheButtonOfTheWaiting) {
    launchSignedOut();
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(waitForFocus(QStringLiteral("cancelWaitingButton")));
    expectKeyboardReachesAll(*driver, 0);
}

TEST_F(KeyboardTest, tabComesToEveryButtonOfTheAccount) {
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton"))); // once it has asked
    expectKeyboardReachesAll(*driver, sidebarWidth);
}

TEST_F(KeyboardTest, tabComesToEveryButtonOfTheUpdates) {
    launchSignedIn();
    driver->click(QStringLiteral("tab2"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("installButton")));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("checkButton")));
    expectKeyboardReachesAll(*driver, sidebarWidth);
}

TEST_F(KeyboardTest, tabComesToEveryStepThatLeadsBack) {
    launchSignedIn();
    world.page<MineViewModel>()->advanceTo(MineStep::done);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("startOverButton")));
    runEventLoop(std::chrono::milliseconds(450)); // the page before has gone
    expectKeyboardReachesAll(*driver, sidebarWidth);
}

TEST_F(PluginPageKeyboardTest, tabComesToEveryButtonOfThePlugin) {
    givenInstalled();
    show();
    expectKeyboardReachesAll(*driver, 0);
}

TEST_F(PluginPageKeyboardTest, tabComesToTheButtonThatInstalls) {
    show();
    expectKeyboardReachesAll(*driver, 0);
}

TEST_F(KeyboardTest, spaceAndReturnPressAndTheKeyboardStays) {
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton")));
    ASSERT_TRUE(driver->tabTo(QStringLiteral("buyCreditsButton")));
    driver->press(Qt::Key_Space);
    driver->press(Qt::Key_Return);
    driver->press(Qt::Key_Enter);
    EXPECT_EQ(world.desktop->urls.size(), 3U);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("buyCreditsButton"));
}

TEST_F(KeyboardTest, aButtonThatRestedForAWhileHasTheKeyboardAndItsRingAgain) {
    launchSignedIn();
    driver->click(QStringLiteral("tab2"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("checkButton")));
    ASSERT_TRUE(driver->tabTo(QStringLiteral("checkButton")));
    driver->press(Qt::Key_Space);
    EXPECT_FALSE(driver->findEvenDisabled(QStringLiteral("checkButton"))->isEnabled());
    ASSERT_TRUE(driver->waitFor(QStringLiteral("checkButton")));
    EXPECT_EQ(driver->focusedName(), QStringLiteral("checkButton"));
    EXPECT_TRUE(showsItsRing(driver->find(QStringLiteral("checkButton"))));
}

TEST_F(KeyboardTest, aClickDrawsNoRing) {
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    EXPECT_FALSE(showsItsRing(driver->find(QStringLiteral("tab0"))));
}

TEST_F(KeyboardTest, afterSigningOutByTheKeyboardTheFirstReturnSignsIn) {
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton")));
    ASSERT_TRUE(driver->tabTo(QStringLiteral("signOutButton")));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(waitForFocus(QStringLiteral("browserButton")));
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
}

TEST_F(KeyboardTest, whatTheKeyboardReachesScrollsIntoView) {
    launchSignedIn();
    driver->resize(900, 600);
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton")));
    const auto isInWindow = [this](const QString& name) {
        const auto* item = driver->find(name);
        const auto place = item->mapRectToScene(item->boundingRect());
        return place.top() >= 0.0 && place.bottom() <= driver->window().height();
    };
    EXPECT_FALSE(isInWindow(QStringLiteral("signOutButton"))) << "the page is too short to test it";
    ASSERT_TRUE(driver->tabTo(QStringLiteral("signOutButton")));
    EXPECT_TRUE(isInWindow(QStringLiteral("signOutButton")));
    ASSERT_TRUE(driver->tabTo(QStringLiteral("refreshButton")));
    EXPECT_TRUE(isInWindow(QStringLiteral("refreshButton")));
}
