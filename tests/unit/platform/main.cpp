#include "platform/Environment.h"
#include "platform/MineLock.h"
#include "platform/Platform.h"
#include "platform/SingleInstance.h"

#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

/// "--instance SYSTEM HOME PATIENCE [URL]" prints what a start finds: "first", "handedOver" or "other". The first goes
/// on to print "url " and each URL it is handed, or "raise".
int startInstance(int argumentCount, char** arguments) {
    zuvo::Environment environment;
    environment.systemTemporaryFolder = arguments[2];
    environment.home = arguments[3];
    zuvo::SingleInstance instance(environment);
    QObject::connect(&instance, &zuvo::SingleInstance::urlReceived, [](const QString& url) {
        std::printf("url %s\n", url.toStdString().c_str());
        std::fflush(stdout);
    });
    QObject::connect(&instance, &zuvo::SingleInstance::raiseRequested, [] {
        std::puts("raise");
        std::fflush(stdout);
    });
    const auto url = argumentCount == 6 ? std::optional<std::string>(arguments[5]) : std::nullopt;
    const auto start = instance.start(url, std::chrono::milliseconds(std::stoi(arguments[4])));
    const bool isFirst = start == zuvo::SingleInstance::Start::first;
    const bool isHandedOver = start == zuvo::SingleInstance::Start::handedOver;
    std::puts(isFirst ? "first" : isHandedOver ? "handedOver" : "other");
    std::fflush(stdout);
    return isFirst ? QCoreApplication::exec() : 0;
}

/// What a test asks of a second start of this program: "--text-hash TEXT" prints the hash; "--hold-lock SYSTEM HOME"
/// takes the lock of a mine, prints "held" and waits to be killed.
int serve(const std::string& wish, char** arguments) {
    if (wish == "--text-hash") {
        std::printf("%llu\n", static_cast<unsigned long long>(zuvo::Platform::ofThisMachine().textHash(arguments[2])));
        return 0;
    }
    zuvo::Environment environment;
    environment.systemTemporaryFolder = arguments[2];
    environment.home = arguments[3];
    const zuvo::MineLock lock(environment);
    std::puts(lock.isHeld() ? "held" : lock.refusal().c_str());
    std::fflush(stdout);
    while (true)
        pause();
}

} // namespace

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    const std::string wish = argumentCount > 1 ? arguments[1] : "";
    if ((wish == "--text-hash" && argumentCount == 3) || (wish == "--hold-lock" && argumentCount == 4))
        return serve(wish, arguments);
    if (wish == "--instance" && (argumentCount == 5 || argumentCount == 6))
        return startInstance(argumentCount, arguments);
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
