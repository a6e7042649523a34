#include "ui/FlowFixture.h"
#include "ui/TextLayout.h"

// No text of the first three pages is cut off or lies on another: see LayoutTest.cpp.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class FirstPagesLayoutTest : public FlowFixture {
protected:
    [[nodiscard]] DroppedFile probed(const std::string& name) {
        DroppedFile file;
        file.url = givenFile(name);
        file.isProbing = false;
        file.probeResult = ProbeResult();
        file.probeResult->duration = 359999.0;
        file.probeResult->sampleRate = 192000;
        return file;
    }
};

const std::string longName =
    "Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaftsgeschäftsstellenleitung";

} // namespace

TEST_F(FirstPagesLayoutTest, theEmptySetup) {
    launch();
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(FirstPagesLayoutTest, theSetupWithFilesAndRecentMinesOfLongNames) {
    launch();
    pipeline().saveProject(longName, TranscriptResult(), {}, "cinema-verite", 30.0);
    pipeline().saveProject("short", TranscriptResult(), {}, std::nullopt, 5.0);
    flow().listProjects();
    flow().setDroppedFiles({probed(longName + ".wav"), probed("b.mov")});
    flow().setTargetMinutes(30.0);
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(FirstPagesLayoutTest, theSetupWithATimelineOfALongName) {
    givenResolve(longName, longName + "\nCut 2\n");
    launch();
    driver->click(QStringLiteral("resolveTab"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("timelinePicker")));
    flow().setSelectedTimeline(longName);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("sourcePreview")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(FirstPagesLayoutTest, theStyleWithItsSliders) {
    launch();
    flow().advanceTo(MineStep::style);
    thenStepIs(MineStep::style);
    tabTo(QStringLiteral("fineTuneToggle"));
    driver->press(Qt::Key_Space);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("slidersSection")));
    runEventLoop(std::chrono::milliseconds(250)); // the drawer opens
    flow().setTargetMinutes(30.0);
    driver->find(QStringLiteral("styleScroll"))->setProperty("contentY", 0.0);
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(FirstPagesLayoutTest, theStyleInMagicMode) {
    launch();
    flow().setMagicMode(true);
    flow().advanceTo(MineStep::style);
    thenStepIs(MineStep::style);
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(FirstPagesLayoutTest, theDig) {
    launch();
    flow().advanceTo(MineStep::processing);
    thenStepIs(MineStep::processing);
    expectAllTextsToBeReadAtAllSizes(*driver);
}
