#include "base/Files.h"

#include "base/Text.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>

namespace zuvo {

namespace {

constexpr std::size_t readChunk = 65536;

/// A name beside the target that no other writer uses: random per process, counted within it. It does not hold the
/// target's own name, which may already be as long as a name can be.
std::filesystem::path neighbourOf(const std::filesystem::path& path) {
    static const auto salt = std::random_device{}();
    static std::atomic<unsigned> counter = 0;
    return path.parent_path() / (".new-" + std::to_string(salt) + "-" + std::to_string(counter++));
}

} // namespace

std::optional<std::string> readFile(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    std::string bytes;
    std::string chunk(readChunk, '\0');
    while (file) {
        file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        bytes.append(chunk, 0, static_cast<std::size_t>(file.gcount()));
    }
    // The end of the file is the only good reason to stop; a device or disk error must not pass for a short file.
    if (file.bad())
        return std::nullopt;
    return bytes;
}

std::optional<std::string> readTextFile(const std::string& path) {
    auto bytes = readFile(path);
    if (!bytes)
        return std::nullopt;
    return decodeUtf8(std::move(*bytes));
}

bool replaceFileAtomically(const std::string& path, std::string_view bytes) {
    const auto neighbour = neighbourOf(path);
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
