#pragma once

#include "model/Media.h"
#include "model/MiningResults.h"

#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace zuvo {

/// The story as a CMX-style edit decision list, which every editing system reads: one event for each segment, in story
/// order, without gaps on the record side.
struct EDLExporter {
    /// The whole list. `mediaFiles` are the story's sources, in any order; without them source times are mine time.
    /// `fps` is the rate that frames are counted at. Foreign texts go in as they are.
    [[nodiscard]] static std::string exportText(const std::string& projectName,
                                                const std::vector<StorySegment>& segments,
                                                const std::vector<MediaFileInfo>& mediaFiles = {}, double fps = 24.0);

    /// Replaces the file at `path`, atomically and in UTF-8, by that text. The folder must be there. The platform's
    /// error, with its words, if that fails; the old file is then untouched.
    [[nodiscard]] static std::error_code exportToFile(const std::string& path, const std::string& projectName,
                                                      const std::vector<StorySegment>& segments,
                                                      const std::vector<MediaFileInfo>& mediaFiles = {},
                                                      double fps = 24.0);
};

namespace exporters {

/// The name by which an event refers to its source: the file name without its extension, its first 8 characters.
[[nodiscard]] std::string reelName(std::string_view filename);

} // namespace exporters

} // namespace zuvo
