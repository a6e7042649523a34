#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace zuvo {

// Every reader says how many bytes it takes at most: a larger file is not what it expects, and reading it would only
// use up memory. The limits of the program's own kinds of files are in model/FileLimits.h.

/// The file's bytes; nothing if it cannot be opened or read, is no regular file (a pipe would be
/// waited for), or holds more than `limit` bytes. Never reads
/// much more than that, whatever size the file claims.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path, std::uint64_t limit);

/// Puts the file's bytes behind those in `bytes`; false, with `bytes` as it was, where `readFile` gives nothing.
[[nodiscard]] bool appendFile(const std::string& path, std::string& bytes, std::uint64_t limit);

/// The file's bytes if they are valid UTF-8, else nothing.
[[nodiscard]] std::optional<std::string> readTextFile(const std::string& path, std::uint64_t limit);

/// Who may read a file that is written. A file that is replaced keeps what it had less than that: a stricter mode was
/// the user's wish.
enum class Readers {
    ownerAlone, ///< mode 0600
    asUsual,    ///< like any new file the user makes; for files that are passed on
};

/// Replaces the file by one that holds exactly these bytes. A reader sees the old file or the new one, never a part:
/// the bytes go to a new file beside it, which then takes its name. Both the file and its folder are synced to the
/// disk, so the same holds after a loss of power. False if that fails, with nothing left behind and the old file
/// untouched, unless its folder alone could not be synced.
[[nodiscard]] bool replaceFileAtomically(const std::string& path, std::string_view bytes,
                                         Readers readers = Readers::ownerAlone);

/// The same for a caller who tells the user why: the platform's own error, whose `message()` is never empty; no error
/// if the file was replaced.
[[nodiscard]] std::error_code fileReplacementError(const std::string& path, std::string_view bytes,
                                                   Readers readers = Readers::ownerAlone);

/// Removes the new file of a replacement that was cut off by the end of its program. Such files are called
/// ".new-{number}-{number}"; one that a running program is writing stays, and so does every other file. True if it was
/// removed.
bool removeAbandonedReplacement(const std::string& path);

} // namespace zuvo
