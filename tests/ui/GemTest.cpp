#include "ui/WindowDriver.h"
#include "ui/WindowEngine.h"

#include <QQuickView>
#include <QTemporaryFile>
#include <gtest/gtest.h>

// How a gem is cut.

using namespace zuvo;
using namespace zuvo::tests;

TEST(Gem, theUpperLeftQuarterIsLitAndTheOthersAreNot) {
    QTemporaryFile page(QStringLiteral("XXXXXX.qml"));
    ASSERT_TRUE(page.open());
    page.write("import QtQuick\nimport Zuvo\n"
               "Rectangle { color: 'black'; PixelGemView { x: 50; y: 50; size: 100; color: '#804020' } }");
    page.close();
    QQuickView view;
    prepareEngine(*view.engine());
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl::fromLocalFile(page.fileName()));
    ASSERT_EQ(view.status(), QQuickView::Ready);
    view.resize(200, 200);
    WindowDriver driver(view);
    const auto image = driver.picture();
    const auto ratio = image.devicePixelRatio();
    const auto redAt = [&image, ratio](double x, double y) {
        return image.pixelColor(QPointF(x * ratio, y * ratio).toPoint()).red();
    };
    // The face is 99 wide around (100, 100): each quarter is a triangle between the middle and two corners.
    constexpr int face = 122;                           // 128 at 0.95 over black, with a breath of glow beneath
    constexpr int lit = face + (255 - face) * 35 / 100; // white at 0.35 over it
    constexpr int tolerance = 4;
    const std::pair<double, double> inQuarter[] = {{15, 15}, {5, 30}, {30, 5}, {4, 4}};
    for (const auto& [acrossX, acrossY] : inQuarter) {
        EXPECT_NEAR(redAt(100 - acrossX, 100 - acrossY), lit, tolerance) << acrossX << " " << acrossY;
        EXPECT_NEAR(redAt(100 + acrossX, 100 - acrossY), face, tolerance) << acrossX << " " << acrossY;
        EXPECT_NEAR(redAt(100 - acrossX, 100 + acrossY), face, tolerance) << acrossX << " " << acrossY;
        EXPECT_NEAR(redAt(100 + acrossX, 100 + acrossY), face, tolerance) << acrossX << " " << acrossY;
    }
    EXPECT_LT(redAt(70, 70), 40) << "outside of the face is only the glow";
}
