#include "platform/Interrupts.h"

#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace zuvo {

namespace {

// A signal handler may do little more than write to a file: it wakes the event loop by a pipe to ourselves.
std::array<int, 2> wakeUpPipe = {-1, -1};

void wakeUp(int signal) {
    const auto byte = static_cast<unsigned char>(signal);
    const auto written = ::write(wakeUpPipe[1], &byte, 1);
    static_cast<void>(written);
}

} // namespace

Interrupts::Interrupts(QObject* parent) : QObject(parent) {
    if (::pipe2(wakeUpPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(wakeUpPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readOne(); });
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        handle(signal);
}

Interrupts::~Interrupts() {
    for (const auto& [signal, before] : m_before)
        ::sigaction(signal, &before, nullptr);
    for (int& end : wakeUpPipe) {
        if (end >= 0)
            ::close(end);
        end = -1;
    }
}

void Interrupts::handle(int signal) {
    struct sigaction before {};
    if (::sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = wakeUp;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    if (::sigaction(signal, &action, nullptr) == 0)
        m_before.emplace_back(signal, before);
}

void Interrupts::readOne() {
    unsigned char byte = 0;
    if (::read(wakeUpPipe[0], &byte, 1) == 1)
        Q_EMIT interrupted(byte);
}

} // namespace zuvo
