#include "fakes/CoroutineTest.h"
#include "ui/LastPagesWindow.h"
#include "ui/TextLayout.h"

// No text of the last two pages is cut off or lies on another: see LayoutTest.cpp.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class LastPagesLayoutTest : public LastPagesWindow {};

} // namespace

TEST_F(LastPagesLayoutTest, daylightWithAllItsBlocks) {
    launch();
    givenFootage("Faro.wav", "4320.0");
    givenVersion(1, 14, {QDate(2026, 11, 18), QTime(17, 42)});
    givenVersion(113, 1200, {QDate(2026, 11, 20), QTime(14, 19)});
    givenBuildPrints("ERROR:The project manager of the application that was asked cannot be reached from here, which "
                     "happens if it has been closed while the timeline was being built");
    flow().setMagicMode(true);
    pipeline().setResults(lighthouseStory());
    pipeline().setLastExportDir(exportFolder);
    runToEnd(pipeline().buildTimelineFromSegmentsFile());
    show(MineStep::done, QStringLiteral("buildButton"));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LastPagesLayoutTest, daylightOfAVeryLongStory) {
    launch();
    auto story = lighthouseStory();
    story.subtitles.resize(123456);
    story.estimatedDuration = 359999.0;
    pipeline().setResults(story);
    show(MineStep::done, QStringLiteral("buildButton"));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LastPagesLayoutTest, theAuditWithAMomentOpen) {
    launch();
    auto report = lighthouseAudit();
    report.buriedGold[1].startTime = 35000.0;
    report.buriedGold[1].endTime = 36000.0;
    report.redundancies[0].topic = "Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaften "
                                   "and what they meant to everybody who stood on the quay that evening";
    report.redundancies[0].firstStart = 35000.0;
    report.redundancies[0].firstEnd = 36000.0;
    report.redundancies[0].secondStart = 36000.0;
    report.redundancies[0].secondEnd = 37000.0;
    givenAudit(report);
    show(MineStep::review, QStringLiteral("coverageCard"));
    driver->click(QStringLiteral("goldCard0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("goldCard0Select")));
    ASSERT_TRUE(waitUntil(
        [this] { return driver->find(QStringLiteral("goldCard0"))->property("openness").toDouble() == 1.0; }));
    expectAllTextsToBeReadAtAllSizes(*driver);
}
