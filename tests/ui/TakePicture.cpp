#include "ui/TakePicture.h"

#include "ui/ScreenReader.h"

#include <QDir>
#include <QImage>
#include <fstream>
#include <gtest/gtest.h>

namespace zuvo::tests {

void takePicture(WindowDriver& driver, const QString& name) {
    const auto image = driver.picture();
    ASSERT_FALSE(image.isNull());
    EXPECT_NE(image.pixelColor(image.width() / 2, image.height() / 2).alpha(), 0);
    expectAllNamed(driver);
    const auto folder = qEnvironmentVariable("ZUVO_PICTURES");
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    EXPECT_TRUE(image.save(folder + QLatin1Char('/') + name + QStringLiteral(".png")));
    std::ofstream told(QString(folder + QLatin1Char('/') + name + QStringLiteral(".txt")).toStdString());
    EXPECT_TRUE(told << asText(toldOf(driver)));
}

} // namespace zuvo::tests
