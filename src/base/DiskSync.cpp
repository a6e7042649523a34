#include "base/DiskSync.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace zuvo {

namespace {

int syncBySystem(int descriptor) {
#ifdef F_FULLFSYNC
    // macOS: fsync alone stops at the drive's own memory. Not every file system knows the stronger form.
    if (::fcntl(descriptor, F_FULLFSYNC) == 0)
        return 0;
#endif
    int result = -1;
    do {
        errno = 0;
        result = ::fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

bool cannotBeSynced(int error) {
    return error == EINVAL || error == ENOTSUP || error == ENOSYS || error == EROFS;
}

DiskSync present = syncBySystem;

} // namespace

int syncToDisk(int descriptor) {
    const int error = present(descriptor);
    return cannotBeSynced(error) ? 0 : error;
}

DiskSync exchangeDiskSync(DiskSync other) {
    return std::exchange(present, other);
}

} // namespace zuvo
