#include "ui/Shadows.h"

#include <cmath>
#include <gmock/gmock.h>
#include <string>

using namespace zuvo;

namespace {

constexpr int reach = 12; ///< three deviations of 4

ShadowShape shapeOf(int width, int height) {
    ShadowShape shape;
    shape.size = QSize(width, height);
    shape.cornerRadius = 8.0;
    shape.deviation = 4.0;
    shape.color = QColor(200, 100, 50, 200);
    return shape;
}

int alphaAt(const QImage& image, int x, int y) {
    return qAlpha(image.pixel(x, y));
}

QImage requested(const std::string& id, QSize* size = nullptr) {
    ShadowProvider provider;
    return provider.requestImage(QString::fromStdString(id), size, QSize());
}

} // namespace

TEST(Shadows, aShadowReachesThreeDeviationsBeyondItsShape) {
    EXPECT_EQ(shadowImage(shapeOf(60, 40)).size(), QSize(60 + 2 * reach, 40 + 2 * reach));
    auto shape = shapeOf(60, 40);
    shape.deviation = 1.5; // 4.5, so five
    EXPECT_EQ(shadowImage(shape).size(), QSize(70, 50));
}

TEST(Shadows, aShadowIsTheSameOnBothSides) {
    const auto image = shadowImage(shapeOf(60, 40));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            EXPECT_EQ(alphaAt(image, x, y), alphaAt(image, image.width() - 1 - x, y));
            EXPECT_EQ(alphaAt(image, x, y), alphaAt(image, x, image.height() - 1 - y));
        }
    }
}

TEST(Shadows, aSquaresShadowIsTheSameWhenItIsTurned) {
    const auto image = shadowImage(shapeOf(50, 50));
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            EXPECT_NEAR(alphaAt(image, x, y), alphaAt(image, y, x), 1);
}

TEST(Shadows, anEdgeIsEvenBetweenItsCorners) {
    const auto image = shadowImage(shapeOf(100, 100));
    // A corner is felt over its radius and the reach of the blur.
    const int first = 2 * reach + 8;
    const int last = image.width() - 1 - first;
    ASSERT_LT(first, last);
    for (int depth = 0; depth < 2 * reach; ++depth) {
        for (int along = first; along <= last; ++along) {
            EXPECT_EQ(alphaAt(image, along, depth), alphaAt(image, first, depth));
            EXPECT_EQ(alphaAt(image, depth, along), alphaAt(image, depth, first));
        }
    }
}

TEST(Shadows, aShadowFadesToNothingAtItsReachAndIsWholeWellWithin) {
    const auto image = shadowImage(shapeOf(100, 100));
    const int middle = image.width() / 2;
    EXPECT_EQ(alphaAt(image, middle, middle), 200); // the colour's own
    EXPECT_LE(alphaAt(image, middle, 0), 1);
    EXPECT_LE(alphaAt(image, 0, middle), 1);
    EXPECT_EQ(alphaAt(image, 0, 0), 0);
    // Half of it lies outside of the edge, which runs between these two.
    EXPECT_GT(alphaAt(image, middle, reach), 100);
    EXPECT_LT(alphaAt(image, middle, reach - 1), 100);
    for (int depth = 1; depth < middle; ++depth)
        EXPECT_GE(alphaAt(image, middle, depth), alphaAt(image, middle, depth - 1)) << depth;
}

TEST(Shadows, aLongEdgeFadesAsTheBellCurveSays) {
    auto shape = shapeOf(200, 201); // one edge of an odd length: the middle line stands for itself
    shape.color = QColor(0, 0, 0, 255);
    const auto image = shadowImage(shape);
    const int middle = image.width() / 2;
    // The share of the curve on the shape's side of a pixel's middle: the normal distribution at so many deviations.
    const std::vector<std::pair<double, double>> rows = {{-2.0, 0.02275}, {-1.0, 0.15866}, {-0.5, 0.30854},
                                                         {0.5, 0.69146},  {1.0, 0.84134},  {2.0, 0.97725}};
    for (const auto& [deviations, share] : rows) {
        const int inward = static_cast<int>(deviations * 4.0); // the boundary between two pixels: their mean
        const double found =
            (alphaAt(image, middle, reach + inward - 1) + alphaAt(image, middle, reach + inward)) / 2.0;
        EXPECT_NEAR(found, share * 255.0, 2.0) << deviations;
    }
}

TEST(Shadows, aShadowHasTheColourAskedFor) {
    const auto image = shadowImage(shapeOf(60, 60));
    const auto pixel = image.pixelColor(image.width() / 2, image.height() / 2);
    EXPECT_NEAR(pixel.red(), 200, 1);
    EXPECT_NEAR(pixel.green(), 100, 1);
    EXPECT_NEAR(pixel.blue(), 50, 1);
}

TEST(Shadows, aShapeOfOnePixelHasAShadow) {
    const auto image = shadowImage(shapeOf(1, 1));
    EXPECT_EQ(image.size(), QSize(1 + 2 * reach, 1 + 2 * reach));
    EXPECT_GT(alphaAt(image, reach, reach), 0);
}

TEST(Shadows, aCornerLargerThanTheShapeIsACircle) {
    auto shape = shapeOf(40, 40);
    shape.cornerRadius = 1e9;
    const auto image = shadowImage(shape);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(alphaAt(image, reach, reach), alphaAt(image, image.width() - 1 - reach, image.height() - 1 - reach));
    EXPECT_LT(alphaAt(image, reach, reach), alphaAt(image, image.width() / 2, reach));
}

TEST(Shadows, thePagesAskBySizeCornerDeviationAndColour) {
    QSize size;
    const auto image = requested("60x40/8/4/#c8c86432", &size);
    EXPECT_EQ(image, shadowImage(shapeOf(60, 40)));
    EXPECT_EQ(size, QSize(60 + 2 * reach, 40 + 2 * reach));
    EXPECT_FALSE(requested("60x40/8.5/4.25/#ff0000").isNull());
}

TEST(Shadows, anIdThatIsNoneGivesNoImage) {
    for (const auto* id : {"",
                           "/",
                           "///",
                           "x/y",
                           "x/8/4/#000000",
                           "60/8/4/#000000",
                           "60x/8/4/#000000",
                           "60x40x20/8/4/#000000",
                           "60x40/8/4",
                           "60x40/8/4/#000000/more",
                           "60x40/8/4/no colour",
                           "60x40/8/4/",
                           "0x40/8/4/#000000",
                           "-60x40/8/4/#000000",
                           "99999999999999999999x40/8/4/#000000",
                           "2147483647x2147483647/8/4/#000000",
                           "1000000x10/8/4/#000000",
                           "10x1000000/8/4/#000000",
                           "60x40/8/0/#000000",
                           "60x40/8/-4/#000000",
                           "60x40/8/nan/#000000",
                           "60x40/8/inf/#000000",
                           "60x40/8/1e300/#000000",
                           "60x40/8/word/#000000",
                           "60x40/-8/4/#000000",
                           "60x40/nan/4/#000000",
                           "60x40/inf/4/#000000",
                           "\xc3\xa9x1/\xf0\x9f\x92\x8e/4/#000000"}) {
        QSize size(1, 1);
        EXPECT_TRUE(requested(id, &size).isNull()) << id;
        EXPECT_TRUE(size.isEmpty()) << id;
    }
}

TEST(Shadows, aHollowShadowIsClearWhereTheShapeItselfLies) {
    auto shape = shapeOf(60, 40);
    const auto whole = shadowImage(shape);
    shape.hollowRise = 4.0;
    const auto hollow = shadowImage(shape);
    ASSERT_EQ(hollow.size(), whole.size());
    for (int y = 0; y < hollow.height(); ++y) {
        for (int x = 0; x < hollow.width(); ++x) {
            const bool isBeside = x < reach || x >= reach + 60 || y < reach - 4 || y >= reach + 40 - 4;
            if (isBeside) {
                EXPECT_EQ(alphaAt(hollow, x, y), alphaAt(whole, x, y)) << x << ", " << y;
            }
        }
    }
    const int middle = reach + 30;
    EXPECT_EQ(alphaAt(hollow, middle, reach - 4), 0);  // the shape's first line
    EXPECT_EQ(alphaAt(hollow, middle, reach + 35), 0); // and its last
    EXPECT_GT(alphaAt(hollow, middle, reach + 36), 0); // beneath it the shadow is seen
    EXPECT_EQ(alphaAt(hollow, reach, reach + 16), 0);
    EXPECT_EQ(alphaAt(hollow, reach + 59, reach + 16), 0);
}

TEST(Shadows, aHollowShadowIsAskedForWithItsRise) {
    auto shape = shapeOf(60, 40);
    shape.hollowRise = 4.0;
    EXPECT_EQ(requested("60x40/8/4/#c8c86432/4"), shadowImage(shape));
    EXPECT_TRUE(requested("60x40/8/4/#c8c86432/1e9").isNull());
    EXPECT_TRUE(requested("60x40/8/4/#c8c86432/nan").isNull());
    EXPECT_TRUE(requested("60x40/8/4/#c8c86432/4/4").isNull());
}
