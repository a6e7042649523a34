#include "platform/MineLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zuvo {

MineLock::MineLock(const Environment& environment) {
    const auto folder = environment.temporaryFolder();
    if (!folder) {
        m_refusal = "The folder for temporary files in " + environment.systemTemporaryFolder +
                    " cannot be made or is not this user's own";
        return;
    }
    const auto path = *folder + "mine-" + environment.homeHash() + ".lock";
    // Closed in children: one that outlives this program must not go on holding the lock.
    m_file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (m_file >= 0 && flock(m_file, LOCK_EX | LOCK_NB) == 0)
        return;
    if (m_file >= 0 && errno == EWOULDBLOCK)
        m_refusal = "Another mine is running under " + environment.home + ". Wait for it to end, then try again.";
    else
        m_refusal = "No lock could be made at " + path;
}

MineLock::~MineLock() {
    if (m_file >= 0)
        close(m_file);
}

} // namespace zuvo
