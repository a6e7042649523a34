#include "base/Files.h"

#include "base/Text.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace zuvo {

namespace {

/// A name beside the target that no other writer uses: random per process, counted within it.
std::string neighbourName(const std::string& path) {
    static const auto salt = std::random_device{}();
    static std::atomic<unsigned> counter = 0;
    return path + ".new-" + std::to_string(salt) + "-" + std::to_string(counter++);
}

} // namespace

std::optional<std::string> readFile(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    std::ostringstream bytes;
    bytes << file.rdbuf();
    // An empty file sets failbit on the destination, since nothing was inserted; only a bad source is a failure.
    if (file.bad())
        return std::nullopt;
    return std::move(bytes).str();
}

std::optional<std::string> readTextFile(const std::string& path) {
    auto bytes = readFile(path);
    if (!bytes)
        return std::nullopt;
    return decodeUtf8(std::move(*bytes));
}

bool replaceFileAtomically(const std::string& path, std::string_view bytes) {
    const auto neighbour = neighbourName(path);
    std::error_code error;
    {
        std::ofstream file(neighbour, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        file.close();
        if (!file) {
            std::filesystem::remove(neighbour, error);
            return false;
        }
    }
    std::filesystem::rename(neighbour, path, error);
    if (error) {
        std::error_code ignored;
        std::filesystem::remove(neighbour, ignored);
        return false;
    }
    return true;
}

} // namespace zuvo
