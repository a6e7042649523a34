#include "platform/ResourceFolder.h"

#include "platform/FileSystem.h"

#include <QtGlobal>
#include <filesystem>

namespace zuvo {

namespace {

#ifdef Q_OS_MACOS
constexpr const char* besideThePrograms = "/../Resources";
#else
constexpr const char* besideThePrograms = "/../share/zuvo-manager";
#endif

} // namespace

BuildTree ownBuildTree() {
    return {ZUVO_BUILD_FOLDER, ZUVO_SOURCE_RESOURCES};
}

std::optional<std::string> resourceFolder(const std::string& applicationFolder, const BuildTree& build) {
    auto folder = liesBelow(build.folder, applicationFolder) ? build.resources
                                                             : absolutePath(applicationFolder + besideThePrograms);
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        return std::nullopt;
    return folder;
}

} // namespace zuvo
