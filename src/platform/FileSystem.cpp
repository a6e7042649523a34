#include "platform/FileSystem.h"

#include "base/Files.h"
#include "model/FileLimits.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace zuvo {

namespace fs = std::filesystem;

bool fileExists(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error);
}

bool createFolders(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    return fs::is_directory(path, error);
}

void makePrivate(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !(S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)))
        return;
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        (void)chmod(path.c_str(), status.st_mode & S_IRWXU);
}

std::error_code makePrivateFolder(const std::string& root, const std::string& path) {
    std::error_code error;
    fs::create_directories(fs::path(root).parent_path(), error);
    auto folder = fs::path(root);
    const auto below = fs::path(path).lexically_relative(root);
    auto next = below.begin();
    while (true) {
        // The mode belongs to the making: afterwards there would be a moment in which others could enter.
        if (mkdir(folder.c_str(), S_IRWXU) != 0) {
            error = {errno, std::generic_category()};
            if (!fs::is_directory(folder))
                return error == std::errc::file_exists ? std::make_error_code(std::errc::not_a_directory) : error;
            makePrivate(folder.string());
        }
        while (next != below.end() && (*next == "." || next->empty()))
            ++next;
        if (next == below.end())
            return {};
        folder /= *next++;
    }
}

std::optional<std::vector<std::string>> listFolder(const std::string& path) {
    std::error_code error;
    fs::directory_iterator entries(path, error);
    if (error)
        return std::nullopt;
    std::vector<std::string> names;
    for (; entries != fs::directory_iterator(); entries.increment(error))
        names.push_back(entries->path().filename().string());
    // An error ends the list as the last name does.
    if (error)
        return std::nullopt;
    return names;
}

namespace {

/// Gives the owner of the folder, and of those in it, the right to remove what is in them. Links are not followed.
void makeRemovable(const std::string& path) {
    std::vector<fs::path> folders{path};
    while (!folders.empty()) {
        const auto folder = std::move(folders.back());
        folders.pop_back();
        std::error_code error;
        if (fs::symlink_status(folder, error).type() != fs::file_type::directory)
            continue;
        fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, error);
        for (fs::directory_iterator entries(folder, error); !error && entries != fs::directory_iterator();
             entries.increment(error))
            folders.push_back(entries->path());
    }
}

} // namespace

bool removeTree(const std::string& path) {
    std::error_code error;
    fs::remove_all(path, error);
    if (!error)
        return true;
    makeRemovable(path);
    fs::remove_all(path, error);
    return !error;
}

bool copyFile(const std::string& from, const std::string& to) {
    if (fileExists(to))
        return false;
    const auto bytes = readFile(from, FileLimits::store);
    return bytes && replaceFileAtomically(to, *bytes);
}

bool keepUnderOtherName(const std::string& path, const std::string& kept) {
    if (copyFile(path, kept))
        return true;
    std::error_code error;
    fs::create_hard_link(path, kept, error);
    return !error;
}

std::optional<std::uint64_t> fileSize(const std::string& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    if (error)
        return std::nullopt;
    return size;
}

std::optional<double> modificationTime(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    constexpr double nanosecond = 1e-9;
#ifdef __APPLE__
    const auto changed = status.st_mtimespec;
#else
    const auto changed = status.st_mtim;
#endif
    return static_cast<double>(changed.tv_sec) + static_cast<double>(changed.tv_nsec) * nanosecond;
}

std::optional<std::vector<std::int16_t>> readSamples(const std::string& path) {
    const auto size = fileSize(path);
    std::ifstream file(path, std::ios::binary);
    if (!size || !file)
        return std::nullopt;
    std::vector<std::int16_t> samples(static_cast<std::size_t>(*size / sizeof(std::int16_t)));
    const auto bytes = static_cast<std::streamsize>(samples.size() * sizeof(std::int16_t));
    file.read(reinterpret_cast<char*>(samples.data()), bytes);
    if (file.gcount() != bytes)
        return std::nullopt;
    if constexpr (std::endian::native == std::endian::big) {
        constexpr unsigned byteBits = 8;
        std::transform(samples.begin(), samples.end(), samples.begin(), [](std::int16_t sample) {
            const auto bits = static_cast<std::uint16_t>(sample);
            return static_cast<std::int16_t>((bits << byteBits) | (bits >> byteBits));
        });
    }
    return samples;
}

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const auto absolute = fs::absolute(path, error);
    return error ? path : absolute.lexically_normal().string();
}

std::optional<std::string> folderWithin(const std::string& root, const std::string& name) {
    if (name.find('\0') != std::string::npos)
        return std::nullopt;
    const auto relative = fs::path("./" + name).lexically_normal();
    if (!relative.empty() && *relative.begin() == "..")
        return std::nullopt;
    return root + "/" + name;
}

bool liesBelow(const std::string& root, const std::string& path) {
    std::error_code error;
    const auto realRoot = fs::weakly_canonical(root, error);
    if (error)
        return false;
    const auto realPath = fs::weakly_canonical(path, error);
    if (error)
        return false;
    // A "/" at the end leaves an empty last component, which is no step down.
    const auto down = realPath.lexically_relative(realRoot);
    return !down.empty() && *down.begin() != ".." && *down.begin() != "." && !down.begin()->empty();
}

} // namespace zuvo
