#include "ui/ShellFixture.h"

#include <QGuiApplication>
#include <QScreen>

// The window on other screens than the usual one. The platform knows its screens from its start on: each suite runs in
// a ctest of its own, which names them in ZUVO_TEST_SCREENS.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

/// One of 800 x 560.
class SmallScreenTest : public ShellFixture {};
/// One of 1920 x 1080, and to its right one of 2560 x 1440.
class TwoScreensTest : public ShellFixture {};

} // namespace

TEST_F(SmallScreenTest, theWindowIsHeldWithinTheScreen) {
    launchSignedIn();
    ASSERT_EQ(driver->window().screen()->size(), QSize(800, 560));
    EXPECT_EQ(driver->window().geometry(), QRect(0, 0, 800, 560));
    EXPECT_EQ(driver->window().minimumSize(), QSize(800, 560));
}

TEST_F(TwoScreensTest, theWindowOpensInTheMiddleOfOneScreen) {
    launchSignedIn();
    ASSERT_EQ(QGuiApplication::screens().size(), 2);
    EXPECT_EQ(driver->window().geometry(), QRect((1920 - 1100) / 2, (1080 - 750) / 2, 1100, 750));
}
