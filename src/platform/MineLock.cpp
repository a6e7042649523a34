#include "platform/MineLock.h"

#include "base/Files.h"
#include "platform/FileSystem.h"
#include "platform/Leftovers.h"

#include <QCoreApplication>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace zuvo {

namespace {

/// Bytes of the longest text in the file that is believed.
constexpr std::uint64_t holderLimit = 64;

/// More than one try is needed only while somebody clears the cache folder.
constexpr int openTries = 8;

bool isIn(const std::string& text, const std::string& characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string::npos;
}

/// Who holds the lock, by the file's own words: " (zuvo, process 4711)". Empty if they are not of that form, as in the
/// moment between the lock and its words.
std::string holderIn(const std::string& path) {
    const auto text = readFile(path, holderLimit).value_or("");
    const auto blank = text.find(' ');
    if (blank == std::string::npos || !text.ends_with('\n'))
        return {};
    const auto program = text.substr(0, blank);
    const auto process = text.substr(blank + 1, text.size() - blank - 2);
    if (!isIn(program, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-") ||
        !isIn(process, "0123456789"))
        return {};
    return " (" + program + ", process " + process + ")";
}

void writeHolder(int file) {
    const auto name = QCoreApplication::applicationName().toStdString();
    const auto text = (name.empty() ? "zuvo" : name) + " " + std::to_string(::getpid()) + "\n";
    // It is for a reader's information alone; the lock holds without.
    if (::ftruncate(file, 0) == 0) [[maybe_unused]]
        const auto written = ::pwrite(file, text.data(), text.size(), 0);
}

/// Whether the open file is the one that the path leads to: it may have been removed between opening and locking.
bool isFileAt(int file, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(file, &open) == 0 && ::lstat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

/// The open and locked file; -1, with `errno` as it came, if that fails.
int openLocked(const std::string& path) {
    for (int attempt = 0; attempt < openTries; ++attempt) {
        // Closed in children: one that outlives this program must not go on holding the lock.
        const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        if (file < 0)
            return -1;
        if (::flock(file, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            ::close(file);
            errno = error;
            return -1;
        }
        if (isFileAt(file, path))
            return file;
        ::close(file);
    }
    errno = EBUSY;
    return -1;
}

} // namespace

MineLock::MineLock(const Environment& environment) {
    if (!environment.temporaryFolder()) {
        m_refusal = "The folder for temporary files in " + environment.systemTemporaryFolder +
                    " cannot be made or is not this user's own";
        return;
    }
    const auto folder = environment.cacheFolder();
    const auto path = folder + "/" + fileName;
    if (makePrivateFolder(folder, folder)) {
        m_hasNothingToProtect = true;
        return;
    }
    m_file = openLocked(path);
    if (isHeld()) {
        makePrivate(path); // one that is there keeps its mode
        writeHolder(m_file);
        removeLeftovers(environment);
        return;
    }
    const std::error_code error(errno, std::generic_category());
    m_isTaken = error == std::errc::operation_would_block;
    m_refusal = m_isTaken ? "Another mine is running" + holderIn(path)
                          : "No lock could be made at " + path + " (" + error.message() + ")";
}

MineLock::~MineLock() {
    if (m_file < 0)
        return;
    [[maybe_unused]] const auto emptied = ::ftruncate(m_file, 0);
    ::close(m_file);
}

std::shared_ptr<MineLock> MineLock::ofThisProgram(const Environment& environment) {
    static std::map<std::string, std::weak_ptr<MineLock>> held;
    auto& known = held[environment.cacheFolder()];
    if (auto lock = known.lock())
        return lock;
    auto lock = std::make_shared<MineLock>(environment);
    if (lock->isHeld())
        known = lock;
    return lock;
}

} // namespace zuvo
