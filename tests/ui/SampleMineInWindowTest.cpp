#include "ui/FlowFixture.h"
#include "ui/ReviewPageModel.h"

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class SampleMineInWindow : public FlowFixture {
protected:
    void thenTheSampleIsMined() {
        thenStepIs(MineStep::review);
        EXPECT_EQ(pipeline().step(), PipelineStep::complete);
        ASSERT_TRUE(pipeline().results().has_value());
        EXPECT_FALSE(pipeline().results()->segments.empty());
        EXPECT_EQ(pipeline().lastMediaPaths()->size(), 2U);
    }
};

} // namespace

TEST_F(SampleMineInWindow, fromTheDropToTheReviewByTheMouseAlone) {
    launch();
    drop({sample(1), sample(2)});
    ASSERT_TRUE(driver->waitFor(QStringLiteral("actionButton")));
    driver->click(QStringLiteral("actionButton"));
    thenStepIs(MineStep::style);
    driver->click(QStringLiteral("preset4"));
    scrollTo(QStringLiteral("actionButton"));
    driver->click(QStringLiteral("actionButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("terminalList")));
    thenTheSampleIsMined();
    EXPECT_EQ(flow().selectedPresetId(), "sizzle");
}

TEST_F(SampleMineInWindow, fromTheDialogToTheReviewByTheKeyboardAlone) {
    launchAndChooseTheSampleByKeyboard();
    tabTo(QStringLiteral("lengthSlider"));
    driver->press(Qt::Key_Left);
    EXPECT_EQ(flow().targetMinutes(), 4.0);
    pressByKeyboard(QStringLiteral("actionButton"));
    thenStepIs(MineStep::style);
    tabTo(QStringLiteral("magicModeCard"));
    driver->press(Qt::Key_Space);
    pressByKeyboard(QStringLiteral("actionButton"));
    thenTheSampleIsMined();
    EXPECT_TRUE(flow().isMagicMode());
}

TEST_F(SampleMineInWindow, theSamplesStoryIsCutByTheKeyboardAlone) {
    launchAndChooseTheSampleByKeyboard();
    pressByKeyboard(QStringLiteral("actionButton"));
    thenStepIs(MineStep::style);
    pressByKeyboard(QStringLiteral("actionButton"));
    thenTheSampleIsMined();
    auto* page = driver->window().findChild<ReviewPageModel*>();
    ASSERT_NE(page, nullptr);
    const auto found = page->segments();
    ASSERT_GE(found.size(), 4U);

    // Heard, opened, and put behind the second.
    driver->press(Qt::Key_Space);
    EXPECT_EQ(page->playingSegment(), found[0].id());
    EXPECT_TRUE(waitUntil([&] { return page->currentPlaybackTime() > 0.3; }));
    driver->press(Qt::Key_K);
    EXPECT_FALSE(page->playingSegment());
    driver->press(Qt::Key_Return);
    EXPECT_EQ(page->expandedSegment(), found[0].id());
    driver->press(Qt::Key_Down, Qt::AltModifier);
    // The third goes.
    driver->press(Qt::Key_Down);
    driver->press(Qt::Key_Delete);
    // A line of the whole transcript is looked for and heard.
    driver->press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("searchField")));
    driver->type(QStringLiteral("e"));
    driver->press(Qt::Key_Down);
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(page->hasPlayer());
    // And the story is sent.
    pressByKeyboard(QStringLiteral("sendButton"));
    thenStepIs(MineStep::done);
    const auto& sent = pipeline().results()->segments;
    ASSERT_EQ(sent.size(), found.size() - 1);
    EXPECT_EQ(sent[0].id(), found[1].id());
    EXPECT_EQ(sent[1].id(), found[0].id());
    EXPECT_EQ(sent[2].id(), found[3].id());
}
