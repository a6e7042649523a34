#include "ui/FlowFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSet>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cmath>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class ProcessingPageInWindow : public FlowFixture {
protected:
    void launchOnDig() {
        launch();
        tools->answer(probing(".none"), ProcessOutcome());
        flow().advanceTo(MineStep::processing);
        thenStepIs(MineStep::processing);
    }

    /// On the dig, whose run waits for a tool.
    void launchOnHeldDig() {
        launch();
        drop({sample(1)});
        ASSERT_TRUE(waitUntil([this] { return !flow().droppedFiles().front().isProbing; }));
        tools->hold([](const ProcessRequest& request) { return request.program.ends_with("ffprobe"); });
        flow().setupNext();
        flow().styleNext();
        thenStepIs(MineStep::processing);
    }

    /// A heading, and a line for each.
    void givenLines(int count) {
        std::vector<std::string> paths;
        for (int i = 0; i < count; ++i)
            paths.push_back("/none/" + std::to_string(i) + ".none");
        runToEnd(pipeline().probeAllMedia(std::move(paths)));
    }

    [[nodiscard]] QQuickItem& list() { return *driver->find(QStringLiteral("terminalList")); }
    [[nodiscard]] QQuickItem& listContent() { return *list().property("contentItem").value<QQuickItem*>(); }

    /// Down to the cursor, with no movement left.
    [[nodiscard]] bool isAtCursor() {
        const auto* cursor = driver->find(QStringLiteral("cursor"));
        if (cursor == nullptr)
            return false;
        const auto bottom = cursor->mapToScene(QPointF(0, cursor->height())).y();
        return bottom <= list().mapToScene(QPointF(0, list().height())).y() + 1;
    }
};

} // namespace

TEST_F(ProcessingPageInWindow, withAnEmptyLogTheConsoleHoldsOnlyTheCursor) {
    launchOnDig();
    EXPECT_EQ(list().property("count").toInt(), 0);
    EXPECT_TRUE(driver->shows(QStringLiteral("cursor")));
}

TEST_F(ProcessingPageInWindow, tenThousandLinesStayCheapAndTheCursorInSight) {
    launchOnDig();
    QSet<const QQuickItem*> made;
    const QObject untilTheEnd;
    const auto look = [&made, &content = listContent()] {
        const auto children = content.childItems();
        for (const auto* child : children)
            made.insert(child);
    };
    QObject::connect(&listContent(), &QQuickItem::childrenChanged, &untilTheEnd, look);
    givenLines(9999);
    EXPECT_EQ(pipeline().logs().size(), 10000U);
    EXPECT_TRUE(waitUntil([this] { return isAtCursor(); }));
    EXPECT_EQ(list().property("count").toInt(), 10000);
    givenLines(3);
    EXPECT_TRUE(waitUntil([this] { return isAtCursor(); }));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("  ⚠ Failed to probe 2.none")));
    EXPECT_GT(made.size(), 5);
    EXPECT_LT(made.size(), 300);
}

TEST_F(ProcessingPageInWindow, wholeLinesAreChosenAndCopied) {
    launchOnDig();
    givenLines(3);
    ASSERT_TRUE(driver->waitForText(QStringLiteral("  ⚠ Failed to probe 2.none")));
    runEventLoop(std::chrono::milliseconds(450)); // the list scrolls
    const auto rowAt = [this](double row) {
        return list().mapToScene(QPointF(200, 16 + 20 * row + 10)).toPoint(); // a head of 16, rows of 20
    };
    driver->click(rowAt(1));
    driver->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().endsWith(QStringLiteral("Failed to probe 0.none")));
    EXPECT_EQ(QGuiApplication::clipboard()->text().count(QLatin1Char('\n')), 0);
    QTest::mouseClick(&driver->window(), Qt::LeftButton, Qt::ShiftModifier, rowAt(3));
    driver->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().count(QLatin1Char('\n')), 2);
    driver->press(Qt::Key_A, Qt::ControlModifier);
    driver->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().count(QLatin1Char('\n')), 3);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(QStringLiteral("Probing 3 source files...")));
}

TEST_F(ProcessingPageInWindow, linesAreChosenByTheKeyboard) {
    launchOnDig();
    givenLines(3);
    tabTo(QStringLiteral("terminalList"));
    driver->press(Qt::Key_End);
    driver->press(Qt::Key_Up, Qt::ShiftModifier);
    driver->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().endsWith(QStringLiteral("Failed to probe 2.none")));
    EXPECT_EQ(QGuiApplication::clipboard()->text().count(QLatin1Char('\n')), 1);
}

TEST_F(ProcessingPageInWindow, keepMiningKeepsOnAndCancelLeadsBack) {
    launchOnHeldDig();
    driver->click(QStringLiteral("cancelButton"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("Cancel mining?")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Progress will be lost.")));
    // The keyboard stands on "Keep Mining".
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitUntilGone(QStringLiteral("keepButton")));
    EXPECT_EQ(flow().currentStep(), MineStep::processing);
    EXPECT_NE(pipeline().step(), PipelineStep::idle);

    driver->click(QStringLiteral("cancelButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("proceedButton")));
    runEventLoop(std::chrono::milliseconds(200)); // the alert comes in
    driver->click(QStringLiteral("proceedButton"));
    thenStepIs(MineStep::style);
    EXPECT_EQ(pipeline().step(), PipelineStep::idle);
    tools->release();
    runEventLoop(std::chrono::milliseconds(100));
    EXPECT_EQ(flow().currentStep(), MineStep::style);
}

TEST_F(ProcessingPageInWindow, aFailureIsToldInABannerWhoseWordsCanBeCopied) {
    launch();
    world.services.fail(standin::Service::transcription, standin::Failure::status(401, "no"));
    drop({sample(1)});
    flow().setupNext();
    flow().styleNext();
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorBanner")));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Error")));
    thenStepIs(MineStep::processing);
    tabTo(QStringLiteral("errorText"));
    driver->press(Qt::Key_A, Qt::ControlModifier);
    driver->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), *pipeline().errorMessage());
}

TEST_F(ProcessingPageInWindow, escapeKeepsMiningAndTheKeyboardAloneCancels) {
    launchOnHeldDig();
    tabTo(QStringLiteral("cancelButton"));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    driver->press(Qt::Key_Escape);
    ASSERT_TRUE(driver->waitUntilGone(QStringLiteral("keepButton")));
    EXPECT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("cancelButton"); }));
    EXPECT_EQ(flow().currentStep(), MineStep::processing);
    EXPECT_NE(pipeline().step(), PipelineStep::idle);

    driver->press(Qt::Key_Space);
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("proceedButton"));
    driver->press(Qt::Key_Return);
    thenStepIs(MineStep::style);
    EXPECT_EQ(pipeline().step(), PipelineStep::idle);
    tools->release();
}

TEST_F(ProcessingPageInWindow, aRunThatEndsWellTakesTheQuestionAway) {
    launchOnHeldDig();
    driver->click(QStringLiteral("cancelButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("keepButton")));
    tools->release();
    thenStepIs(MineStep::review);
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("keepButton")));
    EXPECT_EQ(pipeline().step(), PipelineStep::complete);
}

TEST_F(ProcessingPageInWindow, linesAreChosenByADrag) {
    launchOnDig();
    givenLines(5);
    ASSERT_TRUE(driver->waitForText(QStringLiteral("  ⚠ Failed to probe 4.none")));
    runEventLoop(std::chrono::milliseconds(450)); // the list scrolls
    const auto from = list().mapToScene(QPointF(200, 16 + 20 * 1 + 10)).toPoint();
    driver->drag(from, QPoint(40, 60));
    driver->press(Qt::Key_C, Qt::ControlModifier);
    const auto copied = QGuiApplication::clipboard()->text();
    EXPECT_EQ(copied.count(QLatin1Char('\n')), 3);
    EXPECT_TRUE(copied.contains(QStringLiteral("Failed to probe 0.none")));
    EXPECT_TRUE(copied.endsWith(QStringLiteral("Failed to probe 3.none")));
    // Beyond the last line the choice ends with it.
    driver->drag(from, QPoint(0, driver->window().height() - 10 - from.y()));
    driver->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().endsWith(QStringLiteral("Failed to probe 4.none")));
}

TEST_F(ProcessingPageInWindow, anotherRunBeginsWithNothingChosen) {
    launchOnDig();
    givenLines(3);
    tabTo(QStringLiteral("terminalList"));
    driver->press(Qt::Key_A, Qt::ControlModifier);
    QGuiApplication::clipboard()->setText(QStringLiteral("of before"));
    pipeline().reset();
    givenLines(2);
    driver->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("of before"));
}

TEST_F(ProcessingPageInWindow, aNewLineGlidesToTheCursor) {
    launchOnDig();
    givenLines(60);
    runEventLoop(std::chrono::milliseconds(450));
    ASSERT_TRUE(isAtCursor());
    std::vector<double> places;
    const auto* moved = &list();
    const auto timer = std::make_unique<QTimer>();
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [&places, moved] {
        const auto place = moved->property("contentY").toDouble();
        if (places.empty() || places.back() != place)
            places.push_back(place);
    });
    const auto before = list().property("contentY").toDouble();
    timer->start(5);
    givenLines(1); // two lines of 20
    EXPECT_TRUE(waitUntil([this, before] { return list().property("contentY").toDouble() >= before + 40; }));
    EXPECT_GT(places.size(), 3U);
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
    EXPECT_TRUE(waitUntil([this] { return isAtCursor(); }));
}

TEST_F(ProcessingPageInWindow, theBarFollowsTheWindowAtOnce) {
    launch();
    world.services.fail(standin::Service::transcription, standin::Failure::status(401, "no"));
    drop({sample(1)});
    flow().setupNext();
    flow().styleNext();
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorBanner")));
    const auto* bar = driver->find(QStringLiteral("progressBar"));
    ASSERT_NE(bar, nullptr);
    ASSERT_GT(pipeline().progress(), 0.0);
    const auto share = [bar] { return bar->width() / bar->parentItem()->width(); };
    ASSERT_TRUE(waitUntil([this, share] { return std::abs(share() - pipeline().progress()) < 1e-6; }));
    const auto before = bar->width();
    driver->resize(1600, 750);
    EXPECT_GT(bar->width(), before);
    EXPECT_NEAR(share(), pipeline().progress(), 1e-6);
}
