#include "steps/ProjectMedia.h"

#include "base/Paths.h"
#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace zuvo {

namespace {

/// As in an export without media.
constexpr const char* unknownPlace = "/path/to/";

constexpr std::size_t mostShownPaths = 3;

/// A path that somebody made up can be of any length.
constexpr std::size_t mostShownCharacters = 100;

} // namespace

ProjectForUse withAbsoluteMedia(SavedProject project) {
    ProjectForUse result;
    for (auto& path : project.mediaPaths) {
        if (isAbsolutePath(path))
            continue;
        auto missing = unknownPlace + lastPathComponent(path);
        result.refused.push_back(std::exchange(path, std::move(missing)));
    }
    result.project = std::move(project);
    return result;
}

std::string refusedMediaMessage(const std::vector<std::string>& refused) {
    if (refused.empty())
        return {};
    std::vector<std::string> shown;
    for (std::size_t i = 0; i < std::min(refused.size(), mostShownPaths); ++i)
        shown.push_back("\"" + firstCharacters(harmlessText(refused[i]), mostShownCharacters) + "\"");
    auto names = join(shown, ", ");
    if (refused.size() > mostShownPaths)
        names += " and " + std::to_string(refused.size() - mostShownPaths) + " more";
    const bool isOne = refused.size() == 1;
    return std::string("Media of this project count as missing, since ") +
           (isOne ? "this path is" : "these paths are") + " not absolute: " + names;
}

} // namespace zuvo
