#include "fakes/CoroutineTest.h"
#include "ui/LastPagesWindow.h"

#include <QColor>
#include <QSet>
#include <filesystem>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

class DoneWindow : public LastPagesWindow {
protected:
    /// Daylight after a mine, in a window that is high enough for all of it.
    void showDone() {
        launch();
        driver->resize(1100, 1900);
        pipeline().setResults(lighthouseStory());
        pipeline().setLastExportDir(exportFolder);
        show(MineStep::done, QStringLiteral("buildButton"));
    }
    [[nodiscard]] QString textOf(const QString& name) {
        const auto* item = driver->find(name);
        return item == nullptr ? QString() : item->property("text").toString();
    }
    /// Goes on by Tab until the control of that name has the keyboard.
    [[nodiscard]] bool tabTo(const QString& name) {
        constexpr int mostStops = 60;
        for (int stop = 0; stop < mostStops && driver->focusedName() != name; ++stop)
            driver->press(Qt::Key_Tab);
        return driver->focusedName() == name;
    }
};

} // namespace

TEST_F(DoneWindow, theGemsSpreadOnceThePageIsShown) {
    showDone();
    const auto* celebration = driver->find(QStringLiteral("celebration"));
    ASSERT_NE(celebration, nullptr);
    EXPECT_TRUE(waitUntil([celebration] { return celebration->property("showConfetti").toBool(); }));
    EXPECT_TRUE(waitUntil([celebration] { return qFuzzyCompare(celebration->property("spread").toDouble(), 1.0); }));
    EXPECT_EQ(textOf(QStringLiteral("momentsLine")), QStringLiteral("11 story moments  4:51"));
}

TEST_F(DoneWindow, blocksWithNothingToTellAreMissing) {
    launch();
    show(MineStep::done, QStringLiteral("buildButton"));
    for (const auto* name : {"timeSavedCard", "magicExplanation", "storyPreview", "statsCard", "mineVersionHistory",
                             "buildStatus", "momentsLine"})
        EXPECT_FALSE(driver->shows(QString::fromUtf8(name))) << name;
}

TEST_F(DoneWindow, blocksShowWhatThereIsToTell) {
    launch();
    driver->resize(1100, 1900);
    givenFootage("A.wav", "1800.0");
    givenVersion(1, 3, {QDate(2026, 11, 18), QTime(17, 42)});
    flow().setMagicMode(true);
    pipeline().setResults(lighthouseStory());
    pipeline().setLastExportDir(exportFolder);
    show(MineStep::done, QStringLiteral("buildButton"));
    for (const auto* name : {"timeSavedCard", "magicExplanation", "storyPreview", "statsCard", "mineVersionHistory"})
        EXPECT_TRUE(driver->shows(QString::fromUtf8(name))) << name;
    EXPECT_EQ(textOf(QStringLiteral("savedTime")), QStringLiteral("~4 hours"));
    for (const auto* text : {"The Storm", "What Stayed", "68", "v1", "3 segments", "current"})
        EXPECT_TRUE(driver->showsText(QString::fromUtf8(text))) << text;
}

TEST_F(DoneWindow, theBuildTellsItsOutcomeBeneathTheButton) {
    showDone();
    givenBuildPrints("SUCCESS:11/11 clips appended");
    tools->hold();
    driver->click(QStringLiteral("buildButton"));
    EXPECT_EQ(textOf(QStringLiteral("buildButton")), QStringLiteral("Building in Resolve..."));
    EXPECT_FALSE(driver->shows(QStringLiteral("buildStatus")));
    tools->release();
    ASSERT_TRUE(driver->waitForText(QStringLiteral("✓ 11/11 clips appended")));
    EXPECT_EQ(driver->find(QStringLiteral("buildStatus"))->property("color").value<QColor>(), QColor(0x4A, 0x9E, 0x6D));
    givenBuildPrints("ERROR:Resolve is closed");
    driver->click(QStringLiteral("buildButton"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("✗ Resolve is closed")));
    EXPECT_EQ(driver->find(QStringLiteral("buildStatus"))->property("color").value<QColor>(), QColor(0xe8, 0x44, 0x0a));
}

TEST_F(DoneWindow, exportsAreOpenedAndMadeByTheMouse) {
    showDone();
    for (const auto* name : {"exportButton0", "exportButton1", "exportButton2", "exportFolderButton"})
        driver->click(QString::fromUtf8(name));
    EXPECT_THAT(world.desktop->files, ElementsAre(exportFolder + "/subtitles.srt", exportFolder + "/transcript.txt",
                                                  exportFolder + "/story_brief.md", exportFolder));
    for (const auto* name : {"storyExportButton0", "storyExportButton1", "storyExportButton2"})
        driver->click(QString::fromUtf8(name));
    EXPECT_THAT(world.desktop->revealed,
                ElementsAre(exportFolder + "/story_edit.fcpxml", exportFolder + "/story_edit_premiere.xml",
                            exportFolder + "/story_edit.edl"));
    for (const auto& path : world.desktop->revealed)
        EXPECT_TRUE(std::filesystem::exists(path)) << path;
}

TEST_F(DoneWindow, aRatingIsChosenByTheMouse) {
    showDone();
    driver->click(QStringLiteral("ratingButton0"));
    EXPECT_EQ(flow().rating(), 1);
    EXPECT_TRUE(driver->find(QStringLiteral("ratingButton0"))->property("isChosen").toBool());
    driver->click(QStringLiteral("ratingButton1"));
    EXPECT_EQ(flow().rating(), 0);
    EXPECT_FALSE(driver->find(QStringLiteral("ratingButton0"))->property("isChosen").toBool());
}

TEST_F(DoneWindow, theWaysBackLeadWhereTheySay) {
    const std::vector<std::pair<const char*, MineStep>> ways = {{"backToReviewButton", MineStep::review},
                                                                {"restyleButton", MineStep::style},
                                                                {"startOverButton", MineStep::setup},
                                                                {"startFreshButton", MineStep::setup}};
    showDone();
    for (const auto& [name, step] : ways) {
        pipeline().setResults(lighthouseStory());
        show(MineStep::done, QStringLiteral("buildButton"));
        driver->click(QString::fromUtf8(name));
        EXPECT_EQ(flow().currentStep(), step) << name;
        runEventLoop(std::chrono::milliseconds(450));
    }
}

TEST_F(DoneWindow, theKeyboardReachesEverything) {
    showDone();
    for (const auto* name :
         {"buildButton", "exportButton0", "exportButton1", "exportButton2", "exportFolderButton", "storyExportButton0",
          "storyExportButton1", "storyExportButton2", "ratingButton0", "ratingButton1", "backToReviewButton",
          "restyleButton", "startOverButton", "startFreshButton"})
        EXPECT_TRUE(tabTo(QString::fromUtf8(name))) << name;
    ASSERT_TRUE(tabTo(QStringLiteral("exportButton0")));
    driver->press(Qt::Key_Return);
    EXPECT_THAT(world.desktop->files, ElementsAre(exportFolder + "/subtitles.srt"));
    ASSERT_TRUE(tabTo(QStringLiteral("storyExportButton2")));
    driver->press(Qt::Key_Space);
    EXPECT_THAT(world.desktop->revealed, ElementsAre(exportFolder + "/story_edit.edl"));
    ASSERT_TRUE(tabTo(QStringLiteral("ratingButton1")));
    driver->press(Qt::Key_Space);
    EXPECT_EQ(flow().rating(), 0);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("ratingButton1"));
    ASSERT_TRUE(tabTo(QStringLiteral("backToReviewButton")));
    driver->press(Qt::Key_Return);
    EXPECT_EQ(flow().currentStep(), MineStep::review);
}

TEST_F(DoneWindow, aControlThatTheKeyboardReachesComesIntoView) {
    showDone();
    driver->resize(900, 600);
    ASSERT_TRUE(tabTo(QStringLiteral("startFreshButton")));
    const auto* button = driver->find(QStringLiteral("startFreshButton"));
    ASSERT_NE(button, nullptr);
    const auto bottom = button->mapToScene(QPointF(0, button->height())).y();
    EXPECT_LE(bottom, driver->window().height());
}
