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
