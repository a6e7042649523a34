#include "platform/TemporaryFile.h"

#include "platform/FileSystem.h"

#include <fcntl.h>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zuvo {

namespace {

constexpr const char* namePrefix = "zuvo_";

std::set<std::string>& filesInUse() {
    static std::set<std::string> paths;
    return paths;
}

bool isRegularWithName(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 0;
}

/// An open and locked new file; -1 if there is none to be had.
int openNew(const std::string& path) {
    // The second time is for a program that took the first for abandoned before it was locked.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
        if (file < 0)
            return -1;
        (void)::flock(file, LOCK_EX | LOCK_NB);
        if (isRegularWithName(file))
            return file;
        ::close(file);
    }
    return -1;
}

} // namespace

TemporaryFile::TemporaryFile(const Environment& environment, const std::string& name) {
    const auto folder = environment.temporaryFolder();
    if (!folder)
        return;
    m_path = *folder + name;
    m_file = openNew(m_path);
    if (isMade())
        filesInUse().insert(m_path);
}

TemporaryFile::~TemporaryFile() {
    if (!isMade())
        return;
    filesInUse().erase(m_path);
    (void)::unlink(m_path.c_str());
    ::close(m_file);
}

void TemporaryFile::removeAll() {
    for (const auto& path : filesInUse())
        (void)::unlink(path.c_str());
    filesInUse().clear();
}

void removeAbandonedTemporaryFiles(const std::string& folder) {
    for (const auto& name : listFolder(folder).value_or(std::vector<std::string>())) {
        if (!name.starts_with(namePrefix))
            continue;
        const auto path = folder + "/" + name;
        const int file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (file < 0)
            continue;
        if (isRegularWithName(file) && ::flock(file, LOCK_EX | LOCK_NB) == 0)
            (void)::unlink(path.c_str());
        ::close(file);
    }
}

} // namespace zuvo
