#include "base/Files.h"

#include "base/Text.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

namespace zuvo {

namespace {

constexpr std::size_t readChunk = 65536;

/// A growing text is copied again and again, so its room is made beforehand. A file that claims to be larger than this
/// (bytes) is read piece by piece all the same, but is not believed.
constexpr std::size_t roomMadeAtOnce = 256UL * 1024 * 1024;

/// A name beside the target that no other writer uses: random per process, counted within it. It does not hold the
/// target's own name, which may already be as long as a name can be.
std::filesystem::path neighbourOf(const std::filesystem::path& path) {
    static const auto salt = std::random_device{}();
    static std::atomic<unsigned> counter = 0;
    return path.parent_path() / (".new-" + std::to_string(salt) + "-" + std::to_string(counter++));
}

std::error_code lastError() {
    return {errno != 0 ? errno : EIO, std::generic_category()};
}

/// Writes a new file. By the C library, since streams do not tell why they failed.
std::error_code writeError(const std::filesystem::path& path, std::string_view bytes) {
    errno = 0;
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return lastError();
    std::error_code error;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size())
        error = lastError();
    // Small texts reach the disk only now.
    if (std::fclose(file) != 0 && !error)
        error = lastError();
    return error;
}

} // namespace

bool appendFile(const std::string& path, std::string& bytes) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        return false;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    const auto before = bytes.size();
    const auto size = std::filesystem::file_size(path, error);
    if (!error && size <= roomMadeAtOnce)
        bytes.reserve(before + static_cast<std::size_t>(size));
    std::string chunk(readChunk, '\0');
    while (file) {
        file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        bytes.append(chunk, 0, static_cast<std::size_t>(file.gcount()));
    }
    // The end of the file is the only good reason to stop; a device or disk error must not pass for a short file.
    if (!file.bad())
        return true;
    bytes.resize(before);
    return false;
}

std::optional<std::string> readFile(const std::string& path) {
    std::string bytes;
    if (!appendFile(path, bytes))
        return std::nullopt;
    return bytes;
}

std::optional<std::string> readTextFile(const std::string& path) {
    auto bytes = readFile(path);
    if (!bytes)
        return std::nullopt;
    return decodeUtf8(std::move(*bytes));
}

std::error_code fileReplacementError(const std::string& path, std::string_view bytes) {
    // The platform would cut the name off there and replace another file.
    if (path.find('\0') != std::string::npos)
        return std::make_error_code(std::errc::invalid_argument);
    const auto neighbour = neighbourOf(path);
    auto error = writeError(neighbour, bytes);
    if (!error)
        std::filesystem::rename(neighbour, path, error);
    if (error) {
        std::error_code ignored;
        std::filesystem::remove(neighbour, ignored);
    }
    return error;
}

bool replaceFileAtomically(const std::string& path, std::string_view bytes) {
    return !fileReplacementError(path, bytes);
}

} // namespace zuvo
