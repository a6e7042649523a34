#pragma once

#include <optional>
#include <string>

namespace zuvo {

// The AppleScript sources of what is done with administrator rights, each on one line. Paths stand in them in single
// quotes as they are: a caller asks `pathRefusal` about each of them first.

/// Makes the folder `to` and copies what is in the folder `from` into it.
[[nodiscard]] std::string copyScript(const std::string& from, const std::string& to);

/// Makes the folder `path` with version.json and manifest.json in it.
[[nodiscard]] std::string minimalPluginScript(const std::string& path, const std::string& version);

/// Removes the folder `path`.
[[nodiscard]] std::string removalScript(const std::string& path);

/// Removes the folder `pluginFolder` and puts the folder of its name in `extracted` in its place.
[[nodiscard]] std::string replacementScript(const std::string& pluginFolder, const std::string& extracted);

/// The same from a copy that nobody but root can change, for an `extracted` which the user's programs can change while
/// the password is asked for:
///
/// 1. A folder of root's own is made beside the plugin's folder, and the new plugin copied into it.
/// 2. What `manifestOf` says of that copy must have the SHA-256 `manifestSha256`; else the line ends with the failure
///    "The update was changed after it was checked".
/// 3. The old plugin is moved into root's folder, and the line of `replacementScript` puts the copy in its place.
/// 4. If that fails, or the line is ended by a signal, the old plugin is moved back. Root's folder is removed.
///
/// Runs where sha256sum (Linux) or shasum (macOS) exists.
[[nodiscard]] std::string checkedReplacementScript(const std::string& pluginFolder, const std::string& extracted,
                                                   const std::string& manifestSha256);

/// Why a path may not stand in a script: "The path holds a quote: {path}" if it holds a character that would end its
/// quotes, the script's own quotes or the line (`'`, `"`, `\`, control characters). Nothing for any other path.
[[nodiscard]] std::optional<std::string> pathRefusal(const std::string& path);

} // namespace zuvo
