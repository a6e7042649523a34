#include "ui/FlowFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSet>
#include <QTest>

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
        return list().mapToScene(QPointF(200, 6 + 20 * row + 10)).toPoint(); // a head of 6, rows of 20
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
    launch();
    drop({sample(1)});
    ASSERT_TRUE(waitUntil([this] { return !flow().droppedFiles().front().isProbing; }));
    tools->hold([](const ProcessRequest& request) { return request.program.ends_with("ffprobe"); });
    flow().setupNext();
    flow().styleNext();
    thenStepIs(MineStep::processing);
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
