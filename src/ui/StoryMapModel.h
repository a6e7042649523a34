#pragma once

#include "ui/SegmentCards.h"

#include <QIdentityProxyModel>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QVariantList>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <qqmlregistration.h>
#include <set>
#include <string>
#include <vector>

namespace zuvo {

/// A chapter of the map: the moments that lie together.
struct MapChapter {
    std::string name;
    int gem = -1;                  ///< place in Theme.chapterGems, -1 for the moments without a chapter
    std::vector<std::int64_t> ids; ///< in story order
};

/// The chapters in order of first occurrence. Moments without a chapter, or with an empty one, lie in "Uncategorized".
[[nodiscard]] std::vector<MapChapter> mapChapters(const std::vector<StorySegment>& segments);

/// From where a chapter's cards are laid out, on a square grid of chapters over that width.
[[nodiscard]] QPointF clusterCenter(std::size_t chapterIndex, std::size_t chapterCount, QSizeF totalSize);

/// The size of the shape behind that many cards.
[[nodiscard]] QSizeF clusterSize(std::size_t cardCount);

/// The story as cards on a board: where each lies, and how the board is moved and scaled. The order of the story is
/// not touched.
class StoryMapModel final : public QIdentityProxyModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Each belongs to a review page")
    Q_PROPERTY(QVariantList clusters READ clusters NOTIFY clustersChanged)
    Q_PROPERTY(double offsetX READ offsetX NOTIFY artboardChanged)
    Q_PROPERTY(double offsetY READ offsetY NOTIFY artboardChanged)
    Q_PROPERTY(double artboardScale READ artboardScale NOTIFY artboardChanged)
    Q_PROPERTY(QRectF seen READ seen NOTIFY seenChanged)
public:
    enum Role {
        CenterX = SegmentCards::IsPlaying + 1,
        CenterY,
        IsInSight, ///< whether any of the card, its shadow and its ring can be in the view
    };

    /// A random number from -8 to 8.
    using Jitter = std::function<double()>;

    explicit StoryMapModel(SegmentCards* cards, QObject* parent = nullptr);

    void setJitter(Jitter jitter) { m_jitter = std::move(jitter); }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// The view of the board has that size from now on: what lies outside of it is out of sight.
    Q_INVOKABLE void setViewSize(double width, double height);
    /// The board has come on screen in that size: cards and chapters are laid out, if they are not yet. They stay where
    /// they are when its size changes.
    Q_INVOKABLE void initializePositions(double width, double height);
    /// The board has left the screen: places, offset and scale are forgotten.
    Q_INVOKABLE void clear();

    Q_INVOKABLE void moveCard(qint64 id, double x, double y);
    /// One update of a drag on the empty board, by its way from the start of the drag.
    Q_INVOKABLE void pan(double translationX, double translationY);
    /// To the value of a pinch, held within 0.4 and 2.
    Q_INVOKABLE void zoom(double value);
    /// By turns of the wheel; one notch is 1.
    Q_INVOKABLE void zoomBy(double notches);

    [[nodiscard]] QPointF positionOf(std::int64_t id) const; ///< the card's centre; the origin if it has none
    /// Maps with `name`, `gem`, `x`, `y` (of the upper left corner), `width` and `height`.
    [[nodiscard]] QVariantList clusters() const;
    [[nodiscard]] QPointF artboardOffset() const { return m_artboardOffset; }
    [[nodiscard]] double offsetX() const { return m_artboardOffset.x(); }
    [[nodiscard]] double offsetY() const { return m_artboardOffset.y(); }
    [[nodiscard]] double artboardScale() const { return m_artboardScale; }
    /// The part of the board that the view shows. The board is scaled about the middle of the view.
    [[nodiscard]] QRectF seen() const;

Q_SIGNALS:
    void clustersChanged();
    void artboardChanged();
    void seenChanged();

private:
    void positionsChanged();
    /// Tells of the cards that have come into sight or gone out of it.
    void followSight();
    [[nodiscard]] bool isInSight(std::int64_t id) const;

    SegmentCards* m_cards;
    Jitter m_jitter;
    std::map<std::int64_t, QPointF> m_cardPositions;
    std::set<std::int64_t> m_inSight; ///< the ids, as the views were told
    QSizeF m_size;                    ///< of the board when it was laid out
    QSizeF m_viewSize;
    QPointF m_artboardOffset;
    double m_artboardScale = 1.0;
};

} // namespace zuvo
