#pragma once

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>
#include <optional>

namespace zuvo {

/// The shape whose shadow is drawn, in units.
struct ShadowShape {
    QSize size;
    double cornerRadius = 0.0;
    double deviation = 0.0; ///< standard deviation of the blur; the picture reaches three of them beyond the shape
    QColor color;
    /// If given, the shape lies that far above its shadow and is cut out of it: for a shape that can be seen through.
    std::optional<double> hollowRise;
};

/// The shadow with its reach on every side; a null image for a shape that is empty or too large to be meant.
[[nodiscard]] QImage shadowImage(const ShadowShape& shape);

/// "image://shadows/{width}x{height}/{corner radius}/{deviation}/{color}", and for a hollow one "/{rise}" behind it.
class ShadowProvider final : public QQuickImageProvider {
public:
    ShadowProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace zuvo
