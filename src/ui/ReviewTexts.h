#pragma once

#include <QString>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zuvo {

struct StorySegment;

// The steps have a formatDuration of their own, which the log lines use.
namespace review {

/// Minutes, ":" and two-digit seconds, cut off to whole seconds: 131.9 is "2:11".
[[nodiscard]] QString formatTime(double seconds);

/// Whole seconds, cut off, and "s": 25.9 is "25s".
[[nodiscard]] QString formatDuration(double seconds);

} // namespace review

/// The summed lengths of the segments, in seconds.
[[nodiscard]] double totalDuration(const std::vector<StorySegment>& segments);

/// Its place in the list of gem colours for each chapter, by order of first occurrence, round and round: for each
/// segment its chapter's, nothing for one without a chapter. An empty chapter is none.
[[nodiscard]] std::vector<std::optional<int>> chapterGems(const std::vector<StorySegment>& segments);

/// How many gem colours `Theme.chapterGems` has.
inline constexpr int chapterGemCount = 6;

} // namespace zuvo
