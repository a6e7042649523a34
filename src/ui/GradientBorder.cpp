#include "ui/GradientBorder.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace zuvo {

GradientBorder::GradientBorder(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &GradientBorder::lookChanged, this, [this] { update(); });
}

void GradientBorder::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    update();
}

void GradientBorder::paint(QPainter* painter) {
    const auto outer = boundingRect();
    const auto inner = outer.adjusted(m_lineWidth, m_lineWidth, -m_lineWidth, -m_lineWidth);
    const auto innerRadius = std::max(0.0, m_cornerRadius - m_lineWidth);
    QPainterPath ring; // what lies within both is outside of it
    ring.addRoundedRect(outer, m_cornerRadius, m_cornerRadius);
    if (inner.isValid())
        ring.addRoundedRect(inner, innerRadius, innerRadius);
    QLinearGradient shade(outer.topLeft(), outer.bottomLeft());
    shade.setColorAt(0.0, m_topColor);
    shade.setColorAt(1.0, m_bottomColor);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(ring, shade);
}

} // namespace zuvo
