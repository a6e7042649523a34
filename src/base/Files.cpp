#include "base/Files.h"

#include "base/DiskSync.h"
#include "base/Paths.h"
#include "base/Text.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zuvo {

namespace {

constexpr std::size_t readChunk = 65536;

/// A growing text is copied again and again, so its room is made beforehand. A file that claims to be larger than this
/// (bytes) is read piece by piece all the same, but is not believed.
constexpr std::uint64_t roomMadeAtOnce = 256ULL * 1024 * 1024;

constexpr std::string_view neighbourPrefix = ".new-";

/// Names that are tried for a neighbour before giving up; each is taken only by another program at the same moment.
constexpr int neighbourTries = 16;

/// A name beside the target that no other writer uses: random per process, counted within it. It does not hold the
/// target's own name, which may already be as long as a name can be.
std::string neighbourOf(const std::string& path) {
    static const auto salt = std::random_device{}();
    static std::atomic<unsigned> counter = 0;
    const auto name = std::string(neighbourPrefix) + std::to_string(salt) + "-" + std::to_string(counter++);
    return (std::filesystem::path(path).parent_path() / name).string();
}

std::error_code lastError() {
    return {errno != 0 ? errno : EIO, std::generic_category()};
}

bool isLockRefused() {
    return errno == EWOULDBLOCK;
}

/// An open descriptor, closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int number() const { return m_number; }
    [[nodiscard]] bool isOpen() const { return m_number >= 0; }

private:
    int m_number;
};

bool hasNoName(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

/// Opens a new file beside the target and locks it, which is how others see that somebody is still writing it. -1 and
/// `errno` if that fails.
int openNeighbour(const std::string& path, mode_t mode, std::string& name) {
    for (int attempt = 0; attempt < neighbourTries; ++attempt) {
        name = neighbourOf(path);
        errno = 0;
        const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (file < 0 && errno == EEXIST)
            continue;
        if (file < 0)
            return -1;
        // Between the two calls somebody may have taken it for abandoned. A file system without locks is fine: nobody
        // can take the file for abandoned there.
        const bool isTaken = ::flock(file, LOCK_EX | LOCK_NB) != 0 && isLockRefused();
        if (!isTaken && !hasNoName(file))
            return file;
        ::close(file);
    }
    errno = EEXIST;
    return -1;
}

/// Leaves the new file no permission that the one it replaces did not have.
std::error_code keepStricterMode(int file, const std::string& replaced) {
    struct stat before {};
    if (::stat(replaced.c_str(), &before) != 0)
        return {};
    struct stat now {};
    errno = 0;
    if (::fstat(file, &now) != 0)
        return lastError();
    constexpr mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;
    const auto kept = now.st_mode & before.st_mode & permissions;
    if (kept != (now.st_mode & permissions) && ::fchmod(file, kept) != 0)
        return lastError();
    return {};
}

std::error_code writeError(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        errno = 0;
        const auto count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return lastError();
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

std::error_code syncError(int descriptor) {
    const int error = syncToDisk(descriptor);
    return error == 0 ? std::error_code() : std::error_code(error, std::generic_category());
}

/// The folder holds the file's name: a rename that is not synced may be undone by a loss of power.
std::error_code folderSyncError(const std::string& path) {
    const auto parent = std::filesystem::path(path).parent_path();
    const Descriptor folder(::open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // One that may be written but not read cannot be synced by us.
    return folder.isOpen() ? syncError(folder.number()) : std::error_code();
}

std::error_code renameError(const std::string& from, const std::string& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    return error;
}

bool isNeighbourName(std::string_view name) {
    if (!name.starts_with(neighbourPrefix))
        return false;
    name.remove_prefix(neighbourPrefix.size());
    const auto hyphen = name.find('-');
    if (hyphen == std::string_view::npos)
        return false;
    const auto isNumber = [](std::string_view text) {
        return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    };
    return isNumber(name.substr(0, hyphen)) && isNumber(name.substr(hyphen + 1));
}

} // namespace

bool appendFile(const std::string& path, std::string& bytes, std::uint64_t limit) {
    std::error_code error;
    // A pipe or a terminal in its place would be waited for.
    if (!std::filesystem::is_regular_file(path, error))
        return false;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    const auto before = bytes.size();
    const auto size = std::filesystem::file_size(path, error);
    if (!error && size > limit)
        return false;
    if (!error && size <= roomMadeAtOnce)
        bytes.reserve(before + static_cast<std::size_t>(size));
    std::string chunk(readChunk, '\0');
    while (file && bytes.size() - before <= limit) {
        file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        bytes.append(chunk, 0, static_cast<std::size_t>(file.gcount()));
    }
    // The end of the file is the only good reason to stop; a device or disk error must not pass for a short file.
    if (!file.bad() && bytes.size() - before <= limit)
        return true;
    bytes.resize(before);
    return false;
}

std::optional<std::string> readFile(const std::string& path, std::uint64_t limit) {
    std::string bytes;
    if (!appendFile(path, bytes, limit))
        return std::nullopt;
    return bytes;
}

std::optional<std::string> readTextFile(const std::string& path, std::uint64_t limit) {
    auto bytes = readFile(path, limit);
    if (!bytes)
        return std::nullopt;
    return decodeUtf8(std::move(*bytes));
}

std::error_code fileReplacementError(const std::string& path, std::string_view bytes, Readers readers) {
    // The platform would cut the name off there and replace another file.
    if (path.find('\0') != std::string::npos)
        return std::make_error_code(std::errc::invalid_argument);
    constexpr mode_t everybody = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    std::string neighbour;
    const Descriptor file(
        openNeighbour(path, readers == Readers::ownerAlone ? S_IRUSR | S_IWUSR : everybody, neighbour));
    if (!file.isOpen())
        return lastError();
    auto error = keepStricterMode(file.number(), path);
    if (!error)
        error = writeError(file.number(), bytes);
    // Before the rename, so that the name never leads to a file whose bytes are still under way.
    if (!error)
        error = syncError(file.number());
    if (!error)
        error = renameError(neighbour, path);
    if (!error)
        return folderSyncError(path);
    std::error_code ignored;
    std::filesystem::remove(neighbour, ignored);
    return error;
}

bool replaceFileAtomically(const std::string& path, std::string_view bytes, Readers readers) {
    return !fileReplacementError(path, bytes, readers);
}

bool removeAbandonedReplacement(const std::string& path) {
    if (!isNeighbourName(lastPathComponent(path)))
        return false;
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    return ::flock(file.number(), LOCK_EX | LOCK_NB) == 0 && ::unlink(path.c_str()) == 0;
}

} // namespace zuvo
