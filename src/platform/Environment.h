#pragma once

#include <functional>
#include <optional>
#include <string>

namespace zuvo {

/// Where the external tools lie.
struct ToolPaths {
    std::string ffmpeg;
    std::string ffprobe;
    std::string python3;
};

/// What a program is told by the machine it runs on, found once at its start. Tests build their own.
struct Environment {
    /// The platform's home folder: $HOME, else the user database. No "/" at its end. Stores live under it.
    std::string home;

    /// The home folder of the user database, else `home`. Keys are looked for under it, since $HOME may name a
    /// container folder.
    std::string realHomeDir;

    /// Where the system keeps temporary files. Nothing is written there directly: see `temporaryFolder`.
    std::string systemTemporaryFolder;

    ToolPaths tools;

    /// Folder of DaVinci Resolve's scripting interface.
    std::string resolveScriptAPI;

    /// Folder of the module in it by which Python talks to DaVinci Resolve.
    std::string resolveScriptLib;

    /// A variable that the program was started with; nothing if it is not set.
    std::function<std::optional<std::string>(const std::string& name)> variable;

    /// The machine's answers.
    [[nodiscard]] static Environment ofThisMachine();

    /// Folder for this user's temporary files, "/" at its end, made (mode 0700) if it is missing: "zuvo-{uid}/" in the
    /// system's, or on macOS the system's own, which is private there. Nothing if it cannot be made, or is a link or
    /// another user's: what lies there is trusted later.
    [[nodiscard]] std::optional<std::string> temporaryFolder() const;

    /// One name for the home folder, whatever links and slashes lead to it: 16 hexadecimal digits.
    [[nodiscard]] std::string homeHash() const;

    /// "{home}/Library/Caches/ZuvoManager"
    [[nodiscard]] std::string cacheFolder() const;

    /// "{home}/Library/Application Support/ZuvoManager": projects with their exports, and what the reviews have kept.
    [[nodiscard]] std::string dataFolder() const;

    /// "{home}/.zuvo/token.json"
    [[nodiscard]] std::string tokenFile() const;
};

/// The fixed place of a tool: /opt/homebrew/bin/{name} if that file exists, else on systems that are not macOS
/// /usr/bin/{name}. Both lie under `root`, which is empty but in tests.
[[nodiscard]] std::string fixedToolPath(const std::string& name, const std::string& root = {});

} // namespace zuvo
