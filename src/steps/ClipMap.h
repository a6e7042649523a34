#pragma once

#include "base/Json.h"
#include "model/MiningResults.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zuvo {

/// Where one source lies in mine time.
struct ClipMapEntry {
    std::string name;   ///< file name with extension
    double start = 0.0; ///< seconds in mine time
    double end = 0.0;   ///< seconds in mine time, not included
};

/// The sources among `mediaPaths` that probe_results.json knows with a duration over 10 s, by start timecode, end to
/// end. Gaps between recordings are not kept, since the transcript was made without them.
[[nodiscard]] std::vector<ClipMapEntry> clipMapFromProbeCache(const Json& probeCache,
                                                              const std::vector<std::string>& mediaPaths);

/// The same for names with measured durations (seconds), in the order given; those of 10 s or less are left out.
[[nodiscard]] std::vector<ClipMapEntry>
clipMapFromDurations(const std::vector<std::pair<std::string, double>>& namesWithDurations);

/// "📋 Source clip map: A.wav: 0.0s–1200.0s, ..." as it stands in the log.
[[nodiscard]] std::string clipMapLogLine(const std::vector<ClipMapEntry>& map);

/// Each segment with the `sourceClip` of the first entry that holds its start; without one it keeps the one it had.
[[nodiscard]] MiningResults withSourceClips(MiningResults analysis, const std::vector<ClipMapEntry>& map);

/// segments.json: pretty, keys sorted, a missing chapter as null.
[[nodiscard]] std::optional<std::string> segmentsFileText(const std::vector<StorySegment>& segments);

} // namespace zuvo
