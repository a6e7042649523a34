#pragma once

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>

namespace zuvo {

/// What a card of the map lies on: a rounded body with a border, a stripe along its left edge and a soft shadow.
/// Lengths are in units.
struct MapCardFace {
    QSize size;
    double cornerRadius = 0.0;
    double lineWidth = 0.0;
    double pixelsPerUnit = 1.0;
    QColor top, bottom; ///< of the body; both opaque
    QColor line;        ///< of the border; opaque
    QColor stripe;
    QColor tint; ///< over body and border, beneath the stripe

    static constexpr int shadowReach = 15; ///< beyond the card on every side, moved down by `shadowDrop`
    static constexpr int shadowDrop = 2;
};

/// The card with the reach of its shadow on every side; a null image for what cannot be meant.
[[nodiscard]] QImage mapCardFace(const MapCardFace& face);

/// "image://mapcards/{width}x{height}/{corner radius}/{line width}/{pixels a
/// unit}/{top}/{bottom}/{line}/{stripe}/{tint}", colours as rrggbb or aarrggbb.
///
/// A map has hundreds of cards in a few colours. As a picture each is one piece to draw, which takes a renderer without
/// a graphics card a fraction of the time for its rounded pieces one by one.
class MapCardFaces final : public QQuickImageProvider {
public:
    MapCardFaces() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace zuvo
