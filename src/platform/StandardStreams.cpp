#include "platform/StandardStreams.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace zuvo {

void withstandBrokenStreams() {
    // The lowest free number is given, so that each lands where it belongs.
    for (const int stream : std::array{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            (void)::open("/dev/null", O_RDWR);
    }
    (void)std::signal(SIGPIPE, SIG_IGN);
    (void)std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace zuvo
