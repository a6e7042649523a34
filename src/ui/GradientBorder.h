#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <qqmlregistration.h>

namespace zuvo {

/// A rounded border whose colour changes from top to bottom, with nothing drawn inside of it. It lies within the item;
/// lengths are in units.
class GradientBorder : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal lineWidth MEMBER m_lineWidth NOTIFY lookChanged)
    Q_PROPERTY(qreal cornerRadius MEMBER m_cornerRadius NOTIFY lookChanged)
    Q_PROPERTY(QColor topColor MEMBER m_topColor NOTIFY lookChanged)
    Q_PROPERTY(QColor bottomColor MEMBER m_bottomColor NOTIFY lookChanged)
public:
    explicit GradientBorder(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void lookChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    qreal m_lineWidth = 1.0;
    qreal m_cornerRadius = 0.0;
    QColor m_topColor;
    QColor m_bottomColor;
};

} // namespace zuvo
