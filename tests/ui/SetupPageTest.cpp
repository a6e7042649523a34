#include "ui/FlowFixture.h"
#include "ui/ScreenReader.h"

#include <QFileInfo>
#include <QQmlComponent>
#include <QQmlEngine>
#include <algorithm>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SetupPageInWindow : public FlowFixture {
protected:
    /// The names of the files in whose rows that text stands.
    [[nodiscard]] std::vector<std::string> filesThatSay(const QString& text) {
        std::vector<std::string> names;
        for (const auto* item : driver->shownItems()) {
            if (item->property("text").toString() != text)
                continue;
            while (item != nullptr && !item->property("filename").isValid())
                item = item->parentItem();
            if (item != nullptr)
                names.push_back(item->property("filename").toString().toStdString());
        }
        return names;
    }

    /// How many rows of files are there as items, seen or not.
    [[nodiscard]] std::ptrdiff_t madeRows() {
        const auto items = driver->shownItems();
        return std::count_if(items.begin(), items.end(),
                             [](const QQuickItem* item) { return item->property("fileId").isValid(); });
    }

    [[nodiscard]] bool isInWindow(const QString& name) {
        const auto* item = driver->find(name);
        if (item == nullptr)
            return false;
        const auto place = item->mapRectToScene(item->boundingRect());
        return place.top() >= 0.0 && place.bottom() <= driver->window().height();
    }

    [[nodiscard]] static QString removalOf(int row) { return QStringLiteral("removeFile%1").arg(row); }

    /// Files that are all probed, which need not be there.
    void givenFiles(int count) {
        std::vector<DroppedFile> files(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < files.size(); ++i) {
            files[i].url = QUrl(QStringLiteral("file:///none/take %1.wav").arg(i));
            files[i].isProbing = false;
        }
        flow().setDroppedFiles(std::move(files));
    }

    [[nodiscard]] std::ptrdiff_t probesAskedFor(const std::string& pathEnd) {
        return std::count_if(tools->requests.begin(), tools->requests.end(), probing(pathEnd));
    }

    [[nodiscard]] QPoint onSlider(const QString& name, double share) {
        const auto* slider = driver->find(name);
        return slider->mapToScene(QPointF(9 + share * (slider->width() - 18), slider->height() / 2)).toPoint();
    }

    void givenSaved(int count) {
        for (int i = 0; i < count; ++i)
            pipeline().saveProject("mine " + std::to_string(i), TranscriptResult(), {}, std::nullopt, 5.0);
        flow().listProjects();
    }
};

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
    EXPECT_TRUE(QFileInfo(dialog->property("currentFolder").toUrl().toLocalFile()).isDir());
}

TEST_F(SetupPageInWindow, theDialogOpensWhereFilesWereChosenLastAlsoOnAPageMadeAnew) {
    launch();
    givenDialogGives({givenFile("a.wav")});
    driver->click(QStringLiteral("browseButton"));
    EXPECT_THAT(fileNames(), ElementsAre("a.wav"));
    driver->click(QStringLiteral("tab0"));
    driver->click(QStringLiteral("tab1"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("browseButton")));
    const auto* picker = driver->window().findChild<QObject*>(QStringLiteral("filePicker"));
    auto* component = picker->property("dialog").value<QQmlComponent*>();
    const std::unique_ptr<QObject> dialog(component->create(component->creationContext()));
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->property("currentFolder").toUrl().toLocalFile().toStdString(), world.disk() / "footage");
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

TEST_F(SetupPageInWindow, theListOfAFileManagerIsTakenAsItsBytesCome) {
    launch();
    const auto odd = givenFile("Größe 100% #1.wav");
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"),
                 odd.toEncoded() + "\r\n" + givenFile("b.flac").toEncoded() + "\r\n" + "file:///none/c.txt\r\n");
    drop(data);
    EXPECT_THAT(fileNames(), ElementsAre("Größe 100% #1.wav", "b.flac"));
    EXPECT_EQ(flow().droppedFiles().front().url.toLocalFile(), odd.toLocalFile());
}

TEST_F(SetupPageInWindow, textThatIsDraggedOverTheZoneIsNoFile) {
    launch();
    QMimeData data;
    data.setText(QStringLiteral("file:///none/a.wav"));
    dragOver(data);
    EXPECT_FALSE(driver->find(QStringLiteral("emptyDropZone"))->property("isTargeted").toBool());
}

TEST_F(SetupPageInWindow, manyFilesAtOnceEachWithItsOwnStateWhileTheWindowLives) {
    launch();
    driver->resize(1100, 2900);                       // so that all of them are seen
    tools->answer(probing(".wav"), ProcessOutcome()); // no media
    tools->hold(probing("held.mp3"));
    QList<QUrl> urls{sample(1), givenFile("held.mp3")};
    for (int i = 0; i < 38; ++i)
        urls.append(givenFile("take " + std::to_string(i) + ".wav"));
    drop(urls);
    EXPECT_EQ(fileNames().size(), 40U);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("40 files")));
    EXPECT_EQ(filesThatSay(QStringLiteral("Probing…")).size(), 40U);
    ASSERT_TRUE(waitUntil([this] { return filesThatSay(QStringLiteral("Probing…")).size() == 1; }));
    EXPECT_THAT(filesThatSay(QStringLiteral("Probing…")), ElementsAre("held.mp3"));
    EXPECT_THAT(filesThatSay(QStringLiteral("1:03")), ElementsAre("harbour_interview_01.m4a"));
    EXPECT_EQ(filesThatSay(QStringLiteral("8 B")).size(), 39U); // "no media"
    // One that takes long keeps nobody from going on.
    driver->click(QStringLiteral("mode1"));
    EXPECT_EQ(flow().selectedMode(), MiningMode::storyMine);
    tools->release();
    EXPECT_TRUE(waitUntil([this] { return filesThatSay(QStringLiteral("Probing…")).empty(); }));
}

TEST_F(SetupPageInWindow, ofVeryManyFilesOnlySomeAreAskedAboutAtOnceAndThoseRemovedMeanwhileNotAtAll) {
    launch();
    tools->hold(probing(".wav"));
    QList<QUrl> urls;
    for (int i = 0; i < 40; ++i)
        urls.append(givenFile("take " + std::to_string(i) + ".wav"));
    drop(urls);
    ASSERT_TRUE(waitUntil([this] { return probesAskedFor(".wav") == 8; }));
    runEventLoop(std::chrono::milliseconds(50));
    EXPECT_EQ(probesAskedFor(".wav"), 8);
    auto files = flow().droppedFiles();
    files.resize(10);
    flow().setDroppedFiles(files);
    tools->release();
    ASSERT_TRUE(waitUntil([this] { return filesThatSay(QStringLiteral("Probing…")).empty(); }));
    EXPECT_EQ(fileNames().size(), 10U);
    EXPECT_EQ(probesAskedFor(".wav"), 10);
}

TEST_F(SetupPageInWindow, ofAThousandFilesOnlyTheRowsThatAreSeenAreMade) {
    launch();
    constexpr int mostRows = 24; // 11 fit into the page
    givenFiles(1000);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("1000 files")));
    EXPECT_LE(madeRows(), mostRows);
    EXPECT_GE(madeRows(), 8);
    EXPECT_EQ(driver->find(QStringLiteral("fileList"))->height(), 1000 * 56 + 999 * 8);
    auto* scroll = driver->find(QStringLiteral("setupLeft"));
    ASSERT_TRUE(waitUntil([scroll] { return scroll->property("contentHeight").toDouble() > 1000 * 64; }));
    for (const double share : {0.25, 0.5, 1.0}) {
        const auto farthest = scroll->property("contentHeight").toDouble() - scroll->height();
        scroll->setProperty("contentY", share * farthest);
        EXPECT_LE(madeRows(), mostRows);
        const auto top = driver->find(QStringLiteral("fileList"))->mapToScene({0, 0}).y();
        const auto row = std::min(999, static_cast<int>((375 - top) / 64)); // in the middle of the window
        EXPECT_TRUE(isInWindow(removalOf(row))) << row;
    }
    EXPECT_TRUE(isInWindow(removalOf(999)));
    EXPECT_FALSE(driver->shows(removalOf(500)));
    driver->click(removalOf(998));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("take 999.wav")));
    EXPECT_FALSE(driver->showsText(QStringLiteral("take 998.wav")));
    driver->click(QStringLiteral("clearAllButton"));
    EXPECT_TRUE(driver->waitFor(QStringLiteral("emptyDropZone")));
    EXPECT_EQ(madeRows(), 0);
}

TEST_F(SetupPageInWindow, theKeyboardReachesEveryRowOfAThousandFiles) {
    launch();
    givenFiles(1000);
    tabTo(removalOf(0));
    for (int row = 0; row < 16; ++row) {
        ASSERT_EQ(driver->focusedName(), removalOf(row));
        ASSERT_TRUE(isInWindow(removalOf(row))) << row;
        driver->press(Qt::Key_Tab);
    }
    for (int row = 16; row > 0; --row) {
        ASSERT_EQ(driver->focusedName(), removalOf(row));
        ASSERT_TRUE(isInWindow(removalOf(row))) << row;
        driver->press(Qt::Key_Backtab, Qt::ShiftModifier);
    }
    driver->press(Qt::Key_End);
    EXPECT_EQ(driver->focusedName(), removalOf(999));
    EXPECT_TRUE(isInWindow(removalOf(999)));
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), QStringLiteral("addMoreButton"));
    // The wheel may have gone elsewhere meanwhile.
    driver->find(QStringLiteral("setupLeft"))->setProperty("contentY", 0.0);
    driver->press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(driver->focusedName(), removalOf(999));
    EXPECT_TRUE(isInWindow(removalOf(999)));
    driver->press(Qt::Key_Up);
    EXPECT_EQ(driver->focusedName(), removalOf(998));
    driver->press(Qt::Key_Space);
    EXPECT_EQ(fileNames().size(), 999U);
    EXPECT_EQ(fileNames().at(998), "take 999.wav");
    EXPECT_EQ(driver->focusedName(), removalOf(998));
    driver->press(Qt::Key_Home);
    EXPECT_EQ(driver->focusedName(), removalOf(0));
    EXPECT_TRUE(isInWindow(removalOf(0)));
    driver->press(Qt::Key_PageDown);
    EXPECT_EQ(driver->focusedName(), removalOf(9));
    driver->press(Qt::Key_Down);
    EXPECT_EQ(driver->focusedName(), removalOf(10));
}

TEST_F(SetupPageInWindow, aRowKeepsTheKeyboardWhileItIsScrolledOutOfSight) {
    launch();
    givenFiles(1000);
    tabTo(removalOf(3));
    driver->find(QStringLiteral("setupLeft"))->setProperty("contentY", 30000.0);
    EXPECT_EQ(driver->focusedName(), removalOf(3));
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), removalOf(4));
    EXPECT_TRUE(isInWindow(removalOf(4)));
}

TEST_F(SetupPageInWindow, filesHeldOverAFilledListMarkItToo) {
    launch();
    drop({givenFile("a.wav")});
    EXPECT_FALSE(driver->shows(QStringLiteral("dropFrame")));
    dragOver({givenFile("b.wav")});
    EXPECT_TRUE(driver->waitFor(QStringLiteral("dropFrame")));
    dragAway();
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("dropFrame")));
    dragOver({givenFile("b.wav")});
    EXPECT_TRUE(driver->waitFor(QStringLiteral("dropFrame")));
    drop({givenFile("b.wav")});
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("dropFrame")));
    EXPECT_THAT(fileNames(), ElementsAre("a.wav", "b.wav"));
}

TEST_F(SetupPageInWindow, filesThatAreTakenAwayAgainLeaveTheZoneAsItWas) {
    launch();
    dragOver({givenFile("a.wav")});
    dragAway();
    const auto* zone = driver->find(QStringLiteral("emptyDropZone"));
    EXPECT_FALSE(zone->property("isTargeted").toBool());
    EXPECT_TRUE(waitUntil([zone] { return zone->scale() == 1.0; }));
}

TEST_F(SetupPageInWindow, ofMoreThanThreeSavedProjectsOnlyTheFirstThreeAreShown) {
    launch();
    EXPECT_FALSE(driver->shows(QStringLiteral("recentMines")));
    givenSaved(4);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("recentMine2")));
    EXPECT_FALSE(driver->shows(QStringLiteral("recentMine3")));
}

TEST_F(SetupPageInWindow, anOpenMenuTellsAScreenReaderWhatItIsAndWhichRowIsChosen) {
    launch();
    drop({givenFile("a.wav")});
    ASSERT_TRUE(driver->waitFor(QStringLiteral("languagePicker")));
    driver->click(QStringLiteral("languagePicker"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("pickerRow0")));
    std::vector<std::string> chosen;
    bool isListNamed = false;
    for (const auto& each : toldOf(*driver)) {
        isListNamed = isListNamed || (each.role == QAccessible::List && each.name == "Language");
        if (each.role == QAccessible::ListItem && each.state.selected)
            chosen.push_back(each.name);
    }
    EXPECT_TRUE(isListNamed);
    EXPECT_THAT(chosen, ElementsAre("Auto-detect"));
}

TEST_F(SetupPageInWindow, everyChoiceByTheMouseAlone) {
    launch();
    drop({givenFile("a.wav")});
    ASSERT_TRUE(driver->waitFor(QStringLiteral("mode2")));
    driver->click(QStringLiteral("mode2"));
    EXPECT_EQ(flow().selectedMode(), MiningMode::structure);
    driver->click(QStringLiteral("languagePicker"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("pickerRow4")));
    driver->click(QStringLiteral("pickerRow4"));
    EXPECT_EQ(flow().selectedLanguage(), "de");
    const auto from = onSlider(QStringLiteral("lengthSlider"), 4.0 / 29.0); // 5 of 1 to 30
    const auto to = onSlider(QStringLiteral("lengthSlider"), 1.0);
    driver->drag(from, to - from);
    EXPECT_EQ(flow().targetMinutes(), 30.0);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("30 min")));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("~1 credit"))); // a quarter of three
    driver->click(QStringLiteral("removeFile0"));
    EXPECT_TRUE(driver->waitFor(QStringLiteral("emptyDropZone")));
    EXPECT_FALSE(driver->shows(QStringLiteral("setupRight")));
}

TEST_F(SetupPageInWindow, filesAreRemovedByTheKeyboardWhichGoesOnToTheNext) {
    launch();
    drop({givenFile("a.wav"), givenFile("b.wav"), givenFile("c.wav")});
    tabTo(QStringLiteral("removeFile1"));
    driver->press(Qt::Key_Space);
    EXPECT_THAT(fileNames(), ElementsAre("a.wav", "c.wav"));
    EXPECT_EQ(driver->focusedName(), QStringLiteral("removeFile1"));
    tabTo(QStringLiteral("clearAllButton"));
    driver->press(Qt::Key_Return);
    EXPECT_THAT(fileNames(), IsEmpty());
    EXPECT_EQ(driver->focusedName(), QStringLiteral("browseButton"));
}

TEST_F(SetupPageInWindow, theModeStaysWhenTheSourceChangesAndAuditHasItsButton) {
    launch();
    drop({givenFile("a.wav")});
    driver->click(QStringLiteral("mode3"));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Start Audit")));
    driver->click(QStringLiteral("resolveTab"));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("DaVinci Resolve not detected")));
    EXPECT_FALSE(driver->shows(QStringLiteral("setupRight")));
    driver->click(QStringLiteral("filesTab"));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Start Audit")));
    EXPECT_EQ(flow().selectedMode(), MiningMode::audit);
}
