#include "base/DiskSync.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    // No test here loses power, and a sync takes longer than the rest of most tests.
    zuvo::exchangeDiskSync([](int) { return 0; });
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
