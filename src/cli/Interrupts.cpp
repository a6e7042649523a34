#include "cli/Interrupts.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace zuvo {

namespace {

// A signal handler may do little more than write to a file: it wakes the event loop by a pipe to ourselves.
std::array<int, 2> wakeUpPipe = {-1, -1};

void wakeUp(int /*signal*/) {
    const char byte = 1;
    const auto written = ::write(wakeUpPipe[1], &byte, 1);
    static_cast<void>(written);
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

} // namespace

Interrupts::Interrupts(QObject* parent) : QObject(parent) {
    if (::pipe2(wakeUpPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(wakeUpPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readOne(); });
    handle(SIGINT, wakeUp);
    handle(SIGTERM, wakeUp);
}

Interrupts::~Interrupts() {
    handle(SIGINT, SIG_DFL);
    handle(SIGTERM, SIG_DFL);
    for (int& end : wakeUpPipe) {
        if (end >= 0)
            ::close(end);
        end = -1;
    }
}

void Interrupts::readOne() {
    char byte = 0;
    if (::read(wakeUpPipe[0], &byte, 1) == 1)
        Q_EMIT interrupted();
}

} // namespace zuvo
