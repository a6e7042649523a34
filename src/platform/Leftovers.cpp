#include "platform/Leftovers.h"

#include "base/Files.h"
#include "platform/TemporaryFile.h"

#include <filesystem>

namespace zuvo {

namespace {

namespace fs = std::filesystem;

/// Deeper than any folder of ours: a project's name may hold a few "/".
constexpr int greatestDepth = 8;

void removeNewFilesBelow(const std::string& folder) {
    std::error_code error;
    // Links are not followed: what they lead to is not ours.
    fs::recursive_directory_iterator entries(folder, fs::directory_options::skip_permission_denied, error);
    while (!error && entries != fs::recursive_directory_iterator()) {
        if (entries.depth() >= greatestDepth)
            entries.disable_recursion_pending();
        removeAbandonedReplacement(entries->path().string());
        entries.increment(error);
    }
}

} // namespace

void removeLeftovers(const Environment& environment) {
    removeNewFilesBelow(environment.cacheFolder());
    removeNewFilesBelow(environment.dataFolder());
    removeNewFilesBelow(fs::path(environment.tokenFile()).parent_path().string());
    if (const auto folder = environment.temporaryFolder())
        removeAbandonedTemporaryFiles(*folder);
}

} // namespace zuvo
