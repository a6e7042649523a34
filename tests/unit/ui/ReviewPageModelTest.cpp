#include "ui/ReviewPageModel.h"
#include "fakes/FakeSound.h"
#include "fakes/TemporaryFolder.h"

#include <QAbstractItemModelTester>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

StorySegment segment(std::int64_t id, double start, double end, std::optional<std::string> chapter = std::nullopt) {
    StorySegment made;
    made.index = id;
    made.startTime = start;
    made.endTime = end;
    made.transcript = "moment " + std::to_string(id);
    made.chapter = std::move(chapter);
    return made;
}

TranscriptSegment line(double start, double end, std::string text) {
    return {start, end, std::move(text), "en"};
}

class ReviewPage : public testing::Test {
protected:
    void SetUp() override {
        sound.givenFile("/m/A.wav", 100.0);
        sound.givenFile("/m/B.wav", 50.0);
        givenProbe(R"({"A.wav":{"duration":100.0},"B.wav":{"duration":50.0,"startTimecodeSeconds":200.0}})");
        open();
    }

    void givenProbe(const std::string& text) { disk.write("home/Library/Caches/ZuvoManager/probe_results.json", text); }
    void givenWords(const std::string& text) {
        disk.write("home/Library/Caches/ZuvoManager/word_timestamps.json", text);
    }

    /// A page that comes on screen with three moments, the last two of them in B.wav.
    void open() {
        page = std::make_unique<ReviewPageModel>(ReviewWorld{sound.players(), sound.timers(), [this] { return now; },
                                                             disk / "home", disk / "home/Library/Caches/ZuvoManager"});
        page->show({segment(10, 5.0, 15.0, "One"), segment(11, 100.0, 125.9, "Two"), segment(12, 140.0, 149.0)},
                   {"/m/B.wav", "/m/A.wav"}, {line(3.0, 4.0, "first"), line(120.0, 130.0, "second")});
    }

    [[nodiscard]] std::vector<std::int64_t> order() const {
        std::vector<std::int64_t> ids;
        for (const auto& one : page->segments())
            ids.push_back(one.id());
        return ids;
    }
    [[nodiscard]] std::vector<std::string> details() const {
        std::vector<std::string> texts;
        for (const auto& action : page->reviewActions())
            texts.push_back(action.action + " " + std::to_string(*action.segmentId) + ": " + *action.detail);
        return texts;
    }
    [[nodiscard]] std::string actionsFile() const { return reviewActionsFile(disk / "home"); }
    [[nodiscard]] nlohmann::json storedActions() const {
        return nlohmann::json::parse(disk.read("home/Library/Application Support/ZuvoManager/review_actions.json"));
    }

    TemporaryFolder disk;
    FakeSound sound;
    QDateTime now = QDateTime::fromMSecsSinceEpoch(1700000000500, Qt::UTC);
    std::unique_ptr<ReviewPageModel> page;
};

} // namespace

// What is shown.

TEST_F(ReviewPage, theSummaryNamesTheNumberOfGemsAndTheirLengthCutOffToSeconds) {
    EXPECT_EQ(page->summary(), QStringLiteral("3 gems  0:44")); // 10 + 25.9 + 9
    page->deleteSegment(0);
    EXPECT_EQ(page->summary(), QStringLiteral("2 gems  0:34"));
}

TEST_F(ReviewPage, withAnEmptyTranscriptTheTabsAreNotShown) {
    EXPECT_TRUE(page->hasTranscript());
    page->show({segment(1, 0.0, 1.0)}, {}, {});
    EXPECT_FALSE(page->hasTranscript());
}

TEST_F(ReviewPage, itBeginsWithTheListOfGems) {
    EXPECT_FALSE(page->showTranscript());
    EXPECT_EQ(page->viewMode(), ReviewPageModel::ReviewViewMode::list);
    EXPECT_FALSE(page->expandedSegment());
}

TEST_F(ReviewPage, oneCardIsOpenAtATimeAndASecondTapClosesIt) {
    page->toggleExpanded(10);
    page->toggleExpanded(11);
    EXPECT_EQ(page->expandedSegment(), 11);
    EXPECT_FALSE(page->cards()->index(0).data(SegmentCards::IsExpanded).toBool());
    EXPECT_TRUE(page->cards()->index(1).data(SegmentCards::IsExpanded).toBool());
    page->toggleExpanded(11);
    EXPECT_FALSE(page->expandedSegment());
}

TEST_F(ReviewPage, theSearchCountsItsMatches) {
    EXPECT_EQ(page->matchesText(), QString());
    page->setTranscriptSearch(QStringLiteral("s"));
    EXPECT_EQ(page->matchesText(), QStringLiteral("2 matches"));
    page->setTranscriptSearch(QStringLiteral("SEC"));
    EXPECT_EQ(page->matchesText(), QStringLiteral("1 match"));
    page->setTranscriptSearch(QStringLiteral("nobody"));
    EXPECT_EQ(page->matchesText(), QStringLiteral("0 matches"));
}

// Playing.

TEST_F(ReviewPage, aMomentIsHeardFromTheFileThatHoldsIt) {
    page->togglePlay(10);
    page->togglePlay(11);
    page->togglePlay(12);
    EXPECT_THAT(sound.starts, ElementsAre(Pair("/m/A.wav", 5.0), Pair("/m/B.wav", 0.0), Pair("/m/B.wav", 40.0)));
    EXPECT_EQ(sound.playerCount(), 1U);
}

TEST_F(ReviewPage, theSecondPressOfPlayOnTheSameCardStopsIt) {
    page->togglePlay(10);
    EXPECT_EQ(page->playingSegment(), 10);
    page->togglePlay(10);
    EXPECT_FALSE(page->playingSegment());
    EXPECT_EQ(sound.playing(), nullptr);
    EXPECT_EQ(sound.timerCount(), 0U);
}

TEST_F(ReviewPage, aPressOnAnotherCardMovesThePlaybackThere) {
    page->togglePlay(10);
    sound.pass(2.0);
    page->togglePlay(12);
    EXPECT_EQ(page->playingSegment(), 12);
    EXPECT_EQ(page->currentPlaybackTime(), 0.0);
    EXPECT_FALSE(page->cards()->index(0).data(SegmentCards::IsPlaying).toBool());
    EXPECT_TRUE(page->cards()->index(2).data(SegmentCards::IsPlaying).toBool());
    EXPECT_EQ(sound.playing()->path, "/m/B.wav");
}

TEST_F(ReviewPage, playbackEndsAfterTheMomentsLength) {
    page->togglePlay(10);
    sound.pass(9.9);
    EXPECT_EQ(page->playingSegment(), 10);
    EXPECT_NEAR(page->currentPlaybackTime(), 9.9, 0.04);
    EXPECT_NEAR(page->captionProgress(), 0.99, 0.01);
    sound.pass(0.2);
    EXPECT_FALSE(page->playingSegment());
    EXPECT_FALSE(page->hasPlayer());
    EXPECT_EQ(page->currentPlaybackTime(), 0.0);
    EXPECT_EQ(sound.timerCount(), 0U);
}

TEST_F(ReviewPage, anOldMomentsTimerDoesNotEndTheNextOne) {
    page->togglePlay(10); // 10 s long
    sound.pass(9.0);
    page->togglePlay(11); // 25.9 s long
    sound.pass(5.0);
    EXPECT_EQ(page->playingSegment(), 11);
}

TEST_F(ReviewPage, aSegmentPastTheLastEndPlaysFromTheFirstFileAtThatTime) {
    page->show({segment(1, 150.0, 151.0)}, {"/m/B.wav", "/m/A.wav"}, {});
    page->togglePlay(1);
    EXPECT_THAT(sound.starts, ElementsAre(Pair("/m/A.wav", 150.0)));
}

TEST_F(ReviewPage, aFileThatCannotBeOpenedEndsPlaybackWithoutAWord) {
    page->show({segment(1, 0.0, 1.0)}, {"/m/gone.wav"}, {});
    givenProbe(R"({"gone.wav":{"duration":10}})");
    page->togglePlay(1);
    EXPECT_FALSE(page->playingSegment());
    EXPECT_EQ(sound.timerCount(), 0U);
}

TEST_F(ReviewPage, aFileThatTurnsOutUnplayableEndsPlayback) {
    page->togglePlay(10);
    sound.fail();
    EXPECT_FALSE(page->playingSegment());
    EXPECT_FALSE(page->hasPlayer());
    EXPECT_EQ(sound.timerCount(), 0U);
}

TEST_F(ReviewPage, withoutMediaNothingPlays) {
    page->show({segment(1, 0.0, 1.0)}, {}, {});
    page->togglePlay(1);
    EXPECT_FALSE(page->playingSegment());
}

TEST_F(ReviewPage, withoutProbeDataTheFilesAreOpenedForTheirLengthByName) {
    std::filesystem::remove(disk / "home/Library/Caches/ZuvoManager/probe_results.json");
    page->show({segment(1, 110.0, 120.0)}, {"/m/B.wav", "/x/gone.wav", "/m/A.wav"}, {});
    page->togglePlay(1);
    EXPECT_THAT(sound.starts, ElementsAre(Pair("/m/B.wav", 10.0))); // A.wav holds 0-100
    EXPECT_EQ(sound.durationQuestions, 1);
}

TEST_F(ReviewPage, lengthsThatComeAfterAStopStartNothing) {
    givenProbe("no JSON");
    sound.holdDurations();
    page->togglePlay(10);
    EXPECT_EQ(page->playingSegment(), 10);
    page->togglePlay(10);
    sound.tellDurations();
    EXPECT_EQ(sound.playing(), nullptr);
    page->togglePlay(10);
    page.reset();
    sound.tellDurations();
    EXPECT_EQ(sound.playing(), nullptr);
}

TEST_F(ReviewPage, aLineOfTheEchoIsHeardButNoCardShowsItAsPlaying) {
    page->togglePlay(10);
    page->playTranscriptSegment(1);
    EXPECT_FALSE(page->playingSegment());
    EXPECT_THAT(sound.starts, ElementsAre(Pair("/m/A.wav", 5.0), Pair("/m/B.wav", 20.0)));
    sound.pass(10.1);
    EXPECT_EQ(sound.playing(), nullptr);
    page->playTranscriptSegment(99);
    EXPECT_EQ(sound.playing(), nullptr);
}

TEST_F(ReviewPage, theLineIsThatOfTheSearchResult) {
    page->setTranscriptSearch(QStringLiteral("second"));
    page->playTranscriptSegment(0);
    EXPECT_THAT(sound.starts, ElementsAre(Pair("/m/B.wav", 20.0)));
}

TEST_F(ReviewPage, theCaptionFollowsThePlayback) {
    givenWords(
        R"([{"segmentIndex":10,"words":[{"word":"one","start":0.5,"end":1},{"word":"two","start":2,"end":3}]}])");
    open();
    EXPECT_EQ(page->captionWords()->count(), 0);
    page->togglePlay(10);
    const auto places = [this] {
        std::vector<int> found;
        for (const auto& word : page->captionWords()->rows())
            found.push_back(word.values.at(1).toInt());
        return found;
    };
    EXPECT_THAT(places(), ElementsAre(1, 1));
    sound.pass(1.0);
    EXPECT_THAT(places(), ElementsAre(0, 1));
    sound.pass(1.5);
    EXPECT_THAT(places(), ElementsAre(-1, 0));
    page->stopPlayback();
    EXPECT_EQ(page->captionWords()->count(), 0);
    page->togglePlay(11);
    EXPECT_EQ(page->captionWords()->count(), 0);
}

// Deleting.

TEST_F(ReviewPage, deletingRecordsPositionAndTimes) {
    page->deleteSegment(1);
    EXPECT_THAT(order(), ElementsAre(10, 12));
    EXPECT_THAT(details(), ElementsAre("delete 11: index 1, 100.0-125.9s"));
    EXPECT_EQ(page->reviewActions()[0].timestamp, 1700000000.5);
    EXPECT_FALSE(page->reviewActions()[0].segmentLabel);
}

TEST_F(ReviewPage, deletingThePlayingSegmentStopsPlayback) {
    page->togglePlay(11);
    page->deleteSegment(1);
    EXPECT_FALSE(page->playingSegment());
    EXPECT_EQ(sound.playing(), nullptr);
}

TEST_F(ReviewPage, deletingAnotherSegmentLetsPlaybackGoOn) {
    page->togglePlay(11);
    page->deleteSegment(0);
    EXPECT_EQ(page->playingSegment(), 11);
    EXPECT_TRUE(page->cards()->index(0).data(SegmentCards::IsPlaying).toBool());
}

TEST_F(ReviewPage, aPlaceOutsideTheListDeletesNothing) {
    page->deleteSegment(-1);
    page->deleteSegment(3);
    EXPECT_THAT(order(), ElementsAre(10, 11, 12));
    EXPECT_THAT(page->reviewActions(), IsEmpty());
}

// Reordering.

TEST_F(ReviewPage, aDragAcrossTwoCardsMovesTheListWhileDragging) {
    page->beginDrag(10);
    page->dropEntered(11);
    EXPECT_THAT(order(), ElementsAre(11, 10, 12));
    page->dropEntered(12);
    EXPECT_TRUE(page->performDrop());
    EXPECT_THAT(order(), ElementsAre(11, 12, 10));
    EXPECT_THAT(details(), ElementsAre("reorder 10: moved from 0 to 1", "reorder 10: moved from 1 to 2"));
}

TEST_F(ReviewPage, aDragAcrossThreeCardsRecordsThreeActions) {
    page->show({segment(1, 0, 1), segment(2, 1, 2), segment(3, 2, 3), segment(4, 3, 4)}, {}, {});
    page->beginDrag(4);
    for (const auto id : {3, 2, 1})
        page->dropEntered(id);
    page->performDrop();
    EXPECT_THAT(order(), ElementsAre(4, 1, 2, 3));
    EXPECT_THAT(details(), ElementsAre("reorder 4: moved from 3 to 2", "reorder 4: moved from 2 to 1",
                                       "reorder 4: moved from 1 to 0"));
}

TEST_F(ReviewPage, aCardThatSkipsOthersTakesThePlaceOfTheOneItEntered) {
    page->beginDrag(10);
    page->dropEntered(12);
    EXPECT_THAT(order(), ElementsAre(11, 12, 10));
    page->dropEntered(11);
    EXPECT_THAT(order(), ElementsAre(10, 11, 12));
}

TEST_F(ReviewPage, aDragDroppedOnItsOwnCardRecordsNothing) {
    page->beginDrag(11);
    page->dropEntered(11);
    page->performDrop();
    EXPECT_THAT(page->reviewActions(), IsEmpty());
}

TEST_F(ReviewPage, enteringACardWithoutADragDoesNothing) {
    page->dropEntered(12);
    page->beginDrag(10);
    page->performDrop();
    page->dropEntered(12);
    page->beginDrag(99);
    page->dropEntered(12);
    EXPECT_THAT(order(), ElementsAre(10, 11, 12));
    EXPECT_THAT(page->reviewActions(), IsEmpty());
}

TEST_F(ReviewPage, theKeyboardMovesACardAndRecordsTheSame) {
    EXPECT_EQ(page->moveSegment(0, 1), 1);
    EXPECT_THAT(order(), ElementsAre(11, 10, 12));
    EXPECT_EQ(page->moveSegment(1, -1), 0);
    EXPECT_THAT(details(), ElementsAre("reorder 10: moved from 0 to 1", "reorder 10: moved from 1 to 0"));
    EXPECT_EQ(page->moveSegment(0, -1), 0);
    EXPECT_EQ(page->moveSegment(2, 1), 2);
    EXPECT_EQ(page->reviewActions().size(), 2U);
}

TEST_F(ReviewPage, theModelsKeepTheirPromisesThroughEveryEdit) {
    const QAbstractItemModelTester cards(page->cards(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QAbstractItemModelTester map(page->map(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QAbstractItemModelTester echo(page->echo(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    page->map()->initializePositions(800.0, 600.0);
    page->moveSegment(0, 1);
    page->moveSegment(2, -1);
    page->togglePlay(12);
    page->toggleExpanded(12);
    page->setTranscriptSearch(QStringLiteral("first"));
    page->setTranscriptSearch(QString());
    while (page->cards()->rowCount() > 0)
        page->deleteSegment(0);
    EXPECT_EQ(page->map()->rowCount(), 0);
}

// Colours and texts of cards.

TEST_F(ReviewPage, cardsTellTheirPlaceTimesLengthAndChapter) {
    const auto card = page->cards()->index(1);
    EXPECT_EQ(card.data(SegmentCards::Position), 2);
    EXPECT_EQ(card.data(SegmentCards::Times), QStringLiteral("1:40 \u2192 2:05"));
    EXPECT_EQ(card.data(SegmentCards::Length), QStringLiteral("25s"));
    EXPECT_EQ(card.data(SegmentCards::Chapter), QStringLiteral("Two"));
    EXPECT_EQ(card.data(SegmentCards::Gem), 1);
    EXPECT_EQ(page->cards()->index(2).data(SegmentCards::Gem), -1);
}

TEST_F(ReviewPage, positionsAndColoursFollowTheOrder) {
    page->moveSegment(1, -1);
    EXPECT_EQ(page->cards()->index(0).data(SegmentCards::Chapter), QStringLiteral("Two"));
    EXPECT_EQ(page->cards()->index(0).data(SegmentCards::Gem), 0);
    EXPECT_EQ(page->cards()->index(0).data(SegmentCards::Position), 1);
    EXPECT_EQ(page->cards()->index(1).data(SegmentCards::Gem), 1);
}

// Leaving.

TEST_F(ReviewPage, leavingWithNoEditsWritesNoFile) {
    page->togglePlay(10);
    page->leave();
    EXPECT_EQ(sound.playing(), nullptr);
    EXPECT_FALSE(std::filesystem::exists(actionsFile()));
    page.reset();
    EXPECT_FALSE(std::filesystem::exists(actionsFile()));
}

TEST_F(ReviewPage, theLogGrowsOverSeveralVisitsAndEachEditStandsOnce) {
    page->deleteSegment(0);
    page->leave();
    page.reset();
    EXPECT_EQ(storedActions().size(), 1U);
    open();
    EXPECT_THAT(order(), ElementsAre(10, 11, 12)); // the edits of the last visit are gone
    page->leave();
    EXPECT_EQ(storedActions().size(), 1U);
    now = now.addSecs(60);
    open();
    page->moveSegment(0, 1);
    page.reset(); // a page that is taken away has been left
    const auto stored = storedActions();
    ASSERT_EQ(stored.size(), 2U);
    EXPECT_EQ(stored[0], nlohmann::json::parse(R"({"action":"delete","timestamp":1700000000.5,"segmentId":10,
                                                   "detail":"index 0, 5.0-15.0s"})"));
    EXPECT_EQ(stored[1], nlohmann::json::parse(R"({"action":"reorder","timestamp":1700000060.5,"segmentId":10,
                                                   "detail":"moved from 0 to 1"})"));
}

TEST_F(ReviewPage, aLogThatIsNoListBeginsAnew) {
    for (const auto* broken : {"{\"a\":1}", "no JSON", ""}) {
        disk.write("home/Library/Application Support/ZuvoManager/review_actions.json", broken);
        open();
        page->deleteSegment(0);
        page->leave();
        EXPECT_EQ(storedActions().size(), 1U) << broken;
    }
}

TEST_F(ReviewPage, entriesOfOthersInTheLogStay) {
    disk.write("home/Library/Application Support/ZuvoManager/review_actions.json", R"([{"action":"rename","x":[1]}])");
    page->deleteSegment(0);
    page->leave();
    ASSERT_EQ(storedActions().size(), 2U);
    EXPECT_EQ(storedActions()[0], nlohmann::json::parse(R"({"action":"rename","x":[1]})"));
}

TEST_F(ReviewPage, aLogThatCannotBeWrittenIsPassedOver) {
    disk.write("home/Library/Application Support", "a file where the folder should be");
    page->deleteSegment(0);
    page->leave();
    EXPECT_FALSE(std::filesystem::exists(actionsFile()));
}

// What is called back.

TEST_F(ReviewPage, everyWayOutStopsPlaybackFirst) {
    std::vector<std::int64_t> sent;
    int reanalyzed = 0;
    int skipped = 0;
    page->setCallbacks({[&](const std::vector<StorySegment>& segments) {
                            EXPECT_FALSE(page->playingSegment());
                            for (const auto& one : segments)
                                sent.push_back(one.id());
                        },
                        [&] {
                            ++reanalyzed;
                            EXPECT_FALSE(page->playingSegment());
                        },
                        [&] {
                            ++skipped;
                            EXPECT_FALSE(page->playingSegment());
                        }});
    page->moveSegment(2, -1);
    page->deleteSegment(0);
    page->togglePlay(11);
    page->sendToResolve();
    page->togglePlay(11);
    page->reanalyze();
    page->togglePlay(11);
    page->skipToExport();
    EXPECT_THAT(sent, ElementsAre(12, 11));
    EXPECT_EQ(reanalyzed, 1);
    EXPECT_EQ(skipped, 1);
    EXPECT_FALSE(page->playingSegment());
}
