#include "app/Desktop.h"
#include "app/OwnArguments.h"
#include "app/Start.h"
#include "model/Constants.h"
#include "platform/ChildEnvironment.h"
#include "platform/CoreDumps.h"
#include "platform/Interrupts.h"
#include "platform/SingleInstance.h"
#include "platform/StandardStreams.h"
#include "platform/TemporaryFile.h"
#include "ui/WindowEngine.h"
#include "ui/ZuvoManagerApp.h"

#include <QFileOpenEvent>
#include <QGuiApplication>
#include <QIcon>
#include <QQuickStyle>
#include <cstdio>
#include <functional>
#include <memory>

namespace {

constexpr int refused = 2;

/// A link that the desktop opens with the running application (macOS).
class LinkEvents final : public QObject {
public:
    explicit LinkEvents(std::function<void(const QString&)> open) : m_open(std::move(open)) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::FileOpen)
            return QObject::eventFilter(watched, event);
        m_open(static_cast<QFileOpenEvent*>(event)->url().toString(QUrl::FullyEncoded));
        return true;
    }

private:
    std::function<void(const QString&)> m_open;
};

void describe(QGuiApplication& application) {
    application.setApplicationName(QStringLiteral("ZuvoManager"));
    application.setApplicationDisplayName(QStringLiteral("Zuvo"));
    application.setApplicationVersion(QString::fromUtf8(zuvo::Constants::App::version));
    application.setDesktopFileName(QStringLiteral("zuvo-manager"));
    application.setWindowIcon(QIcon(QStringLiteral(":/symbols/zuvo-manager.svg")));
    QQuickStyle::setStyle(QStringLiteral("Basic"));
}

void tell(const char* message) {
    std::fprintf(stderr, "ZuvoManager: %s\n", message);
}

/// Whether this start goes on; else `status` is what it ends with.
bool isFirstStart(zuvo::SingleInstance& instance, const std::optional<std::string>& url, int& status) {
    using Start = zuvo::SingleInstance::Start;
    switch (instance.start(url)) {
    case Start::first:
        return true;
    case Start::unavailable:
        tell(instance.refusal().c_str()); // it runs all the same; links reach it only when it starts
        return true;
    case Start::handedOver:
        status = 0;
        return false;
    case Start::noAnswer:
        tell("it is running already, but does not answer");
        break;
    case Start::urlTooLong:
        tell("the link is too long");
        break;
    }
    status = 1;
    return false;
}

} // namespace

int main(int argc, char** argv) {
    zuvo::OwnArguments arguments(argc, argv);
    zuvo::withstandBrokenStreams();
    zuvo::turnOffCoreDumps(zuvo::Inspection::desktopPortals);
    zuvo::withdrawKeys();
    QGuiApplication application(arguments.count(), arguments.values());
    describe(application);
    const auto start = zuvo::parseStartArguments(QGuiApplication::arguments().mid(1));
    if (!start.refusal.isEmpty()) {
        tell(qPrintable(start.refusal));
        return refused;
    }

    auto world = zuvo::AppWorld::ofThisMachine(QGuiApplication::applicationDirPath().toStdString(),
                                               std::make_shared<zuvo::Desktop>());
    zuvo::SingleInstance instance(world.platform.environment);
    int status = 0;
    if (!isFirstStart(instance, start.url, status))
        return status;

    const auto processes = world.platform.processes;
    zuvo::ZuvoManagerApp app(std::move(world));
    zuvo::WindowEngine engine(app.content());
    if (engine.window() == nullptr)
        return 1;

    const auto openLink = [&app, &engine](const QString& url) {
        engine.bringUp();
        app.handleCallback(url.toStdString());
    };
    QObject::connect(&instance, &zuvo::SingleInstance::urlReceived, &app, openLink);
    QObject::connect(&instance, &zuvo::SingleInstance::raiseRequested, &app, [&engine] { engine.bringUp(); });
    LinkEvents linkEvents(openLink);
    application.installEventFilter(&linkEvents);
    if (start.url)
        app.handleCallback(*start.url);
    engine.bringUp();
    const zuvo::Interrupts interrupts;
    constexpr int signalBase = 128;
    QObject::connect(&interrupts, &zuvo::Interrupts::interrupted, &app,
                     [](int signal) { QGuiApplication::exit(signalBase + signal); });
    status = QGuiApplication::exec();
    // A mine that still runs ends here, with nobody left to remove its files.
    processes->endChildren();
    zuvo::TemporaryFile::removeAll();
    return status;
}
