#pragma once

#include <QQuickItem>

namespace zuvo::tests {

/// The topmost item that is to be seen at or below `item` and for which `matches` holds, or nullptr.
template <class Matches>
[[nodiscard]] QQuickItem* findShown(QQuickItem* item, const Matches& matches) {
    if (!item->isVisible() || item->opacity() <= 0.0)
        return nullptr;
    if (matches(item))
        return item;
    const auto children = item->childItems();
    // What was added last lies on top.
    for (auto child = children.crbegin(); child != children.crend(); ++child) {
        if (auto* found = findShown(*child, matches))
            return found;
    }
    return nullptr;
}

[[nodiscard]] inline QPoint middleOf(const QQuickItem& item) {
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
}

} // namespace zuvo::tests
