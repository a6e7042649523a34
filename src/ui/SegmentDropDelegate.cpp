#include "ui/SegmentDropDelegate.h"

namespace zuvo {

void SegmentDropDelegate::dropEntered() {
    if (!m_draggingItem || m_draggingItem->id() == m_item.id())
        return;
    const auto from = m_items.rowOf(m_draggingItem->id());
    const auto to = m_items.rowOf(m_item.id());
    if (from && to)
        reorderSegments(m_items, *from, *to, m_reviewActions, m_clock);
}

bool SegmentDropDelegate::performDrop() {
    m_draggingItem.reset();
    return true;
}

void reorderSegments(SegmentCards& items, std::size_t from, std::size_t to, std::vector<ReviewAction>& reviewActions,
                     const Clock& clock) {
    reviewActions.push_back(reordering(items.segments()[from], from, to, secondsSince1970(clock())));
    items.move(from, to);
}

} // namespace zuvo
