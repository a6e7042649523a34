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

/// One pass of a blur: `count` lines of `length` values, which lie `step` apart; lines lie `stride` apart.
void blurLines(std::vector<float>& values, const std::vector<float>& weights, int count, int stride, int length,
               int step) {
    const int reach = static_cast<int>(weights.size() / 2);
    std::vector<float> line(static_cast<std::size_t>(length));
    for (int l = 0; l < count; ++l) {
        const auto at = [l, stride, step](int i) { return static_cast<std::size_t>(l * stride + i * step); };
        for (int i = 0; i < length; ++i)
            line[static_cast<std::size_t>(i)] = values[at(i)];
        for (int i = 0; i < length; ++i) {
            float sum = 0.0F;
            for (int k = std::max(0, i - reach); k <= std::min(length - 1, i + reach); ++k)
                sum += line[static_cast<std::size_t>(k)] * weights[static_cast<std::size_t>(k - i + reach)];
            values[at(i)] = sum;
        }
    }
}

/// How much of each pixel the shape covers, 0 to 1, if it lies that far up from the middle.
std::vector<float> coverage(const ShadowShape& shape, int reach, int width, int height, double rise) {
    QImage mask(width, height, QImage::Format_Grayscale8);
    mask.fill(Qt::black);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    const QRectF place(QPointF(reach, reach - rise), QSizeF(shape.size));
    painter.drawRoundedRect(place, shape.cornerRadius, shape.cornerRadius);
    painter.end();
    std::vector<float> values;
    values.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        const uchar* line = mask.constScanLine(y);
        for (int x = 0; x < width; ++x)
            values.push_back(static_cast<float>(line[x]) / 255.0F);
    }
    return values;
}

} // namespace

QImage shadowImage(const ShadowShape& shape) {
    if (shape.size.isEmpty() || shape.size.width() > largestEdge || shape.size.height() > largestEdge ||
        !(shape.deviation > 0.0) || shape.deviation > largestDeviation || !std::isfinite(shape.cornerRadius) ||
        shape.cornerRadius < 0.0 || !shape.color.isValid() ||
        !(std::abs(shape.hollowRise.value_or(0.0)) <= largestRise))
        return {};
    const int reach = static_cast<int>(std::ceil(3.0 * shape.deviation));
    const int width = shape.size.width() + 2 * reach;
    const int height = shape.size.height() + 2 * reach;
    auto values = coverage(shape, reach, width, height, 0.0);
    const auto weights = bell(shape.deviation, reach);
    blurLines(values, weights, height, width, width, 1);
    blurLines(values, weights, width, 1, height, width);
    if (shape.hollowRise) {
        const auto hidden = coverage(shape, reach, width, height, *shape.hollowRise);
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] *= 1.0F - hidden[i];
    }

    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const auto value =
                values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
            const auto alpha = static_cast<int>(std::lround(value * static_cast<float>(shape.color.alpha())));
            line[x] = qPremultiply(qRgba(shape.color.red(), shape.color.green(), shape.color.blue(), alpha));
        }
    }
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
