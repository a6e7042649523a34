#include "ui/PixelDrawing.h"

#include <QColor>
#include <QPainter>
#include <QQuickWindow>
#include <cmath>

namespace zuvo {

PixelDrawing::PixelDrawing(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &PixelDrawing::lookChanged, this, [this] { update(); });
}

void PixelDrawing::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    update();
}

void PixelDrawing::paint(QPainter* painter) {
    const double ratio = window() != nullptr ? window()->effectiveDevicePixelRatio() : 1.0;
    const auto edge = [ratio](qsizetype index, qsizetype count, double length) {
        return std::round(static_cast<double>(index) * length / static_cast<double>(count) * ratio) / ratio;
    };
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        const double top = edge(row, m_rows.size(), height());
        const double bottom = edge(row + 1, m_rows.size(), height());
        const auto& letters = m_rows[row];
        for (qsizetype column = 0; column < letters.size(); ++column) {
            const auto ink = m_inks.constFind(letters.mid(column, 1));
            if (ink == m_inks.constEnd())
                continue;
            const double left = edge(column, letters.size(), width());
            const double right = edge(column + 1, letters.size(), width());
            painter->fillRect(QRectF(left, top, right - left, bottom - top), ink->value<QColor>());
        }
    }
}

} // namespace zuvo
