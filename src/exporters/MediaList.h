#pragma once

#include "model/Media.h"
#include "model/MiningResults.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zuvo {

// The list of media that a story is exported with.

/// One entry for each path, filled from the probe result of its file name; a file that could not be probed is taken to
/// be an hour long, at 24 frames a second, with sound, and with video if its name ends in .mov or .mp4. Without any
/// path the entries are made up from the story.
[[nodiscard]] std::vector<MediaFileInfo>
generateMediaFileInfo(const std::optional<std::vector<std::string>>& mediaPaths,
                      const std::map<std::string, ProbeResult>& probeResults,
                      const std::vector<StorySegment>& segments);

/// Made-up entries, an hour each at 24 frames a second, for the distinct clips of the story in the order in which they
/// first occur.
[[nodiscard]] std::vector<MediaFileInfo> createDummyMediaInfo(const std::vector<StorySegment>& segments);

} // namespace zuvo
