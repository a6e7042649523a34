#include "ui/MapCardFaces.h"

#include "ui/Shadows.h"

#include <QLinearGradient>
#include <QPainter>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>

namespace zuvo {

namespace {

constexpr int largestEdge = 512;
constexpr double largestSharpness = 8.0; ///< pixels a unit
constexpr double stripeWidth = 3.0;

constexpr int shadowParts = 3; ///< of its reach that are one deviation
const QColor shadowColor(0, 0, 0, 0x40);

bool isSound(const MapCardFace& face) {
    const auto isLength = [](double length) { return length >= 0.0 && length <= largestEdge; };
    return !face.size.isEmpty() && face.size.width() <= largestEdge && face.size.height() <= largestEdge &&
           isLength(face.cornerRadius) && isLength(face.lineWidth) && face.pixelsPerUnit > 0.0 &&
           face.pixelsPerUnit <= largestSharpness && face.top.isValid() && face.bottom.isValid() &&
           face.line.isValid() && face.stripe.isValid() && face.tint.isValid();
}

/// A blur has nothing sharp in it, so that one of a pixel a unit serves larger cards as well.
void drawShadow(QPainter& painter, const MapCardFace& face, const QRectF& place) {
    const double sharpness = std::min(face.pixelsPerUnit, 1.0);
    ShadowShape shape;
    shape.size = (QSizeF(face.size) * sharpness).toSize();
    shape.cornerRadius = face.cornerRadius * sharpness;
    shape.deviation = sharpness * MapCardFace::shadowReach / shadowParts;
    shape.color = shadowColor;
    const auto shadow = shadowImage(shape);
    const double reach = (shadow.width() - shape.size.width()) / 2.0 / sharpness;
    painter.drawImage(place.marginsAdded({reach, reach, reach, reach}).translated(0, MapCardFace::shadowDrop), shadow);
}

void drawBody(QPainter& painter, const MapCardFace& face, const QRectF& place) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(face.line);
    painter.drawRoundedRect(place, face.cornerRadius, face.cornerRadius);
    const auto line = face.lineWidth;
    const auto inner = place.marginsRemoved({line, line, line, line});
    const auto innerRadius = std::max(0.0, face.cornerRadius - line);
    QLinearGradient body(place.topLeft(), place.bottomLeft());
    body.setColorAt(0.0, face.top);
    body.setColorAt(1.0, face.bottom);
    painter.setBrush(body);
    painter.drawRoundedRect(inner, innerRadius, innerRadius);
    painter.setBrush(face.tint);
    painter.drawRoundedRect(place, face.cornerRadius, face.cornerRadius);
    painter.setClipRect(QRectF(place.topLeft(), QSizeF(stripeWidth, place.height())));
    painter.setBrush(face.stripe);
    painter.drawRoundedRect(place, face.cornerRadius, face.cornerRadius);
}

QColor colorOf(const QString& digits) {
    return QColor(QLatin1Char('#') + digits);
}

} // namespace

QImage mapCardFace(const MapCardFace& face) {
    if (!isSound(face))
        return {};
    const QSizeF whole = QSizeF(face.size) + QSizeF(2 * MapCardFace::shadowReach, 2 * MapCardFace::shadowReach);
    const auto pixels = whole * face.pixelsPerUnit;
    QImage image(static_cast<int>(std::ceil(pixels.width())), static_cast<int>(std::ceil(pixels.height())),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.scale(image.width() / whole.width(), image.height() / whole.height());
    const QRectF place(QPointF(MapCardFace::shadowReach, MapCardFace::shadowReach - MapCardFace::shadowDrop),
                       QSizeF(face.size));
    drawShadow(painter, face, place);
    drawBody(painter, face, place);
    return image;
}

QImage MapCardFaces::requestImage(const QString& id, QSize* size, const QSize& /*requestedSize*/) {
    constexpr int partCount = 9;
    const auto parts = id.split(QLatin1Char('/'));
    const auto edges = parts[0].split(QLatin1Char('x'));
    MapCardFace face;
    if (parts.size() == partCount && edges.size() == 2) {
        face.size = QSize(edges[0].toInt(), edges[1].toInt());
        face.cornerRadius = parts[1].toDouble();
        face.lineWidth = parts[2].toDouble();
        face.pixelsPerUnit = parts[3].toDouble();
        face.top = colorOf(parts[4]);
        face.bottom = colorOf(parts[5]);
        face.line = colorOf(parts[6]);
        face.stripe = colorOf(parts[7]);
        face.tint = colorOf(parts[8]);
    }
    auto image = mapCardFace(face);
    if (size != nullptr)
        *size = image.size();
    return image;
}

} // namespace zuvo
