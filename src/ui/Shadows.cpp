#include "ui/Shadows.h"

#include <QPainter>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace zuvo {

namespace {

constexpr int largestEdge = 1024; ///< a shape is a tile of a few corners: its edges are stretched
constexpr double largestDeviation = 100.0;
constexpr double largestRise = 100.0;

/// The bell curve from -reach to reach, its sum 1.
std::vector<float> bell(double deviation, int reach) {
    std::vector<float> weights;
    float sum = 0.0F;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(static_cast<float>(std::exp(-0.5 * i * i / (deviation * deviation))));
        sum += weights.back();
    }
    for (auto& weight : weights)
        weight /= sum;
    return weights;
}

/// Draws the shape, with its reach on every side and that far up from the middle.
void drawShape(QImage& image, const ShadowShape& shape, int reach, double rise, QPainter::CompositionMode mode) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(mode);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    const QRectF place(QPointF(reach, reach - rise), QSizeF(shape.size));
    painter.drawRoundedRect(place, shape.cornerRadius, shape.cornerRadius);
}

/// How much of each pixel the shape covers, 0 to 255, with its reach on every side.
QImage coverage(const ShadowShape& shape, int reach) {
    QImage mask(shape.size.width() + 2 * reach, shape.size.height() + 2 * reach, QImage::Format_Grayscale8);
    mask.fill(Qt::black);
    drawShape(mask, shape, reach, 0.0, QPainter::CompositionMode_SourceOver);
    return mask;
}

/// Adds `count` values, each times `weight`: a loop that the compiler makes wide.
void addWeighted(float* to, const float* from, int count, float weight) {
    for (int i = 0; i < count; ++i)
        to[i] += weight * from[i];
}

/// A blurred shape, 0 to 255 a pixel. Shape and blur are the same mirrored, so that a quarter is worked out: the upper
/// left one, with the middle lines.
class BlurredQuarter {
public:
    BlurredQuarter(const QImage& shape, const std::vector<float>& weights)
        : m_shape(shape), m_weights(weights), m_along(room()), m_values(room()) {
        for (int y = 0; y < height(); ++y)
            blurAlong(y);
        for (int y = 0; y < height(); ++y)
            blurDown(y);
    }

    [[nodiscard]] int width() const { return (m_shape.width() + 1) / 2; }
    [[nodiscard]] int height() const { return (m_shape.height() + 1) / 2; }
    [[nodiscard]] float at(int x, int y) const { return m_values[place(y) + static_cast<std::size_t>(x)]; }

private:
    [[nodiscard]] std::size_t room() const { return place(height()); }
    [[nodiscard]] std::size_t place(int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width());
    }
    [[nodiscard]] int reach() const { return static_cast<int>(m_weights.size() / 2); }

    void blurAlong(int y) {
        const uchar* line = m_shape.constScanLine(y);
        const int length = m_shape.width();
        if (std::all_of(line, line + length, [](uchar value) { return value == 0; }))
            return;
        // Nothing stands beyond the ends.
        std::vector<float> padded(static_cast<std::size_t>(length + 2 * reach()));
        std::copy(line, line + length, padded.begin() + reach());
        for (std::size_t k = 0; k < m_weights.size(); ++k)
            addWeighted(&m_along[place(y)], &padded[k], width(), m_weights[k]);
    }

    void blurDown(int y) {
        const int last = m_shape.height() - 1;
        for (int from = std::max(0, y - reach()); from <= std::min(last, y + reach()); ++from) {
            const auto weight = m_weights[static_cast<std::size_t>(from - y + reach())];
            addWeighted(&m_values[place(y)], &m_along[place(std::min(from, last - from))], width(), weight);
        }
    }

    const QImage& m_shape;
    const std::vector<float>& m_weights;
    std::vector<float> m_along; ///< blurred along its rows
    std::vector<float> m_values;
};

} // namespace

QImage shadowImage(const ShadowShape& shape) {
    if (shape.size.isEmpty() || shape.size.width() > largestEdge || shape.size.height() > largestEdge ||
        !(shape.deviation > 0.0) || shape.deviation > largestDeviation || !std::isfinite(shape.cornerRadius) ||
        shape.cornerRadius < 0.0 || !shape.color.isValid() ||
        !(std::abs(shape.hollowRise.value_or(0.0)) <= largestRise))
        return {};
    const int reach = static_cast<int>(std::ceil(3.0 * shape.deviation));
    const auto mask = coverage(shape, reach);
    const auto weights = bell(shape.deviation, reach);
    const BlurredQuarter blurred(mask, weights);

    QImage image(mask.size(), QImage::Format_ARGB32_Premultiplied);
    const auto opacity = static_cast<float>(shape.color.alphaF());
    for (int y = 0; y < blurred.height(); ++y) {
        auto* upper = reinterpret_cast<QRgb*>(image.scanLine(y));
        auto* lower = reinterpret_cast<QRgb*>(image.scanLine(image.height() - 1 - y));
        for (int x = 0; x < blurred.width(); ++x) {
            const auto alpha = static_cast<int>(std::lround(blurred.at(x, y) * opacity));
            const auto pixel = qPremultiply(qRgba(shape.color.red(), shape.color.green(), shape.color.blue(), alpha));
            const int mirrored = image.width() - 1 - x;
            upper[x] = upper[mirrored] = lower[x] = lower[mirrored] = pixel;
        }
    }
    if (shape.hollowRise)
        drawShape(image, shape, reach, *shape.hollowRise, QPainter::CompositionMode_DestinationOut);
    return image;
}

QImage ShadowProvider::requestImage(const QString& id, QSize* size, const QSize& /*requestedSize*/) {
    const auto parts = id.split(QLatin1Char('/'));
    constexpr int partCount = 4;
    ShadowShape shape;
    if (parts.size() == partCount || parts.size() == partCount + 1) {
        const auto edges = parts[0].split(QLatin1Char('x'));
        if (edges.size() == 2)
            shape.size = QSize(edges[0].toInt(), edges[1].toInt());
        shape.cornerRadius = parts[1].toDouble();
        shape.deviation = parts[2].toDouble();
        shape.color = QColor(parts[3]);
        if (parts.size() > partCount) {
            bool isNumber = false;
            const auto rise = parts[partCount].toDouble(&isNumber);
            shape.hollowRise = isNumber ? rise : std::numeric_limits<double>::quiet_NaN();
        }
    }
    auto image = shadowImage(shape);
    if (size != nullptr)
        *size = image.size();
    return image;
}

} // namespace zuvo
