#pragma once

#include "model/Media.h"
#include "model/MiningResults.h"

#include <string>
#include <system_error>
#include <vector>

namespace zuvo {

/// The story as XMEML version 5: one sequence with an audio track, and a video track if any of the media has video.
/// Everything is counted in whole frames, each clip rounded by itself, so that a long sequence may end some frames off
/// its stated duration.
struct PremiereXMLExporter {
    /// The whole document. `mediaFiles` are the story's sources, in any order; without them clips refer to files that
    /// the document does not describe. `fps` is the frame rate of everything in it.
    [[nodiscard]] static std::string exportText(const std::string& projectName,
                                                const std::vector<StorySegment>& segments,
                                                const std::vector<MediaFileInfo>& mediaFiles, double fps = 24.0);

    /// Replaces the file at `path`, atomically and in UTF-8, by that text. The folder must be there. The platform's
    /// error, with its words, if that fails; the old file is then untouched.
    [[nodiscard]] static std::error_code exportToFile(const std::string& path, const std::string& projectName,
                                                      const std::vector<StorySegment>& segments,
                                                      const std::vector<MediaFileInfo>& mediaFiles, double fps = 24.0);
};

} // namespace zuvo
