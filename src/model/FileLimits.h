#pragma once

#include <cstdint>

/// How many bytes of each kind of file are read at most. A larger file was not written by this program, or not whole;
/// it counts as missing.
namespace zuvo::FileLimits {

inline constexpr std::uint64_t kilobyte = 1024;
inline constexpr std::uint64_t megabyte = 1024 * kilobyte;

/// token.json
inline constexpr std::uint64_t token = 16 * megabyte;
/// probe_results.json
inline constexpr std::uint64_t probeCache = 64 * megabyte;
/// word_timestamps.json
inline constexpr std::uint64_t wordTimestamps = 64 * megabyte;
/// review_actions.json, which grows with every review; about 400,000 actions.
inline constexpr std::uint64_t reviewActions = 64 * megabyte;
/// Transcripts, projects, mine versions and the chunk files of an earlier tool.
inline constexpr std::uint64_t store = 256 * megabyte;
/// version.json of the plugin, which has some 30 bytes.
inline constexpr std::uint64_t pluginVersion = 64 * kilobyte;
/// A file that holds a key and nothing else.
inline constexpr std::uint64_t key = megabyte;
/// A start-up file of the user's shell, such as .zshrc.
inline constexpr std::uint64_t shellStartUp = 16 * megabyte;
/// What a tool wrote to its standard error.
inline constexpr std::uint64_t toolOutput = 64 * megabyte;
/// A sound file that is uploaded. A service takes far less; this is nine hours of extracted sound in one piece.
inline constexpr std::uint64_t sound = 1024 * megabyte;

} // namespace zuvo::FileLimits
