#include "ui/ReviewFixture.h"

#include <QPointer>
#include <QPointingDevice>
#include <nlohmann/json.hpp>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

class ReviewWindow : public ReviewFixture {
protected:
    /// A finger comes down there and moves by `way` in small steps, without being lifted.
    void touchAndMove(QPoint from, QPoint way) {
        constexpr int steps = 12;
        QTest::touchEvent(&driver->window(), finger).press(0, from);
        for (int step = 1; step <= steps; ++step) {
            runEventLoop(std::chrono::milliseconds(8));
            QTest::touchEvent(&driver->window(), finger).move(0, from + way * step / steps);
        }
    }
    void lift(QPoint at) { QTest::touchEvent(&driver->window(), finger).release(0, at); }

    [[nodiscard]] double contentY(const char* list) {
        return driver->find(QString::fromUtf8(list))->property("contentY").toDouble();
    }

    QPointingDevice* finger = QTest::createTouchDevice(); ///< deleted by the application
};

} // namespace

TEST_F(ReviewWindow, aTapOpensACardAndASecondClosesIt) {
    openReview();
    driver->click(QStringLiteral("segmentCard1"));
    EXPECT_EQ(page->expandedSegment(), 1);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("removeButton")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Preview")));
    settle();
    const auto* card = driver->find(QStringLiteral("segmentCard1"));
    driver->click(card->mapToScene({100, 20}).toPoint());
    EXPECT_FALSE(page->expandedSegment());
}

TEST_F(ReviewWindow, thePlayButtonPlaysAndStops) {
    openReview();
    driver->click(QStringLiteral("segmentCard1"));
    settle();
    driver->click(QStringLiteral("playButton"));
    EXPECT_EQ(page->playingSegment(), 1);
    EXPECT_EQ(page->expandedSegment(), 1);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("liveCaption")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Stop")));
    settle();
    driver->click(QStringLiteral("playButton"));
    EXPECT_FALSE(page->playingSegment());
    EXPECT_FALSE(driver->shows(QStringLiteral("liveCaption")));
}

TEST_F(ReviewWindow, removeTakesTheCardAway) {
    openReview();
    driver->click(QStringLiteral("segmentCard0"));
    settle();
    driver->click(QStringLiteral("removeButton"));
    EXPECT_EQ(page->segments().size(), 10U);
    EXPECT_EQ(page->segments().front().id(), 1);
}

TEST_F(ReviewWindow, aDragAcrossThreeCardsMovesTheCardAndRecordsThreeActions) {
    openReview();
    const auto from = middleOf(QStringLiteral("segmentCard0"));
    std::vector<int> rows;
    for (const auto* name : {"segmentCard1", "segmentCard2", "segmentCard3"})
        rows.push_back(middleOf(QString::fromUtf8(name)).y());
    pressAt(from);
    moveTo(from + QPoint(0, 4));
    moveTo(from + QPoint(0, 10));
    EXPECT_TRUE(driver->shows(QStringLiteral("liftedCard")));
    EXPECT_THAT(page->reviewActions(), testing::IsEmpty());
    for (const auto y : rows)
        moveTo({from.x(), y});
    releaseAt({from.x(), rows.back()});
    settle();
    EXPECT_FALSE(driver->shows(QStringLiteral("liftedCard")));
    ASSERT_EQ(page->reviewActions().size(), 3U);
    EXPECT_EQ(*page->reviewActions()[2].detail, "moved from 2 to 3");
    EXPECT_EQ(order()[3], 0);
    EXPECT_FALSE(page->expandedSegment());
}

TEST_F(ReviewWindow, aCardHeldAtTheLowerEdgeMovesTheList) {
    openReview();
    const auto* list = driver->find(QStringLiteral("segmentList"));
    const auto top = list->property("contentY").toDouble();
    const auto from = middleOf(QStringLiteral("segmentCard0"));
    const auto edge = list->mapToScene({list->width() / 2, list->height() - 10}).toPoint();
    pressAt(from);
    moveTo(from + QPoint(0, 4));
    moveTo(from + QPoint(0, 10));
    moveTo(edge);
    EXPECT_TRUE(waitUntil([&] { return list->property("contentY").toDouble() > top + 40; }));
    EXPECT_TRUE(waitUntil([&] { return order().back() == 0; }));
    releaseAt(edge);
    EXPECT_FALSE(driver->shows(QStringLiteral("liftedCard")));
}

TEST_F(ReviewWindow, aFingerScrollsTheListAndMovesNoCard) {
    openReview();
    const auto from = middleOf(QStringLiteral("segmentCard3"));
    const auto top = contentY("segmentList");
    touchAndMove(from, {0, -200});
    EXPECT_GT(contentY("segmentList"), top + 100);
    lift(from - QPoint(0, 200));
    EXPECT_FALSE(driver->shows(QStringLiteral("liftedCard")));
    EXPECT_THAT(page->reviewActions(), testing::IsEmpty());
    EXPECT_FALSE(page->expandedSegment());
}

TEST_F(ReviewWindow, aFingerThatTapsOpensACard) {
    openReview();
    const auto at = middleOf(QStringLiteral("segmentCard1"));
    QTest::touchEvent(&driver->window(), finger).press(0, at);
    lift(at);
    EXPECT_TRUE(waitUntil([this] { return page->expandedSegment() == 1; }));
}

TEST_F(ReviewWindow, aFingerThatRestsOnACardLiftsIt) {
    openReview();
    const auto from = middleOf(QStringLiteral("segmentCard0"));
    const auto to = middleOf(QStringLiteral("segmentCard1"));
    const auto top = contentY("segmentList");
    QTest::touchEvent(&driver->window(), finger).press(0, from);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("liftedCard")));
    for (int step = 1; step <= 6; ++step) {
        QTest::touchEvent(&driver->window(), finger).move(0, from + (to - from) * step / 6);
        runEventLoop(std::chrono::milliseconds(8));
    }
    lift(to);
    EXPECT_EQ(order()[1], 0);
    EXPECT_EQ(contentY("segmentList"), top);
    EXPECT_FALSE(driver->shows(QStringLiteral("liftedCard")));
    EXPECT_FALSE(page->expandedSegment());
}

TEST_F(ReviewWindow, aFingerScrollsTheEchoAndPlaysNothing) {
    openReview();
    page->show(story(), {}, std::vector<TranscriptSegment>(500, {0.0, 1.0, "una línea", "es"}));
    driver->click(QStringLiteral("echoTab"));
    settle();
    const auto from = middleOf(QStringLiteral("transcriptLine6"));
    touchAndMove(from, {0, -200});
    EXPECT_GT(contentY("echoList"), 100);
    lift(from - QPoint(0, 200));
    EXPECT_TRUE(sound.starts.empty());
}

TEST_F(ReviewWindow, aWordOfTheCaptionStaysAndGrowsWhileItIsSaid) {
    openReview();
    page->togglePlay(1);
    driver->click(QStringLiteral("segmentCard1"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("liveCaption")));
    sound.pass(9.5);
    const auto word = [this](const char* text) {
        QPointer<QQuickItem> found;
        for (auto* item : driver->shownItems()) {
            if (item->property("text").toString() == QString::fromUtf8(text))
                found = item;
        }
        return found;
    };
    const auto before = word("guardia.");
    ASSERT_FALSE(before.isNull());
    EXPECT_EQ(before->scale(), 1.0);
    sound.pass(1.5); // 11.0
    ASSERT_FALSE(before.isNull());
    EXPECT_EQ(before, word("guardia."));
    EXPECT_LT(before->scale(), 1.05); // it has only begun to grow
    EXPECT_TRUE(waitUntil([&] { return before->scale() >= 1.05; }));
    sound.pass(2.5);
    EXPECT_TRUE(waitUntil([&] { return before->scale() <= 1.0; }));
}

TEST_F(ReviewWindow, afterARemovalTheKeyboardIsOnTheCardThatFollows) {
    openReview();
    driver->press(Qt::Key_Down);
    driver->press(Qt::Key_Delete); // 1
    driver->press(Qt::Key_Delete); // 2
    EXPECT_THAT(order(), ElementsAre(0, 3, 4, 5, 6, 7, 8, 9, 10));
    for (int i = 0; i < 20; ++i)
        driver->press(Qt::Key_Down);
    driver->press(Qt::Key_Delete); // the last one
    settle();
    driver->press(Qt::Key_Delete); // the last one left
    EXPECT_THAT(order(), ElementsAre(0, 3, 4, 5, 6, 7, 8));
}

TEST_F(ReviewWindow, theKeyboardChoosesOpensPlaysMovesAndRemoves) {
    openReview();
    driver->press(Qt::Key_Down);
    driver->press(Qt::Key_Return);
    EXPECT_EQ(page->expandedSegment(), 1);
    driver->press(Qt::Key_Space);
    EXPECT_EQ(page->playingSegment(), 1);
    driver->press(Qt::Key_K);
    EXPECT_FALSE(page->playingSegment());
    driver->press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(order()[2], 1);
    driver->press(Qt::Key_Up, Qt::AltModifier);
    driver->press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(order()[0], 1);
    EXPECT_EQ(page->reviewActions().size(), 3U);
    driver->press(Qt::Key_Delete);
    EXPECT_THAT(order().front(), 0);
    EXPECT_EQ(page->segments().size(), 10U);
}

TEST_F(ReviewWindow, withoutATranscriptThereAreNoTabs) {
    openReview();
    EXPECT_FALSE(driver->shows(QStringLiteral("echoTab")));
    driver->press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_FALSE(page->showTranscript());
    givenTranscript();
    EXPECT_TRUE(driver->shows(QStringLiteral("echoTab")));
}

TEST_F(ReviewWindow, theSearchFieldKeepsItsKeysAndNarrowsTheEcho) {
    openReview();
    givenTranscript();
    driver->press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(page->showTranscript());
    ASSERT_TRUE(driver->waitFor(QStringLiteral("searchField")));
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("searchField"); }));
    driver->type(QStringLiteral("k k"));
    EXPECT_EQ(page->transcriptSearch(), QStringLiteral("k k"));
    EXPECT_EQ(sound.playing(), nullptr);
    driver->click(QStringLiteral("clearSearchButton"));
    EXPECT_EQ(page->transcriptSearch(), QString());
    driver->type(QStringLiteral("mar"));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("8 matches")));
    driver->click(QStringLiteral("transcriptLine2"));
    ASSERT_NE(sound.playing(), nullptr);
    EXPECT_EQ(sound.starts.back().second, 1012.0);
    EXPECT_FALSE(page->playingSegment());
}

TEST_F(ReviewWindow, onlyLinesThatAreSeenAreMade) {
    openReview();
    std::vector<TranscriptSegment> lines(5000, {0.0, 1.0, "una línea", "es"});
    page->show(story(), {}, lines);
    driver->click(QStringLiteral("echoTab"));
    settle();
    auto* list = driver->find(QStringLiteral("echoList"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->property("count").toInt(), 5000);
    auto* content = list->property("contentItem").value<QQuickItem*>();
    ASSERT_NE(content, nullptr);
    EXPECT_GT(content->childItems().size(), 5);
    EXPECT_LT(content->childItems().size(), 60);
}

TEST_F(ReviewWindow, sendingHandsOverTheUsersOrderAndGoesOn) {
    openReview();
    driver->press(Qt::Key_Down, Qt::AltModifier); // 0 behind 1
    driver->press(Qt::Key_Delete);                // 0
    driver->click(QStringLiteral("sendButton"));
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    const auto sent = nlohmann::json::parse(world.disk().read("home/Library/Caches/ZuvoManager/segments.json"));
    ASSERT_EQ(sent.size(), 10U);
    EXPECT_EQ(sent[0].at("index"), 1);
    EXPECT_EQ(sent[1].at("index"), 2);
    const auto log =
        nlohmann::json::parse(world.disk().read("home/Library/Application Support/ZuvoManager/review_actions.json"));
    EXPECT_EQ(log.size(), 2U);
    EXPECT_EQ(flow->pipeline()->results()->segments.size(), 10U);
    settle();
}

TEST_F(ReviewWindow, goingBackDiscardsTheEditsButNotTheirLog) {
    openReview();
    driver->press(Qt::Key_Delete);
    EXPECT_EQ(page->segments().size(), 10U);
    driver->click(QStringLiteral("skipButton"));
    EXPECT_EQ(flow->currentStep(), MineStep::done);
    EXPECT_EQ(flow->pipeline()->results()->segments.size(), 11U);
    settle();
    openReview();
    EXPECT_EQ(page->segments().size(), 11U);
    const auto log =
        nlohmann::json::parse(world.disk().read("home/Library/Application Support/ZuvoManager/review_actions.json"));
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(ReviewWindow, reMineLeadsToTheLantern) {
    openReview();
    driver->click(QStringLiteral("reanalyzeButton"));
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    settle();
}
