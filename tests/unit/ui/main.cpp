#include "base/DiskSync.h"

#include <QGuiApplication>
#include <gmock/gmock.h>

/// Under the address sanitizer: what the sound system's own libraries keep until the process ends.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:g_malloc\nleak:pa_xmalloc0\nleak:libglib\nleak:libpulse\nleak:libgst\n";
}

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // fonts and images need a platform, if not a screen
    const QGuiApplication application(argumentCount, arguments);
    // No test here loses power, and a sync takes longer than the rest of most tests.
    zuvo::exchangeDiskSync([](int) { return 0; });
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
