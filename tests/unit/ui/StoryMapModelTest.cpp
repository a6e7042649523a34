#include "ui/StoryMapModel.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>

using namespace zuvo;
using testing::ElementsAre;

namespace {

StorySegment segment(std::int64_t id, std::optional<std::string> chapter) {
    StorySegment made;
    made.index = id;
    made.chapter = std::move(chapter);
    return made;
}

class StoryMap : public testing::Test {
protected:
    StoryMap() {
        map.setJitter([] { return 0.0; });
    }
    void given(std::vector<StorySegment> segments) { cards.setSegments(std::move(segments)); }
    [[nodiscard]] bool isInSight(int row) const { return map.index(row, 0).data(StoryMapModel::IsInSight).toBool(); }
    [[nodiscard]] QVariantMap cluster(int at) const { return map.clusters().at(at).toMap(); }

    SegmentCards cards;
    StoryMapModel map{&cards};
};

} // namespace

TEST_F(StoryMap, chaptersStandInOrderOfFirstOccurrenceAndTheRestIsUncategorized) {
    const auto chapters =
        mapChapters({segment(1, "b"), segment(2, std::nullopt), segment(3, "a"), segment(4, "b"), segment(5, "")});
    ASSERT_EQ(chapters.size(), 3U);
    EXPECT_EQ(chapters[0].name, "b");
    EXPECT_THAT(chapters[0].ids, ElementsAre(1, 4));
    EXPECT_EQ(chapters[1].name, "Uncategorized");
    EXPECT_EQ(chapters[1].gem, -1);
    EXPECT_THAT(chapters[1].ids, ElementsAre(2, 5));
    EXPECT_EQ(chapters[2].gem, 1);
}

TEST_F(StoryMap, chaptersStandOnASquareGridOverTheWidth) {
    struct Case {
        std::size_t index;
        std::size_t count;
        double x;
        double y;
    };
    // 1000 wide: a share of 1000 with one column, 500 with two; three have 440 each, which is the least.
    const std::vector<Case> cases = {
        {0, 1, 290, 120}, {0, 2, 40, 120},  {1, 2, 540, 120}, {2, 3, 40, 340},
        {3, 4, 540, 340}, {4, 5, 450, 340}, {6, 9, 10, 560},
    };
    for (const auto& [index, count, x, y] : cases) {
        const auto center = clusterCenter(index, count, {1000, 700});
        EXPECT_NEAR(center.x(), x, 1e-9) << index << " of " << count;
        EXPECT_EQ(center.y(), y) << index << " of " << count;
    }
}

TEST_F(StoryMap, aChapterOfSevenCardsTakesThreeRows) {
    std::vector<StorySegment> segments;
    for (std::int64_t id = 0; id < 7; ++id)
        segments.push_back(segment(id, "one"));
    given(segments);
    map.initializePositions(1000, 700); // centre 290, 120
    EXPECT_EQ(map.positionOf(0), QPointF(390, 150));
    EXPECT_EQ(map.positionOf(2), QPointF(610, 150));
    EXPECT_EQ(map.positionOf(3), QPointF(390, 240));
    EXPECT_EQ(map.positionOf(6), QPointF(390, 330));
    EXPECT_EQ(clusterSize(7), QSizeF(420, 360));
}

TEST_F(StoryMap, aClusterGrowsWithItsCards) {
    EXPECT_EQ(clusterSize(1), QSizeF(180, 160));
    EXPECT_EQ(clusterSize(3), QSizeF(420, 160));
    EXPECT_EQ(clusterSize(4), QSizeF(420, 260));
}

TEST_F(StoryMap, everyCardHasAJitterOfItsOwnInBothDirections) {
    double next = -8.0;
    map.setJitter([&next] { return next += 1.0; });
    given({segment(1, "a"), segment(2, "a")});
    map.initializePositions(1000, 700);
    EXPECT_EQ(map.positionOf(1), QPointF(390 - 7, 150 - 6));
    EXPECT_EQ(map.positionOf(2), QPointF(500 - 5, 150 - 4));
}

TEST_F(StoryMap, theJitterOfTheProgramIsAtMostEight) {
    StoryMapModel real(&cards);
    std::vector<StorySegment> segments;
    for (std::int64_t id = 0; id < 200; ++id)
        segments.push_back(segment(id, std::nullopt));
    given(segments);
    real.initializePositions(1000, 700);
    for (std::int64_t id = 0; id < 200; ++id) {
        const auto offset = real.positionOf(id) - QPointF(390.0 + static_cast<double>(id % 3) * 110.0,
                                                          150.0 + std::floor(static_cast<double>(id) / 3.0) * 90.0);
        EXPECT_LE(std::abs(offset.x()), 8.0);
        EXPECT_LE(std::abs(offset.y()), 8.0);
    }
}

TEST_F(StoryMap, cardsAreLaidOutOnceUntilTheBoardLeaves) {
    given({segment(1, "a")});
    map.initializePositions(1000, 700);
    map.moveCard(1, 10, 20);
    map.initializePositions(2000, 700);
    EXPECT_EQ(map.positionOf(1), QPointF(10, 20));
    map.clear();
    map.initializePositions(2000, 700);
    EXPECT_EQ(map.positionOf(1), QPointF(890, 150));
}

TEST_F(StoryMap, theChaptersStayBehindTheirCardsWhenTheBoardGrows) {
    given({segment(1, "a"), segment(2, "b")});
    map.initializePositions(1000, 700);
    EXPECT_EQ(cluster(1).value(QStringLiteral("x")), 540.0);
    map.initializePositions(2560, 1440);
    EXPECT_EQ(cluster(1).value(QStringLiteral("x")), 540.0);
    EXPECT_EQ(map.positionOf(2), QPointF(640, 150));
}

TEST_F(StoryMap, movingACardChangesNoOrder) {
    given({segment(1, "a"), segment(2, "a")});
    map.initializePositions(1000, 700);
    map.moveCard(2, -50, 40);
    map.moveCard(99, 1, 1);
    map.moveCard(1, std::numeric_limits<double>::quiet_NaN(), 0);
    EXPECT_EQ(cards.segments()[0].id(), 1);
    EXPECT_EQ(map.index(1, 0).data(StoryMapModel::CenterX), -50.0);
    EXPECT_EQ(map.index(1, 0).data(StoryMapModel::CenterY), 40.0);
    EXPECT_EQ(map.positionOf(1), QPointF(390, 150));
}

TEST_F(StoryMap, aDeletedCardLeavesTheOthersWhereTheyAre) {
    given({segment(1, "a"), segment(2, "a"), segment(3, "b")});
    map.initializePositions(1000, 700);
    const auto before = map.positionOf(2);
    cards.remove(0);
    EXPECT_EQ(map.rowCount(), 2);
    EXPECT_EQ(map.positionOf(2), before);
    EXPECT_EQ(cluster(0).value(QStringLiteral("width")), 180.0);
}

TEST_F(StoryMap, clustersStandBehindTheirCards) {
    given({segment(1, "The Keeper"), segment(2, std::nullopt)});
    map.initializePositions(1000, 700);
    ASSERT_EQ(map.clusters().size(), 2);
    EXPECT_EQ(cluster(0).value(QStringLiteral("name")), QStringLiteral("The Keeper"));
    EXPECT_EQ(cluster(0).value(QStringLiteral("x")), 40.0);
    EXPECT_EQ(cluster(0).value(QStringLiteral("y")), 70.0);
    EXPECT_EQ(cluster(1).value(QStringLiteral("name")), QStringLiteral("Uncategorized"));
    EXPECT_EQ(cluster(1).value(QStringLiteral("gem")), -1);
}

TEST_F(StoryMap, panningAddsThreeTenthsOfTheWayFromTheDragsStartAtEachUpdate) {
    map.pan(10, 0);
    map.pan(20, -10);
    EXPECT_NEAR(map.artboardOffset().x(), 9.0, 1e-9);
    EXPECT_NEAR(map.artboardOffset().y(), -3.0, 1e-9);
}

TEST_F(StoryMap, zoomStopsAtItsEnds) {
    EXPECT_EQ(map.artboardScale(), 1.0);
    map.zoom(0.1);
    EXPECT_EQ(map.artboardScale(), 0.4);
    map.zoom(7.0);
    EXPECT_EQ(map.artboardScale(), 2.0);
    map.zoom(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(map.artboardScale(), 2.0);
    map.zoom(1.3);
    EXPECT_EQ(map.artboardScale(), 1.3);
    map.zoomBy(1);
    EXPECT_NEAR(map.artboardScale(), 1.43, 1e-9);
    map.zoomBy(-100);
    EXPECT_EQ(map.artboardScale(), 0.4);
}

TEST_F(StoryMap, theModelShowsWhatTheListShows) {
    given({segment(5, "a")});
    cards.setPlaying(5);
    map.initializePositions(1000, 700);
    EXPECT_TRUE(map.index(0, 0).data(SegmentCards::IsPlaying).toBool());
    EXPECT_EQ(map.roleNames().value(StoryMapModel::CenterX), QByteArray("centerX"));
}

TEST_F(StoryMap, theBoardIsSeenScaledAboutTheMiddleOfTheView) {
    map.setViewSize(1000, 700);
    EXPECT_EQ(map.seen(), QRectF(0, 0, 1000, 700));
    map.pan(100, -200); // 30 to the right, 60 up
    EXPECT_EQ(map.seen(), QRectF(-30, 60, 1000, 700));
    map.zoom(2); // the view's middle, 500 and 350, lies 500 and 350 from the board's moved corner
    EXPECT_EQ(map.seen(), QRectF(235, 205, 500, 350));
}

TEST_F(StoryMap, aCardIsInSightForAsLongAsItsShadowIs) {
    given({segment(1, "a")});
    map.setViewSize(1000, 700);
    map.initializePositions(1000, 700);
    EXPECT_TRUE(isInSight(0));
    struct Case {
        double x;
        double y;
        bool isSeen;
    };
    // Half of the card and 20 more: 66 to a side, 56 above and below.
    const std::vector<Case> cases = {
        {-66, 350, true},  {-67, 350, false}, {1066, 350, true}, {1067, 350, false}, {500, -56, true},
        {500, -57, false}, {500, 756, true},  {500, 757, false}, {-67, -57, false},  {500, 350, true},
    };
    for (const auto& [x, y, isSeen] : cases) {
        map.moveCard(1, x, y);
        EXPECT_EQ(isInSight(0), isSeen) << x << ", " << y;
    }
}

TEST_F(StoryMap, panningAndZoomingBringCardsIntoSightAndOutOfIt) {
    given({segment(1, "a")});
    map.setViewSize(1000, 700);
    map.initializePositions(1000, 700); // the card at 390, 150
    map.pan(-1520, 0);                  // 456 to the left: the view begins at 456, cards at 390
    EXPECT_TRUE(isInSight(0));
    map.pan(-10, 0);
    EXPECT_FALSE(isInSight(0));
    map.zoom(0.5); // twice as much on every side
    EXPECT_TRUE(isInSight(0));
    map.zoom(1);
    EXPECT_FALSE(isInSight(0));
    map.pan(10, 0);
    EXPECT_TRUE(isInSight(0));
}

TEST_F(StoryMap, aLargerViewShowsMoreCards) {
    given({segment(1, "a")});
    map.setViewSize(1000, 700);
    map.initializePositions(1000, 700);
    map.moveCard(1, 1500, 350);
    EXPECT_FALSE(isInSight(0));
    map.setViewSize(1500, 700);
    EXPECT_TRUE(isInSight(0));
}

TEST_F(StoryMap, onlyCardsWhoseSightHasChangedAreTold) {
    given({segment(1, "a"), segment(2, "a"), segment(2, "a")});
    map.setViewSize(1000, 700);
    map.initializePositions(1000, 700);
    map.moveCard(2, -60, 350);
    std::vector<int> told;
    QObject::connect(&map, &QAbstractItemModel::dataChanged, &map,
                     [&told](const QModelIndex& first, const QModelIndex& /*last*/, const QList<int>& roles) {
                         EXPECT_THAT(roles, ElementsAre(int(StoryMapModel::IsInSight)));
                         told.push_back(first.row());
                     });
    map.pan(-10, 0);
    EXPECT_TRUE(told.empty());
    map.pan(-20, 0); // 9 to the left by now: both of that id
    EXPECT_THAT(told, ElementsAre(1, 2));
    EXPECT_TRUE(isInSight(0));
    EXPECT_FALSE(isInSight(1));
    EXPECT_FALSE(isInSight(2));
}
