#include "ui/SegmentDropDelegate.h"

#include <gmock/gmock.h>

using namespace zuvo;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

StorySegment moment(std::int64_t id) {
    StorySegment made;
    made.index = id;
    return made;
}

class SegmentDropDelegateTest : public testing::Test {
protected:
    SegmentDropDelegateTest() { items.setSegments({moment(1), moment(2), moment(3), moment(4)}); }

    /// That of the card of this number.
    [[nodiscard]] SegmentDropDelegate card(std::int64_t id) {
        return {moment(id), items, draggingItem, reviewActions,
                [] { return QDateTime::fromMSecsSinceEpoch(1500, Qt::UTC); }};
    }
    [[nodiscard]] std::vector<std::int64_t> order() const {
        std::vector<std::int64_t> ids;
        for (const auto& item : items.segments())
            ids.push_back(item.id());
        return ids;
    }

    SegmentCards items;
    std::optional<StorySegment> draggingItem;
    std::vector<ReviewAction> reviewActions;
};

} // namespace

TEST_F(SegmentDropDelegateTest, withoutADragNothingIsMoved) {
    card(2).dropEntered();
    EXPECT_THAT(order(), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(reviewActions, IsEmpty());
}

TEST_F(SegmentDropDelegateTest, overItsOwnCardNothingIsMoved) {
    draggingItem = moment(2);
    card(2).dropEntered();
    EXPECT_THAT(reviewActions, IsEmpty());
}

TEST_F(SegmentDropDelegateTest, theDraggedCardTakesThePlaceOfTheOneItEnters) {
    draggingItem = moment(1);
    card(3).dropEntered();
    EXPECT_THAT(order(), ElementsAre(2, 3, 1, 4));
    draggingItem = moment(4);
    card(2).dropEntered();
    EXPECT_THAT(order(), ElementsAre(4, 2, 3, 1));
}

TEST_F(SegmentDropDelegateTest, aDragAcrossThreeCardsRecordsThreeActionsOfTheDraggedSegment) {
    draggingItem = moment(1);
    for (const auto id : {2, 3, 4})
        card(id).dropEntered();
    ASSERT_EQ(reviewActions.size(), 3U);
    EXPECT_EQ(*reviewActions[0].detail, "moved from 0 to 1");
    EXPECT_EQ(*reviewActions[2].detail, "moved from 2 to 3");
    for (const auto& action : reviewActions) {
        EXPECT_EQ(action.action, "reorder");
        EXPECT_EQ(action.segmentId, 1);
        EXPECT_EQ(action.timestamp, 1.5);
        EXPECT_FALSE(action.segmentLabel);
    }
}

TEST_F(SegmentDropDelegateTest, aCardThatIsNotInTheListMovesNothing) {
    draggingItem = moment(99);
    card(2).dropEntered();
    draggingItem = moment(2);
    card(99).dropEntered();
    EXPECT_THAT(reviewActions, IsEmpty());
}

TEST_F(SegmentDropDelegateTest, aDropEndsTheDragAndIsAlwaysTaken) {
    draggingItem = moment(1);
    EXPECT_TRUE(card(3).performDrop());
    EXPECT_FALSE(draggingItem);
    EXPECT_TRUE(card(3).performDrop());
    EXPECT_THAT(order(), ElementsAre(1, 2, 3, 4));
}
