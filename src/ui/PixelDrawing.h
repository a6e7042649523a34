#pragma once

#include <QQuickPaintedItem>
#include <QStringList>
#include <QVariantMap>
#include <qqmlregistration.h>

namespace zuvo {

/// A drawing of square pixels, much larger than those of the screen. It is as wide and high as its rows and columns are
/// stretched to; their edges fall on whole pixels of the screen, so that no seam shows between them.
class PixelDrawing : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// One letter a pixel; a letter without an ink is not drawn. All rows are of one length.
    Q_PROPERTY(QStringList rows MEMBER m_rows NOTIFY lookChanged)
    Q_PROPERTY(QVariantMap inks MEMBER m_inks NOTIFY lookChanged) ///< from letter to colour
public:
    explicit PixelDrawing(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void lookChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    QStringList m_rows;
    QVariantMap m_inks;
};

} // namespace zuvo
