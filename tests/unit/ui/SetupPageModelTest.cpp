#include "ui/SetupPageModel.h"

#include "unit/ui/FlowModelFixture.h"

#include <QAbstractItemModelTester>
#include <QSysInfo>
#include <algorithm>
#include <map>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SetupPage : public FlowModelFixture {
protected:
    SetupPage() { page.setFlow(flow.get()); }

    [[nodiscard]] std::vector<std::string> shown(RowListModel& list, const char* role) const {
        const auto number = list.roleNames().key(role, -1);
        EXPECT_NE(number, -1) << role;
        std::vector<std::string> texts;
        for (int row = 0; row < list.rowCount(); ++row)
            texts.push_back(list.data(list.index(row), number).toString().toStdString());
        return texts;
    }
    [[nodiscard]] std::vector<std::string> names() { return shown(*page.files(), "filename"); }

    void probed() {
        EXPECT_TRUE(waitUntil([this] {
            const auto& files = flow->droppedFiles();
            return std::none_of(files.begin(), files.end(), [](const DroppedFile& file) { return file.isProbing; });
        }));
    }

    void givenSaved(const std::string& name) {
        now = now.addSecs(1);
        pipeline->saveProject(name, TranscriptResult(), {}, std::nullopt, 5.0);
    }

    SetupPageModel page;
    QAbstractItemModelTester filesTester{page.files(), QAbstractItemModelTester::FailureReportingMode::Fatal};
    QAbstractItemModelTester minesTester{page.recentMines(), QAbstractItemModelTester::FailureReportingMode::Fatal};
};

} // namespace

TEST_F(SetupPage, droppingTheSameFileTwiceGivesOneRow) {
    const auto file = url(givenFile("A.wav", "200.0"));
    page.handleDrop({file, file});
    page.handleDrop({file});
    EXPECT_THAT(names(), ElementsAre("A.wav"));
    probed();
}

TEST_F(SetupPage, theSameFileByDropAndByBrowsingGivesOneRow) {
    const auto file = url(givenFile("A.wav", "200.0"));
    page.handleDrop({file});
    page.addChosenFiles({file, url(givenFile("B.wav", "10.0"))});
    EXPECT_THAT(names(), ElementsAre("A.wav", "B.wav"));
    probed();
}

TEST_F(SetupPage, aFileOfThisMachineIsOneFileHoweverItsUrlNamesTheMachine) {
    const auto path = QString::fromStdString(givenFile("A.wav", "200.0"));
    page.handleDrop({QUrl::fromLocalFile(path), QUrl(QStringLiteral("file://localhost") + path),
                     QUrl(QStringLiteral("file://") + QSysInfo::machineHostName() + path)});
    EXPECT_THAT(names(), ElementsAre("A.wav"));
    EXPECT_EQ(flow->droppedFiles().front().url.toLocalFile(), path);
    probed();
}

TEST_F(SetupPage, aFileWithTheExtensionMOVIsAccepted) {
    page.handleDrop({url(givenFile("A.MOV", "200.0"))});
    EXPECT_THAT(names(), ElementsAre("A.MOV"));
    EXPECT_THAT(shown(*page.files(), "symbol"), ElementsAre("film"));
    probed();
}

TEST(SetupPageFiles, theExtensionAloneDecides) {
    const std::map<const char*, bool> cases = {
        {"file:///a/b.wav", true},   {"file:///a/b.mp3", true},  {"file:///a/b.aiff", true},
        {"file:///a/b.aif", true},   {"file:///a/b.flac", true}, {"file:///a/b.mov", true},
        {"file:///a/b.mp4", true},   {"file:///a/b.mxf", true},  {"file:///a/b.m4a", true},
        {"file:///a/b.aac", true},   {"file:///a/b.WaV", true},  {"file:///a/folder.mov/", true},
        {"file:///a/b.txt", false},  {"file:///a/wav", false},   {"file:///a/.wav", false},
        {"file:///a/b.wav.", false}, {"file:///a.wav/b", false}, {"file:///a/b.wav.zip", false}};
    for (const auto& [address, isAccepted] : cases)
        EXPECT_EQ(SetupPageModel::isAccepted(QUrl(QLatin1String(address))), isAccepted) << address;
}

TEST_F(SetupPage, whatIsNoFileOfAnAcceptedTypeIsLeftOutWithoutAWord) {
    page.handleDrop({QUrl(QStringLiteral("https://example.org/a.wav")), url(disk / "notes.txt"), QUrl()});
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_FALSE(page.sourceReady());
}

TEST(SetupPageFiles, picturesHaveTheFilmAndSoundTheWave) {
    for (const auto* name : {"a.mov", "a.MP4", "a.mxf"})
        EXPECT_EQ(SetupPageModel::symbolFor(QUrl::fromLocalFile(QLatin1String(name))), QStringLiteral("film")) << name;
    for (const auto* name : {"a.wav", "a.m4a", "a.aac"})
        EXPECT_EQ(SetupPageModel::symbolFor(QUrl::fromLocalFile(QLatin1String(name))), QStringLiteral("waveform"))
            << name;
}

TEST(SetupPageFiles, durationsAreCutToWholeMinutesAndSeconds) {
    const std::map<double, const char*> cases = {{0.0, "0:00"},     {0.99, "0:00"},     {9.0, "0:09"},
                                                 {59.999, "0:59"},  {60.0, "1:00"},     {2538.4, "42:18"},
                                                 {3600.0, "60:00"}, {36061.5, "601:01"}};
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(SetupPageModel::formatDuration(seconds), QLatin1String(text)) << seconds;
}

TEST(SetupPageFiles, sizesAreInDecimalUnits) {
    const std::map<double, const char*> cases = {{0, "0 B"},
                                                 {999, "999 B"},
                                                 {1000, "1 KB"},
                                                 {1600, "2 KB"},
                                                 {999999, "1000 KB"},
                                                 {1000000, "1.0 MB"},
                                                 {730900000, "730.9 MB"},
                                                 {1000000000, "1.0 GB"},
                                                 {18400000000, "18.4 GB"}};
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(DroppedFile::formattedSize(bytes), QLatin1String(text)) << bytes;
}

TEST_F(SetupPage, aRowSaysProbingAndThenWhatTheProbeFound) {
    page.handleDrop({url(givenFile("A.wav", "200.0"))});
    EXPECT_THAT(shown(*page.files(), "isProbing"), ElementsAre("true"));
    EXPECT_THAT(shown(*page.files(), "durationText"), ElementsAre(""));
    EXPECT_THAT(shown(*page.files(), "sizeText"), ElementsAre("7 B")); // "footage"
    probed();
    EXPECT_THAT(shown(*page.files(), "isProbing"), ElementsAre("false"));
    EXPECT_THAT(shown(*page.files(), "durationText"), ElementsAre("3:20"));
    EXPECT_THAT(shown(*page.files(), "sampleRateText"), ElementsAre("48000Hz"));
    EXPECT_THAT(shown(*page.files(), "sizeText"), ElementsAre("7 B"));
}

TEST_F(SetupPage, theSizeIsReadAgainWhenTheProbeHasReturned) {
    const auto path = givenFile("A.wav", "200.0");
    page.handleDrop({url(path)});
    EXPECT_THAT(shown(*page.files(), "sizeText"), ElementsAre("7 B"));
    disk.write("footage/A.wav", "footage that was still being copied"); // 35 letters
    probed();
    EXPECT_THAT(shown(*page.files(), "sizeText"), ElementsAre("35 B"));
}

TEST_F(SetupPage, afterAProbeThatFailedTheSizeStandsAloneAndTheFileStays) {
    page.handleDrop({url(disk.write("broken.wav", "abc"))});
    probed();
    EXPECT_THAT(names(), ElementsAre("broken.wav"));
    EXPECT_THAT(shown(*page.files(), "durationText"), ElementsAre(""));
    EXPECT_THAT(shown(*page.files(), "sampleRateText"), ElementsAre(""));
    EXPECT_THAT(shown(*page.files(), "sizeText"), ElementsAre("3 B"));
    EXPECT_TRUE(page.actionEnabled());
}

TEST_F(SetupPage, aFileRemovedWhileItIsProbedStaysRemoved) {
    page.handleDrop({url(givenFile("A.wav", "200.0")), url(givenFile("B.wav", "150.0"))});
    ASSERT_TRUE(waitUntil([this] { return calls->count() >= 1; }));
    page.removeFile(flow->droppedFiles().front().id.toString());
    probed();
    EXPECT_THAT(names(), ElementsAre("B.wav"));
    EXPECT_THAT(shown(*page.files(), "durationText"), ElementsAre("2:30"));
}

TEST_F(SetupPage, aProbeMayOutliveThePageAndTheFlow) {
    page.handleDrop({url(givenFile("A.wav", "200.0"))});
    ASSERT_TRUE(waitUntil([this] { return calls->count() >= 1; }));
    flow.reset();
    pipeline.reset();
    runEventLoop(std::chrono::milliseconds(20));
    EXPECT_EQ(page.flow(), nullptr);
    EXPECT_FALSE(page.actionEnabled());
    page.act();
    page.clearFiles();
    page.deleteMine(0);
}

TEST_F(SetupPage, aResultComesToTheFlowThoughThePageIsGone) {
    {
        SetupPageModel other;
        other.setFlow(flow.get());
        other.handleDrop({url(givenFile("A.wav", "200.0"))});
    }
    probed();
    ASSERT_TRUE(flow->droppedFiles().front().probeResult.has_value());
    EXPECT_EQ(flow->droppedFiles().front().probeResult->duration, 200.0);
}

TEST_F(SetupPage, clearAllLeavesNothing) {
    page.handleDrop({url(givenFile("A.wav", "200.0")), url(givenFile("B.wav", "150.0"))});
    EXPECT_EQ(page.fileCountText(), QStringLiteral("2 files"));
    page.removeFile(flow->droppedFiles().back().id.toString());
    EXPECT_EQ(page.fileCountText(), QStringLiteral("1 file"));
    page.clearFiles();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_FALSE(page.sourceReady());
    probed();
}

TEST_F(SetupPage, withResolveAndNoTimelineTheButtonStaysDisabledThoughTheRightPartStands) {
    givenResolve("Faro", "Cut 1\nCut 2\n");
    page.chooseResolve();
    EXPECT_FALSE(page.sourceReady());
    page.refresh();
    ASSERT_TRUE(waitUntil([this] { return page.hasTimelines(); }));
    EXPECT_TRUE(page.sourceReady());
    EXPECT_FALSE(page.actionEnabled());
    page.act();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    page.chooseTimeline(2);
    EXPECT_TRUE(page.actionEnabled());
    EXPECT_EQ(flow->selectedTimeline(), "Cut 2");
}

TEST_F(SetupPage, theConnectionIsToldInWords) {
    EXPECT_EQ(page.connectionTitle(), QStringLiteral("Not Connected"));
    EXPECT_EQ(page.connectionDetail(), QStringLiteral("DaVinci Resolve not detected"));
    givenResolve("Faro — Documentary", "");
    page.refresh();
    ASSERT_TRUE(waitUntil([this] { return page.isConnected(); }));
    EXPECT_EQ(page.connectionTitle(), QStringLiteral("Connected"));
    EXPECT_EQ(page.connectionDetail(), QStringLiteral("Faro — Documentary"));
    EXPECT_FALSE(page.hasTimelines());
}

TEST_F(SetupPage, theFirstRowOfTheTimelinesStandsForNone) {
    givenResolve("Faro", "Cut 1\nCut 2\n");
    page.refresh();
    ASSERT_TRUE(waitUntil([this] { return page.hasTimelines(); }));
    EXPECT_EQ(page.timelineRows(),
              (QStringList{QStringLiteral("Select a timeline…"), QStringLiteral("Cut 1"), QStringLiteral("Cut 2")}));
    EXPECT_EQ(page.timelineRow(), 0);
    page.chooseTimeline(1);
    EXPECT_EQ(page.timelineRow(), 1);
    EXPECT_EQ(page.timelineName(), QStringLiteral("Cut 1"));
    page.chooseTimeline(7);
    EXPECT_EQ(page.timelineRow(), 1);
    page.chooseTimeline(0);
    EXPECT_EQ(flow->selectedTimeline(), std::nullopt);
    flow->setSelectedTimeline("Gone");
    EXPECT_EQ(page.timelineRow(), -1);
    EXPECT_EQ(page.timelineName(), QStringLiteral("Gone"));
}

TEST_F(SetupPage, ofMoreThanThreeSavedProjectsOnlyTheFirstThreeAreShown) {
    for (const auto* name : {"one", "two", "three", "four"})
        givenSaved(name);
    flow->listProjects();
    EXPECT_THAT(shown(*page.recentMines(), "name"), ElementsAre("four", "three", "two"));
}

TEST_F(SetupPage, aDeletedMineMakesRoomForTheNext) {
    for (const auto* name : {"one", "two", "three", "four"})
        givenSaved(name);
    flow->listProjects();
    page.deleteMine(1);
    EXPECT_THAT(shown(*page.recentMines(), "name"), ElementsAre("four", "two", "one"));
    EXPECT_FALSE(exists(pipeline->projectsDir() + "/three"));
    page.deleteMine(3);
    page.deleteMine(-1);
    EXPECT_EQ(flow->savedProjects().size(), 3U);
}

TEST_F(SetupPage, aSavedMineIsOpenedWithItsResultsOrOnTheStylePage) {
    givenSaved("one");
    flow->listProjects();
    page.loadMine(5);
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    page.loadMine(0);
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    EXPECT_EQ(flow->selectedTimeline(), "one");
}

TEST_F(SetupPage, aRecentMineTellsItsClipsOrItsSegmentsItsTargetAndItsPreset) {
    pipeline->setResults(storyOf({{0, 1}, {2, 3}}));
    now = now.addSecs(1);
    pipeline->saveProject("with results", TranscriptResult(), {}, "campfire", 12.9);
    pipeline->setResults(std::nullopt);
    now = now.addSecs(1);
    pipeline->saveProject("without", transcriptOf({TranscriptSegment(), TranscriptSegment(), TranscriptSegment()}), {},
                          std::nullopt, 5.0);
    flow->listProjects();
    EXPECT_THAT(shown(*page.recentMines(), "countText"), ElementsAre("3 segments", "2 clips"));
    EXPECT_THAT(shown(*page.recentMines(), "hasResults"), ElementsAre("false", "true"));
    EXPECT_THAT(shown(*page.recentMines(), "targetText"), ElementsAre("5m target", "12m target"));
    EXPECT_THAT(shown(*page.recentMines(), "presetId"), ElementsAre("", "campfire"));
}

TEST_F(SetupPage, oneMinuteOfAFullMineIsOneCreditInTheSingularAndThirtyAreThree) {
    page.chooseTargetMinutes(1);
    EXPECT_EQ(page.creditsText(), QStringLiteral("~1 credit"));
    EXPECT_EQ(page.targetText(), QStringLiteral("1 min"));
    page.chooseTargetMinutes(30);
    EXPECT_EQ(page.creditsText(), QStringLiteral("~3 credits"));
    EXPECT_EQ(page.targetText(), QStringLiteral("30 min"));
}

TEST_F(SetupPage, theCreditsFollowTheMode) {
    page.chooseTargetMinutes(30);
    page.chooseMode(1); // half
    EXPECT_EQ(page.creditsText(), QStringLiteral("~2 credits"));
    page.chooseMode(2); // a quarter
    EXPECT_EQ(page.creditsText(), QStringLiteral("~1 credit"));
}

TEST_F(SetupPage, theModeStaysWhenTheSourceChanges) {
    page.chooseMode(3);
    page.chooseResolve();
    EXPECT_TRUE(page.isAudit());
    page.chooseFiles();
    EXPECT_TRUE(page.isAudit());
    page.chooseMode(4);
    page.chooseMode(-1);
    EXPECT_EQ(page.mode(), 3);
}

TEST_F(SetupPage, theButtonLeadsToTheStyle) {
    EXPECT_EQ(page.actionText(), QStringLiteral("Choose Style"));
    page.act();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    page.handleDrop({url(givenFile("A.wav", "200.0"))});
    page.act();
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    probed();
}

TEST_F(SetupPage, theButtonOfAnAuditPassesTheStyleOver) {
    page.chooseResolve();
    flow->setSelectedTimeline("Cut 1");
    page.chooseMode(3);
    EXPECT_EQ(page.actionText(), QStringLiteral("Start Audit"));
    page.act();
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
    ASSERT_TRUE(waitUntil([this] { return pipeline->step() == PipelineStep::error; }));
}

TEST_F(SetupPage, theLanguagesStandInTheirOrder) {
    EXPECT_EQ(SetupPageModel::languages().join(QLatin1Char(' ')),
              QStringLiteral("Auto-detect English Spanish French German Portuguese Italian Japanese Chinese Korean "
                             "Arabic Russian Hindi"));
    EXPECT_EQ(page.language(), 0);
    page.chooseLanguage(2);
    EXPECT_EQ(flow->selectedLanguage(), "es");
    page.chooseLanguage(13);
    EXPECT_EQ(page.language(), 2);
}

TEST_F(SetupPage, theModesAreShownWithTheirColours) {
    const auto modes = SetupPageModel::modes();
    ASSERT_EQ(modes.size(), 4);
    const auto audit = modes.at(3).toMap();
    EXPECT_EQ(audit.value(QStringLiteral("label")).toString(), QStringLiteral("Audit"));
    EXPECT_EQ(audit.value(QStringLiteral("subtitle")).toString(),
              QStringLiteral("Existing timeline → Compare to transcript → Find buried gold"));
    EXPECT_EQ(audit.value(QStringLiteral("color")).toString(), QStringLiteral("gemAmethyst"));
}

TEST_F(SetupPage, namesWithCharactersThatAreNotSeenAreShownWithThem) {
    page.handleDrop({url(givenFile("evil\u202Egpj.wav", "200.0"))});
    EXPECT_THAT(names(), ElementsAre("evil\uFFFDgpj.wav"));
    givenSaved("cut\n2\u2066");
    flow->listProjects();
    EXPECT_THAT(shown(*page.recentMines(), "name"), ElementsAre("cut\uFFFD2\uFFFD"));
    flow->setSelectedTimeline("cut\x1b 3");
    EXPECT_EQ(page.timelineName(), QStringLiteral("cut\uFFFD 3"));
    EXPECT_EQ(flow->selectedTimeline(), "cut\x1b 3") << "Resolve is asked by the name as it is";
    probed();
}
