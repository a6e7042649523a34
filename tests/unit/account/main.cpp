#include <QCoreApplication>
#include <gmock/gmock.h>

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
