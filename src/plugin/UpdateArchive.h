#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace zuvo {

/// What the archive of an update may hold at most.
struct UpdateLimits {
    std::uint64_t packedBytes = 64ULL * 1024 * 1024;
    std::uint64_t unpackedBytes = 256ULL * 1024 * 1024; ///< of all entries together
    std::uint64_t entries = 10'000;                     ///< files and folders
    std::size_t pathBytes = 1024;
    std::size_t folderDepth = 64;               ///< names in one path
    std::uint64_t versionFileBytes = 64 * 1024; ///< version.json has some 30
};

inline constexpr UpdateLimits updateLimits;

/// What a look into the archive of an update has found.
struct UpdateInspection {
    std::string refusal; ///< why it must not be unpacked, in words for the user; empty if it may be
    /// Bytes of each file by its path in the archive; links are listed with the length of their target. Folders are not
    /// listed. Only if it may be unpacked.
    std::map<std::string, std::uint64_t> files;

    [[nodiscard]] bool isRefused() const { return !refusal.empty(); }
};

/// Reads the whole archive without unpacking it: every entry is decompressed up to the limits and its checksum
/// compared, so that sizes in the archive's directory need not be trusted. `pluginFolder` is the name of the top-level
/// folder which must hold a version.json that decodes.
///
/// Refused are an archive beyond `updateLimits` or damaged in any place, anything in front of or behind what the
/// directory lists, encrypted entries, special files, set-id bits, entries whose owner could not read them, names that
/// lead out of the archive or that a shell line could not carry, and two entries that a disk without regard to case
/// would take for one. Links are allowed here: `unpackedRefusal` checks where they lead.
[[nodiscard]] UpdateInspection inspectUpdate(const std::string& archive, const std::string& pluginFolder);

} // namespace zuvo
