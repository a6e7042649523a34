#include "plugin/UnpackedUpdate.h"

#include "platform/ForeignWords.h"

#include <QCryptographicHash>
#include <QFile>
#include <QString>
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sys/stat.h>
#include <vector>

namespace zuvo {

namespace fs = std::filesystem;

namespace {

/// `foldersAbove`: how many folders are between the link and what is looked through, 1 for an entry of a top-level
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

/// What the manifest calls it, and what the lines of an administrator can name.
bool isUsableName(const std::string& name) {
    return name.find('\\') == std::string::npos && harmlessText(name) == name;
}

std::optional<std::string> linkRefusal(const fs::path& entry, const fs::path& name) {
    std::error_code error;
    const auto target = fs::read_symlink(entry, error);
    const auto foldersAbove = std::distance(name.begin(), name.end()) - 1;
    if (error || !staysInItsTopLevelFolder(target, foldersAbove) || !isUsableName(target.string()))
        return "The update holds a link that leads out of it: " + harmlessText(name.string());
    return std::nullopt;
}

std::optional<std::string> entryRefusal(const fs::path& entry, const fs::path& name) {
    const auto named = ": " + harmlessText(name.string());
    struct stat status {};
    if (lstat(entry.c_str(), &status) != 0)
        return "The update cannot be looked through" + named;
    if (!isUsableName(name.string()))
        return "The update holds a name that cannot be used" + named;
    if (S_ISLNK(status.st_mode))
        return linkRefusal(entry, name);
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))
        return "The update holds a special file" + named;
    // A folder may inherit the set-group-id bit of the one that it is made in.
    const auto setId = static_cast<mode_t>(S_ISREG(status.st_mode) ? S_ISUID | S_ISGID : S_ISUID);
    if ((status.st_mode & setId) != 0)
        return "The update holds a file with set-id rights" + named;
    if (S_ISREG(status.st_mode) && status.st_nlink > 1)
        return "The update holds a file that has a second name" + named;
    const auto needed = static_cast<mode_t>(S_ISDIR(status.st_mode) ? S_IRWXU : S_IRUSR);
    if ((status.st_mode & needed) != needed)
        return "The update holds an entry that its owner cannot read" + named;
    return std::nullopt;
}

std::uint64_t lengthOf(const fs::directory_entry& entry) {
    std::error_code error;
    if (entry.is_symlink(error))
        return fs::read_symlink(entry.path(), error).string().size();
    const auto bytes = entry.file_size(error);
    return error ? 0 : bytes;
}

/// Nothing if the file cannot be read.
std::optional<std::string> sha256OfFile(const fs::path& path) {
    QFile file(QString::fromStdString(path.string()));
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return std::nullopt;
    return hash.result().toHex().toStdString();
}

/// Adds the entry's lines; false if it cannot be read.
bool appendManifestLines(const fs::path& entry, const std::string& name, std::vector<std::string>& lines) {
    std::error_code error;
    const auto status = fs::symlink_status(entry, error);
    if (status.type() == fs::file_type::directory) {
        lines.push_back("d " + name);
    } else if (status.type() == fs::file_type::symlink) {
        lines.push_back("l " + name + " -> " + fs::read_symlink(entry, error).string());
    } else if (status.type() == fs::file_type::regular) {
        const auto hash = sha256OfFile(entry);
        lines.push_back("f " + hash.value_or("") + "  " + name);
        if ((status.permissions() & fs::perms::owner_exec) != fs::perms::none)
            lines.push_back("x " + name);
        return hash.has_value();
    } else {
        return false;
    }
    return !error;
}

} // namespace

std::optional<std::string> unpackedRefusal(const std::string& folder,
                                           const std::map<std::string, std::uint64_t>& files) {
    const std::string unreadable = "The update cannot be looked through";
    std::error_code error;
    const fs::path root(folder);
    fs::recursive_directory_iterator entries(root, error);
    if (error)
        return unreadable;
    std::map<std::string, std::uint64_t> found;
    for (; entries != fs::recursive_directory_iterator(); entries.increment(error)) {
        const auto name = entries->path().lexically_relative(root);
        if (auto refusal = entryRefusal(entries->path(), name))
            return refusal;
        if (entries->is_symlink(error) || !entries->is_directory(error))
            found.emplace(name.string(), lengthOf(*entries));
    }
    // An error ends the walk as the last entry does.
    if (error)
        return unreadable;
    if (found != files)
        return "The update could not be unpacked whole";
    return std::nullopt;
}

std::optional<std::string> manifestOf(const std::string& parent, const std::string& name) {
    const auto root = fs::path(parent) / name;
    std::vector<std::string> lines;
    std::error_code error;
    bool isReadable = appendManifestLines(root, name, lines);
    fs::recursive_directory_iterator entries(root, error);
    for (; isReadable && !error && entries != fs::recursive_directory_iterator(); entries.increment(error))
        isReadable = appendManifestLines(entries->path(), entries->path().lexically_relative(parent).string(), lines);
    if (error || !isReadable)
        return std::nullopt;
    std::sort(lines.begin(), lines.end());
    std::string manifest;
    for (const auto& line : lines)
        manifest += line + "\n";
    return manifest;
}

std::string sha256Of(const std::string& text) {
    return QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256).toHex().toStdString();
}

} // namespace zuvo
