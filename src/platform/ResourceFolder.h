#pragma once

#include <optional>
#include <string>

namespace zuvo {

/// The build that this program comes from.
struct BuildTree {
    std::string folder;    ///< where it was built
    std::string resources; ///< the resources in the sources
};

/// The one that this code was compiled in.
[[nodiscard]] BuildTree ownBuildTree();

/// Folder of what ships with the program (the plugin, for one), for a program in `applicationFolder`: in its build
/// folder the resources in the sources; installed "../share/zuvo-manager", in an application bundle "../Resources".
/// Nothing if that folder is missing. No other place is tried, since an administrator copies from there.
[[nodiscard]] std::optional<std::string> resourceFolder(const std::string& applicationFolder,
                                                        const BuildTree& build = ownBuildTree());

} // namespace zuvo
