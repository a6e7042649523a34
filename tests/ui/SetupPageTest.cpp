#include "ui/FlowFixture.h"

#include <QQmlComponent>
#include <QQmlEngine>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SetupPageInWindow : public FlowFixture {};

} // namespace

TEST_F(SetupPageInWindow, theRightPartComesWithTheFirstFile) {
    launch();
    EXPECT_TRUE(driver->shows(QStringLiteral("emptyDropZone")));
    EXPECT_FALSE(driver->shows(QStringLiteral("setupRight")));
    drop({sample(1)});
    EXPECT_TRUE(driver->waitFor(QStringLiteral("setupRight")));
    EXPECT_FALSE(driver->shows(QStringLiteral("emptyDropZone")));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("harbour_interview_01.m4a")));
    EXPECT_TRUE(waitUntil([this] { return !flow().droppedFiles().front().isProbing; }));
}

TEST_F(SetupPageInWindow, filesDroppedTwiceAndInCapitalsAndOfOtherKinds) {
    launch();
    const auto film = givenFile("Film.MOV");
    drop({film, film, givenFile("notes.txt"), QUrl(QStringLiteral("https://example.org/a.wav"))});
    drop({film});
    EXPECT_THAT(fileNames(), ElementsAre("Film.MOV"));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("1 file")));
}

TEST_F(SetupPageInWindow, aFileIsRemovedWhileItIsProbed) {
    launch();
    tools->hold(probing(".m4a"));
    drop({sample(1), sample(2)});
    ASSERT_TRUE(waitUntil([this] { return tools->requests.size() >= 2; }));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Probing…")));
    driver->click(QStringLiteral("removeFile0"));
    EXPECT_THAT(fileNames(), ElementsAre("harbour_interview_02.m4a"));
    tools->release();
    EXPECT_TRUE(waitUntil([this] { return !flow().droppedFiles().front().isProbing; }));
    EXPECT_THAT(fileNames(), ElementsAre("harbour_interview_02.m4a"));
    EXPECT_TRUE(flow().droppedFiles().front().probeResult.has_value());
}

TEST_F(SetupPageInWindow, clearAllEmptiesTheListAndAddMoreFillsItAgain) {
    launch();
    drop({givenFile("a.wav"), givenFile("b.wav")});
    ASSERT_TRUE(driver->waitFor(QStringLiteral("addMoreButton")));
    givenDialogGives({givenFile("b.wav"), givenFile("c.aac"), givenFile("d.pdf")});
    driver->click(QStringLiteral("addMoreButton"));
    EXPECT_THAT(fileNames(), ElementsAre("a.wav", "b.wav", "c.aac"));
    driver->click(QStringLiteral("clearAllButton"));
    EXPECT_THAT(fileNames(), IsEmpty());
    EXPECT_TRUE(driver->waitFor(QStringLiteral("emptyDropZone")));
}

TEST_F(SetupPageInWindow, aDialogThatIsDismissedChangesNothing) {
    launch();
    givenDialogIsDismissed();
    driver->click(QStringLiteral("browseButton"));
    EXPECT_THAT(fileNames(), IsEmpty());
}

TEST_F(SetupPageInWindow, theRealDialogAsksForManyFilesInItsWords) {
    launch();
    auto* picker = driver->window().findChild<QObject*>(QStringLiteral("filePicker"));
    ASSERT_NE(picker, nullptr);
    auto* component = picker->property("dialog").value<QQmlComponent*>();
    ASSERT_NE(component, nullptr);
    const std::unique_ptr<QObject> dialog(component->create(component->creationContext()));
    ASSERT_NE(dialog, nullptr) << component->errorString().toStdString();
    EXPECT_EQ(dialog->property("title").toString(), QStringLiteral("Select audio or video files to mine"));
    EXPECT_EQ(dialog->property("fileMode").toInt(), 1); // FileDialog.OpenFiles
    const auto filters = dialog->property("nameFilters").toStringList();
    ASSERT_FALSE(filters.isEmpty());
    EXPECT_TRUE(filters.constFirst().contains(QStringLiteral("*.mxf")));
}

TEST_F(SetupPageInWindow, draggingOverTheZoneMarksIt) {
    launch();
    dragOver({givenFile("a.wav")});
    const auto* zone = driver->find(QStringLiteral("emptyDropZone"));
    ASSERT_NE(zone, nullptr);
    EXPECT_TRUE(zone->property("isTargeted").toBool());
}

TEST_F(SetupPageInWindow, resolveGivesATimelineByTheKeyboardAndThenTheButton) {
    givenResolve("Faro", "Assembly\nCut 2\n");
    launch();
    driver->click(QStringLiteral("resolveTab"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("timelinePicker")));
    EXPECT_TRUE(driver->shows(QStringLiteral("setupRight")));
    EXPECT_FALSE(driver->shows(QStringLiteral("actionButton"))); // there, but not enabled
    tabTo(QStringLiteral("timelinePicker"));
    driver->press(Qt::Key_Down);
    EXPECT_EQ(flow().selectedTimeline(), "Assembly");
    EXPECT_TRUE(driver->waitFor(QStringLiteral("sourcePreview")));
    EXPECT_TRUE(driver->waitFor(QStringLiteral("actionButton")));
    // The list anew: what is chosen stays chosen.
    givenResolve("Faro", "Newer\nAssembly\n");
    driver->click(QStringLiteral("refreshButton"));
    ASSERT_TRUE(waitUntil([this] { return flow().resolveBridge()->timelines().front() == "Newer"; }));
    EXPECT_EQ(flow().selectedTimeline(), "Assembly");
    EXPECT_EQ(driver->find(QStringLiteral("timelinePicker"))->property("currentIndex").toInt(), 2);
}

TEST_F(SetupPageInWindow, theModesAreARadioGroupUnderTheArrowKeys) {
    launch();
    drop({givenFile("a.wav")});
    tabTo(QStringLiteral("mode0"));
    driver->press(Qt::Key_Right);
    EXPECT_EQ(flow().selectedMode(), MiningMode::storyMine);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("mode1"));
    driver->press(Qt::Key_Left);
    driver->press(Qt::Key_Left);
    EXPECT_EQ(flow().selectedMode(), MiningMode::audit);
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("languagePicker"));
}

TEST_F(SetupPageInWindow, lengthAndLanguageByTheKeyboard) {
    launch();
    drop({givenFile("a.wav")});
    tabTo(QStringLiteral("languagePicker"));
    driver->press(Qt::Key_Down);
    EXPECT_EQ(flow().selectedLanguage(), "en");
    driver->type(QStringLiteral("j"));
    EXPECT_EQ(flow().selectedLanguage(), "ja");
    tabTo(QStringLiteral("lengthSlider"));
    driver->press(Qt::Key_Right);
    EXPECT_EQ(flow().targetMinutes(), 6.0);
    driver->press(Qt::Key_End);
    EXPECT_EQ(flow().targetMinutes(), 30.0);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("~3 credits")));
    driver->press(Qt::Key_Home);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("~1 credit")));
    flow().setTargetMinutes(12);
    EXPECT_EQ(driver->find(QStringLiteral("lengthSlider"))->property("value").toDouble(), 12.0);
}

TEST_F(SetupPageInWindow, aRecentMineIsDeletedByTheKeyboardWhichGoesOnToTheNext) {
    launch();
    for (const auto* name : {"one", "two"})
        pipeline().saveProject(name, TranscriptResult(), {}, std::nullopt, 5.0);
    flow().listProjects();
    ASSERT_TRUE(driver->waitFor(QStringLiteral("deleteMine0")));
    tabTo(QStringLiteral("deleteMine0"));
    driver->press(Qt::Key_Space);
    EXPECT_EQ(flow().savedProjects().size(), 1U);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("deleteMine0"));
    driver->click(QStringLiteral("recentMine0"));
    thenStepIs(MineStep::style);
}

TEST_F(SetupPageInWindow, nothingIsCutOffInTheSmallestWindow) {
    launch();
    driver->resize(900, 600);
    drop({givenFile("a.wav"), givenFile("b.wav")});
    const auto* button = driver->find(QStringLiteral("actionButton"));
    ASSERT_NE(button, nullptr);
    const auto bottomRight = button->mapToScene(QPointF(button->width(), button->height()));
    EXPECT_LE(bottomRight.x(), 900 - 32);
    EXPECT_LE(bottomRight.y(), 600);
}
