#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace zuvo {

// Files and folders by UTF-8 path. Nothing here throws; failures come back as nothing or false.

/// True for a file, a folder, or a link to either; false for a link to nothing, or if it cannot be found out.
[[nodiscard]] bool fileExists(const std::string& path);

/// Makes the folder with all folders above it. True if it is there afterwards.
bool createFolders(const std::string& path);

/// Makes the folder `path`, which is `root` or lies below it, for this user alone: what is missing from `root` down
/// gets mode 0700, and a folder that is there loses what others may do. Folders above `root` are made like any other.
/// No error if the folder is there afterwards.
[[nodiscard]] std::error_code makePrivateFolder(const std::string& root, const std::string& path);

/// Takes from others what they may do with a file or folder; what its owner may do stays. Nothing happens to what is
/// missing, is neither of both, or belongs to another user.
void makePrivate(const std::string& path);

/// The names in a folder, in the order in which the system lists them; nothing if it cannot be listed.
[[nodiscard]] std::optional<std::vector<std::string>> listFolder(const std::string& path);

/// Removes a file, or a folder with everything in it. A link is removed, not what it points to. Folders
/// whose owner may not change them are removed as well. True if nothing is left there.
bool removeTree(const std::string& path);

/// Copies a file of ours, which is small; false if that fails or the target is there already. The copy is whole or it
/// is not there.
bool copyFile(const std::string& from, const std::string& to);

/// Keeps what the file holds now under another name, in the same folder or at least on the same disk, before the file
/// is replaced atomically. Where there is no room for a copy, the bytes get a second name. False if neither can be done
/// or that name is taken.
bool keepUnderOtherName(const std::string& path, const std::string& kept);

/// Bytes; nothing if there is no such file.
[[nodiscard]] std::optional<std::uint64_t> fileSize(const std::string& path);

/// Time of the last change, in seconds since 1970.
[[nodiscard]] std::optional<double> modificationTime(const std::string& path);

/// A file of little-endian signed 16-bit samples, read straight into its place; an odd last byte is dropped. Nothing if
/// it cannot be read.
[[nodiscard]] std::optional<std::vector<std::int16_t>> readSamples(const std::string& path);

/// `path` made absolute against the working folder, with "." and ".." worked out where that needs no look at links.
[[nodiscard]] std::string absolutePath(const std::string& path);

/// The folder `root`/`name` if it lies at or below `root` once "." and ".." are worked out; nothing if ".." leads out
/// of it, or for a name with a zero byte, at which the system would cut it off. A "/" in the name makes a sub-folder.
[[nodiscard]] std::optional<std::string> folderWithin(const std::string& root, const std::string& name);

/// Whether `path` lies below `root` (and is not `root` itself) once ".", ".." and links are followed; what is missing
/// of either counts as plain names. False if that cannot be found out.
[[nodiscard]] bool liesBelow(const std::string& root, const std::string& path);

} // namespace zuvo
