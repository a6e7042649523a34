#include "plugin/WorkFolder.h"

#include "platform/FileSystem.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace zuvo {

namespace fs = std::filesystem;

namespace {

constexpr const char* namePrefix = "zuvo-update";

/// Long enough that no program can still be working there: a password dialog may wait overnight.
constexpr std::chrono::hours leftoverAge{24};

void removeLeftovers(const std::string& temporaryFolder) {
    const auto names = listFolder(temporaryFolder);
    if (!names)
        return;
    const auto youngest = fs::file_time_type::clock::now() - leftoverAge;
    for (const auto& name : *names) {
        std::error_code error;
        const auto path = temporaryFolder + name;
        const bool isFolder = fs::symlink_status(path, error).type() == fs::file_type::directory;
        if (name.starts_with(namePrefix) && isFolder && fs::last_write_time(path, error) < youngest && !error)
            removeTree(path);
    }
}

} // namespace

WorkFolder::WorkFolder(const std::string& temporaryFolder) {
    removeLeftovers(temporaryFolder);
    auto path = temporaryFolder + namePrefix + "-XXXXXX";
    if (mkdtemp(path.data()) == nullptr)
        throw std::runtime_error("A folder in " + temporaryFolder +
                                 " cannot be made: " + std::generic_category().message(errno));
    m_path = path;
}

WorkFolder::~WorkFolder() {
    removeTree(m_path);
}

} // namespace zuvo
