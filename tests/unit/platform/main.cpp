#include "platform/ChildEnvironment.h"
#include "platform/CoreDumps.h"
#include "platform/Environment.h"
#include "platform/MineLock.h"
#include "platform/Platform.h"
#include "platform/SingleInstance.h"

#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif
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

std::string inTheEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "not in the environment" : value;
}

/// "--withdrawn-keys -" withdraws the keys and prints what is left in the environment and what the program knows.
int printWithdrawnKeys() {
    zuvo::withdrawKeys();
    const auto environment = zuvo::Environment::ofThisMachine();
    for (const char* name : {"OPENAI_API_KEY", "ANTHROPIC_API_KEY", "ZUVO_TEST_HARMLESS", "ZUVO_TEST_MISSING"})
        std::printf("%s: %s, %s\n", name, inTheEnvironment(name).c_str(),
                    environment.variable(name).value_or("unknown").c_str());
    return 0;
}

/// "--core-dumps nobody|desktopPortals" allows core dumps as far as the system does, turns them off and prints what the
/// system says of this process.
int printCoreDumps(const std::string& inspection) {
    rlimit all{};
    getrlimit(RLIMIT_CORE, &all);
    all.rlim_cur = all.rlim_max;
    setrlimit(RLIMIT_CORE, &all);
    zuvo::turnOffCoreDumps(inspection == "nobody" ? zuvo::Inspection::nobody : zuvo::Inspection::desktopPortals);
#ifdef Q_OS_LINUX
    rlimit limit{};
    getrlimit(RLIMIT_CORE, &limit);
    std::printf("limit %llu, dumpable %d\n", static_cast<unsigned long long>(limit.rlim_cur), prctl(PR_GET_DUMPABLE));
#endif
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    const std::string wish = argumentCount > 1 ? arguments[1] : "";
    if ((wish == "--text-hash" && argumentCount == 3) || (wish == "--hold-lock" && argumentCount == 4))
        return serve(wish, arguments);
    if (wish == "--withdrawn-keys")
        return printWithdrawnKeys();
    if (wish == "--core-dumps" && argumentCount == 3)
        return printCoreDumps(arguments[2]);
    if (wish == "--instance" && (argumentCount == 5 || argumentCount == 6))
        return startInstance(argumentCount, arguments);
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
