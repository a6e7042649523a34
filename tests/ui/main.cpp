#include "ui/QmlWarnings.h"

#include "base/DiskSync.h"

#include <QFile>
#include <QGuiApplication>
#include <QQuickStyle>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace {

/// A screen with room for the largest window that is looked at, at twice its scale.
constexpr const char* wideScreen = R"([{"name":"screen","x":0,"y":0,"width":5200,"height":3000,"logicalDpi":96,)"
                                   R"("logicalBaseDpi":96,"dpr":1}])";

/// The list of screens may be given in the variable ZUVO_TEST_SCREENS.
QString screenFile(const QTemporaryDir& folder) {
    QFile file(folder.filePath(QStringLiteral("screens.json")));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write("{\"screens\":" + qEnvironmentVariable("ZUVO_TEST_SCREENS", QLatin1String(wideScreen)).toUtf8() + "}");
    return file.fileName();
}

} // namespace

/// Under the address sanitizer: the renderer without a graphics card keeps pictures and textures until the process
/// ends, in objects of its own that point at each other, which count as leaked. Leaks of what the pages stand on are
/// looked for in the tests without a window.
extern "C" int __lsan_is_turned_off() {
    return 1;
}

int main(int argumentCount, char** arguments) {
    // Windows that no screen shows, drawn the same to the byte on every machine. A person may ask for another platform.
    const QTemporaryDir runtimeFolder;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screenFile(runtimeFolder).toUtf8());
        qputenv("QT_QUICK_BACKEND", "software");
    }
    qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toUtf8());
    const QGuiApplication application(argumentCount, arguments);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    // No test here loses power, and a sync takes longer than the rest of most tests.
    zuvo::exchangeDiskSync([](int) { return 0; });
    testing::InitGoogleMock(&argumentCount, arguments);
    zuvo::tests::failOnQmlWarnings();
    return RUN_ALL_TESTS();
}
