#include "platform/Environment.h"

#include "platform/ChildEnvironment.h"
#include "platform/FileSystem.h"

#include <QCryptographicHash>
#include <QDir>
#include <QString>
#include <array>
#include <cerrno>
#include <filesystem>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zuvo {

namespace {

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

/// Home folder of the current user id by the user database; empty if it has no entry.
std::string homeOfUserDatabase() {
    constexpr std::size_t entryBytes = 16384;
    std::vector<char> buffer(entryBytes);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return {};
    return found->pw_dir == nullptr ? std::string() : withoutTrailingSlashes(found->pw_dir);
}

/// $TMPDIR if it is there, else /tmp. Qt's own answer is empty for a $TMPDIR that is missing, which would lead to "/".
std::string temporaryFolderOfTheSystem() {
    const auto folder = QDir::tempPath().toStdString();
    return folder.empty() ? "/tmp" : folder;
}

/// Whether `folder` is a real folder of this user's that nobody else may enter; its mode is set right if need be.
bool isPrivateFolder(const std::string& folder) {
    struct stat status {};
    if (lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid())
        return false;
    constexpr mode_t permissions = 07777;
    return (status.st_mode & permissions) == S_IRWXU || chmod(folder.c_str(), S_IRWXU) == 0;
}

} // namespace

std::string fixedToolPath(const std::string& name, const std::string& root) {
    const std::string homebrew = root + "/opt/homebrew/bin/" + name;
#ifdef Q_OS_MACOS
    return homebrew;
#else
    return fileExists(homebrew) ? homebrew : root + "/usr/bin/" + name;
#endif
}

namespace {

/// A folder of Resolve's scripting interface: where its installer puts it, on Linux else below /opt.
std::string fixedResolveFolder(const std::string& below) {
    const auto installed = "/Library/Application Support/Blackmagic Design/DaVinci Resolve/Developer/Scripting" + below;
#ifdef Q_OS_LINUX
    if (!fileExists(installed))
        return "/opt/resolve/Developer/Scripting" + below;
#endif
    return installed;
}

} // namespace

Environment Environment::ofThisMachine() {
    Environment environment;
    environment.variable = startVariable;
    const auto databaseHome = homeOfUserDatabase();
    const auto homeVariable = startVariable("HOME").value_or("");
    environment.home = homeVariable.empty() ? databaseHome : withoutTrailingSlashes(homeVariable);
    environment.realHomeDir = databaseHome.empty() ? environment.home : databaseHome;
    environment.systemTemporaryFolder = temporaryFolderOfTheSystem();
    environment.tools = {fixedToolPath("ffmpeg"), fixedToolPath("ffprobe"), fixedToolPath("python3")};
    environment.resolveScriptAPI = fixedResolveFolder("");
    environment.resolveScriptLib = fixedResolveFolder("/Modules");
    return environment;
}

std::optional<std::string> Environment::temporaryFolder() const {
#ifdef Q_OS_MACOS
    return systemTemporaryFolder + "/";
#else
    const auto folder = systemTemporaryFolder + "/zuvo-" + std::to_string(geteuid());
    if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return std::nullopt;
    if (!isPrivateFolder(folder))
        return std::nullopt;
    return folder + "/";
#endif
}

std::string Environment::homeHash() const {
    std::error_code error;
    const auto resolved = std::filesystem::weakly_canonical(home, error);
    const auto bytes = QByteArray::fromStdString(error ? home : resolved.string());
    constexpr int length = 16;
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(length).toStdString();
}

std::string Environment::cacheFolder() const {
    return home + "/Library/Caches/ZuvoManager";
}

std::string Environment::dataFolder() const {
    return home + "/Library/Application Support/ZuvoManager";
}

std::string Environment::tokenFile() const {
    return home + "/.zuvo/token.json";
}

} // namespace zuvo
