#include <QGuiApplication>
#include <gmock/gmock.h>

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // fonts and images need a platform, if not a screen
    const QGuiApplication application(argumentCount, arguments);
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
