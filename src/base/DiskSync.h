#pragma once

namespace zuvo {

/// Asks the system to bring an open file or folder to its disk, so that it outlives a loss of power. Gives 0 or the
/// error number.
using DiskSync = int (*)(int descriptor);

/// What this process uses: `fsync`, and on macOS its stronger form. A file system that cannot sync counts as one that
/// needs no sync.
[[nodiscard]] int syncToDisk(int descriptor);

/// Uses another from now on and gives the one before. For tests that watch it or let it fail.
DiskSync exchangeDiskSync(DiskSync other);

} // namespace zuvo
