// The window while another program mines under the same home folder. Its lock is held here by hand.

#include "platform/MineLock.h"
#include "ui/FlowFixture.h"

#include <QGuiApplication>
#include <optional>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class OtherMineInWindow : public FlowFixture {
protected:
    /// "Start Mining" was pressed while the lock was taken.
    void startUnderAnotherMine() {
        launch();
        drop({sample(1)});
        ASSERT_TRUE(waitUntil([this] { return !flow().droppedFiles().front().isProbing; }));
        tools->hold([](const ProcessRequest& request) { return request.program.ends_with("ffprobe"); });
        other.emplace(pipeline().platform().environment);
        ASSERT_TRUE(other->isHeld());
        flow().setupNext();
        thenStepIs(MineStep::style);
        flow().styleNext();
        ASSERT_TRUE(driver->waitForText(reason()));
    }

    [[nodiscard]] static QString reason() {
        return QStringLiteral("Another mine is running (%1, process %2)")
            .arg(QCoreApplication::applicationName())
            .arg(getpid());
    }

    [[nodiscard]] bool hasBegun() { return !pipeline().logs().empty(); }

    std::optional<MineLock> other;
};

} // namespace

TEST_F(OtherMineInWindow, theQuestionNamesTheProgramAndWaitingStartsTheMineByItself) {
    startUnderAnotherMine();
    EXPECT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    driver->click(QStringLiteral("proceedButton"));
    ASSERT_TRUE(driver->waitForText(reason() + QStringLiteral(". Waiting for it to end.")));
    EXPECT_TRUE(driver->shows(QStringLiteral("giveUpButton")));
    EXPECT_FALSE(hasBegun());
    other.reset();
    EXPECT_TRUE(waitUntil([this] { return hasBegun(); }));
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("giveUpButton")));
    thenStepIs(MineStep::processing);
    tools->release();
}

TEST_F(OtherMineInWindow, waitingCanBeGivenUp) {
    startUnderAnotherMine();
    driver->click(QStringLiteral("proceedButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("giveUpButton")));
    driver->click(QStringLiteral("giveUpButton"));
    thenStepIs(MineStep::style);
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("giveUpButton")));
    other.reset();
    runEventLoop(std::chrono::milliseconds(600));
    EXPECT_FALSE(hasBegun());
    tools->release();
}

TEST_F(OtherMineInWindow, withoutTheWishToWaitTheStyleIsBack) {
    startUnderAnotherMine();
    driver->press(Qt::Key_Escape);
    thenStepIs(MineStep::style);
    EXPECT_FALSE(hasBegun());
    tools->release();
}

TEST_F(OtherMineInWindow, theQuestionCanBeAskedAgain) {
    startUnderAnotherMine();
    driver->click(QStringLiteral("keepButton"));
    thenStepIs(MineStep::style);
    flow().styleNext();
    EXPECT_TRUE(driver->waitForText(reason()));
    driver->click(QStringLiteral("keepButton"));
    thenStepIs(MineStep::style);
    tools->release();
}
