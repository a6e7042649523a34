#pragma once

#include "fakes/CoroutineTest.h"
#include "ui/UiWorld.h"
#include "ui/WindowDriver.h"

#include <QString>
#include <gmock/gmock.h>
#include <memory>

namespace zuvo::tests {

/// The application's window in a world of its own.
class ShellFixture : public testing::Test {
protected:
    void launchSignedOut() {
        world.launch();
        driver = std::make_unique<WindowDriver>(&world.content());
        ASSERT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    }
    /// As when the program was signed in at its last end. What the service is to answer is told before.
    void launchSignedIn() {
        world.givenSignedInBefore();
        world.launch();
        driver = std::make_unique<WindowDriver>(&world.content());
        ASSERT_TRUE(waitUntil([this] { return world.content().isSignedIn(); }));
        ASSERT_TRUE(driver->waitFor(QStringLiteral("tab1")));
    }

    [[nodiscard]] bool waitForMainLayout() {
        return waitUntil([this] { return driver->shows(QStringLiteral("pageStack")); });
    }
    [[nodiscard]] bool waitForFocus(const QString& name) {
        return waitUntil([this, &name] { return driver->focusedName() == name; });
    }

    UiWorld world;
    std::unique_ptr<WindowDriver> driver;
};

} // namespace zuvo::tests
