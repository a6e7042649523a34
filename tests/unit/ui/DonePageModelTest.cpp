#include "ui/DonePageModel.h"

#include "LastPagesFixture.h"
#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

#include <QDateTime>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DonePage : public LastPagesFixture {
protected:
    /// The page comes on screen.
    void show() {
        page = std::make_unique<DonePageModel>();
        page->setFlow(flow.get());
    }
    void showStory() {
        pipeline->setResults(givenStoryRecord());
        show();
    }
    void showStoryWithFolder() {
        pipeline->setLastExportDir(folder);
        showStory();
    }

    [[nodiscard]] std::string status() const { return page->buildStatus().toStdString(); }
    [[nodiscard]] std::vector<std::string> column(const QVariantList& rows, const char* key) const {
        std::vector<std::string> texts;
        for (const auto& row : rows)
            texts.push_back(row.toMap().value(QString::fromUtf8(key)).toString().toStdString());
        return texts;
    }
    [[nodiscard]] QStringList chapters(int act) const {
        return page->acts().at(act).toMap().value(QStringLiteral("chapters")).toStringList();
    }

    void givenVersion(const std::string& name, const MiningResults& story, const QDateTime& written) const {
        const auto path = folder + "/" + name;
        write(path, encodeRecord(story).dump());
        const timespec time{static_cast<time_t>(written.toSecsSinceEpoch()), 0};
        const timespec times[] = {time, time};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }

    static constexpr int fcpxml = 0;
    static constexpr int premiere = 1;
    static constexpr int edl = 2;

    std::string folder = disk.makeFolder("exports/Faro");
    std::unique_ptr<DonePageModel> page;
};

/// What the page says is the media of the story when nothing is known of its files.
std::vector<MediaFileInfo> madeUpMedia() {
    return {{"/path/to/A.mov", "A.mov", 3600.0, std::nullopt, 24.0, false, true, std::nullopt},
            {"/path/to/B.wav", "B.wav", 3600.0, std::nullopt, 24.0, false, true, std::nullopt}};
}

} // namespace

// What was saved.

TEST_F(DonePage, withoutProbeResultsNoTimeIsSaved) {
    showStory();
    EXPECT_FALSE(page->hasSavedTime());
}

TEST_F(DonePage, savedTimeIsEightTimesTheFootage) {
    struct Row {
        std::vector<std::string> seconds;
        bool isShown;
        const char* amount;
        const char* basis;
    };
    const std::vector<Row> rows = {
        {{"4.5"}, false, "", ""}, // 0.01 h exactly
        {{"4.6"}, true, "~1 minutes", "0.0 hrs source × 8 hrs/hr industry avg"},
        {{"180.0"}, true, "~24 minutes", "0.1 hrs source × 8 hrs/hr industry avg"},
        {{"449.0"}, true, "~60 minutes", "0.1 hrs source × 8 hrs/hr industry avg"},
        {{"450.0"}, true, "~1 hours", "0.1 hrs source × 8 hrs/hr industry avg"},
        {{"675.0"}, true, "~2 hours", "0.2 hrs source × 8 hrs/hr industry avg"}, // 1.5 h
        {{"1800.0"}, true, "~4 hours", "0.5 hrs source × 8 hrs/hr industry avg"},
        {{"1000.0", "800.0"}, true, "~4 hours", "0.5 hrs source × 8 hrs/hr industry avg"},
    };
    for (const auto& row : rows) {
        givenProbed(row.seconds);
        show();
        EXPECT_EQ(page->hasSavedTime(), row.isShown) << row.seconds.front();
        if (!row.isShown)
            continue;
        EXPECT_EQ(page->savedTime().toStdString(), row.amount) << row.seconds.front();
        EXPECT_EQ(page->savedTimeBasis().toStdString(), row.basis) << row.seconds.front();
    }
}

TEST_F(DonePage, thirtyMinutesOfSourceSaveFourHours) {
    givenProbed({"1800.0"});
    show();
    EXPECT_EQ(page->savedTime(), QStringLiteral("~4 hours"));
}

TEST_F(DonePage, threeMinutesOfSourceSaveTwentyFourMinutes) {
    givenProbed({"180.0"});
    show();
    EXPECT_EQ(page->savedTime(), QStringLiteral("~24 minutes"));
}

// The story.

TEST_F(DonePage, tellsTheStoryInNumbers) {
    showStory();
    EXPECT_EQ(page->momentsLine(), QStringLiteral("4 story moments  4:51"));
    EXPECT_THAT(column(page->stats(), "label"), ElementsAre("Segments", "Subtitles", "Duration", "Acts"));
    EXPECT_THAT(column(page->stats(), "value"), ElementsAre("4", "1", "4:51", "2"));
    EXPECT_THAT(column(page->stats(), "symbol"), ElementsAre("film", "text.bubble", "clock", "list.number"));
}

TEST_F(DonePage, withoutResultsThereIsNothingToTell) {
    show();
    EXPECT_FALSE(page->hasResults());
    EXPECT_TRUE(page->momentsLine().isEmpty());
    EXPECT_THAT(page->stats(), IsEmpty());
    EXPECT_THAT(page->acts(), IsEmpty());
}

TEST_F(DonePage, anActShowsItsDistinctChaptersInOrder) {
    showStory();
    EXPECT_THAT(column(page->acts(), "name"), ElementsAre("Act 1", "Act 2"));
    EXPECT_EQ(chapters(0), QStringList({QStringLiteral("Light"), QStringLiteral("Storm")}));
    EXPECT_EQ(chapters(1), QStringList({QStringLiteral("After")}));
}

TEST_F(DonePage, aChapterHasOneColourInAllActs) {
    auto story = givenStoryRecord();
    story.structure.acts = {{"Act 1", {0, 1}}, {"Act 2", {3, 0}}};
    pipeline->setResults(story);
    show();
    EXPECT_EQ(page->acts().at(0).toMap().value(QStringLiteral("gems")).toList(), QVariantList({0, 1}));
    EXPECT_EQ(page->acts().at(1).toMap().value(QStringLiteral("gems")).toList(), QVariantList({2, 0}));
}

TEST_F(DonePage, numbersThatNameNoMomentAndMomentsWithoutAChapterShowNoChip) {
    auto story = givenStoryRecord();
    story.segments[1].chapter.reset();
    story.segments[2].chapter = "";
    story.structure.acts = {{"Act 1", {99, 1, 2, -1}}};
    pipeline->setResults(story);
    show();
    EXPECT_THAT(chapters(0), IsEmpty());
}

TEST_F(DonePage, aStoryWithoutActsHasNoPreview) {
    auto story = givenStoryRecord();
    story.structure.acts.clear();
    pipeline->setResults(story);
    show();
    EXPECT_THAT(page->acts(), IsEmpty());
}

TEST(ChipsThatFit, twoRowsHoldWhatTheyCan) {
    constexpr double room = 100.0;
    constexpr double spacing = 10.0;
    constexpr double rest = 20.0;
    struct Row {
        std::vector<double> widths;
        int shown;
    };
    const std::vector<Row> rows = {
        {{}, 0},
        {{30.0}, 1},
        {{45.0, 45.0}, 2},             // 45 + 10 + 45 fills a row
        {{45.0, 45.0, 45.0, 45.0}, 4}, // two full rows
        // The fifth does not fit; the second row gives up 30 for "+n", which leaves 70: one of 45.
        {{45.0, 45.0, 45.0, 45.0, 45.0}, 3},
        {{45.0, 46.0, 45.0}, 2},             // 45 | 46 +1, since 101 is too much for a row
        {{60.0, 60.0}, 2},                   // one a row
        {{60.0, 60.0, 60.0}, 2},             // 60 | 60 +1
        {{30.0, 30.0, 20.0, 20.0, 20.0}, 5}, // 30 30 20 | 20 20
        {{200.0}, 1},                        // too wide alone, but not lost
        {{200.0, 200.0, 200.0}, 2},
    };
    for (const auto& row : rows)
        EXPECT_EQ(chipsThatFit(row.widths, room, spacing, rest, 2), row.shown) << testing::PrintToString(row.widths);
}

TEST_F(DonePage, chipsAreMeasuredForTwoRows) {
    showStory();
    const QVariantList widths = {45.0, 45.0, 45.0, 45.0, 45.0};
    EXPECT_EQ(page->shownChips(widths, 100.0, 10.0, 20.0), 3);
}

TEST_F(DonePage, magicModeIsTheFlows) {
    show();
    EXPECT_FALSE(page->isMagicMode());
    int changes = 0;
    QObject::connect(page.get(), &DonePageModel::magicModeChanged, [&changes] { ++changes; });
    flow->setMagicMode(true);
    EXPECT_TRUE(page->isMagicMode());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(page->magicExplanation(),
              QStringLiteral("Campfire-style · slow build · intimate tone — because the subject speaks reflectively "
                             "about family and tradition"));
}

// The build.

TEST_F(DonePage, aStatusWithACrossIsBadAndAnyOtherIsNot) {
    show();
    EXPECT_TRUE(page->buildStatus().isEmpty());
    EXPECT_FALSE(page->isBuildStatusBad());
    givenBuildPrints("ERROR:Resolve is closed");
    ended(pipeline->buildTimelineFromSegmentsFile());
    EXPECT_EQ(status(), "✗ Resolve is closed");
    EXPECT_TRUE(page->isBuildStatusBad());
    givenBuildPrints("SUCCESS:4/4 clips appended");
    ended(pipeline->buildTimelineFromSegmentsFile());
    EXPECT_EQ(status(), "✓ 4/4 clips appended");
    EXPECT_FALSE(page->isBuildStatusBad());
}

TEST_F(DonePage, aCrossAnywhereInTheStatusIsBad) {
    givenBuildPrints("SUCCESS:3/4 clips appended, 1 ✗");
    show();
    ended(pipeline->buildTimelineFromSegmentsFile());
    EXPECT_TRUE(page->isBuildStatusBad());
}

TEST_F(DonePage, theButtonBuildsAndTellsWhatCameOfIt) {
    givenBuildPrints("SUCCESS:4/4 clips appended");
    showStory();
    EXPECT_EQ(page->buildText(), QStringLiteral("Build Timeline in Resolve"));
    page->build();
    EXPECT_TRUE(page->isBuilding());
    EXPECT_EQ(page->buildText(), QStringLiteral("Building in Resolve..."));
    EXPECT_TRUE(waitUntil([this] { return !page->isBuilding(); }));
    EXPECT_EQ(status(), "✓ 4/4 clips appended");
    EXPECT_EQ(tools->requests.size(), 1U);
}

TEST_F(DonePage, aPressWhileItBuildsStartsNoSecondBuild) {
    givenBuildPrints("SUCCESS:4/4 clips appended");
    showStory();
    page->build();
    page->build();
    EXPECT_TRUE(waitUntil([this] { return !page->isBuilding(); }));
    runEventLoop(std::chrono::milliseconds(20));
    EXPECT_EQ(tools->requests.size(), 1U);
}

TEST_F(DonePage, aPressTakesTheStatusBeforeAway) {
    show();
    ended(pipeline->buildTimelineFromSegmentsFile()); // there is no segments file
    EXPECT_EQ(status(), "✗ No segments file found");
    page->build();
    EXPECT_TRUE(page->buildStatus().isEmpty());
    EXPECT_TRUE(waitUntil([this] { return !page->isBuilding(); }));
    EXPECT_EQ(status(), "✗ No segments file found");
}

TEST_F(DonePage, aResultFromBeforeThePageIsShownCounts) {
    givenBuildPrints("SUCCESS:4/4 clips appended");
    ended(pipeline->buildTimelineFromSegmentsFile());
    show();
    EXPECT_EQ(status(), "✓ 4/4 clips appended");
    EXPECT_FALSE(page->isBuilding());
}

TEST_F(DonePage, aBuildThatRanAlreadyTellsItsResultWithoutAPress) {
    givenBuildPrints("SUCCESS:4/4 clips appended");
    flow->buildTimeline();
    show();
    EXPECT_FALSE(page->isBuilding());
    EXPECT_TRUE(waitUntil([this] { return !page->buildStatus().isEmpty(); }));
    EXPECT_EQ(status(), "✓ 4/4 clips appended");
}

TEST_F(DonePage, aResultAfterThePageIsGoneHurtsNobody) {
    givenBuildPrints("SUCCESS:4/4 clips appended");
    show();
    page->build();
    page.reset();
    EXPECT_TRUE(waitUntil([this] { return pipeline->buildResult().has_value(); }));
    show();
    EXPECT_EQ(status(), "✓ 4/4 clips appended");
}

TEST_F(DonePage, aResultAfterTheFlowIsGoneHurtsNobody) {
    givenBuildPrints("SUCCESS:4/4 clips appended");
    show();
    flow.reset();
    ended(pipeline->buildTimelineFromSegmentsFile());
    EXPECT_TRUE(page->buildStatus().isEmpty());
    page->build();
    page->openExport(0);
    page->openExportFolder();
    page->exportStory(0);
    page->rate(0);
    EXPECT_FALSE(page->isBuilding());
}

// Rating.

TEST_F(DonePage, aRatingIsTheFlowsAndShowsFilled) {
    show();
    EXPECT_THAT(column(page->ratings(), "symbol"), ElementsAre("hand.thumbsup", "hand.thumbsdown"));
    EXPECT_THAT(column(page->ratings(), "label"), ElementsAre("Good", "Needs work"));
    page->rate(0);
    EXPECT_EQ(flow->rating(), 1);
    EXPECT_THAT(column(page->ratings(), "symbol"), ElementsAre("hand.thumbsup.fill", "hand.thumbsdown"));
    page->rate(1);
    EXPECT_EQ(flow->rating(), 0);
    EXPECT_THAT(column(page->ratings(), "symbol"), ElementsAre("hand.thumbsup", "hand.thumbsdown.fill"));
    page->rate(2);
    page->rate(-1);
    EXPECT_EQ(flow->rating(), 0);
}

// Versions.

TEST_F(DonePage, listsTheMinesOfTheFolderWithTheLastAsCurrent) {
    givenVersion("mining_results_v10.json", storyOf({{0.0, 1.0}}), {QDate(2026, 11, 20), QTime(14, 19)});
    givenVersion("mining_results_v2.json", storyOf({{0.0, 1.0}, {2.0, 3.0}}), {QDate(2026, 11, 8), QTime(9, 5)});
    pipeline->setLastExportDir(folder);
    show();
    EXPECT_THAT(column(page->versions(), "version"), ElementsAre("v2", "v10"));
    EXPECT_THAT(column(page->versions(), "segments"), ElementsAre("2 segments", "1 segments"));
    EXPECT_THAT(column(page->versions(), "date"), ElementsAre("8 Nov 2026, 09:05", "20 Nov 2026, 14:19"));
    EXPECT_THAT(column(page->versions(), "isCurrent"), ElementsAre("false", "true"));
}

TEST_F(DonePage, withoutVersionsOrFolderThereIsNoHistory) {
    show();
    EXPECT_THAT(page->versions(), IsEmpty());
    pipeline->setLastExportDir(folder);
    EXPECT_THAT(page->versions(), IsEmpty());
}

// Exports.

TEST_F(DonePage, theFilesOfTheMineAreOpened) {
    showStoryWithFolder();
    EXPECT_THAT(column(page->plainExports(), "label"), ElementsAre("SRT", "The Echo", "The Map"));
    for (const int index : {0, 1, 2, 3, -1})
        page->openExport(index);
    EXPECT_THAT(desktop->files,
                ElementsAre(folder + "/subtitles.srt", folder + "/transcript.txt", folder + "/story_brief.md"));
}

TEST_F(DonePage, theFolderItselfIsOpened) {
    showStoryWithFolder();
    page->openExportFolder();
    EXPECT_THAT(desktop->files, ElementsAre(folder));
}

TEST_F(DonePage, withoutAFolderTheButtonsDoNothing) {
    showStory();
    page->openExport(0);
    page->openExportFolder();
    for (const int index : {fcpxml, premiere, edl})
        page->exportStory(index);
    EXPECT_THAT(desktop->files, IsEmpty());
    EXPECT_THAT(desktop->revealed, IsEmpty());
    EXPECT_TRUE(page->buildStatus().isEmpty());
}

TEST_F(DonePage, withoutResultsNothingIsWritten) {
    pipeline->setLastExportDir(folder);
    show();
    for (const int index : {fcpxml, premiere, edl})
        page->exportStory(index);
    EXPECT_TRUE(std::filesystem::is_empty(folder));
    EXPECT_THAT(desktop->revealed, IsEmpty());
}

TEST_F(DonePage, theThreeExportsOnDemandWorkWithoutMediaPathsThroughMadeUpEntries) {
    showStoryWithFolder();
    EXPECT_THAT(column(page->storyExports(), "label"), ElementsAre("FCPXML", "Premiere", "EDL"));
    EXPECT_THAT(column(page->storyExports(), "line"), ElementsAre("FCP + Resolve", "FCP7 XML", "Universal"));
    const auto story = givenStoryRecord();
    for (const int index : {fcpxml, premiere, edl})
        page->exportStory(index);
    EXPECT_EQ(read(folder + "/story_edit.fcpxml"),
              FCPXMLExporter::exportText("Zuvo Story Edit", story.segments, madeUpMedia(), 24.0, story.subtitles));
    EXPECT_EQ(read(folder + "/story_edit_premiere.xml"),
              PremiereXMLExporter::exportText("Zuvo Story Edit", story.segments, madeUpMedia(), 24.0));
    EXPECT_EQ(read(folder + "/story_edit.edl"),
              EDLExporter::exportText("Zuvo Story Edit", story.segments, madeUpMedia(), 24.0));
    EXPECT_THAT(desktop->revealed, ElementsAre(folder + "/story_edit.fcpxml", folder + "/story_edit_premiere.xml",
                                               folder + "/story_edit.edl"));
    EXPECT_TRUE(page->buildStatus().isEmpty());
}

TEST_F(DonePage, anEmptyListOfMediaCountsAsNone) {
    pipeline->setLastMediaPaths(std::vector<std::string>());
    showStoryWithFolder();
    page->exportStory(edl);
    EXPECT_EQ(read(folder + "/story_edit.edl"),
              EDLExporter::exportText("Zuvo Story Edit", givenStoryRecord().segments, madeUpMedia(), 24.0));
}

TEST_F(DonePage, exportsUseTheProbedMediaAndAssumeAnHourOfTheOthers) {
    const auto known = givenFile("A.mov", "200.0");
    tools->probeJson[known] = R"({"format": {"duration": "200.0", "tags": {"timecode": "01:00:00:00"}}, "streams": [)"
                              R"({"codec_type": "video", "codec_name": "prores", "r_frame_rate": "25/1"}]})";
    ended(pipeline->probeAllMedia({known}));
    const auto unknown = disk / "footage/B.wav";
    pipeline->setLastMediaPaths(std::vector<std::string>{known, unknown});
    showStoryWithFolder();
    page->exportStory(fcpxml);
    const std::vector<MediaFileInfo> media = {
        {known, "A.mov", 200.0, "01:00:00:00", 25.0, true, false, "prores"},
        {unknown, "B.wav", 3600.0, std::nullopt, 24.0, false, true, std::nullopt}};
    const auto story = givenStoryRecord();
    EXPECT_EQ(read(folder + "/story_edit.fcpxml"),
              FCPXMLExporter::exportText("Zuvo Story Edit", story.segments, media, 24.0, story.subtitles));
}

TEST_F(DonePage, anExportThatFailsStandsInTheStatusLine) {
    const auto noFolder = disk.write("exports/a-file", "x");
    pipeline->setLastExportDir(noFolder);
    showStory();
    const auto words =
        EDLExporter::exportToFile(noFolder + "/story_edit.edl", "x", givenStoryRecord().segments).message();
    ASSERT_FALSE(words.empty());
    page->exportStory(fcpxml);
    EXPECT_EQ(status(), "FCPXML export failed: " + words);
    page->exportStory(premiere);
    EXPECT_EQ(status(), "Premiere XML export failed: " + words);
    page->exportStory(edl);
    EXPECT_EQ(status(), "EDL export failed: " + words);
    EXPECT_THAT(desktop->revealed, IsEmpty());
}

TEST_F(DonePage, whatTheDesktopDoesNotTakeIsTold) {
    desktop->takesAll = false;
    showStoryWithFolder();
    page->openExport(0);
    EXPECT_EQ(status(), "✗ subtitles.srt could not be opened");
    page->openExportFolder();
    EXPECT_EQ(status(), "✗ Faro could not be opened");
    page->exportStory(edl);
    EXPECT_EQ(status(), "✗ story_edit.edl could not be shown");
    EXPECT_TRUE(std::filesystem::exists(folder + "/story_edit.edl"));
}
