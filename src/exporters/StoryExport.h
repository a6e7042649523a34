#pragma once

#include "model/Media.h"
#include "model/MiningResults.h"

#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace zuvo {

// A story written for another editing system, in whichever form is asked for.

/// The forms in which other editing systems take a story.
enum class ExportFormat { edl, fcpxml, premiere };

/// The name of the sequence in every form.
inline constexpr std::string_view exportSequenceName = "Zuvo Story Edit";

/// What the file is called in an export folder.
[[nodiscard]] std::string_view exportFileName(ExportFormat format);

/// Has the form's exporter replace the file at `path`; the story's subtitles go along where the form has a place for
/// them. The platform's error, with its words, if that fails; the old file is then untouched.
[[nodiscard]] std::error_code exportStory(ExportFormat format, const std::string& path, const MiningResults& story,
                                          const std::vector<MediaFileInfo>& media, double fps = 24.0);

} // namespace zuvo
