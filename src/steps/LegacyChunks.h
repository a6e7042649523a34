#pragma once

#include "model/Transcript.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

// Transcripts that an earlier tool left behind: one JSON file per chunk, in a folder per project.

/// Whether a project folder with these chunk files (names, ".json" included) holds the transcript of these media.
[[nodiscard]] bool legacyChunksMatch(const std::vector<std::string>& chunkFileNames,
                                     const std::vector<std::string>& mediaPaths);

/// The lines of one chunk file, their times as they stand and their language "es"; none if the text is no such file. An
/// element without text is passed over, a missing time is 0.0.
[[nodiscard]] std::vector<TranscriptSegment> legacyChunkLines(std::string_view fileText);

} // namespace zuvo
