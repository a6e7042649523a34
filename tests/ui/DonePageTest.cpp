#include "fakes/CoroutineTest.h"
#include "ui/LastPagesWindow.h"

#include <QColor>
#include <QSet>
#include <algorithm>
#include <filesystem>
#include <set>

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
    /// Every block there is.
    void showAllBlocks() {
        launch();
        givenFootage("A.wav", "1800.0");
        givenVersion(2, 3, {QDate(2026, 11, 8), QTime(9, 5)});
        givenVersion(10, 11, {QDate(2026, 11, 18), QTime(17, 42)});
        flow().setMagicMode(true);
        pipeline().setResults(lighthouseStory());
        pipeline().setLastExportDir(exportFolder);
        show(MineStep::done, QStringLiteral("buildButton"));
    }
    [[nodiscard]] QRectF placeOf(const QString& name) {
        const auto* item = driver->find(name);
        return item == nullptr ? QRectF() : item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    }
    /// Where all the items of that name are.
    [[nodiscard]] std::vector<QRectF> placesOf(const QString& name) {
        std::vector<QRectF> places;
        for (const auto* item : driver->shownItems()) {
            if (item->objectName() == name)
                places.push_back(item->mapRectToScene(QRectF(0, 0, item->width(), item->height())));
        }
        return places;
    }
    [[nodiscard]] std::ptrdiff_t buildRuns() const {
        return std::count_if(tools->requests.begin(), tools->requests.end(), [](const ProcessRequest& request) {
            return request.program.ends_with("python3") && request.keepsError;
        });
    }
    void showOneAct(const std::vector<std::string>& chapters) {
        MiningResults story;
        Act act{"Act 1: The Light Was For Others", {}};
        for (std::size_t index = 0; index < chapters.size(); ++index) {
            StorySegment moment;
            moment.index = static_cast<std::int64_t>(index);
            moment.chapter = chapters[index];
            story.segments.push_back(moment);
            act.segments.push_back(moment.index);
        }
        story.structure.acts = {act};
        pipeline().setResults(story);
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

TEST_F(DoneWindow, theBlocksStandInTheirOrderInOneWidth) {
    showAllBlocks();
    struct Row {
        QSize window;
        double width;
    };
    // At the least width the column leaves 32 on either side, beside a sidebar of 220 and its line.
    for (const auto& row : {Row{{1100, 1900}, 640.0}, Row{{2560, 1440}, 640.0}, Row{{900, 600}, 615.0}}) {
        driver->resize(row.window.width(), row.window.height());
        QRectF before;
        for (const auto* name :
             {"celebration", "timeSavedCard", "buildBlock", "magicExplanation", "storyPreview", "statsCard",
              "mineVersionHistory", "exportOptions", "rateSection", "navigationButtons"}) {
            const auto place = placeOf(QString::fromUtf8(name));
            EXPECT_EQ(place.width(), row.width) << name << " at " << row.window.width();
            if (!before.isNull()) {
                EXPECT_EQ(place.left(), before.left()) << name;
                EXPECT_NEAR(place.top() - before.bottom(), 24.0, 0.01) << name;
            }
            before = place;
        }
    }
}

TEST_F(DoneWindow, numbersLineUp) {
    showAllBlocks();
    driver->resize(1100, 1900);
    const auto values = placesOf(QStringLiteral("tileValue"));
    ASSERT_EQ(values.size(), 4U);
    for (const auto& value : values) {
        EXPECT_EQ(value.top(), values.front().top());
        EXPECT_EQ(value.width(), values.front().width());
    }
    const auto counts = placesOf(QStringLiteral("versionSegments"));
    const auto dates = placesOf(QStringLiteral("versionDate"));
    ASSERT_EQ(counts.size(), 2U);
    ASSERT_EQ(dates.size(), 2U);
    EXPECT_EQ(counts[0].left(), counts[1].left()); // of v2 and v10
    EXPECT_EQ(dates[0].right(), dates[1].right());
}

TEST_F(DoneWindow, anActShowsTwoRowsOfChipsAtMostAndCountsTheRest) {
    launch();
    show(MineStep::done, QStringLiteral("buildButton"));
    std::vector<std::string> chapters;
    for (const auto* chapter : {"The Keeper", "A", "The Storm", "What Stayed", "The Light Now", "Of Boats", "Elsewhere",
                                "The Longest Night of All", "Salt", "Bread", "Who Climbs Next", "Fog"}) {
        chapters.emplace_back(chapter);
        showOneAct(chapters);
        for (const auto size : {QSize(1100, 1900), QSize(900, 1200)}) {
            driver->resize(size.width(), size.height());
            const auto chips = placesOf(QStringLiteral("chapterChip"));
            const auto rest = placesOf(QStringLiteral("moreChapters"));
            std::set<double> rows;
            for (const auto& chip : chips)
                rows.insert(chip.top());
            for (const auto& chip : rest)
                rows.insert(chip.top());
            EXPECT_LE(rows.size(), 2U) << chapters.size() << " chapters";
            EXPECT_EQ(rest.empty(), chips.size() == chapters.size());
            if (!rest.empty()) {
                EXPECT_TRUE(driver->showsText(QStringLiteral("+%1").arg(chapters.size() - chips.size())));
            }
        }
    }
    EXPECT_FALSE(placesOf(QStringLiteral("moreChapters")).empty());
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

TEST_F(DoneWindow, aBuildThatTheReviewBeganIsToldAndAPressStartsASecondOne) {
    launch();
    driver->resize(1100, 1900);
    pipeline().setResults(lighthouseStory());
    givenBuildPrints("SUCCESS:11/11 clips appended");
    tools->hold();
    const auto before = buildRuns();
    flow().sendToResolve(lighthouseStory().segments);
    show(MineStep::done, QStringLiteral("buildButton"));
    ASSERT_TRUE(waitUntil([this, before] { return buildRuns() == before + 1; }));
    EXPECT_EQ(textOf(QStringLiteral("buildButton")), QStringLiteral("Build Timeline in Resolve"));
    EXPECT_FALSE(driver->shows(QStringLiteral("buildStatus")));
    driver->click(QStringLiteral("buildButton"));
    EXPECT_EQ(textOf(QStringLiteral("buildButton")), QStringLiteral("Building in Resolve..."));
    ASSERT_TRUE(waitUntil([this, before] { return buildRuns() == before + 2; }));
    driver->click(QStringLiteral("buildButton"));
    tools->release();
    EXPECT_TRUE(driver->waitForText(QStringLiteral("✓ 11/11 clips appended")));
    EXPECT_EQ(textOf(QStringLiteral("buildButton")), QStringLiteral("Build Timeline in Resolve"));
    EXPECT_EQ(buildRuns(), before + 2);
}

TEST_F(DoneWindow, comingBackFromTheReviewStartsTheStatusAfreshWhileTheBuildsResultStays) {
    launch();
    driver->resize(1100, 1900);
    pipeline().setResults(lighthouseStory());
    pipeline().setLastExportDir(world.disk().write("home/a-file", "no folder"));
    givenBuildPrints("SUCCESS:11/11 clips appended");
    runToEnd(pipeline().buildTimelineFromSegmentsFile());
    show(MineStep::done, QStringLiteral("buildButton"));
    EXPECT_EQ(textOf(QStringLiteral("buildStatus")), QStringLiteral("✓ 11/11 clips appended"));
    driver->click(QStringLiteral("storyExportButton2"));
    EXPECT_TRUE(textOf(QStringLiteral("buildStatus")).startsWith(QStringLiteral("EDL export failed: ")));
    EXPECT_EQ(flow().currentStep(), MineStep::done);
    driver->click(QStringLiteral("backToReviewButton"));
    ASSERT_TRUE(driver->waitUntilGone(QStringLiteral("buildButton")));
    show(MineStep::done, QStringLiteral("buildButton"));
    EXPECT_EQ(textOf(QStringLiteral("buildStatus")), QStringLiteral("✓ 11/11 clips appended"));
    EXPECT_EQ(textOf(QStringLiteral("buildButton")), QStringLiteral("Build Timeline in Resolve"));
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

TEST_F(DoneWindow, thePageScrollsByItsKeys) {
    showAllBlocks();
    driver->resize(900, 600);
    const auto atRest = placeOf(QStringLiteral("pageColumn")).top();
    const auto topBecomes = [this](double top) {
        return waitUntil([this, top] { return placeOf(QStringLiteral("pageColumn")).top() == top; });
    };
    ASSERT_TRUE(tabTo(QStringLiteral("buildButton")));
    driver->press(Qt::Key_Home);
    EXPECT_TRUE(topBecomes(atRest));
    driver->press(Qt::Key_Down);
    EXPECT_TRUE(topBecomes(atRest - 48));
    driver->press(Qt::Key_Down);
    driver->press(Qt::Key_Down); // before the one before has come to its end
    EXPECT_TRUE(topBecomes(atRest - 144));
    driver->press(Qt::Key_Up);
    EXPECT_TRUE(topBecomes(atRest - 96));
    driver->press(Qt::Key_End);
    EXPECT_TRUE(waitUntil([this] { return placeOf(QStringLiteral("pageColumn")).bottom() == 600.0 - 48.0; }));
    driver->press(Qt::Key_PageUp);
    driver->press(Qt::Key_PageDown);
    EXPECT_TRUE(waitUntil([this] { return placeOf(QStringLiteral("pageColumn")).bottom() == 600.0 - 48.0; }));
    driver->press(Qt::Key_Home);
    EXPECT_TRUE(topBecomes(atRest));
}

TEST_F(DoneWindow, aPressOnAControlAtTheEdgeLeavesThePageWhereItStands) {
    showAllBlocks();
    driver->resize(1100, 1900);
    const auto place = placeOf(QStringLiteral("exportFolderButton"));
    // Its lower half lies below the window's edge.
    driver->resize(1100, static_cast<int>(place.center().y()) + 12);
    const auto before = placeOf(QStringLiteral("pageColumn")).top();
    driver->click(QStringLiteral("exportFolderButton"));
    EXPECT_EQ(placeOf(QStringLiteral("pageColumn")).top(), before);
    EXPECT_THAT(world.desktop->files, ElementsAre(exportFolder));
}
