#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace zuvo {

/// The file's bytes; nothing if it cannot be opened or read, or is a folder.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path);

/// Puts the file's bytes behind those in `bytes`; false, with `bytes` as it was, where `readFile` gives nothing.
[[nodiscard]] bool appendFile(const std::string& path, std::string& bytes);

/// The file's bytes if they are valid UTF-8, else nothing.
[[nodiscard]] std::optional<std::string> readTextFile(const std::string& path);

/// Replaces the file by one that holds exactly these bytes. A reader sees the old file or the new one, never a part:
/// the bytes go to a new file beside it, which then takes its name. False, with the old file untouched and nothing left
/// behind, if that fails.
[[nodiscard]] bool replaceFileAtomically(const std::string& path, std::string_view bytes);

/// The same for a caller who tells the user why: the platform's own error, whose `message()` is never empty; no error
/// if the file was replaced.
[[nodiscard]] std::error_code fileReplacementError(const std::string& path, std::string_view bytes);

} // namespace zuvo
