#include "ui/FlowFixture.h"

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class StylePageInWindow : public FlowFixture {
protected:
    void launchOnStyle() {
        launch();
        flow().advanceTo(MineStep::style);
        thenStepIs(MineStep::style);
    }
};

} // namespace

TEST_F(StylePageInWindow, notesAreWrittenAsTheyAreTypedAndTabLeavesThem) {
    launchOnStyle();
    driver->click(QStringLiteral("notesEditor"));
    driver->type(QStringLiteral("Keep it calm"));
    EXPECT_EQ(flow().directorNotes(), "Keep it calm");
    driver->press(Qt::Key_Return);
    driver->type(QStringLiteral("please"));
    EXPECT_EQ(flow().directorNotes(), "Keep it calm\nplease");
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("magicModeCard"));
    EXPECT_EQ(flow().directorNotes(), "Keep it calm\nplease");
    flow().setDirectorNotes("changed elsewhere");
    EXPECT_EQ(driver->find(QStringLiteral("notesEditor"))->property("text").toString(),
              QStringLiteral("changed elsewhere"));
}

TEST_F(StylePageInWindow, magicModeHidesTheFineTuningAndKeepsIt) {
    launchOnStyle();
    driver->click(QStringLiteral("preset3"));
    EXPECT_EQ(flow().selectedPresetId(), "campfire");
    driver->click(QStringLiteral("magicModeCard"));
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("fineTuneSection")));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Release the Canary")));
    EXPECT_EQ(flow().styleSliders().pace, 0.15);
    driver->press(Qt::Key_Space);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("fineTuneSection")));
    EXPECT_FALSE(flow().isMagicMode());
}

TEST_F(StylePageInWindow, slidersAreOpenedAndMovedByTheKeyboard) {
    launchOnStyle();
    tabTo(QStringLiteral("fineTuneToggle"));
    EXPECT_FALSE(driver->shows(QStringLiteral("slidersSection")));
    driver->press(Qt::Key_Space);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("slidersSection")));
    tabTo(QStringLiteral("slider0"));
    driver->press(Qt::Key_Right);
    EXPECT_NEAR(flow().styleSliders().pace, 0.55, 1e-9);
    driver->press(Qt::Key_End);
    EXPECT_EQ(flow().styleSliders().pace, 1.0);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("~5 min · ~30 segments")));
    flow().setStyleSliders(StyleSliders());
    EXPECT_EQ(driver->find(QStringLiteral("slider0"))->property("value").toDouble(), 0.5);
}

TEST_F(StylePageInWindow, thePageScrollsByTheKeyboardButNotWhileOneWrites) {
    launchOnStyle();
    driver->resize(900, 600);
    const auto* scroll = driver->find(QStringLiteral("styleScroll"));
    ASSERT_NE(scroll, nullptr);
    const auto place = [scroll] { return scroll->property("contentY").toDouble(); };
    const auto last = [scroll] { return scroll->property("contentHeight").toDouble() - scroll->height(); };
    driver->press(Qt::Key_End);
    EXPECT_TRUE(waitUntil([&] { return place() == last(); }));
    EXPECT_GT(last(), 48.0);
    driver->press(Qt::Key_Up);
    EXPECT_TRUE(waitUntil([&] { return place() == last() - 48.0; }));
    driver->press(Qt::Key_Home);
    EXPECT_TRUE(waitUntil([&] { return place() == 0.0; }));
    tabTo(QStringLiteral("referenceField"));
    const auto writing = place();
    driver->press(Qt::Key_Up);
    runEventLoop(std::chrono::milliseconds(250));
    EXPECT_EQ(place(), writing);
}

TEST_F(StylePageInWindow, aReferenceIsTypedAndCleared) {
    launchOnStyle();
    tabTo(QStringLiteral("referenceField"));
    driver->type(QStringLiteral("https://example.org"));
    EXPECT_EQ(flow().referenceURL(), "https://example.org");
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("clearReferenceButton"));
    driver->press(Qt::Key_Return);
    EXPECT_EQ(flow().referenceURL(), "");
    EXPECT_EQ(driver->focusedName(), QStringLiteral("referenceField"));
}

TEST_F(StylePageInWindow, backLeadsToTheSetup) {
    launchOnStyle();
    scrollTo(QStringLiteral("backButton"));
    driver->click(QStringLiteral("backButton"));
    thenStepIs(MineStep::setup);
}

TEST_F(StylePageInWindow, aPageThatComesBeginsAtItsTop) {
    launchOnStyle();
    EXPECT_EQ(driver->find(QStringLiteral("styleScroll"))->property("contentY").toDouble(), 0.0);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("actionButton"));
}

TEST_F(StylePageInWindow, everyChoiceByTheMouseAlone) {
    launchOnStyle();
    driver->resize(1100, 1250);
    const auto* preset = driver->find(QStringLiteral("preset7"));
    EXPECT_FALSE(preset->property("isHovered").toBool());
    driver->hover(QStringLiteral("preset7"));
    EXPECT_TRUE(preset->property("isHovered").toBool());
    driver->click(QStringLiteral("preset7"));
    EXPECT_EQ(flow().selectedPresetId(), "portrait");
    EXPECT_EQ(flow().styleSliders().silence, 0.65);
    driver->click(QStringLiteral("preset7"));
    EXPECT_EQ(flow().selectedPresetId(), std::nullopt);
    EXPECT_EQ(flow().styleSliders().silence, 0.65);
    driver->click(QStringLiteral("fineTuneToggle"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("slidersSection")));
    runEventLoop(std::chrono::milliseconds(250)); // the drawer opens
    const auto* slider = driver->find(QStringLiteral("slider0"));
    const auto from = slider->mapToScene(QPointF(9 + 0.3 * (slider->width() - 18), slider->height() / 2)).toPoint();
    driver->drag(from, QPoint(static_cast<int>(slider->width()), 0));
    EXPECT_EQ(flow().styleSliders().pace, 1.0);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("100%")));
    driver->click(QStringLiteral("fineTuneToggle"));
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("slidersSection")));
    driver->click(QStringLiteral("magicModeCard"));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("ON")));
}

TEST_F(StylePageInWindow, withNeitherNotesNorPresetTheMiningCanBeStarted) {
    launchOnStyle();
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Start Mining")));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("~5 min · ~8 segments"))); // 300 s of 35 s each
    driver->press(Qt::Key_Return);
    thenStepIs(MineStep::processing);
}
