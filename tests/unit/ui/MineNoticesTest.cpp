// What the flow tells the user at once: results that could not be saved, missing media, names that no mine can have.

#include "MineFixture.h"
#include "fakes/FileSizeLimit.h"
#include "ui/DonePageModel.h"

#include <QVariantMap>
#include <filesystem>

using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class MineNotices : public MineTest {
protected:
    void mineToTheEnd() {
        flow->styleNext();
        ASSERT_TRUE(waitUntil([this] { return flow->currentStep() == MineStep::review; }));
        ASSERT_EQ(pipeline->step(), PipelineStep::complete);
    }

    /// Nobody can write there, root neither.
    void givenFileInPlaceOfTheExports() { disk.write("home/Library/Application Support", "in the way"); }

    /// Answers for another mine of the same footage, whose transcript is known by now.
    void givenAnotherStory(const std::string& transcript) {
        auto story = storyOf({{0.0, 10.0}, {100.0, 110.0}});
        story.segments[0].transcript = transcript;
        givenStory(jsonOf(story));
        givenWords(R"({"word": "uno", "start": 0.12, "end": 0.5})");
        givenWords(R"({"word": "tres", "start": 0.25, "end": 0.75})");
    }

    [[nodiscard]] std::string text() const { return flow->noticeText().toStdString(); }
};

} // namespace

TEST_F(MineNotices, aMineThatWasSavedGivesNone) {
    givenDroppedFootage();
    mineToTheEnd();
    EXPECT_EQ(flow->noticeTitle(), QString());
    EXPECT_EQ(flow->noticeText(), QString());
    EXPECT_FALSE(flow->canSaveCopy());
    EXPECT_FALSE(flow->isUnsaved("subtitles.srt"));
}

TEST_F(MineNotices, aMineThatCouldNotBeSavedSaysWhichFilesAndWhy) {
    givenFileInPlaceOfTheExports();
    givenDroppedFootage();
    mineToTheEnd();
    EXPECT_EQ(flow->noticeTitle(), QStringLiteral("This mine could not be saved"));
    EXPECT_EQ(text(), "subtitles.srt: there is no such file (Not a directory)\n"
                      "transcript.txt: there is no such file (Not a directory)\n"
                      "story_brief.md: there is no such file (Not a directory)\n"
                      "and 2 more");
    EXPECT_TRUE(flow->canSaveCopy());
    EXPECT_TRUE(flow->isUnsaved("subtitles.srt"));
    EXPECT_FALSE(flow->isUnsaved("segments.json"));
    flow->dismissNotice();
    EXPECT_EQ(text(), "");
    EXPECT_TRUE(flow->isUnsaved("subtitles.srt")) << "it is not there for all that";
}

TEST_F(MineNotices, aCopyOfTheStoryGoesIntoTheChosenFolder) {
    givenFileInPlaceOfTheExports();
    givenDroppedFootage();
    mineToTheEnd();
    flow->saveCopy(QUrl::fromLocalFile(QString::fromStdString(disk.write("a file", ""))));
    EXPECT_EQ(flow->noticeTitle(), QStringLiteral("The copy could not be saved"));
    EXPECT_EQ(text(), (disk / "a file/story_brief.md") + " could not be written: Not a directory");
    EXPECT_TRUE(flow->canSaveCopy()) << "elsewhere it may work";

    const auto folder = disk.makeFolder("a copy");
    flow->saveCopy(QUrl::fromLocalFile(QString::fromStdString(folder)));
    EXPECT_EQ(flow->noticeTitle(), QStringLiteral("Copy saved"));
    EXPECT_EQ(text(), "The story is in " + folder);
    EXPECT_FALSE(flow->canSaveCopy());
    EXPECT_THAT(read(folder + "/story_brief.md"), StartsWith("# Story Brief — "));
    EXPECT_THAT(read(folder + "/subtitles.srt"), HasSubstr(" --> "));
    EXPECT_THAT(read(folder + "/transcript.txt"), StartsWith("# Full Transcript\n\n"));
    EXPECT_EQ(read(folder + "/mining_results.json"), jsonOf(*pipeline->results()));
}

TEST_F(MineNotices, theNextMineStartsWithoutTheFaultsOfTheLast) {
    givenFileInPlaceOfTheExports();
    givenDroppedFootage();
    mineToTheEnd();
    flow->dismissNotice();
    std::filesystem::remove(home + "/Library/Application Support");
    givenAnotherStory("short");
    flow->advanceTo(MineStep::style);
    mineToTheEnd();
    EXPECT_EQ(text(), "");
    EXPECT_FALSE(flow->isUnsaved("subtitles.srt"));
}

TEST_F(MineNotices, anOldFileIsNeitherOpenedNorListedAsANewOne) {
    givenDroppedFootage();
    mineToTheEnd();
    const auto folder = exportsPath("Dropped Files (2)");
    const auto old = read(folder + "/mining_results.json");
    // A story for which the disk has no room, though it has some for the sound.
    constexpr std::size_t room = 900'000;
    givenAnotherStory(std::string(room, 'o'));
    {
        const FileSizeLimit full(room);
        flow->advanceTo(MineStep::style);
        mineToTheEnd();
    }
    ASSERT_EQ(read(folder + "/mining_results.json"), old);
    ASSERT_EQ(read(folder + "/mining_results_v1.json"), old) << "put aside for the new one";
    EXPECT_TRUE(flow->isUnsaved("mining_results.json"));
    EXPECT_THAT(text(), HasSubstr("mining_results.json: the old file is still there (File too large)"));

    DonePageModel page;
    page.setFlow(flow.get());
    page.openExport(0);
    EXPECT_EQ(page.buildStatus(), QStringLiteral("✗ subtitles.srt of this mine could not be saved"));
    EXPECT_THAT(page.versions(), IsEmpty()) << "the story put aside is the newest that is saved";
}

TEST_F(MineNotices, aStoryThatWasPutAsideForOneThatWasSavedIsAVersion) {
    givenDroppedFootage();
    mineToTheEnd();
    givenAnotherStory("short");
    flow->advanceTo(MineStep::style);
    mineToTheEnd();
    DonePageModel page;
    page.setFlow(flow.get());
    ASSERT_THAT(page.versions(), SizeIs(1));
    EXPECT_TRUE(page.versions().at(0).toMap().value(QStringLiteral("isCurrent")).toBool());
}

TEST_F(MineNotices, mediaOfAProjectThatAreNotAbsoluteCountAsMissing) {
    auto project = projectCalled("Old");
    project.results = analysedStory();
    project.mediaPaths = {"http://10.0.0.1/A.wav", "/footage/B.wav"};
    flow->loadProject(project);
    EXPECT_EQ(flow->noticeTitle(), QStringLiteral("Media are missing"));
    EXPECT_EQ(text(), "Media of this project count as missing, since this path is not absolute: "
                      "\"http://10.0.0.1/A.wav\"");
    EXPECT_FALSE(flow->canSaveCopy());
    EXPECT_EQ(flow->mediaPaths(), (std::vector<std::string>{"/path/to/A.wav", "/footage/B.wav"}));
    EXPECT_EQ(flow->loadedProject()->mediaPaths, flow->mediaPaths());
    EXPECT_EQ(flow->currentStep(), MineStep::review);
}

TEST_F(MineNotices, aProjectWhoseNameLeadsOutHasNoExportFolder) {
    auto project = projectCalled("../../..");
    project.results = analysedStory();
    flow->loadProject(project);
    EXPECT_EQ(pipeline->lastExportDir(), std::nullopt);
}

TEST_F(MineNotices, aMineWhoseNameLeadsOutDoesNotBegin) {
    givenDropped({"/footage/...mov"});
    flow->styleNext();
    thenNothingRan();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
    EXPECT_EQ(flow->noticeTitle(), QStringLiteral("This mine cannot be saved"));
    EXPECT_THAT(text(), StartsWith("A mine cannot be called \"..\": "));

    flow->dismissNotice();
    flow->setSourceMode(SourceMode::resolve);
    flow->setSelectedTimeline("../../..");
    flow->styleNext();
    thenNothingRan();
    EXPECT_THAT(text(), StartsWith("A mine cannot be called \"../../..\": "));
}

TEST_F(MineNotices, anOlderHandOffIsNotBuiltInPlaceOfTheEditedStory) {
    pipeline->setResults(analysedStory());
    disk.makeFolder("home/Library/Caches/ZuvoManager/segments.json/not empty");
    flow->sendToResolve(analysedStory().segments);
    turn();
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    EXPECT_EQ(flow->noticeTitle(), QStringLiteral("The story could not be sent to Resolve"));
    EXPECT_EQ(text(), "segments.json: there is no such file (Is a directory)");
    EXPECT_EQ(calls->count(), 0U) << "nothing was built";
    EXPECT_EQ(pipeline->buildResult(), std::nullopt);
}
