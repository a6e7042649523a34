#include "ui/MapCardFaces.h"

#include <gtest/gtest.h>

using namespace zuvo;

namespace {

MapCardFace plainFace() {
    MapCardFace face;
    face.size = QSize(92, 72);
    face.cornerRadius = 8.0;
    face.lineWidth = 1.0;
    face.top = QColor(60, 60, 60);
    face.bottom = QColor(40, 40, 40);
    face.line = QColor(200, 200, 200);
    face.stripe = QColor(0, 150, 0);
    face.tint = QColor(0, 0, 0, 0);
    return face;
}

/// Of the pixel at that place of the card, whose shadow reaches 15 beyond it and lies 2 lower.
QColor colorAt(const QImage& image, int x, int y) {
    return image.pixelColor(x + 15, y + 13);
}

QImage requested(const char* id) {
    MapCardFaces faces;
    QSize size(1, 1);
    auto image = faces.requestImage(QString::fromUtf8(id), &size, QSize());
    EXPECT_EQ(size, image.size());
    return image;
}

} // namespace

TEST(MapCardFaces, aPictureReachesAsFarAsTheShadow) {
    auto face = plainFace();
    EXPECT_EQ(mapCardFace(face).size(), QSize(122, 102));
    face.pixelsPerUnit = 2.0;
    EXPECT_EQ(mapCardFace(face).size(), QSize(244, 204));
    face.pixelsPerUnit = 0.5;
    EXPECT_EQ(mapCardFace(face).size(), QSize(61, 51));
    face.pixelsPerUnit = 1.25; // 152.5 and 127.5
    EXPECT_EQ(mapCardFace(face).size(), QSize(153, 128));
}

TEST(MapCardFaces, aBodyWithABorderLiesOnItsShadow) {
    const auto image = mapCardFace(plainFace());
    EXPECT_EQ(colorAt(image, 46, 0), QColor(200, 200, 200));
    EXPECT_EQ(colorAt(image, 46, 71), QColor(200, 200, 200));
    EXPECT_EQ(colorAt(image, 91, 36), QColor(200, 200, 200));
    EXPECT_NEAR(colorAt(image, 46, 2).red(), 60, 1);
    EXPECT_NEAR(colorAt(image, 46, 36).red(), 50, 1);
    EXPECT_NEAR(colorAt(image, 46, 69).red(), 40, 1);
    const auto beneath = colorAt(image, 46, 73);
    EXPECT_EQ(beneath.red(), 0);
    EXPECT_GT(beneath.alpha(), 16);
    EXPECT_LT(beneath.alpha(), 64);
    EXPECT_LE(qAlpha(image.pixel(0, 0)), 1);
}

TEST(MapCardFaces, theStripeIsThreeWideAndFollowsTheCorners) {
    const auto image = mapCardFace(plainFace());
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(colorAt(image, x, 36), QColor(0, 150, 0)) << x;
    EXPECT_NE(colorAt(image, 3, 36).green(), 150);
    EXPECT_LT(colorAt(image, 0, 0).alpha(), 64); // the shadow alone
}

TEST(MapCardFaces, aTintCoversTheBodyButNotTheStripe) {
    auto face = plainFace();
    face.tint = QColor(255, 0, 0, 51); // a fifth
    const auto image = mapCardFace(face);
    EXPECT_NEAR(colorAt(image, 46, 36).red(), 91, 1);   // 50 * 4/5 + 255/5
    EXPECT_NEAR(colorAt(image, 46, 36).green(), 40, 1); // 50 * 4/5
    EXPECT_EQ(colorAt(image, 1, 36), QColor(0, 150, 0));
}

TEST(MapCardFaces, anAddressSaysWhatIsDrawn) {
    EXPECT_EQ(requested("92x72/8/1/1/3c3c3c/282828/c8c8c8/009600/00000000"), mapCardFace(plainFace()));
}

TEST(MapCardFaces, whatCannotBeMeantIsNoPicture) {
    EXPECT_TRUE(requested("").isNull());
    EXPECT_TRUE(requested("92x72/8/1/1/3c3c3c/282828/c8c8c8/009600").isNull());
    EXPECT_TRUE(requested("92/8/1/1/3c3c3c/282828/c8c8c8/009600/00000000").isNull());
    EXPECT_TRUE(requested("0x72/8/1/1/3c3c3c/282828/c8c8c8/009600/00000000").isNull());
    EXPECT_TRUE(requested("9999x72/8/1/1/3c3c3c/282828/c8c8c8/009600/00000000").isNull());
    EXPECT_TRUE(requested("92x72/-8/1/1/3c3c3c/282828/c8c8c8/009600/00000000").isNull());
    EXPECT_TRUE(requested("92x72/nan/1/1/3c3c3c/282828/c8c8c8/009600/00000000").isNull());
    EXPECT_TRUE(requested("92x72/8/1/0/3c3c3c/282828/c8c8c8/009600/00000000").isNull());
    EXPECT_TRUE(requested("92x72/8/1/99/3c3c3c/282828/c8c8c8/009600/00000000").isNull());
    EXPECT_TRUE(requested("92x72/8/1/1/nought/282828/c8c8c8/009600/00000000").isNull());
}
