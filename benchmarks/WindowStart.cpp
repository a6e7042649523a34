// One start of a window, for benchmarks/window_start.py to time from outside. Prints "first frame" once the first frame
// has been shown, "rest" two seconds later, and ends when its standard input does. Its argument says what it shows:
//
//   bare          a QQuickWindow with nothing in it, and no QML engine
//   empty         the empty window of a Qt Quick application: an engine loads `import QtQuick; Window { visible: true
//   }` application   the application's own, with a home folder of its own and no service

#include "fakes/TemporaryFolder.h"
#include "ui/WindowEngine.h"
#include "ui/ZuvoManagerApp.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSocketNotifier>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace {

/// Opens nothing.
class NoDesktop final : public zuvo::DesktopOpener {
public:
    bool openUrl(const std::string& /*url*/) override { return false; }
    bool openFile(const std::string& /*path*/) override { return false; }
    bool reveal(const std::string& /*path*/) override { return false; }
};

void say(const char* words) {
    std::puts(words);
    std::fflush(stdout);
}

void watch(QQuickWindow& window) {
    auto first = std::make_shared<bool>(true);
    QObject::connect(
        &window, &QQuickWindow::frameSwapped, &window,
        [first] {
            if (!*first)
                return;
            *first = false;
            say("first frame");
            constexpr int restMs = 2000;
            QTimer::singleShot(restMs, [] { say("rest"); });
        },
        Qt::QueuedConnection);
}

int showBare() {
    QQuickWindow window;
    window.resize(1100, 750);
    watch(window);
    window.show();
    return QGuiApplication::exec();
}

int showEmpty() {
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nWindow { width: 1100; height: 750; visible: true }");
    if (engine.rootObjects().isEmpty())
        return 1;
    watch(*qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst()));
    return QGuiApplication::exec();
}

int showApplication() {
    const zuvo::tests::TemporaryFolder disk;
    auto world = zuvo::AppWorld::ofThisMachine(disk.path(), std::make_shared<NoDesktop>());
    world.platform.environment.home = disk.path();
    world.platform.environment.realHomeDir = disk.path();
    zuvo::ZuvoManagerApp app(std::move(world));
    zuvo::WindowEngine engine(app.content());
    if (engine.window() == nullptr)
        return 1;
    watch(*engine.window());
    engine.bringUp();
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);

    const std::string_view kind = argc == 2 ? argv[1] : "";
    if (kind == "bare")
        return showBare();
    if (kind == "empty")
        return showEmpty();
    if (kind == "application")
        return showApplication();
    return 2;
}
