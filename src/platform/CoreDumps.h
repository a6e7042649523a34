#pragma once

namespace zuvo {

/// Who else must be able to look at the process.
enum class Inspection {
    nobody,
    desktopPortals, ///< they show the file dialog, and refuse a process that they cannot look at
};

/// Lets no crash write the keys and the token, which are in memory, to a disk or to the system's crash reporter. Called
/// by a program before anything else runs.
void turnOffCoreDumps(Inspection inspection);

} // namespace zuvo
