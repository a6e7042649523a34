// One start of a window, for bench/window_start.py to time from outside: "empty" shows a Qt Quick window with nothing
// in it, "application" the application's own with a home folder of its own and no service. Prints "first frame" once
// the first frame has been shown, "rest" two seconds later, and ends when its standard input does.

#include "fakes/TemporaryFolder.h"
#include "ui/WindowEngine.h"
#include "ui/ZuvoManagerApp.h"

#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickView>
#include <QSocketNotifier>
#include <QTimer>
#include <cstdio>
#include <memory>
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

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const bool isEmpty = argc == 2 && std::string_view(argv[1]) == "empty";
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);

    if (isEmpty) {
        QQuickWindow window;
        window.resize(1100, 750);
        watch(window);
        window.show();
        return QGuiApplication::exec();
    }
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
