#pragma once

#include "model/MiningResults.h"
#include "platform/Clock.h"
#include "ui/ReviewAction.h"
#include "ui/SegmentCards.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace zuvo {

/// What becomes of a card that is dragged over another one: the list changes while the drag goes on, so that each card
/// that it comes over is one move, and one action in the log of edits.
///
/// Belongs to the card of `item`. What it refers to must outlive it.
class SegmentDropDelegate {
public:
    SegmentDropDelegate(StorySegment item, SegmentCards& items, std::optional<StorySegment>& draggingItem,
                        std::vector<ReviewAction>& reviewActions, Clock clock)
        : m_item(std::move(item)),
          m_items(items),
          m_draggingItem(draggingItem),
          m_reviewActions(reviewActions),
          m_clock(std::move(clock)) {}

    /// What is dragged has come over the item, whose place it takes. Nothing happens without a drag, over its own card,
    /// or if one of the two is not in the list.
    void dropEntered();

    /// What is dragged has been let go. Always true: a drop is taken wherever it falls.
    bool performDrop();

private:
    StorySegment m_item;
    SegmentCards& m_items;
    std::optional<StorySegment>& m_draggingItem;
    std::vector<ReviewAction>& m_reviewActions;
    Clock m_clock;
};

/// Moves a card from one row to another and records it. The rows differ, and both are in the list.
void reorderSegments(SegmentCards& items, std::size_t from, std::size_t to, std::vector<ReviewAction>& reviewActions,
                     const Clock& clock);

} // namespace zuvo
