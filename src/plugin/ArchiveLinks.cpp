#include "plugin/ArchiveLinks.h"

#include "platform/ForeignWords.h"

#include <filesystem>
#include <iterator>

namespace zuvo {

namespace fs = std::filesystem;

namespace {

/// `foldersAbove`: how many folders lie between the link and what is looked through, 1 for an entry of a top-level
/// folder.
bool staysInItsTopLevelFolder(const fs::path& target, std::ptrdiff_t foldersAbove) {
    if (target.empty() || target.is_absolute())
        return false;
    std::ptrdiff_t climbed = 0;
    bool hasDescended = false;
    for (const auto& step : target) {
        if (step == "..") {
            if (hasDescended)
                return false;
            ++climbed;
        } else if (step != "." && !step.empty()) {
            hasDescended = true;
        }
    }
    return climbed < foldersAbove;
}

std::optional<std::string> entryRefusal(const fs::path& entry, const fs::path& name) {
    std::error_code error;
    const auto kind = fs::symlink_status(entry, error).type();
    if (error)
        return "The update cannot be looked through: " + harmlessText(name.string());
    if (kind == fs::file_type::regular || kind == fs::file_type::directory)
        return std::nullopt;
    if (kind != fs::file_type::symlink)
        return "The update holds a special file: " + harmlessText(name.string());
    const auto target = fs::read_symlink(entry, error);
    const auto foldersAbove = std::distance(name.begin(), name.end()) - 1;
    if (error || !staysInItsTopLevelFolder(target, foldersAbove))
        return "The update holds a link that leads out of it: " + harmlessText(name.string());
    return std::nullopt;
}

} // namespace

std::optional<std::string> archiveRefusal(const std::string& folder) {
    const std::string unreadable = "The update cannot be looked through";
    std::error_code error;
    const fs::path root(folder);
    fs::recursive_directory_iterator entries(root, error);
    if (error)
        return unreadable;
    for (; entries != fs::recursive_directory_iterator(); entries.increment(error)) {
        auto refusal = entryRefusal(entries->path(), entries->path().lexically_relative(root));
        if (refusal)
            return refusal;
    }
    // An error ends the walk as the last entry does.
    if (error)
        return unreadable;
    return std::nullopt;
}

} // namespace zuvo
