#include "ui/PixelDrawing.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

using namespace zuvo;

namespace {

/// Three pixels to a row, two rows, drawn as large as `size`.
QImage drawn(const QSize& size) {
    PixelDrawing drawing;
    drawing.setSize(QSizeF(size));
    drawing.setProperty("rows", QStringList{QStringLiteral("r.b"), QStringLiteral("?rr")});
    drawing.setProperty("inks",
                        QVariantMap{{QStringLiteral("r"), QColor(Qt::red)}, {QStringLiteral("b"), QColor(Qt::blue)}});
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.paint(&painter);
    return image;
}

} // namespace

TEST(PixelDrawing, everyLetterIsDrawnInItsInkAndOneWithoutInkNotAtAll) {
    const auto image = drawn(QSize(30, 20));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(9, 9), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(10, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(20, 9), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(0, 10).alpha(), 0);
    EXPECT_EQ(image.pixelColor(29, 19), QColor(Qt::red));
}

TEST(PixelDrawing, edgesFallOnWholePixelsOfTheScreen) {
    // 10 / 3 and 20 / 3 are rounded to 3 and 7, 5 / 2 to 3.
    const auto image = drawn(QSize(10, 5));
    EXPECT_EQ(image.pixelColor(2, 2), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(3, 2).alpha(), 0);
    EXPECT_EQ(image.pixelColor(6, 2).alpha(), 0);
    EXPECT_EQ(image.pixelColor(7, 2), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(7, 3), QColor(Qt::red));
}
