#include "ui/FlowFixture.h"

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
    launch();
    givenDialogGives({sample(1), sample(2)});
    tabTo(QStringLiteral("browseButton"));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("actionButton")));
    tabTo(QStringLiteral("lengthSlider"));
    driver->press(Qt::Key_Left);
    EXPECT_EQ(flow().targetMinutes(), 4.0);
    tabTo(QStringLiteral("actionButton"));
    driver->press(Qt::Key_Return);
    thenStepIs(MineStep::style);
    tabTo(QStringLiteral("magicModeCard"));
    driver->press(Qt::Key_Space);
    tabTo(QStringLiteral("actionButton"));
    driver->press(Qt::Key_Return);
    thenTheSampleIsMined();
    EXPECT_TRUE(flow().isMagicMode());
}
