#pragma once

#include "model/Media.h"
#include "model/MiningResults.h"

#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace zuvo {

/// The story as FCPXML 1.11: the media as assets, one project whose spine holds a clip for each segment, a lane of
/// captions and a chapter marker for each segment.
struct FCPXMLExporter {
    /// The whole document. `mediaFiles` are the story's sources, in any order; without them no clip can be written, but
    /// its marker is. `subtitles` become captions at their own times, as they stand. `fps` is the sequence's frame
    /// rate.
    [[nodiscard]] static std::string exportText(const std::string& projectName,
                                                const std::vector<StorySegment>& segments,
                                                const std::vector<MediaFileInfo>& mediaFiles, double fps,
                                                const std::optional<std::vector<Subtitle>>& subtitles);

    /// The same at 24 frames a second.
    [[nodiscard]] static std::string exportText(const std::string& projectName,
                                                const std::vector<StorySegment>& segments,
                                                const std::vector<MediaFileInfo>& mediaFiles,
                                                const std::optional<std::vector<Subtitle>>& subtitles) {
        return exportText(projectName, segments, mediaFiles, 24.0, subtitles);
    }

    /// Replaces the file at `path`, atomically and in UTF-8, by that text. The folder must be there. The platform's
    /// error, with its words, if that fails; the old file is then untouched.
    [[nodiscard]] static std::error_code exportToFile(const std::string& path, const std::string& projectName,
                                                      const std::vector<StorySegment>& segments,
                                                      const std::vector<MediaFileInfo>& mediaFiles, double fps,
                                                      const std::optional<std::vector<Subtitle>>& subtitles);

    /// The same at 24 frames a second.
    [[nodiscard]] static std::error_code exportToFile(const std::string& path, const std::string& projectName,
                                                      const std::vector<StorySegment>& segments,
                                                      const std::vector<MediaFileInfo>& mediaFiles,
                                                      const std::optional<std::vector<Subtitle>>& subtitles) {
        return exportToFile(path, projectName, segments, mediaFiles, 24.0, subtitles);
    }
};

} // namespace zuvo
