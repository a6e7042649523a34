#include "fakes/CoroutineTest.h"
#include "ui/LastPagesWindow.h"
#include "ui/TakePicture.h"

// Pictures of the last two pages, the whole of each in one tall window, for a person to look at: written to the folder
// that the variable ZUVO_PICTURES names, and thrown away without it.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class LastPagesPictures : public LastPagesWindow {
protected:
    void take(const QString& name) { takePicture(*driver, name); }
    /// The page's top in the sizes that a window has, and in the smallest one its end.
    void takeAtUsualSizes(const QString& name) {
        driver->resize(2560, 1440);
        take(name + QStringLiteral("-large-window"));
        driver->resize(1100, 750);
        take(name + QStringLiteral("-usual-window"));
        driver->resize(900, 600);
        take(name + QStringLiteral("-minimum-window"));
        driver->press(Qt::Key_PageDown);
        take(name + QStringLiteral("-minimum-window-further"));
        driver->press(Qt::Key_End);
        take(name + QStringLiteral("-minimum-window-end"));
    }
    void waitForTheGems() {
        const auto* celebration = driver->find(QStringLiteral("celebration"));
        ASSERT_NE(celebration, nullptr);
        EXPECT_TRUE(
            waitUntil([celebration] { return qFuzzyCompare(celebration->property("spread").toDouble(), 1.0); }));
    }
};

} // namespace

TEST_F(LastPagesPictures, daylight) {
    launch();
    givenFootage("Faro.wav", "4320.0");
    givenVersion(1, 14, {QDate(2026, 11, 18), QTime(17, 42)});
    givenVersion(2, 12, {QDate(2026, 11, 19), QTime(9, 15)});
    givenVersion(3, 11, {QDate(2026, 11, 20), QTime(14, 19)});
    givenBuildPrints("SUCCESS:11/11 clips appended");
    flow().setMagicMode(true);
    flow().setRating(1);
    pipeline().setResults(lighthouseStory());
    pipeline().setLastExportDir(exportFolder);
    runToEnd(pipeline().buildTimelineFromSegmentsFile());
    driver->resize(1100, 1786);
    show(MineStep::done, QStringLiteral("buildButton"));
    waitForTheGems();
    take(QStringLiteral("06-daylight-full-scroll"));
    takeAtUsualSizes(QStringLiteral("06-daylight"));
}

TEST_F(LastPagesPictures, daylightOfManyChapters) {
    launch();
    auto story = lighthouseStory();
    for (std::size_t index = 0; index < story.segments.size(); ++index)
        story.segments[index].chapter = "A chapter with number " + std::to_string(index + 1);
    story.structure.acts = {{"An act whose name is so long that it cannot stand in one row beside its chapters",
                             {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
                            {"Short", {0}}};
    pipeline().setResults(story);
    pipeline().setLastExportDir(world.disk().write("home/no-folder", "x"));
    driver->resize(1100, 1400);
    show(MineStep::done, QStringLiteral("buildButton"));
    waitForTheGems();
    driver->click(QStringLiteral("storyExportButton2"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("buildStatus")));
    take(QStringLiteral("06-daylight-many-chapters"));
}

TEST_F(LastPagesPictures, audit) {
    launch();
    givenAudit(lighthouseAudit());
    driver->resize(1100, 1572);
    show(MineStep::review, QStringLiteral("coverageCard"));
    for (const auto* card : {"goldCard1", "goldCard0"}) {
        const auto name = QString::fromUtf8(card);
        driver->click(name);
        ASSERT_TRUE(driver->waitFor(name + QStringLiteral("Select")));
        runEventLoop(std::chrono::milliseconds(300));
        driver->click(name + QStringLiteral("Select"));
    }
    take(QStringLiteral("07-audit-full-scroll"));
    takeAtUsualSizes(QStringLiteral("07-audit"));
}
