#include "platform/Environment.h"
#include "platform/MineLock.h"
#include "platform/Platform.h"

#include <QCoreApplication>
#include <cstdio>
#include <gmock/gmock.h>
#include <string>
#include <unistd.h>

namespace {

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
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
